// The element tree of schema 7.02: links, start and finish of primitives with parent
// chains, results with requests, responses, nested parameters, values and errors.

#include "XpvtTraceState.h"

#include <array>
#include <string>

namespace zdtgen {

void XpvtTraceGenerator::State::WriteLinkHead702(std::string_view link) {
    XmlOut& x = *xml;
    Leaf("TimeStamp", Stamp());
    x.Empty("LogicalLink", {{"ShortName", link}});
    Leaf("AccessKeyOfLocation", "AKL." + std::string(link));
}

void XpvtTraceGenerator::State::WriteLinkEvent702(std::string_view element, std::string_view link) {
    XmlOut& x = *xml;
    x.Open(element);
    WriteLinkHead702(link);
    x.Close();
}

// Parent names under three characters, of four letters, and longer.
std::string XpvtTraceGenerator::State::ParentName() {
    static constexpr std::array<std::string_view, 6> kParents = {
        "ab", "X", "Diag", "Flash", "ReadDataByIdentifier", "Job_Main"};
    return std::string(kParents[random.Below(kParents.size())]);
}

void XpvtTraceGenerator::State::WriteParents702() {
    XmlOut& x = *xml;
    x.Open("ParentDiagComPrimitives");
    const std::uint32_t parents = 1 + random.Below(3);
    for (std::uint32_t i = 0; i < parents; ++i)
        x.Empty("DiagComPrimitive",
                {{"ShortName", Name(ParentName())}, {"ID", Decimal(random.Below(100))}, {"ObjectType", "eJOB"}});
    x.Close();
}

void XpvtTraceGenerator::State::WriteDiagComPrimitive702(std::string_view name, std::string_view id,
                                                         std::string_view type) {
    if (random.OneIn(10))
        xml->Empty("DiagComPrimitive", {{"ShortName", name}}); // ID and ObjectType missing
    else
        xml->Empty("DiagComPrimitive", {{"ShortName", name}, {"ID", id}, {"ObjectType", type}});
}

void XpvtTraceGenerator::State::WritePrimitiveEvent702(bool start, std::string_view link, std::string_view name,
                                                       std::string_view id, std::string_view type, bool parents) {
    XmlOut& x = *xml;
    x.Open(start ? "StartDiagComPrimitive" : "FinishDiagComPrimitive");
    WriteLinkHead702(link);
    if (parents)
        WriteParents702();
    WriteDiagComPrimitive702(name, id, type);
    if (!start) {
        if (random.OneIn(3))
            Leaf("VariantDetected", Identifier("Variant_"));
        if (random.OneIn(3))
            Leaf("VariantSelected", Identifier("Variant_"));
    }
    x.Close();
}

// An error with or without vendor code, now and then with nothing in it at all.
void XpvtTraceGenerator::State::WriteError702() {
    XmlOut& x = *xml;
    switch (random.Below(5)) {
    case 0:
        x.Empty("Error"); // nothing to show
        return;
    case 1:
        x.Open("Error", {{"Severity", "eWARNING"}});
        Leaf("CodeDescription", "Response too short");
        x.Close();
        return;
    default:
        break;
    }
    x.Open("Error", {{"Severity", "eERROR"}, {"Code", Decimal(1000 + random.Below(9000))}});
    Leaf("CodeDescription", random.OneIn(2) ? "Negative response" : "Timeout");
    if (random.OneIn(2)) {
        Leaf("VendorCode", "0x" + Decimal(random.Below(100)));
        if (!random.OneIn(3))
            Leaf("VendorCodeDescription", "Vendor defined failure");
    }
    x.Close();
}

// Radix 10, 16, 2, empty, non-numeric, or none, with values that suit some of them.
void XpvtTraceGenerator::State::WriteValue702() {
    XmlOut& x = *xml;
    static constexpr std::array<std::string_view, 7> kRadixes = {"10", "16", "16", "2", "", "hex", "10"};
    const std::uint32_t pick = random.Below(kRadixes.size() + 1);
    const std::string value = random.OneIn(8) ? std::string("n/a") : Decimal(random.Below(70000));
    if (pick == kRadixes.size())
        x.Open("Value", {{"Type", "A_ASCIISTRING"}});
    else
        x.Open("Value", {{"Type", "A_UINT32"}, {"Radix", kRadixes[pick]}});
    Leaf("ValueAsString", value);
    x.Close();
}

void XpvtTraceGenerator::State::WriteParameter702(bool request, std::uint32_t depth) {
    XmlOut& x = *xml;
    const char* element = request ? "RequestParameter" : "ResponseParameter";
    x.Open(element, {{"ShortName", Name(Identifier("Param_"))}, {"Type", random.OneIn(2) ? "VALUE" : "TABLE"}});
    if (!random.OneIn(3))
        Leaf("Unit", random.OneIn(2) ? "rpm"
                                     : "\xC2\xB0"
                                       "C");
    if (!random.OneIn(3)) {
        x.Open("ValueRangeInfo", {{"Type", random.OneIn(2) ? "VALID" : "NOT_DEFINED"}});
        Leaf("Text", "0 .. 65535");
        x.Close();
    }
    const bool hasChildren = depth < options.parameterDepth && random.OneIn(3);
    // The value stands before the children as a rule; after them now and then.
    const bool valueAfter = hasChildren && random.OneIn(3);
    const bool hasValue = !random.OneIn(8);
    if (hasValue && !valueAfter)
        WriteValue702();
    if (random.OneIn(6))
        WriteError702();
    if (hasChildren) {
        const std::uint32_t children = 1 + random.Below(3);
        for (std::uint32_t i = 0; i < children; ++i)
            WriteParameter702(request, depth + 1);
    }
    if (hasValue && valueAfter)
        WriteValue702();
    x.Close();
}

void XpvtTraceGenerator::State::WriteRequest702() {
    XmlOut& x = *xml;
    x.Open("Request", {{"ShortName", Name(Identifier("Req_"))}});
    Leaf("TimeStamp", Stamp());
    if (!random.OneIn(10))
        Leaf("RequestMessage", HexBytes(EdgeLength()));
    if (random.OneIn(5)) // between the message and the parameters
        WriteError702();
    const std::uint32_t parameters = random.Below(4);
    for (std::uint32_t i = 0; i < parameters; ++i)
        WriteParameter702(true, 1);
    x.Close();
}

void XpvtTraceGenerator::State::WriteResponse702() {
    XmlOut& x = *xml;
    x.Open("Response", {{"ShortName", Name(Identifier("Resp_"))}});
    Leaf("TimeStamp", Stamp());
    Leaf("AccessKeyOfLocation", "AKL.ECU_" + Decimal(random.Below(8)));
    Leaf("LocationAddress", "0x7E" + Decimal(8 + random.Below(2)));
    if (random.OneIn(6))
        WriteError702();
    if (!random.OneIn(10))
        Leaf("ResponseMessage", HexBytes(EdgeLength()));
    if (Hostile().unknownElements && random.OneIn(4)) {
        x.Open(Hostile().nonAscii ? "Erg\xC3\xA4nzung" : "VendorData");
        WriteParameter702(false, 1);
        x.Close();
        x.Open("Value", {{"Radix", "16"}}); // misplaced: skipped
        x.Leaf("ValueAsString", "255");
        x.Close();
    }
    const std::uint32_t parameters = random.Below(4);
    for (std::uint32_t i = 0; i < parameters; ++i)
        WriteParameter702(false, 1);
    x.Close();
}

void XpvtTraceGenerator::State::WriteResult702(std::string_view link, std::string_view name, std::string_view id,
                                               std::string_view type, bool parents) {
    XmlOut& x = *xml;
    x.Open("Result");
    x.Empty("LogicalLink", {{"ShortName", link}});
    if (parents)
        WriteParents702();
    WriteDiagComPrimitive702(name, id, type);
    if (random.OneIn(6))
        WriteError702();
    if (!random.OneIn(8))
        WriteRequest702();
    const std::uint32_t responses = random.OneIn(5) ? 2 : (random.OneIn(10) ? 0 : 1);
    for (std::uint32_t r = 0; r < responses; ++r)
        WriteResponse702();
    if (random.OneIn(10)) // an error after the last response, flushed at the result's end
        WriteError702();
    x.Close();
}

void XpvtTraceGenerator::State::WriteBlock702() {
    XmlOut& x = *xml;
    const std::string link = Name("LL_" + Decimal(result % 5));
    const std::string name = Name(Identifier("DiagService_"));
    const std::string id = Decimal(result);
    const std::string type = random.OneIn(3) ? "eJOB" : "eDIAGSERVICE";
    const bool parents = random.OneIn(3);
    WriteLinkEvent702("OpenLogicalLink", link);
    WritePrimitiveEvent702(true, link, name, id, type, parents);
    WriteResult702(link, name, id, type, parents);
    if (Hostile().unknownElements && random.OneIn(4)) {
        x.Open("Vendor", {{"Id", "1"}});
        WriteResult702("Hidden", "Hidden", "0", "eJOB", false);
        x.Close();
        WriteRequest702(); // misplaced under Trace: skipped
    }
    WritePrimitiveEvent702(false, link, name, id, type, parents);
    WriteLinkEvent702("CloseLogicalLink", link);
    if (random.OneIn(20))
        Leaf("VariantDetected", Identifier("Variant_"));
    if (random.OneIn(20))
        Leaf("VariantSelected", Identifier("Variant_"));
}

} // namespace zdtgen
