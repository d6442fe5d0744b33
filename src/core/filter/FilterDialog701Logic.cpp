#include "filter/FilterDialog701Logic.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace ZDTAnalyzer::Filter::XPVT_7_01 {

namespace {

struct ItemWords {
    std::string_view key;
    const char* item;
    const char* by;
};

// The items in the order the list shows them, with their words.
constexpr std::array<ItemWords, 6> ListedItems{{
    {"Pdu", "PDU", "Pattern"},
    {"ParameterName", "Parameter", "Name"},
    {"ParameterType", "Parameter", "Type"},
    {"ParameterValue", "Parameter", "Value"},
    {"ErrorCode", "Error", "Code"},
    {"ErrorSeverity", "Error", "Severity"},
}};

const char* yesNo(bool yes) {
    return yes ? "yes" : "no";
}

std::string lowerCased(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
    return text;
}

std::string fileNameOf(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string valueOf(const FilterConditionMap& conditions, const std::string& key) {
    const auto found = conditions.find(key);
    return found == conditions.end() ? std::string() : found->second;
}

ConditionRow resultRow(std::string_view side, const ItemWords& words, bool complete, const std::string& text) {
    return {"Result", yesNo(complete), yesNo(side != "Response"), yesNo(side != "Request"), words.item, words.by, text};
}

// The result item chosen by the controls, or nullptr.
const ItemWords* chosenItem(const FilterDialogControls& c) {
    if (c.resultItem == 0)
        return &ListedItems[0];
    if (c.resultItem == 1 && c.parameterBy >= 0 && c.parameterBy <= 2)
        return &ListedItems[static_cast<std::size_t>(1 + c.parameterBy)];
    if (c.resultItem == 2 && c.errorBy >= 0 && c.errorBy <= 1)
        return &ListedItems[static_cast<std::size_t>(4 + c.errorBy)];
    return nullptr;
}

const std::string& chosenText(const FilterDialogControls& c, std::string_view item) {
    if (item == "Pdu")
        return c.pduPattern;
    if (item == "ParameterName")
        return c.parameterName;
    if (item == "ParameterType")
        return c.parameterType;
    if (item == "ParameterValue")
        return c.parameterValue;
    if (item == "ErrorCode")
        return c.errorCode;
    return c.errorSeverity;
}

std::optional<ConditionRow> addTraceCondition(const FilterDialogControls& c, FilterConditionMap& conditions) {
    if (c.traceItem == 0) {
        conditions["AfterStartStopTrace"] = "1";
        return ConditionRow{"Trace or Primitive", "", "", "", "Start Trace", "", ""};
    }
    if (c.traceItem == 1) {
        conditions["AfterComPrimitiveLogicalLinkName"] = "1";
        conditions["LogicalLinkName"] = c.logicalLinkName;
        return ConditionRow{"Trace or Primitive", "", "", "", "LogicalLink", "Name", c.logicalLinkName};
    }
    if (c.traceItem == 2 && c.comPrimitiveBy == 0) {
        conditions["AfterComPrimitiveName"] = "1";
        conditions["ComPrimitiveName"] = c.comPrimitiveName;
        return ConditionRow{"Trace or Primitive", "", "", "", "ComPrimitive", "Name", c.comPrimitiveName};
    }
    if (c.traceItem == 2 && c.comPrimitiveBy == 1) {
        conditions["AfterComPrimitiveId"] = "1";
        conditions["ComPrimitiveId"] = c.comPrimitiveId;
        return ConditionRow{"Trace or Primitive", "", "", "", "ComPrimitive", "ID", c.comPrimitiveId};
    }
    return std::nullopt;
}

std::optional<ConditionRow> addResultCondition(const FilterDialogControls& c, FilterConditionMap& conditions) {
    const ItemWords* item = chosenItem(c);
    if ((!c.request && !c.response) || item == nullptr)
        return std::nullopt;
    const std::string_view side = c.request && c.response ? "Both" : (c.request ? "Request" : "Response");
    const std::string& text = chosenText(c, item->key);
    conditions[sideItemFlagKey(side, item->key)] = "1";
    conditions[itemTextKey(side, item->key)] = text;
    conditions[completeResultFlagKey(side, item->key)] = c.complete ? "1" : "0";
    return resultRow(side, *item, c.complete, text);
}

} // namespace

std::string formatMessage(const char* format, const std::string& text) {
    std::string message = format;
    const std::size_t at = message.find("%s");
    if (at != std::string::npos)
        message.replace(at, 2, text);
    return message;
}

std::optional<std::size_t> addFilterFileName(FilterFileList& list, const std::string& path) {
    const std::string name = fileNameOf(path);
    if (std::find(list.names.begin(), list.names.end(), name) != list.names.end())
        return std::nullopt;
    list.names.push_back(name);
    list.counted.push_back(true);
    return list.names.size() - 1;
}

void stopCounting(FilterFileList& list, const std::string& name) {
    for (std::size_t i = 0; i < list.names.size(); ++i)
        if (list.names[i] == name)
            list.counted[i] = false;
}

std::optional<std::string> filterFileToApply(const FilterFileList& list) {
    for (std::size_t i = 0; i < list.names.size(); ++i)
        if (list.counted[i])
            return list.names[i];
    return std::nullopt;
}

int selectionAfterRemoval(int removed, int remainingLines) {
    if (remainingLines <= 0)
        return -1;
    return std::clamp(removed - 1, 0, remainingLines - 1);
}

bool isInFilterDirectory(const std::string& chosenPath, const std::string& filterDirectory) {
    return lowerCased(chosenPath) == lowerCased(filterDirectory + fileNameOf(chosenPath));
}

EventControlsEnabled eventControlsEnabled(int eventGroup) {
    return {eventGroup == 0, eventGroup == 1};
}

AddConditionOutcome addCondition(const FilterDialogControls& controls, FilterConditionMap& conditions) {
    std::optional<ConditionRow> row;
    if (controls.eventGroup == 0)
        row = addTraceCondition(controls, conditions);
    else if (controls.eventGroup == 1)
        row = addResultCondition(controls, conditions);
    if (row)
        return {row, std::nullopt};
    return {std::nullopt, zdt::UserMessage{InvalidConditionTitle, InvalidConditionText, zdt::MessageIcon::Error}};
}

std::vector<ConditionRow> conditionRows(const FilterConditionMap& conditions) {
    const auto on = [&conditions](const std::string& key) { return valueOf(conditions, key) == "1"; };
    std::vector<ConditionRow> rows;
    if (on("AfterStartStopTrace"))
        rows.push_back({"Trace or Primitive", "", "", "", "Start Trace", "", ""});
    if (on("AfterComPrimitiveLogicalLinkName"))
        rows.push_back(
            {"Trace or Primitive", "", "", "", "LogicalLink", "Name", valueOf(conditions, "LogicalLinkName")});
    if (on("AfterComPrimitiveName"))
        rows.push_back(
            {"Trace or Primitive", "", "", "", "ComPrimitive", "Name", valueOf(conditions, "ComPrimitiveName")});
    if (on("AfterComPrimitiveId"))
        rows.push_back({"Trace or Primitive", "", "", "", "ComPrimitive", "ID", valueOf(conditions, "ComPrimitiveId")});
    for (const ItemWords& item : ListedItems) {
        for (std::string_view side : Sides) {
            if (!on(sideItemFlagKey(side, item.key)))
                continue;
            // The error severity rows of Request and Both show the error code's choice.
            const std::string_view completeItem =
                item.key == "ErrorSeverity" && side != "Response" ? std::string_view("ErrorCode") : item.key;
            rows.push_back(resultRow(side, item, on(completeResultFlagKey(side, completeItem)),
                                     valueOf(conditions, itemTextKey(side, item.key))));
        }
    }
    return rows;
}

std::optional<zdt::UserMessage> deleteRowBox(int selectedRow) {
    if (selectedRow >= 0)
        return std::nullopt;
    return zdt::UserMessage{NoConditionSelectedTitle, NoConditionSelectedText, zdt::MessageIcon::Error};
}

std::optional<zdt::UserMessage> deleteAllBox(std::size_t rowCount) {
    if (rowCount > 0)
        return std::nullopt;
    return zdt::UserMessage{EmptyConditionListTitle, EmptyConditionListText, zdt::MessageIcon::Error};
}

SaveTarget saveTarget(const FilterDialogControls& controls, bool newMode, const std::string& filterDirectory,
                      FilterConditionMap& conditions, const std::function<bool(const std::string& path)>& fileExists) {
    if (controls.fileName.empty())
        return {{}, zdt::UserMessage{InvalidFileNameTitle, InvalidFileNameText, zdt::MessageIcon::Error}};
    conditions[std::string(ExcludeItemsKey)] = controls.mode == 1 ? "1" : "0";
    std::string path = filterDirectory + controls.fileName;
    if (controls.fileName.find(FilterExtension) == std::string::npos)
        path += FilterExtension;
    if (newMode && fileExists(path))
        return {path,
                zdt::UserMessage{FilterExistsTitle, formatMessage(FilterExistsFormat, path), zdt::MessageIcon::Error}};
    return {path, std::nullopt};
}

} // namespace ZDTAnalyzer::Filter::XPVT_7_01
