// The element tree of schema 7.01: links, primitives, results with requests, responses
// and nested parameters.

#include "XpvtTraceState.h"

#include <array>
#include <string>

namespace zdtgen {

void XpvtTraceGenerator::State::WriteLink701(std::string_view link) {
    XmlOut& x = *xml;
    x.Open("LogicalLink");
    Leaf("ShortName", std::string(link));
    Leaf("DatabaseAccessKey", "DAK." + std::string(link));
    x.Close();
}

void XpvtTraceGenerator::State::WriteLinkEvent701(std::string_view element, std::string_view link) {
    XmlOut& x = *xml;
    x.Open(element);
    WriteLink701(link);
    Leaf("PhysicalInterfaceLink", "VCI_" + Decimal(random.Below(4)));
    Leaf("Date", Date701());
    Leaf("Time", Time701());
    x.Close();
}

void XpvtTraceGenerator::State::WritePrimitive701(std::string_view element, std::string_view link) {
    XmlOut& x = *xml;
    x.Open(element);
    Leaf("ShortName", Identifier("DiagService_"));
    Leaf("ID", Decimal(result));
    Leaf("Type", random.OneIn(2) ? "eDIAGSERVICE" : "eJOB");
    WriteLink701(link);
    Leaf("PhysicalInterfaceLink", "VCI_0");
    Leaf("Date", Date701());
    Leaf("Time", Time701());
    x.Close();
}

void XpvtTraceGenerator::State::WriteError701() {
    XmlOut& x = *xml;
    x.Open("ZdtError");
    Leaf("ShortName", Identifier("ERR_"));
    Leaf("CodeDescription", random.OneIn(2) ? "Value out of range" : "Conversion failed");
    Leaf("Severity", random.OneIn(2) ? "eWARNING" : "eERROR");
    Leaf("SeverityInfo", "level " + Decimal(random.Below(4)));
    x.Close();
}

void XpvtTraceGenerator::State::WriteParameterBody701() {
    XmlOut& x = *xml;
    if (!random.OneIn(8))
        Leaf("ShortName", Identifier("Param_"));
    Leaf("Type", "A_UINT32");
    if (!random.OneIn(3))
        Leaf("Unit", random.OneIn(2) ? "km/h"
                                     : "\xC2\xB0"
                                       "C");
    if (!random.OneIn(3)) {
        x.Open("RangeInfo");
        Leaf("Type", "eVALID");
        Leaf("Text", random.OneIn(2) ? "valid" : "0 .. 255");
        x.Close();
    }
    if (!random.OneIn(6)) { // a parameter without a value shows nothing or an empty value
        x.Open("ZdtValue");
        Leaf("Type", "A_UINT32");
        Leaf("Value", Decimal(random.Below(100000)));
        Leaf("Radix", random.OneIn(2) ? "10" : "16");
        x.Close();
    }
    if (random.OneIn(7))
        WriteError701();
}

void XpvtTraceGenerator::State::WriteResponseParameter701(std::uint32_t depth) {
    XmlOut& x = *xml;
    x.Open("ZdtResponseParameter");
    WriteParameterBody701();
    if (depth < options.parameterDepth && random.OneIn(3)) {
        const std::uint32_t children = 1 + random.Below(3);
        for (std::uint32_t i = 0; i < children; ++i)
            WriteResponseParameter701(depth + 1);
    }
    x.Close();
}

void XpvtTraceGenerator::State::WriteResult701(std::string_view link) {
    XmlOut& x = *xml;
    x.Open("ZdtResult");
    WriteLink701(link);
    if (Hostile().unknownElements && random.OneIn(3))
        x.Leaf("PDU", "01 02 03"); // misplaced: skipped
    x.Open("ZdtRequest");
    Leaf("ShortName", Identifier("Req_"));
    Leaf("PDU", Pdu());
    const std::uint32_t parameters = random.Below(4);
    for (std::uint32_t i = 0; i < parameters; ++i) {
        x.Open("ZdtRequestParameter");
        WriteParameterBody701();
        x.Close();
    }
    x.Close();
    const std::uint32_t responses = random.OneIn(6) ? 2 : 1;
    for (std::uint32_t r = 0; r < responses; ++r)
        WriteResponse701();
    x.Close();
}

void XpvtTraceGenerator::State::WriteResponse701() {
    XmlOut& x = *xml;
    static constexpr std::array<std::string_view, 5> kStates = {"acknowledged", "notacknowledged", "NotAcknowledged",
                                                                "positive", ""};
    x.Open("ZdtResponse");
    const bool nameBeforeEcu = random.OneIn(3);
    if (nameBeforeEcu)
        Leaf("ShortName", Identifier("Resp_"));
    Leaf("ECU", Identifier("ECU_"));
    if (!nameBeforeEcu)
        Leaf("ShortName", Identifier("Resp_"));
    Leaf("State", std::string(kStates[random.Below(kStates.size())]));
    Leaf("StateInfo", "info");
    Leaf("CANID", "7E" + Decimal(8 + random.Below(2)));
    Leaf("TimeStamp", Stamp());
    Leaf("PDU", Pdu());
    Leaf("DatabaseAccessKey", "DAK.Resp");
    if (Hostile().unknownElements && random.OneIn(3)) {
        x.Open(Hostile().nonAscii ? "Erg\xC3\xA4nzung" : "VendorData", {{"Kind", "x"}});
        WriteResponseParameter701(1);
        x.Close();
    }
    const std::uint32_t parameters = random.Below(4);
    for (std::uint32_t i = 0; i < parameters; ++i)
        WriteResponseParameter701(1);
    x.Close();
}

void XpvtTraceGenerator::State::WriteBlock701() {
    XmlOut& x = *xml;
    const std::string link = random.OneIn(8) ? Name("LL_" + Decimal(result % 5)) : "LL_" + Decimal(result % 5);
    WriteLinkEvent701("OpenLogicalLink", link);
    WritePrimitive701("OpenComPrimitive", link);
    WriteResult701(link);
    if (Hostile().unknownElements && random.OneIn(4)) {
        x.Open("Vendor", {{"Id", "1"}});
        WriteResult701("Hidden");
        x.Close();
    }
    WritePrimitive701("CloseComPrimitive", link);
    WriteLinkEvent701("CloseLogicalLink", link);
    if (result % 97 == 96) { // traces may restart within one file
        x.Open("StopTrace");
        Leaf("Date", Date701());
        Leaf("Date", Date701());
        Leaf("Time", Time701());
        x.Close();
        WriteTraceStart();
    }
}

} // namespace zdtgen
