#pragma once

#include <array>
#include <map>
#include <string>
#include <string_view>

// The conditions of a 7.01 process value trace filter: one flat map of named flags and
// texts, the one thing a .pvflt file holds. Ordered by the keys' bytes, which is the order
// of the file's entries and of the query's lines.
namespace ZDTAnalyzer::Filter::XPVT_7_01 {

using FilterConditionMap = std::map<std::string, std::string>;

// The sides a result condition looks at, and the items it tests.
inline constexpr std::array<std::string_view, 3> Sides{"Request", "Response", "Both"};
inline constexpr std::array<std::string_view, 6> Items{"Pdu",           "ParameterValue", "ParameterType",
                                                       "ParameterName", "ErrorCode",      "ErrorSeverity"};

inline constexpr std::string_view ExcludeItemsKey = "ExcludeItems";

// "RequestPdu", "BothErrorCode" ...: set when a condition on that item of that side is added.
std::string sideItemFlagKey(std::string_view side, std::string_view item);
// "IncludeCompleteResultPduRequest" ...: the "complete result structure" choice of that condition.
std::string completeResultFlagKey(std::string_view side, std::string_view item);
// "PduBytePatternRequest", "ParameterNameBoth" ...: the text the item is searched for.
std::string itemTextKey(std::string_view side, std::string_view item);

// All 62 keys with their defaults: flags "0", texts and ExcludeItems empty.
FilterConditionMap defaultFilterConditionMap();

// True when every key of the defaults is present: the query refers to each of them.
bool holdsEveryCondition(const FilterConditionMap& conditions);

} // namespace ZDTAnalyzer::Filter::XPVT_7_01
