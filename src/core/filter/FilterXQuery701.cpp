#include "filter/FilterXQuery701.h"

#include <string_view>

namespace ZDTAnalyzer::Filter::XPVT_7_01 {

namespace {

// Where an item is found below the request or response, and the leaf holding its text.
struct ItemPath {
    std::string_view item;
    std::string_view below; // after R/P; empty for the PDU, which sits directly in R
    bool inParameter;
    std::string_view leaf;
};

constexpr ItemPath ItemPaths[] = {
    {"Pdu", "", false, "PDU"},
    {"ParameterValue", "/ZdtValue", true, "Value"},
    {"ParameterType", "/ZdtValue", true, "Type"},
    {"ParameterName", "", true, "ShortName"},
    {"ErrorCode", "/ZdtError", true, "CodeDescription"},
    {"ErrorSeverity", "/ZdtError", true, "Severity"},
};

std::string str(std::string_view view) {
    return std::string(view);
}

// some $xx in $y/path satisfies ( contains($xx/leaf, string($text)) ) for one half.
std::string halfTest(const ItemPath& path, bool response, const std::string& textVariable, bool misspelt) {
    std::string location = response ? "ZdtResponse" : "ZdtRequest";
    if (path.inParameter)
        location += misspelt ? "/ZdtReponseParameter" : (response ? "/ZdtResponseParameter" : "/ZdtRequestParameter");
    location += str(path.below);
    return "some $xx in $y/" + location + " satisfies ( contains($xx/" + str(path.leaf) + ", string($" + textVariable +
           ")) )";
}

// The test of one item on one side; Both asks the request and the response for the Both
// text. `completeTest` marks the complete-result test, where a response parameter's name
// is looked for under its misspelt element name.
std::string itemTest(std::string_view side, const ItemPath& path, bool completeTest) {
    const std::string text = itemTextKey(side, path.item);
    if (side == "Request")
        return "(" + halfTest(path, false, text, false) + ")";
    if (side == "Response")
        return "(" + halfTest(path, true, text, completeTest && path.item == "ParameterName") + ")";
    return "((" + halfTest(path, false, text, false) + ") and (" + halfTest(path, true, text, false) + "))";
}

std::string flagIs(const std::string& key, char value) {
    return "$" + key + "=" + value;
}

std::string completeConditions() {
    std::string text;
    for (std::string_view side : Sides) {
        for (const ItemPath& path : ItemPaths) {
            text += text.empty() ? "        " : "\n     or ";
            text += "( " + flagIs(completeResultFlagKey(side, path.item), '1') + " and " +
                    flagIs(sideItemFlagKey(side, path.item), '1') + " and " + itemTest(side, path, true) + " )";
        }
    }
    return text;
}

std::string nonCompleteConditions(std::string_view side) {
    std::string text;
    for (const ItemPath& path : ItemPaths) {
        const std::string complete = completeResultFlagKey(side, path.item);
        text += text.empty() ? "        " : "\n    and ";
        text += "( " + flagIs(complete, '1') + " or ( " + flagIs(complete, '0') + " and ( " +
                flagIs(sideItemFlagKey(side, path.item), '0') + " or " + itemTest(side, path, false) + " ) ) )";
    }
    return text;
}

std::string anyFlagOf(std::initializer_list<std::string_view> sides) {
    std::string text;
    for (std::string_view side : sides) {
        for (const ItemPath& path : ItemPaths) {
            text += text.empty() ? "" : " or ";
            text += flagIs(sideItemFlagKey(side, path.item), '1');
        }
    }
    return "(" + text + ")";
}

std::string makeTemplate() {
    std::string q;
    q += "for $x in doc ($doc_name)/ProcessValueTrace/Trace\n";
    q += "return\n";
    q += "<ProcessValueTrace>\n";
    q += "<Trace>\n";
    q += "{\n";
    q += "  for $y in $x/(StartTrace|OpenComPrimitive|ZdtResult|CloseComPrimitive|StopTrace)\n";
    q += "  return\n";
    q += "    typeswitch($y)\n";
    for (const char* element : {"StartTrace", "StopTrace"}) {
        q += std::string("    case element(") + element + ")\n";
        q += "    return if ($AfterStartStopTrace=1 and $ExcludeItems=0) then $y else ()\n";
    }
    for (const char* element : {"OpenComPrimitive", "CloseComPrimitive"}) {
        q += std::string("    case element(") + element + ")\n";
        q += "    return\n";
        q += "      if ( $ExcludeItems=0\n";
        q += "           and ( $AfterComPrimitiveLogicalLinkName=1 or $ AfterComPrimitiveName=1 or $ "
             "AfterComPrimitiveId=1 )\n";
        q += "           and ( $AfterComPrimitiveLogicalLinkName=0 or ( some $xx in $y/LogicalLink satisfies ( "
             "contains($xx/ShortName, string($LogicalLinkName)) ) ) )\n";
        q += "           and ( $ AfterComPrimitiveName=0 or contains($y/ShortName, string($ComPrimitiveName)) )\n";
        q += "           and ( $ AfterComPrimitiveId=0 or contains($y/ID, string($ComPrimitiveId)) ) )\n";
        q += "      then $y else ()\n";
    }
    q += "    case element(ZdtResult)\n";
    q += "    return\n";
    q += "      (: start include complete conditions in ZdtResult :)\n";
    q += "      let $incomplete_conditions_ZdtResult :=\n" + completeConditions() + "\n";
    q += "      (: end include complete conditions in ZdtResult :)\n";
    q += "      (: start include non complete conditions in ZdtResult :)\n";
    q += "      let $non_complete_conditions_request :=\n" + nonCompleteConditions("Request") + "\n";
    q += "      let $non_complete_conditions_response :=\n" + nonCompleteConditions("Response") + "\n";
    q += "      let $non_complete_conditions_both :=\n" + nonCompleteConditions("Both") + "\n";
    q += "      (: end include non complete conditions in ZdtResult :)\n";
    q += "      let $the_ZdtResult_include_condition := $incomplete_conditions_ZdtResult\n";
    q += "          or ( " + anyFlagOf({"Request", "Response", "Both"}) + "\n";
    q += "               and $non_complete_conditions_request and $non_complete_conditions_response and "
         "$non_complete_conditions_both )\n";
    q += "      let $the_ZdtRequest_include_condition := $incomplete_conditions_ZdtResult\n";
    q += "          or ( " + anyFlagOf({"Request", "Both"}) + "\n";
    q += "               and $non_complete_conditions_request and $non_complete_conditions_both )\n";
    q += "      let $the_ZdtResponse_include_condition := $incomplete_conditions_ZdtResult\n";
    q += "          or ( " + anyFlagOf({"Response", "Both"}) + "\n";
    q += "               and $non_complete_conditions_response and $non_complete_conditions_both )\n";
    q += "      return\n";
    q += "        if ( ( $ExcludeItems=0 and $the_ZdtResult_include_condition )\n";
    q += "             or ( $ExcludeItems=1 and ( not($incomplete_conditions_ZdtResult)\n";
    q += "                  or not($non_complete_conditions_request and $non_complete_conditions_response and "
         "$non_complete_conditions_both) ) ) )\n";
    q += "        then\n";
    q += "          <ZdtResult>\n";
    q += "          { $y/LogicalLink }\n";
    q += "          { $y/ComPrimitive }\n";
    q += "          { $y/Type }\n";
    q += "          { $y/State }\n";
    q += "          { $y/StateInfo }\n";
    for (const char* side : {"Request", "Response"}) {
        q += "          {\n";
        q += std::string("            for $r in $y/Zdt") + side + "\n";
        q += std::string("            return if ( ( $ExcludeItems=0 and $the_Zdt") + side + "_include_condition )\n";
        q += std::string("                        or ( $ExcludeItems=1 and not($the_Zdt") + side +
             "_include_condition) ) )\n";
        q += "                   then $r else ()\n";
        q += "          }\n";
    }
    q += "          </ZdtResult>\n";
    q += "        else ()\n";
    q += "    default return $y\n";
    q += "}\n";
    q += "</Trace>\n";
    q += "</ProcessValueTrace>\n";
    return q;
}

// A value of exactly one character stands bare: flags become numbers, and a one-letter
// search text becomes a path.
std::string letValue(const std::string& value) {
    return value.size() == 1 ? value : "\"" + value + "\"";
}

} // namespace

const std::string& filterTemplate701() {
    static const std::string text = makeTemplate();
    return text;
}

std::string buildFilterXQuery701(const std::string& documentPath, const FilterConditionMap& conditions) {
    std::string query = "(:\n";
    for (const auto& [key, value] : conditions)
        query += key + "=" + value + "\n";
    query += ":)\n\n\n";
    for (const auto& [key, value] : conditions)
        query += "let $" + key + ":=" + letValue(value) + "\n";
    query += "let $doc_name:=\"" + documentPath + "\"\n";
    query += "\n\n\n";
    query += filterTemplate701();
    return query;
}

} // namespace ZDTAnalyzer::Filter::XPVT_7_01
