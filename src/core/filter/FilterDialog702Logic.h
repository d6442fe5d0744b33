#pragma once

#include "common/UserMessage.h"
#include "filter/FilterCondition702.h"

#include <functional>
#include <optional>
#include <string>

// What the 7.02 filter dialogs decide: which controls are enabled for the checks as they
// stand, and the names a filter is checked and saved under.
namespace ZDTAnalyzer::Filter::XPVT_7_02 {

inline constexpr const char* NewFilterTitle = "XPVT New Filter";
inline constexpr const char* AddFileDialogTitle = "Add Xpvt 7.02 Filter File";
inline constexpr const char* AddFileDialogFilter = "Xpvt 7.02 Filter Files (*.pvflt2)|*.pvflt2||";
// The add dialog's default extension lacks the "2".
inline constexpr const char* AddFileDefaultExtension = "pvflt";
inline constexpr const char* FilterExtension = ".pvflt2";
inline constexpr const char* FilterExistsTitle = "E012_005 [Filter.]";
inline constexpr const char* FilterExistsFormat = "Filter %s exist !";
inline constexpr const char* FilterErrorTitle = "E009_003 [Filter.]";
inline constexpr const char* FilterErrorFormat = "Filter error : %s !";

// The enabled state of one text row: its check, and its "Not" and edit together.
struct RowEnabled {
    bool check = false;
    bool notAndEdit = false;
    bool operator==(const RowEnabled&) const = default;
};

// The enabled state of every control but the three group checks, which stay enabled.
struct FilterDialogEnabled {
    RowEnabled logicalLink, accessKeyOfLocation;
    RowEnabled primitiveLogicalLink, primitiveAccessKeyOfLocation, parentDiagComPrimitive;
    RowEnabled primitiveShortName, primitiveId, requestShortName, requestMessage;
    bool requestParameterFilter = false;
    RowEnabled requestParameterShortName, requestParameterValue;
    RowEnabled responseShortName, responseMessage;
    bool responseParameterFilter = false;
    RowEnabled responseParameterShortName, responseParameterValue;
    // "Filter file:" is disabled in edit mode.
    bool fileName = true;
};

// Recomputed after each change of a check.
FilterDialogEnabled filterDialogEnabled(const FilterCondition702& record, bool editMode);

// "OK": the path the dialog checks, with ".pvflt2" appended unless the name contains it;
// in new mode an existing file is the box that keeps the dialog open.
struct CheckedName {
    std::string path;
    std::optional<zdt::UserMessage> box;
};
CheckedName checkFilterName(const std::string& name, bool newMode, const std::string& filterDirectory,
                            const std::function<bool(const std::string& path)>& fileExists);

// "&New...": the name the list shows and the file is written under, ".pvflt2" appended
// with no test, so a name typed with that ending gets it twice.
std::string newFilterFileName(const std::string& typedName);

} // namespace ZDTAnalyzer::Filter::XPVT_7_02
