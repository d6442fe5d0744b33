#include "XpvtTraceGenerator.h"

#include "GeneratorRandom.h"
#include "XmlSink.h"

#include <array>
#include <initializer_list>
#include <ostream>
#include <sstream>
#include <string_view>
#include <vector>

namespace zdtgen {
namespace {

// Message and PDU lengths that sit on the edges of an 8-byte row and a 16-byte line.
constexpr std::array<std::uint32_t, 10> kEdgeLengths = {0, 1, 7, 8, 9, 10, 15, 16, 17, 33};
// Separators between hexadecimal bytes: readers must cope with more than blanks.
constexpr std::array<std::string_view, 7> kSeparators = {" ", " ", "", "-", ":", ", ", "\t"};

// Writes elements with optional indentation. Leaves take markup that is already escaped,
// so callers can split a text by entities, CDATA and comments.
class XmlOut {
public:
    XmlOut(XmlSink& sink, bool indent) : m_sink(sink), m_indent(indent) {}

    void Open(std::string_view name, Attrs attrs = {}) {
        StartTag(name, attrs, false);
        m_open.push_back(std::string(name));
        m_hadChild.push_back(false);
    }
    void Close() {
        const bool hadChild = m_hadChild.back();
        m_hadChild.pop_back();
        if (hadChild)
            NewLine(m_open.size() - 1);
        m_sink.Put("</");
        m_sink.Put(m_open.back());
        m_sink.Put(">");
        m_open.pop_back();
    }
    void Leaf(std::string_view name, std::string_view markup, Attrs attrs = {}) {
        StartTag(name, attrs, false);
        m_sink.Put(markup);
        m_sink.Put("</");
        m_sink.Put(name);
        m_sink.Put(">");
    }
    void Empty(std::string_view name, Attrs attrs = {}) { StartTag(name, attrs, true); }
    void Raw(std::string_view text) { m_sink.Put(text); }
    std::size_t Depth() const { return m_open.size(); }

private:
    void StartTag(std::string_view name, Attrs attrs, bool empty) {
        if (!m_hadChild.empty())
            m_hadChild.back() = true;
        NewLine(m_open.size());
        m_sink.Put("<");
        m_sink.Put(name);
        for (const Attr& a : attrs) {
            m_sink.Put(" ");
            m_sink.Put(a.name);
            m_sink.Put("=\"");
            m_sink.PutAttributeValue(a.value);
            m_sink.Put("\"");
        }
        m_sink.Put(empty ? "/>" : ">");
    }
    void NewLine(std::size_t depth) {
        if (!m_indent || (depth == 0 && m_sink.Bytes() == 0))
            return;
        m_line.assign(1, '\n');
        m_line.append(2 * depth, ' ');
        m_sink.Put(m_line);
    }

    XmlSink& m_sink;
    bool m_indent;
    std::vector<std::string> m_open;
    std::vector<bool> m_hadChild;
    std::string m_line;
};

const char* const kHexUpper = "0123456789ABCDEF";
const char* const kHexLower = "0123456789abcdef";

std::string Decimal(std::uint64_t value) { return std::to_string(value); }

std::string TwoDigits(std::uint64_t value) {
    return std::string(1, static_cast<char>('0' + value / 10 % 10)) + static_cast<char>('0' + value % 10);
}

} // namespace

bool XpvtHostile::Any() const {
    return unknownElements || splitText || controlChars || nonAscii || repeatedLeaves || deepNesting ||
           truncatedEnd || foreignRoot;
}

XpvtHostile XpvtHostile::InFileKinds() {
    XpvtHostile kinds;
    kinds.unknownElements = kinds.splitText = kinds.controlChars = kinds.nonAscii = true;
    kinds.repeatedLeaves = kinds.deepNesting = true;
    return kinds;
}

std::string XpvtSchemaText(const XpvtTraceOptions& options) {
    if (options.omitSchema)
        return std::string();
    if (options.schemaText)
        return *options.schemaText;
    return options.schema == XpvtSchema::V702 ? "7,02" : "7.01";
}

// ---- content --------------------------------------------------------------------------------

struct XpvtTraceGenerator::State {
    explicit State(const XpvtTraceOptions& o) : options(o), random(o.seed) {}

    const XpvtTraceOptions& options;
    Random random;
    XmlOut* xml = nullptr;
    std::uint64_t result = 0;
    std::uint64_t timeStamp = 1000000;
    std::uint32_t edgeIndex = 0;

    const XpvtHostile& Hostile() const { return options.hostile; }
    bool Is702() const { return options.schema == XpvtSchema::V702; }

    // ---- values ----

