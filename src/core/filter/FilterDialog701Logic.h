#pragma once

#include "common/UserMessage.h"
#include "filter/FilterConditionMap.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

// What the 7.01 filter dialogs decide, over plain values: the list of filter files, the
// conditions that "&Add" makes of the controls, the rows the list shows, and the name
// a filter is saved under. The dialogs only move values between controls and these.
namespace ZDTAnalyzer::Filter::XPVT_7_01 {

inline constexpr const char* InvalidConditionTitle = "E012_001 [Filter condition.]";
inline constexpr const char* InvalidConditionText = "Invalid filter condition.";
inline constexpr const char* NoConditionSelectedTitle = "E012_002 [Filter condition.]";
inline constexpr const char* NoConditionSelectedText = "No filter condition selected.";
inline constexpr const char* EmptyConditionListTitle = "E012_003 [Filter condition.]";
inline constexpr const char* EmptyConditionListText = "Empty filter condition list.";
inline constexpr const char* InvalidFileNameTitle = "E012_004 [Filter file name.]";
inline constexpr const char* InvalidFileNameText = "Invalid filter file name.";
inline constexpr const char* FilterExistsTitle = "E012_005 [Filter.]";
inline constexpr const char* FilterExistsFormat = "Filter %s exist !";
inline constexpr const char* CannotOpenFileTitle = "E012_006 [Filter.]";
inline constexpr const char* CannotOpenFileFormat = "Can't open file : %s !";
inline constexpr const char* OverwriteTitle = "E013_001 [Filter.]";
inline constexpr const char* OverwriteText = "\"File already exists ! Overwrite ?\"";
inline constexpr const char* CopyFailedTitle = "E013_002 [Filter.]";
inline constexpr const char* CopyFailedText = "File copy failed.";
inline constexpr const char* RemoveTitle = "E013_003 [Filter.]";
inline constexpr const char* RemoveFormat = "\"Do you really want to remove : %s ?\"";
inline constexpr const char* RunFailedTitle = "E013_004 [Filter.]";
inline constexpr const char* EditFailedTitle = "E013_005 [Filter.]";
inline constexpr const char* ErrorOccuredFormat = "Error occured:\n%s !";

inline constexpr const char* NewFilterTitle = "Xpvt New Filter";
inline constexpr const char* EditFilterTitle = "Xpvt Edit Filter";
inline constexpr const char* AddFileDialogTitle = "Add Xpvt Filter File";
inline constexpr const char* AddFileDialogFilter = "Xpvt Filter Files (*.pvflt)|*.pvflt||";
inline constexpr const char* FilterExtension = ".pvflt";

// `format` with its "%s" replaced by `text`.
std::string formatMessage(const char* format, const std::string& text);

// Shared by the two dialogs: the document, and the filter files of the list with a flag
// each that stays true while the entry counts.
struct FilterFileList {
    std::string documentPath;
    std::vector<std::string> names;
    std::vector<bool> counted;
};

// Adds the name and extension of `path` unless the list holds exactly that text already.
// Returns the index of the new entry.
std::optional<std::size_t> addFilterFileName(FilterFileList& list, const std::string& path);
// "&Remove": the entry stays in the arrays and only stops counting.
void stopCounting(FilterFileList& list, const std::string& name);
// "&Ok": the first entry still counted, whichever line is selected; none: nothing to run.
std::optional<std::string> filterFileToApply(const FilterFileList& list);
// The line selected after line `removed` went: the one before it, or the first.
int selectionAfterRemoval(int removed, int remainingLines);
// "&Add...": true when the chosen file is already the one in the filter directory (the
// two paths compared lower-cased), so nothing is copied.
bool isInFilterDirectory(const std::string& chosenPath, const std::string& filterDirectory);

// The controls of the filter dialog; -1 is a radio group with nothing chosen.
struct FilterDialogControls {
    int eventGroup = -1;     // 0 "Trace or Primitive events", 1 "&Result events"
    int traceItem = -1;      // 0 start/stop trace, 1 logical link by name, 2 ComPrimitive
    int comPrimitiveBy = -1; // 0 "by Na&me", 1 "by &ID"
    bool request = false;
    bool response = false;
    bool complete = false;
    int resultItem = -1;  // 0 PDU, 1 parameter, 2 error
    int parameterBy = -1; // 0 name, 1 type, 2 value
    int errorBy = -1;     // 0 code, 1 severity
    int mode = 0;         // 0 include, 1 exclude
    std::string logicalLinkName;
    std::string comPrimitiveName;
    std::string comPrimitiveId;
    std::string pduPattern;
    std::string parameterName;
    std::string parameterType;
    std::string parameterValue;
    std::string errorCode;
    std::string errorSeverity;
    std::string fileName;
};

// Which controls an event radio leaves enabled: those under the chosen event.
struct EventControlsEnabled {
    bool traceControls = false;
    bool resultControls = false;
};
EventControlsEnabled eventControlsEnabled(int eventGroup);

// One line of the condition list, by column: "Event", "Complete", "Request",
// "Response", "Item", "by", "Value".
struct ConditionRow {
    std::string event, complete, request, response, item, by, value;
    bool operator==(const ConditionRow&) const = default;
};

struct ColumnHeader {
    const char* title;
    int width;
};
inline constexpr ColumnHeader ConditionColumns[] = {{"Event", 80}, {"Complete", 100}, {"Request", 80}, {"Response", 80},
                                                    {"Item", 80},  {"by", 80},        {"Value", 80}};

// "&Add": writes the condition into `conditions` and returns its row, or the box of an
// invalid combination, which changes nothing. Texts are taken as they are, empty ones too.
struct AddConditionOutcome {
    std::optional<ConditionRow> row;
    std::optional<zdt::UserMessage> box;
};
AddConditionOutcome addCondition(const FilterDialogControls& controls, FilterConditionMap& conditions);

// Edit mode: a row for each condition whose flag is "1", in the dialog's order.
std::vector<ConditionRow> conditionRows(const FilterConditionMap& conditions);

// "&Delete" and "De&lete All" take rows from the list only; the map keeps the condition.
std::optional<zdt::UserMessage> deleteRowBox(int selectedRow);
std::optional<zdt::UserMessage> deleteAllBox(std::size_t rowCount);

// "&OK": where the filter goes, or the box that keeps the dialog open. Sets ExcludeItems.
// `fileExists` is asked only in new mode.
struct SaveTarget {
    std::string path;
    std::optional<zdt::UserMessage> box;
};
SaveTarget saveTarget(const FilterDialogControls& controls, bool newMode, const std::string& filterDirectory,
                      FilterConditionMap& conditions, const std::function<bool(const std::string& path)>& fileExists);

} // namespace ZDTAnalyzer::Filter::XPVT_7_01
