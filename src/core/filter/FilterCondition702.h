#pragma once

#include <string>

// The conditions of a 7.02 process value trace filter: a fixed record of text rows under
// three group checks, kept in a .pvflt2 file.
namespace ZDTAnalyzer::Filter::XPVT_7_02 {

struct TextCondition {
    bool negate = false;
    bool enabled = false;
    std::string text;

    bool operator==(const TextCondition&) const = default;
};

// Fields in record and file order.
struct FilterCondition702 {
    bool includeOpenCloseLogicalLinks = false;
    TextCondition logicalLink;
    TextCondition accessKeyOfLocation;
    bool includeStartFinishPrimitives = false;
    TextCondition primitiveLogicalLink;
    TextCondition primitiveAccessKeyOfLocation;
    TextCondition parentDiagComPrimitive;
    bool includeResults = false;
    TextCondition primitiveShortName;
    TextCondition primitiveId;
    TextCondition requestShortName;
    TextCondition requestMessage;
    bool requestParameterFilter = false;
    TextCondition requestParameterShortName;
    TextCondition requestParameterValue;
    TextCondition responseShortName;
    TextCondition responseMessage;
    bool responseParameterFilter = false;
    TextCondition responseParameterShortName;
    TextCondition responseParameterValue;

    bool operator==(const FilterCondition702&) const = default;
};

// Writes the record: each bool as "true"/"false" on its own line, each text as its length,
// a blank, its bytes and a line feed. False when the file cannot be written completely.
bool saveFilter702(const std::string& path, const FilterCondition702& record);

// Reads a record written by saveFilter702. A bool line is true when it starts with "t".
// False, with `record` left as it was, when the file cannot be opened or ends early, or a
// text entry is not a length, a blank and that many bytes: such a file is no 7.02 filter.
bool loadFilter702(const std::string& path, FilterCondition702& record);

} // namespace ZDTAnalyzer::Filter::XPVT_7_02