    // A value as markup, with the hostile decorations that are switched on.
    std::string Text(std::string plain) {
        // Controls go in before the UTF-8 extras and never inside a multi-byte character.
        if (Hostile().controlChars && random.OneIn(6)) {
            static constexpr std::array<std::string_view, 4> kControls = {"\t", "\n", "\r", "\x7F"};
            std::size_t at = random.Below(static_cast<std::uint32_t>(plain.size()) + 1);
            while (at > 0 && at < plain.size() && (static_cast<unsigned char>(plain[at]) & 0xC0) == 0x80)
                --at;
            plain.insert(at, kControls[random.Below(4)]);
        }
        if (Hostile().nonAscii && random.OneIn(5))
            plain += random.OneIn(2) ? " Pr\xC3\xBC" "fung \xE8\xA8\xBA\xE6\x96\xAD" : " \xF0\x9D\x84\x9E\xC2\x85";
        std::string markup = EscapedText(plain);
        if (Hostile().splitText && random.OneIn(4))
            markup = Split(markup);
        return markup;
    }
    // The same text in pieces a parser delivers separately.
    std::string Split(const std::string& markup) {
        // Cut only where no reference or multi-byte character would break.
        std::size_t cut = markup.find_first_of("&;") == std::string::npos ? markup.size() / 2 : 0;
        while (cut > 0 && (static_cast<unsigned char>(markup[cut]) & 0xC0) == 0x80)
            --cut;
        const std::string head = markup.substr(0, cut), tail = markup.substr(cut);
        switch (random.Below(4)) {
        case 0: return head + "&amp;" + tail + "&lt;";
        case 1: return head + "<![CDATA[" + "<cd&ata>" + "]]>" + tail;
        case 2: return head + "<!-- between -->" + tail + "&#65;";
        default: return "&lt;" + head + "&amp;&amp;" + tail;
        }
    }
    // A name attribute's value: plain names, with the hostile extras when switched on.
    std::string Name(std::string plain) {
        if (Hostile().nonAscii && random.OneIn(6))
            plain += "_\xC3\x9C\xC3\x9F\xE2\x80\x93";
        if (Hostile().controlChars && random.OneIn(8))
            plain += random.OneIn(2) ? "\t&<\"" : "\x7F\n";
        return plain;
    }
    std::string Identifier(std::string_view prefix) { return std::string(prefix) + Decimal(random.Below(1000)); }
    std::string Stamp() {
        timeStamp += 1 + random.Below(5000);
        return Decimal(timeStamp);
    }
    std::string Date701() const { return TwoDigits(21 + result / 1000 % 7) + ".11.2023"; }
    std::string Time701() {
        const std::uint64_t seconds = 8 * 3600 + result * 3 + random.Below(3);
        return TwoDigits(seconds / 3600 % 24) + ":" + TwoDigits(seconds / 60 % 60) + ":" + TwoDigits(seconds % 60) +
               "." + Decimal(100 + random.Below(900));
    }
    std::uint32_t EdgeLength() {
        if (random.OneIn(4))
            return random.Below(40);
        return kEdgeLengths[edgeIndex++ % kEdgeLengths.size()];
    }
    // `count` bytes as hexadecimal digits joined by one separator, upper or lower case.
    std::string HexBytes(std::uint32_t count) {
        const std::string_view separator = kSeparators[random.Below(kSeparators.size())];
        const char* digits = random.OneIn(5) ? kHexLower : kHexUpper;
        const bool prefixed = random.OneIn(10);
        std::string text;
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::uint32_t byte = random.Below(256);
            if (i != 0)
                text += separator;
            if (prefixed)
                text += "0x";
            text += digits[byte >> 4];
            text += digits[byte & 15];
        }
        return text;
    }
    std::string Pdu() { return random.OneIn(8) ? std::string("NO PDU") : HexBytes(EdgeLength()); }

    void Leaf(std::string_view name, std::string plain) {
        const std::string markup = Text(std::move(plain));
        xml->Leaf(name, markup);
        if (Hostile().repeatedLeaves && random.OneIn(12))
            xml->Leaf(name, markup);
    }

    // ---- the file ----

