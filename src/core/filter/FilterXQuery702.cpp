#include "filter/FilterXQuery702.h"

namespace ZDTAnalyzer::Filter::XPVT_7_02 {

namespace {

// " and (" [not (] contains(path, string (variable))) [)] for an enabled row. `anyValue`
// asks whether any of the path's values contains the text; with no value it tests the
// empty string, as contains() does.
std::string fragment(bool enabled, bool negate, const std::string& path, const std::string& variable,
                     bool anyValue = false) {
    if (!enabled)
        return {};
    std::string text = " and (";
    if (negate)
        text += "not (";
    if (anyValue)
        text += "(some $any in (if (exists(" + path + ")) then " + path + " else \"\") satisfies contains($any" +
                ", string (" + variable + "))))";
    else
        text += "contains(" + path + ", string (" + variable + ")))";
    if (negate)
        text += ")";
    return text;
}

std::string fragment(const TextCondition& row, const std::string& path, const std::string& variable,
                     bool anyValue = false) {
    return fragment(row.enabled, row.negate, path, variable, anyValue);
}

std::string test(const std::string& groupTest, const std::string& fragments, const std::string& skippedItem) {
    return " if   (" + groupTest + fragments + "   ) then $z else " + skippedItem + "\n";
}

std::string parameterBlock(const char* flag, const char* container, const char* element, const std::string& fragments) {
    return std::string("     and ( $") + flag + " = 0 or " + "                         ( some $t in $z/" + container +
           "//* satisfies\n" + "(\n" + element + fragments + ")\n" + "                         )" + "         )\n";
}

std::string flagLine(const char* variable, bool flag) {
    return std::string("let $") + variable + " := " + (flag ? "1" : "0") + "\n";
}

std::string textLine(const char* variable, const TextCondition& row) {
    return std::string("let $") + variable + " := \"" + row.text + "\"\n";
}

} // namespace

std::string buildFilterXQuery702(const std::string& documentPath, const FilterCondition702& r,
                                 MultiValueTests multiValueTests, const std::string& skippedItem) {
    const bool anyValue = multiValueTests == MultiValueTests::AnyValue;
    std::string q;
    q += flagLine("IOCLL", r.includeOpenCloseLogicalLinks);
    q += textLine("OCLLLLS", r.logicalLink);
    q += textLine("OCLLAKOLS", r.accessKeyOfLocation);
    q += flagLine("ISFDCP", r.includeStartFinishPrimitives);
    q += textLine("SFDCPLLS", r.primitiveLogicalLink);
    q += textLine("SFDCPAKOLS", r.primitiveAccessKeyOfLocation);
    q += textLine("SFDCPPDCPS", r.parentDiagComPrimitive);
    q += flagLine("IR", r.includeResults);
    q += textLine("RDCPSNS", r.primitiveShortName);
    q += textLine("RDCPIDS", r.primitiveId);
    q += textLine("RRQSNS", r.requestShortName);
    q += textLine("RRQMSS", r.requestMessage);
    q += flagLine("RRQPAF", r.requestParameterFilter);
    q += textLine("RRQPASNS", r.requestParameterShortName);
    q += textLine("RRQPAVAS", r.requestParameterValue);
    q += textLine("RRPSNS", r.responseShortName);
    q += textLine("RRPMSS", r.responseMessage);
    q += flagLine("RRPPAF", r.responseParameterFilter);
    q += textLine("RRPPASNS", r.responseParameterShortName);
    q += textLine("RRPPAVAS", r.responseParameterValue);
    q += "let $doc_ := \"" + documentPath + "\"\n";

    q += "for $x in doc($doc_)/ProcessValueTrace\n";
    q += "return\n";
    q += "<ProcessValueTrace>\n";
    q += "{\n";
    q += "  for $y in $x/*\n";
    q += "  return\n";
    q += "    typeswitch($y)\n";
    q += "    case element(Trace)\n";
    q += "    return\n";
    q += "<Trace>\n";
    q += "{\n";
    q += "  for $z in $y/*\n";
    q += "  return\n";
    q += "    typeswitch($z)\n";

    // The request parameter value passes `enabled` as its negation too: once enabled it is
    // always negated, whatever its own "Not" says.
    const std::string resultTest = test(
        "         ( $IR = 1 )",
        fragment(r.primitiveShortName, "$z/DiagComPrimitive/@ShortName", "$RDCPSNS") +
            fragment(r.primitiveId, "$z/DiagComPrimitive/@ID", "$RDCPIDS") +
            fragment(r.requestShortName, "$z/Request/@ShortName", "$RRQSNS") +
            fragment(r.requestMessage, "$z/Request/RequestMessage", "$RRQMSS") +
            parameterBlock("RRQPAF", "Request",
                           "     ( typeswitch($t) case element(RequestParameter) return fn:true() default return "
                           "fn:false() ) ",
                           fragment(r.requestParameterShortName, "$t/@ShortName", "$RRQPASNS") +
                               fragment(r.requestParameterValue.enabled, r.requestParameterValue.enabled,
                                        "$t/Value/ValueAsString", "$RRQPAVAS")) +
            fragment(r.responseShortName, "$z/Response/@ShortName", "$RRPSNS", anyValue) +
            fragment(r.responseMessage, "$z/Response/ResponseMessage", "$RRPMSS", anyValue) +
            parameterBlock("RRPPAF", "Response",
                           "      ( typeswitch($t) case element(ResponseParameter) return fn:true() default return "
                           "fn:false() ) ",
                           fragment(r.responseParameterShortName, "$t/@ShortName", "$RRPPASNS") +
                               fragment(r.responseParameterValue, "$t/Value/ValueAsString", "$RRPPAVAS")),
        skippedItem);
    const std::string linkTest = test("         ( $IOCLL = 1 )",
                                      fragment(r.logicalLink, "$z/LogicalLink/@ShortName", "$OCLLLLS") +
                                          fragment(r.accessKeyOfLocation, "$z/AccessKeyOfLocation", "$OCLLAKOLS"),
                                      skippedItem);
    const std::string primitiveTest =
        test("         ( $ISFDCP = 1 )",
             fragment(r.primitiveLogicalLink, "$z/LogicalLink/@ShortName", "$SFDCPLLS") +
                 fragment(r.primitiveAccessKeyOfLocation, "$z/AccessKeyOfLocation", "$SFDCPAKOLS") +
                 fragment(r.parentDiagComPrimitive, "$z/ParentDiagComPrimitives/DiagComPrimitive/@ShortName",
                          "$SFDCPPDCPS", anyValue),
             skippedItem);

    q += "    case element(Result)\n";
    q += "    return\n";
    q += resultTest;
    for (const char* element : {"OpenLogicalLink", "CloseLogicalLink"}) {
        q += std::string("    case element(") + element + ")\n";
        q += "    return\n";
        q += linkTest;
    }
    for (const char* element : {"StartDiagComPrimitive", "FinishDiagComPrimitive"}) {
        q += std::string("    case element(") + element + ")\n";
        q += "    return\n";
        q += primitiveTest;
    }
    q += "    default\n";
    q += "return $z\n";
    q += "}\n";
    q += "</Trace>";
    q += "    default\n";
    q += "    return $y\n";
    q += "}\n";
    q += "</ProcessValueTrace>\n";
    return q;
}

} // namespace ZDTAnalyzer::Filter::XPVT_7_02
