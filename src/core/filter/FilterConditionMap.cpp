#include "filter/FilterConditionMap.h"

namespace ZDTAnalyzer::Filter::XPVT_7_01 {

std::string sideItemFlagKey(std::string_view side, std::string_view item) {
    return std::string(side) + std::string(item);
}

std::string completeResultFlagKey(std::string_view side, std::string_view item) {
    return "IncludeCompleteResult" + std::string(item) + std::string(side);
}

std::string itemTextKey(std::string_view side, std::string_view item) {
    // The PDU is searched by a byte pattern; the other items by their own names.
    const std::string itemName = item == "Pdu" ? std::string("PduBytePattern") : std::string(item);
    return itemName + std::string(side);
}

FilterConditionMap defaultFilterConditionMap() {
    FilterConditionMap conditions;
    for (const char* flag :
         {"AfterStartStopTrace", "AfterComPrimitiveLogicalLinkName", "AfterComPrimitiveId", "AfterComPrimitiveName"})
        conditions[flag] = "0";
    for (const char* text : {"LogicalLinkName", "ComPrimitiveName", "ComPrimitiveId"})
        conditions[text] = "";
    for (std::string_view side : Sides) {
        for (std::string_view item : Items) {
            conditions[sideItemFlagKey(side, item)] = "0";
            conditions[completeResultFlagKey(side, item)] = "0";
            conditions[itemTextKey(side, item)] = "";
        }
    }
    conditions[std::string(ExcludeItemsKey)] = "";
    return conditions;
}

bool holdsEveryCondition(const FilterConditionMap& conditions) {
    for (const auto& entry : defaultFilterConditionMap())
        if (conditions.find(entry.first) == conditions.end())
            return false;
    return true;
}

} // namespace ZDTAnalyzer::Filter::XPVT_7_01