    void WriteFile(XmlSink& sink) {
        XmlOut& x = *xml;
        x.Raw("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
        if (Hostile().foreignRoot) {
            x.Raw("\n<!-- an archive of traces: it holds a process value trace, but is none -->");
            x.Open("TraceArchive", {{"Format", "zdt-archive"}, {"Version", "1"}});
        }
        x.Open("ProcessValueTrace");
        WriteDescription();
        if (Hostile().unknownElements)
            WriteTraceInUnknown();
        x.Open("Trace");
        WriteTraceStart();
        if (Hostile().deepNesting)
            WriteDeepNesting();
        while (options.targetBytes != 0 ? sink.Bytes() < options.targetBytes : result < options.results) {
            if (Is702())
                WriteBlock702();
            else
                WriteBlock701();
            ++result;
        }
        if (Hostile().truncatedEnd) {
            x.Raw(Is702() ? "\n    <Result>\n      <Request ShortName=\"Cut\">\n        <RequestMessage>01 0"
                          : "\n    <ZdtResult>\n      <ZdtRequest>\n        <PDU>01 0");
            return;
        }
        WriteTraceStop();
        while (x.Depth() > 0)
            x.Close();
        x.Raw("\n");
    }

    void WriteDescription() {
        XmlOut& x = *xml;
        if (options.descriptionDateTime)
            x.Open("Description", {{"DateTime", *options.descriptionDateTime}});
        else
            x.Open("Description");
        Leaf("Title", "Process value trace " + Decimal(options.seed));
        if (Hostile().unknownElements) {
            // A Schema that a reader must not take: its parent is unknown.
            x.Open("Extension");
            x.Leaf("Schema", Is702() ? "7.01" : "7,02");
            x.Close();
        }
        if (!options.omitSchema)
            x.Leaf("Schema", EscapedText(XpvtSchemaText(options)));
        Leaf("ProductVersion", "7.4.2 build 118");
        if (options.descriptionDateChildren) {
            x.Leaf("Date", "21.11.2023");
            x.Leaf("Time", "14:05:09");
        }
        Leaf("Author", "Workshop tester");
        Leaf("Comment", "Generated trace & checks <A>");
        x.Open("Project", {{"ShortName", Name("PRJ")}});
        Leaf("ShortName", "Prj_Main");
        x.Open("VehicleInformationTable", {{"ShortName", Name("VIT")}});
        Leaf("ShortName", "VIT_2023");
        x.Open("LogicalLink");
        Leaf("ShortName", "LL_Engine");
        Leaf("DatabaseAccessKey", "DAK.Engine.Base");
        x.Close();
        x.Close();
        x.Close();
        x.Close();
    }

    // A whole trace inside an unknown element: nothing of it may show.
    void WriteTraceInUnknown() {
        XmlOut& x = *xml;
        x.Open("TraceCopy", {{"Reason", "backup"}});
        x.Open("Trace");
        x.Open("StartTrace", {{"DateTime", "hidden"}});
        x.Leaf("Date", "01.01.2000");
        x.Close();
        x.Close();
        x.Close();
    }

    // On one line: indenting hundreds of levels would make most of a small file blanks.
    void WriteDeepNesting() {
        const std::string inner = Is702() ? "Result" : "ZdtResult";
        std::string text = "\n";
        for (std::uint32_t level = 0; level < Hostile().nestingDepth; ++level)
            text += level % 2 == 0 ? "<Nest>" : "<" + inner + ">";
        text += Is702() ? "<RequestMessage>DE AD</RequestMessage>" : "<PDU>DE AD</PDU>";
        for (std::uint32_t level = Hostile().nestingDepth; level-- > 0;)
            text += level % 2 == 0 ? "</Nest>" : "</" + inner + ">";
        xml->Raw(text);
    }

    void WriteTraceStart() {
        XmlOut& x = *xml;
        if (Is702()) {
            x.Open("StartTrace", {{"DateTime", "2023-11-21T14:05:09.120"}});
            Leaf("PhysicalInterfaceLink", "VCI_1");
            Leaf("PhysicalVehicleLink", "OBD_CAN");
            x.Close();
            return;
        }
        x.Open("StartTrace");
        Leaf("Date", Date701());
        Leaf("Time", Time701());
        x.Close();
    }

    void WriteTraceStop() {
        XmlOut& x = *xml;
        if (Is702()) {
            x.Open("StopTrace", {{"DateTime", "2023-11-21T18:00:00.000"}});
            if (Hostile().unknownElements) // StopTrace has no children: these are skipped
                x.Empty("LogicalLink", {{"ShortName", "Inside stop"}});
            x.Close();
            return;
        }
        x.Open("StopTrace");
        Leaf("Date", Date701());
        Leaf("Time", Time701());
        x.Close();
    }

    // ---- 7.01 ----

    void WriteLink701(std::string_view link) {
        XmlOut& x = *xml;
        x.Open("LogicalLink");
        Leaf("ShortName", std::string(link));
        Leaf("DatabaseAccessKey", "DAK." + std::string(link));
        x.Close();
    }

    void WriteLinkEvent701(std::string_view element, std::string_view link) {
        XmlOut& x = *xml;
        x.Open(element);
        WriteLink701(link);
        Leaf("PhysicalInterfaceLink", "VCI_" + Decimal(random.Below(4)));
        Leaf("Date", Date701());
        Leaf("Time", Time701());
        x.Close();
    }

    void WritePrimitive701(std::string_view element, std::string_view link) {
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

    void WriteError701() {
        XmlOut& x = *xml;
        x.Open("ZdtError");
        Leaf("ShortName", Identifier("ERR_"));
        Leaf("CodeDescription", random.OneIn(2) ? "Value out of range" : "Conversion failed");
        Leaf("Severity", random.OneIn(2) ? "eWARNING" : "eERROR");
        Leaf("SeverityInfo", "level " + Decimal(random.Below(4)));
        x.Close();
    }

    void WriteParameterBody701() {
        XmlOut& x = *xml;
        if (!random.OneIn(8))
            Leaf("ShortName", Identifier("Param_"));
        Leaf("Type", "A_UINT32");
        if (!random.OneIn(3))
            Leaf("Unit", random.OneIn(2) ? "km/h" : "\xC2\xB0" "C");
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

    void WriteResponseParameter701(std::uint32_t depth) {
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

    void WriteResult701(std::string_view link) {
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

    void WriteResponse701() {
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

    void WriteBlock701() {
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

    // ---- 7.02 ----

    void WriteLinkHead702(std::string_view link) {
        XmlOut& x = *xml;
        Leaf("TimeStamp", Stamp());
        x.Empty("LogicalLink", {{"ShortName", link}});
        Leaf("AccessKeyOfLocation", "AKL." + std::string(link));
    }

    void WriteLinkEvent702(std::string_view element, std::string_view link) {
        XmlOut& x = *xml;
        x.Open(element);
        WriteLinkHead702(link);
        x.Close();
    }

    // Parent names under three characters, of four letters, and longer.
    std::string ParentName() {
        static constexpr std::array<std::string_view, 6> kParents = {"ab", "X", "Diag", "Flash", "ReadDataByIdentifier",
                                                                     "Job_Main"};
        return std::string(kParents[random.Below(kParents.size())]);
    }

    void WriteParents702() {
        XmlOut& x = *xml;
        x.Open("ParentDiagComPrimitives");
        const std::uint32_t parents = 1 + random.Below(3);
        for (std::uint32_t i = 0; i < parents; ++i)
            x.Empty("DiagComPrimitive", {{"ShortName", Name(ParentName())},
                                         {"ID", Decimal(random.Below(100))},
                                         {"ObjectType", "eJOB"}});
        x.Close();
    }

    void WriteDiagComPrimitive702(std::string_view name, std::string_view id, std::string_view type) {
        if (random.OneIn(10))
            xml->Empty("DiagComPrimitive", {{"ShortName", name}}); // ID and ObjectType missing
        else
            xml->Empty("DiagComPrimitive", {{"ShortName", name}, {"ID", id}, {"ObjectType", type}});
    }

    void WritePrimitiveEvent702(bool start, std::string_view link, std::string_view name, std::string_view id,
                                std::string_view type, bool parents) {
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
    void WriteError702() {
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
    void WriteValue702() {
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

    void WriteParameter702(bool request, std::uint32_t depth) {
        XmlOut& x = *xml;
        const char* element = request ? "RequestParameter" : "ResponseParameter";
        x.Open(element, {{"ShortName", Name(Identifier("Param_"))}, {"Type", random.OneIn(2) ? "VALUE" : "TABLE"}});
        if (!random.OneIn(3))
            Leaf("Unit", random.OneIn(2) ? "rpm" : "\xC2\xB0" "C");
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

    void WriteRequest702() {
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

    void WriteResponse702() {
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

    void WriteResult702(std::string_view link, std::string_view name, std::string_view id, std::string_view type,
                        bool parents) {
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

    void WriteBlock702() {
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
};

XpvtTraceGenerator::XpvtTraceGenerator(const XpvtTraceOptions& options) : m_state(std::make_unique<State>(options)) {}

XpvtTraceGenerator::~XpvtTraceGenerator() = default;

XpvtTraceSummary XpvtTraceGenerator::Write(std::ostream& out) {
    XmlSink sink(&out);
    XmlOut xml(sink, m_state->options.indent);
    m_state->xml = &xml;
    m_state->WriteFile(sink);
    sink.Flush();
    m_state->xml = nullptr;
    XpvtTraceSummary summary;
    summary.results = m_state->result;
    summary.bytes = sink.Bytes();
    return summary;
}

std::string MakeXpvtTrace(const XpvtTraceOptions& options) {
    std::ostringstream out;
    WriteXpvtTrace(out, options);
    return out.str();
}

XpvtTraceSummary WriteXpvtTrace(std::ostream& out, const XpvtTraceOptions& options) {
    XpvtTraceGenerator generator(options);
    return generator.Write(out);
}

} // namespace zdtgen
