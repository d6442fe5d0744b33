#include "SnapshotGenerator.h"

#include "GeneratorRandom.h"
#include "XmlSink.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <ostream>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

namespace zdtgen {
namespace {

// Huge attributes return this often: one per snapshot would be nearly all of a big file.
constexpr std::uint64_t kHugeEvery = 64;

// The printable rule of the viewer: 0x20 to 0x7E and every byte from 0x80 up.
std::string Printable(std::string_view text) {
    std::string kept;
    kept.reserve(text.size());
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte != 0x7F)
            kept.push_back(c);
    }
    return kept;
}

// Follows the parse of the viewer event by event (element states, slots, rows), so the
// expected rows come from the same events that the XML text encodes, whatever the nesting.
class RowModel {
public:
    explicit RowModel(std::ostream& out) : m_sink(&out) { m_stack.push_back(State::DocumentRoot); }

    void Start(std::string_view name, Attrs attrs) {
        const State state = Child(m_stack.back(), name);
        m_stack.push_back(state);
        switch (state) {
        case State::SnapList:
            Read(attrs, "Created", 7);
            m_slots[7] = Printable(m_slots[7]);
            m_dateTime = m_slots[7];
            break;
        case State::SnapShot:
            Read(attrs, "ShortName", 5);
            Read(attrs, "LongName", 6);
            Read(attrs, "Created", 7);
            Row("000", "Start SnapShot", SnapshotText(), "", "", "");
            break;
        case State::LogicalLink:
            Read(attrs, "Name", 9);
            Row("000", "Start LogicalLink", "", Printable(m_slots[9]), "", "");
            break;
        case State::Service:
        case State::ComPrimitive:
        case State::Error:
            Read(attrs, "Name", 8);
            Row(state == State::Error ? "003" : "000",
                state == State::Service ? "Service"
                : state == State::Error ? "Error"
                                        : "ComPrimitive",
                Printable(m_slots[8]), "", "", "");
            m_slots[8].clear();
            break;
        case State::DTC:
            Read(attrs, "Name", 11);
            Row("000", "DTC", Printable(m_slots[11]), "", "", "");
            m_slots[11].clear();
            break;
        case State::ProcessValue:
            Read(attrs, "Name", 8);
            Read(attrs, "Unit", 10);
            break;
        default:
            break;
        }
    }

    void Text(std::string_view text) {
        switch (m_stack.back()) {
        case State::ZDTProject:
            m_slots[0].append(text);
            break;
        case State::VIT:
            m_slots[1].append(text);
            break;
        case State::ProcessValue:
            m_slots[11].append(text);
            break;
        default:
            break;
        }
    }

    void End() {
        const State state = m_stack.back();
        m_stack.pop_back();
        switch (state) {
        case State::SnapShot:
            Row("000", "Stop SnapShot", SnapshotText(), "", "", "");
            m_slots[5].clear();
            m_slots[6].clear();
            m_slots[7].clear();
            break;
        case State::ZDTProject:
            Row("001", "Zdt Project", Printable(m_slots[0]), "", "", "");
            m_slots[0].clear();
            break;
        case State::VIT:
            Row("001", "VIT", Printable(m_slots[1]), "", "", "");
            m_slots[1].clear();
            break;
        case State::LogicalLink:
            Row("000", "Stop LogicalLink", "", Printable(m_slots[9]), "", "");
            m_slots[9].clear();
            break;
        case State::ProcessValue:
            Row("002", "", "ProcessValue", Printable(m_slots[8]), Printable(m_slots[11]), Printable(m_slots[10]));
            m_slots[8].clear();
            m_slots[10].clear();
            m_slots[11].clear();
            break;
        default:
            break;
        }
    }

    void Finish() {
        WriteHeaderOnce();
        m_sink.Flush();
    }
    std::uint64_t Rows() const { return m_rows; }

private:
    enum class State {
        SnapList,
        SnapShot,
        ZDTProject,
        VIT,
        LogicalLink,
        Service,
        BUS,
        ECUAddress,
        ComPrimitive,
        DTC,
        Error,
        ProcessValue,
        Unknown,
        DocumentRoot
    };

    static State Child(State parent, std::string_view name) {
        switch (parent) {
        case State::DocumentRoot:
            return name == "SnapList" ? State::SnapList : State::Unknown;
        case State::SnapList:
            return name == "SnapShot" ? State::SnapShot : State::Unknown;
        case State::SnapShot:
            if (name == "ZDTProject")
                return State::ZDTProject;
            if (name == "VIT")
                return State::VIT;
            if (name == "LogicalLink")
                return State::LogicalLink;
            if (name == "Service")
                return State::Service;
            if (name == "BUS")
                return State::BUS;
            if (name == "ECUAddress")
                return State::ECUAddress;
            return State::Unknown;
        case State::LogicalLink:
            if (name == "Service")
                return State::Service;
            if (name == "ComPrimitive")
                return State::ComPrimitive;
            if (name == "DTC")
                return State::DTC;
            if (name == "Error")
                return State::Error;
            return State::Unknown;
        // Every child of these three is a process value, whatever its name.
        case State::Service:
        case State::ComPrimitive:
        case State::DTC:
            return State::ProcessValue;
        default:
            return State::Unknown;
        }
    }

    // An absent attribute leaves the slot as it stands.
    void Read(Attrs attrs, std::string_view name, std::size_t slot) {
        for (const auto& attr : attrs)
            if (attr.name == name) {
                m_slots[slot] = attr.value;
                return;
            }
    }

    std::string SnapshotText() const {
        std::string text = Printable(m_slots[5]);
        const std::string longName = Printable(m_slots[6]);
        const std::string created = Printable(m_slots[7]);
        if (!longName.empty())
            text += " " + longName;
        if (!created.empty())
            text += " [ " + created + " ]";
        return text;
    }

    void WriteHeaderOnce() {
        if (m_headerWritten)
            return;
        m_headerWritten = true;
        m_sink.Put("#DateTime\t");
        m_sink.Put(m_dateTime);
        m_sink.Put('\n');
    }

    void Row(std::string_view flags, std::string_view event, const std::string& description, const std::string& name,
             const std::string& value, const std::string& unit) {
        WriteHeaderOnce();
        for (const std::string_view column :
             {flags, event, std::string_view(description), std::string_view(name), std::string_view(value)}) {
            m_sink.Put(column);
            m_sink.Put('\t');
        }
        m_sink.Put(unit);
        m_sink.Put('\n');
        ++m_rows;
    }

    XmlSink m_sink;
    std::vector<State> m_stack;
    std::array<std::string, 12> m_slots;
    std::string m_dateTime;
    bool m_headerWritten = false;
    std::uint64_t m_rows = 0;
};

// Writes XML from decoded values and hands the same events to the row model, if any.
class XmlWriter {
public:
    XmlWriter(XmlSink& sink, RowModel* model, bool indent) : m_sink(sink), m_model(model), m_indent(indent) {}

    void Open(std::string_view name, Attrs attrs = {}) {
        CloseStartTag();
        m_sink.Put('<');
        m_sink.Put(name);
        for (const auto& attr : attrs) {
            m_sink.Put(' ');
            m_sink.Put(attr.name);
            m_sink.Put("=\"");
            m_sink.PutAttributeValue(attr.value);
            m_sink.Put('"');
        }
        m_open.emplace_back(name);
        m_startTagOpen = true;
        if (m_model != nullptr)
            m_model->Start(name, attrs);
    }
    // An element without content closes as an empty-element tag.
    void Close() {
        if (m_startTagOpen) {
            m_sink.Put("/>");
            m_startTagOpen = false;
        } else {
            m_sink.Put("</");
            m_sink.Put(m_open.back());
            m_sink.Put('>');
        }
        m_open.pop_back();
        if (m_model != nullptr)
            m_model->End();
    }
    void Element(std::string_view name, Attrs attrs, std::string_view text) {
        Open(name, attrs);
        Text(text);
        Close();
    }

    void Text(std::string_view text) {
        if (text.empty())
            return;
        CloseStartTag();
        m_sink.PutText(text);
        Model(text);
    }
    // The caller keeps "]]>" and carriage returns out.
    void CData(std::string_view text) {
        CloseStartTag();
        m_sink.Put("<![CDATA[");
        m_sink.Put(text);
        m_sink.Put("]]>");
        Model(text);
    }
    // Every ASCII byte as a character reference, alternating decimal and hexadecimal,
    // and the named entities where they exist.
    void References(std::string_view text) {
        CloseStartTag();
        bool hex = false;
        for (const char c : text) {
            const auto byte = static_cast<unsigned char>(c);
            if (byte >= 0x80) {
                m_sink.Put(c);
                continue;
            }
            if (c == '\'') {
                m_sink.Put("&apos;");
            } else if (c == '"') {
                m_sink.Put("&quot;");
            } else {
                m_sink.Put(hex ? "&#x" : "&#");
                m_sink.Put(hex ? HexNumber(byte) : std::to_string(byte));
                m_sink.Put(';');
            }
            hex = !hex;
        }
        Model(text);
    }
    void Comment(std::string_view text) {
        CloseStartTag();
        m_sink.Put("<!--");
        m_sink.Put(text);
        m_sink.Put("-->");
    }
    void Instruction(std::string_view text) {
        CloseStartTag();
        m_sink.Put("<?zdt ");
        m_sink.Put(text);
        m_sink.Put("?>");
    }
    // A line break and indentation: text like any other, so the model sees it too.
    void Newline() { Indent(m_open.size()); }
    // The end tag on a line of its own, at the depth of its start tag.
    void CloseOnNewLine() {
        Indent(m_open.size() - 1);
        Close();
    }
    // Bytes outside any element or cut off mid-token; no parser event follows from them.
    void Raw(std::string_view text) {
        CloseStartTag();
        m_sink.Put(text);
    }
    std::size_t Depth() const { return m_open.size(); }

private:
    static std::string HexNumber(unsigned value) {
        static const char* digits = "0123456789ABCDEF";
        std::string text;
        do {
            text.insert(text.begin(), digits[value % 16]);
            value /= 16;
        } while (value != 0);
        return text;
    }
    void Indent(std::size_t depth) {
        if (!m_indent)
            return;
        std::string text = "\n";
        text.append(2 * depth, ' ');
        Text(text);
    }
    void CloseStartTag() {
        if (m_startTagOpen) {
            m_sink.Put('>');
            m_startTagOpen = false;
        }
    }
    void Model(std::string_view text) {
        if (m_model != nullptr)
            m_model->Text(text);
    }

    XmlSink& m_sink;
    RowModel* m_model;
    bool m_indent;
    std::vector<std::string> m_open;
    bool m_startTagOpen = false;
};

std::string TwoDigits(std::uint64_t value) {
    return std::string(1, static_cast<char>('0' + value / 10 % 10)) + static_cast<char>('0' + value % 10);
}

} // namespace

bool SnapshotHostile::Any() const {
    return unknownElements || catchAllChildren || splitText || controlChars || nonAscii || hugeAttributes ||
           deepNesting || truncatedEnd || foreignRoot;
}

SnapshotHostile SnapshotHostile::InFileKinds() {
    SnapshotHostile kinds;
    kinds.unknownElements = kinds.catchAllChildren = kinds.splitText = kinds.controlChars = kinds.nonAscii = true;
    kinds.hugeAttributes = kinds.deepNesting = true;
    return kinds;
}

// ---- content --------------------------------------------------------------------------------

struct SnapshotGenerator::State {
    explicit State(const SnapshotOptions& o) : options(o), random(o.seed) {}

    const SnapshotOptions& options;
    Random random;
    XmlWriter* xml = nullptr;
    std::uint64_t snapshot = 0;

    const SnapshotHostile& Hostile() const { return options.hostile; }

    // "hh:mm:ss,dd.mm.yyyy", moving on with the snapshot number.
    std::string Created(std::uint64_t index) const {
        const std::uint64_t seconds = 8 * 3600 + index * 97;
        const std::uint64_t day = seconds / 86400 % 28 + 1;
        return TwoDigits(seconds / 3600 % 24) + ":" + TwoDigits(seconds / 60 % 60) + ":" + TwoDigits(seconds % 60) +
               "," + TwoDigits(day) + ".11.2023";
    }

    std::string Number() { return std::to_string(random.Below(10000)) + "." + std::to_string(random.Below(10)); }
    std::string HexBytes(std::uint32_t count) {
        static const char* digits = "0123456789ABCDEF";
        std::string text;
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::uint32_t byte = random.Below(256);
            if (i != 0)
                text += ' ';
            text += "0x";
            text += digits[byte >> 4];
            text += digits[byte & 15];
        }
        return text;
    }

    void WriteFile(XmlSink& sink) {
        XmlWriter& x = *xml;
        x.Raw("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
        if (Hostile().foreignRoot) {
            x.Raw("<!-- an export archive: it holds a snapshot list, but is none -->\n");
            x.Open("SnapArchive", {{"Format", "zdt-archive"}, {"Version", "2"}});
            x.Newline();
        }
        if (options.listCreated)
            x.Open("SnapList", {{"Created", *options.listCreated}});
        else
            x.Open("SnapList");
        while (options.targetBytes != 0 ? sink.Bytes() < options.targetBytes : snapshot < options.snapshots) {
            x.Newline();
            WriteSnapShot();
            if (Hostile().unknownElements)
                WriteListExtras();
            ++snapshot;
        }
        if (Hostile().truncatedEnd) {
            x.Raw("\n  <SnapShot ShortName=\"Cut\">\n    <LogicalLink Name=\"Cut\">\n      <Service Name=\"Cut in the "
                  "mid");
            return;
        }
        while (x.Depth() > 0)
            x.CloseOnNewLine();
        x.Raw("\n");
        if (Hostile().unknownElements)
            x.Raw("<!-- written by zdt-gen -->\n<?zdt end?>\n");
    }

    void WriteSnapShot() {
        XmlWriter& x = *xml;
        const std::string shortName = "SNAP" + std::to_string(snapshot);
        const std::string longName = "Workshop snapshot " + std::to_string(snapshot) +
                                     (Hostile().nonAscii ? " \xE2\x80\x93 \xC3\x9C"
                                                           "berpr\xC3\xBC"
                                                           "fung \xE8\xA8\xBA\xE6\x96\xAD"
                                                         : "");
        m_hugeWritten = false;
        const std::string created = Created(snapshot);
        // The first snapshot shows the list's "Created"; one in sixteen has no attributes.
        const bool bare = snapshot % 16 == 5;
        const bool withCreated = !bare && snapshot != 0 && !random.OneIn(8);
        const bool withLong = !bare && !random.OneIn(6);
        if (bare)
            x.Open("SnapShot");
        else if (withLong && withCreated)
            x.Open("SnapShot", {{"ShortName", shortName}, {"LongName", longName}, {"Created", created}});
        else if (withLong)
            x.Open("SnapShot", {{"ShortName", shortName}, {"LongName", longName}});
        else if (withCreated)
            x.Open("SnapShot", {{"Created", created}, {"ShortName", shortName}});
        else
            x.Open("SnapShot", {{"ShortName", shortName}});

        x.Newline();
        WriteProject();
        x.Newline();
        WriteVit();
        x.Newline();
        x.Element("BUS", {{"Name", "CAN_HS"}}, "CAN high speed 500 kBit/s");
        x.Newline();
        x.Element("ECUAddress", {}, "0x7E0");
        if (snapshot % 3 == 0) {
            x.Newline();
            WriteService();
        }
        const std::uint32_t links = 1 + random.Below(3);
        for (std::uint32_t link = 0; link < links; ++link) {
            x.Newline();
            WriteLink(link == 0);
        }
        WriteSnapshotExtras();
        x.CloseOnNewLine();
    }

    void WriteProject() {
        static const std::array<const char*, 3> projects = {"ZDT7 Workshop Project", "Endurance Fleet A&B",
                                                            "Line test <station 4>"};
        const std::string text = random.Pick(projects);
        if (Hostile().splitText) {
            xml->Open("ZDTProject");
            WriteSplit(text + "\n  second line");
            xml->Close();
        } else {
            xml->Element("ZDTProject", {}, text);
        }
    }

    void WriteVit() {
        const std::string vin = "WVWZZZ1JZ" + std::to_string(1000000 + random.Below(8999999));
        if (Hostile().splitText) {
            xml->Open("VIT");
            xml->CData(vin.substr(0, 5));
            xml->Text(vin.substr(5));
            xml->Close();
        } else {
            xml->Element("VIT", {}, vin);
        }
    }

    void WriteLink(bool everyKind) {
        static const std::array<const char*, 4> names = {"LL_EngineControl_UDS", "LL_Transmission_KWP2000",
                                                         "LL_BrakeSystem_UDS", "LL_Gateway_CAN"};
        XmlWriter& x = *xml;
        std::string name = random.Pick(names);
        if (Hostile().controlChars && everyKind)
            name += "\x7F"
                    "DEL";
        x.Open("LogicalLink", {{"Name", name}, {"Protocol", "ISO_15765_3"}});
        // The first link of a snapshot holds every kind of item, in shuffled order.
        std::array<int, 4> kinds = {0, 1, 2, 3};
        for (std::size_t i = kinds.size() - 1; i > 0; --i)
            std::swap(kinds[i], kinds[random.Below(static_cast<std::uint32_t>(i + 1))]);
        const std::uint32_t count = everyKind ? 4 : 1 + random.Below(5);
        for (std::uint32_t i = 0; i < count; ++i) {
            x.Newline();
            const int kind = everyKind ? kinds[i] : static_cast<int>(random.Below(4));
            if (kind == 0)
                WriteService();
            else if (kind == 1)
                WriteComPrimitive();
            else if (kind == 2)
                WriteDtc();
            else
                WriteError();
        }
        if (everyKind)
            WriteLinkExtras();
        x.CloseOnNewLine();
    }

    void WriteService() {
        static const std::array<const char*, 5> names = {"ReadDataByIdentifier", "ReadDTCInformation",
                                                         "DiagnosticSessionControl", "ReadMemoryByAddress",
                                                         "InputOutputControlByIdentifier"};
        xml->Open("Service", {{"Name", random.Pick(names)}, {"ID", "0x22"}});
        WriteValues(1 + random.Below(4));
        if (Hostile().catchAllChildren)
            WriteCatchAll("Service");
        if (Hostile().deepNesting)
            WriteDeepCatchAll();
        xml->CloseOnNewLine();
    }

    void WriteComPrimitive() {
        static const std::array<const char*, 4> names = {"StartCommunication", "SendRecvRequest", "IdentifyECU",
                                                         "StopCommunication"};
        xml->Open("ComPrimitive", {{"Name", random.Pick(names)}});
        WriteValues(random.Below(3));
        if (Hostile().catchAllChildren)
            WriteCatchAll("ComPrimitive");
        xml->CloseOnNewLine();
    }

    void WriteDtc() {
        static const std::array<const char*, 4> codes = {"P0301", "U0100", "C1234", "B1A2F"};
        xml->Open("DTC", {{"Name", random.Pick(codes)}, {"Description", "Fault"}});
        xml->Newline();
        xml->Element("ProcessValue", {{"Name", "Status"}}, HexBytes(1));
        xml->Newline();
        xml->Element("ProcessValue", {{"Name", "Mileage"}, {"Unit", "km"}}, std::to_string(random.Below(300000)));
        if (Hostile().catchAllChildren)
            WriteCatchAll("DTC");
        xml->CloseOnNewLine();
    }

    void WriteError() {
        static const std::array<const char*, 3> names = {"Timeout of response", "Negative response 0x7F 0x22 0x31",
                                                         "Link lost"};
        xml->Open("Error", {{"Name", random.Pick(names)}, {"Code", "17"}});
        if (Hostile().unknownElements) // "Error" has no table: its children are skipped
            xml->Element("ProcessValue", {{"Name", "UnderError"}}, "5");
        xml->Close();
    }

    void WriteValues(std::uint32_t count) {
        static const std::array<std::array<const char*, 2>, 6> values = {{{"EngineSpeed", "rpm"},
                                                                          {"CoolantTemperature", "degC"},
                                                                          {"BatteryVoltage", "V"},
                                                                          {"VehicleSpeed", "km/h"},
                                                                          {"ThrottlePosition", "%"},
                                                                          {"SoftwareVersion", ""}}};
        for (std::uint32_t i = 0; i < count; ++i) {
            xml->Newline();
            const auto& value = random.Pick(values);
            std::string text;
            switch (random.Below(12)) {
            case 0:
                text = HexBytes(1 + random.Below(8));
                break;
            case 1:
                text = "Oil < min & \"check\" 'level'";
                break;
            case 2:
                break; // an empty value
            default:
                text = Number();
            }
            if (random.OneIn(4))
                xml->Element("ProcessValue", {{"Name", value[0]}}, text);
            else
                xml->Element("ProcessValue", {{"Name", value[0]}, {"Unit", value[1]}}, text);
        }
        if (Hostile().controlChars && random.OneIn(2))
            WriteControlValues();
        if (Hostile().nonAscii && random.OneIn(2))
            WriteNonAsciiValues();
        if (Hostile().splitText && random.OneIn(2))
            WriteSplitValue();
        if (Hostile().hugeAttributes && snapshot % kHugeEvery == 0 && !m_hugeWritten) {
            m_hugeWritten = true;
            WriteHugeValue();
        }
    }

    // ---- hostile pieces ----

    // Splits the text into pieces at character boundaries and writes each in another way,
    // with comments, instructions and unknown children between them.
    void WriteSplit(const std::string& text) {
        std::size_t start = 0;
        while (start < text.size()) {
            std::size_t end = std::min(text.size(), start + 1 + random.Below(6));
            while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
                ++end;
            const std::string_view piece(text.data() + start, end - start);
            const bool cdataSafe =
                piece.find('\r') == std::string_view::npos && piece.find(']') == std::string_view::npos;
            switch (random.Below(4)) {
            case 0:
                xml->Text(piece);
                break;
            case 1:
                xml->References(piece);
                break;
            case 2:
                cdataSafe ? xml->CData(piece) : xml->Text(piece);
                break;
            default:
                xml->Text(piece);
                xml->Comment("split");
                break;
            }
            if (random.OneIn(5))
                xml->Instruction("split");
            if (random.OneIn(5))
                xml->Element("Note", {{"Name", "HiddenNote"}}, "hidden text");
            start = end;
        }
    }

    void WriteSplitValue() {
        xml->Newline();
        xml->Open("ProcessValue", {{"Name", "SplitValue"}, {"Unit", "A&B"}});
        WriteSplit("12\n34 & \"x\" <y> 'z' ]]x\r\n" + Number());
        xml->Close();
    }

    void WriteControlValues() {
        xml->Newline();
        xml->Element("ProcessValue", {{"Name", "Engine\tSpeed\n"}, {"Unit", "r\rpm"}},
                     "\t81\x7F"
                     "2\n.5\r\n");
        xml->Newline();
        xml->Element("ProcessValue", {{"Name", "\t\n\r\x7F"}, {"Unit", "V"}}, "control-only name");
    }

    void WriteNonAsciiValues() {
        xml->Newline();
        xml->Element("ProcessValue", {{"Name", "Öltemperatur"}, {"Unit", "°C"}}, "87,5");
        xml->Newline();
        xml->Element("ProcessValue", {{"Name", "温度センサー"}, {"Unit", "Ω"}}, "4.7k \xF0\x9F\x9A\x97 ready");
        xml->Newline();
        xml->Element("ProcessValue",
                     {{"Name", "C1\xC2\x85"
                               "control"},
                      {"Unit", "µs"}},
                     "Ünïcödé");
    }

    void WriteHugeValue() {
        std::string huge;
        huge.reserve(Hostile().hugeAttributeBytes);
        while (huge.size() < Hostile().hugeAttributeBytes)
            huge.push_back(static_cast<char>('A' + random.Below(26)));
        xml->Newline();
        xml->Element("ProcessValue", {{"Name", huge}, {"Unit", "B"}}, "huge name");
    }

    void WriteCatchAll(std::string_view parent) {
        XmlWriter& x = *xml;
        x.Newline();
        x.Element("Parameter", {{"Name", std::string("CatchAll") + std::string(parent)}, {"Unit", "bar"}}, "2.5");
        x.Newline();
        x.Element("Service", {{"Name", "ServiceAsValue"}}, "7");
        x.Newline();
        x.Element("DTC", {{"Name", "DtcAsValue"}, {"Unit", "km"}}, "123");
        x.Newline();
        x.Element("Info", {{"name", "lower-case name is no Name"}}, "nameless");
        x.Newline();
        // Only the text of the value itself counts; its children's text does not.
        x.Open("Group", {{"Name", "GroupValue"}});
        x.Text("a");
        x.Element("ProcessValue", {{"Name", "InnerValue"}}, "hidden");
        x.Text("b");
        x.Close();
    }

    // A catch-all value whose subtree runs deep: one row, from its own text only.
    void WriteDeepCatchAll() {
        XmlWriter& x = *xml;
        x.Newline();
        x.Open("Tree", {{"Name", "DeepTreeValue"}});
        x.Text("top");
        for (std::uint32_t i = 0; i < Hostile().nestingDepth; ++i)
            x.Open("Level");
        x.Element("Service", {{"Name", "DeepHiddenService"}}, "deep");
        for (std::uint32_t i = 0; i < Hostile().nestingDepth; ++i)
            x.Close();
        x.Text("end");
        x.Close();
    }

    void WriteLinkExtras() {
        XmlWriter& x = *xml;
        if (Hostile().unknownElements) {
            x.Newline();
            x.Open("Diagnostics", {{"Name", "UnknownUnderLink"}});
            x.Element("Service", {{"Name", "HiddenService"}}, "");
            x.Element("ComPrimitive", {{"Name", "HiddenPrimitive"}}, "");
            x.Close();
            x.Newline();
            x.Element("ProcessValue", {{"Name", "NotUnderLink"}}, "1");
            x.Newline();
            x.Element("LogicalLink", {{"Name", "NestedLink"}}, "");
            x.Newline();
            x.Element("zdt:Service", {{"xmlns:zdt", "urn:zdt-gen"}, {"Name", "PrefixedService"}}, "");
            x.Newline();
            x.Element("service", {{"Name", "LowerCaseService"}}, "");
            x.Newline();
            x.Comment(" a comment between items ");
        }
        if (Hostile().deepNesting) {
            x.Newline();
            for (std::uint32_t i = 0; i < Hostile().nestingDepth; ++i)
                x.Open("Level", {{"Depth", std::to_string(i)}});
            x.Element("Service", {{"Name", "DeepHiddenService"}}, "");
            for (std::uint32_t i = 0; i < Hostile().nestingDepth; ++i)
                x.Close();
        }
        if (Hostile().nonAscii) {
            x.Newline();
            x.Element("Prüfstand", {{"Name", "Ünknown"}}, "Straße");
        }
    }

    void WriteSnapshotExtras() {
        XmlWriter& x = *xml;
        if (!Hostile().unknownElements)
            return;
        x.Newline();
        x.Open("VendorData", {{"Version", "3"}});
        x.Open("Service", {{"Name", "HiddenInUnknown"}});
        x.Element("ProcessValue", {{"Name", "Hidden"}, {"Unit", "x"}}, "1");
        x.Close();
        x.Element("LogicalLink", {{"Name", "HiddenLink"}}, "");
        x.Close();
        // Known names where the snapshot does not allow them.
        for (const char* name : {"ComPrimitive", "DTC", "Error", "ProcessValue", "SnapShot"}) {
            x.Newline();
            x.Element(name, {{"Name", "NotHere"}, {"ShortName", "NotHere"}}, "");
        }
        x.Newline();
        x.Instruction("vendor data follows");
    }

    void WriteListExtras() {
        XmlWriter& x = *xml;
        x.Newline();
        x.Open("Header", {{"Created", "not the list's"}});
        x.Open("SnapShot", {{"ShortName", "HiddenSnap"}});
        x.Element("LogicalLink", {{"Name", "HiddenLink"}}, "");
        x.Close();
        x.Close();
        x.Newline();
        x.Comment(" between snapshots ");
    }

    bool m_hugeWritten = false;
};

SnapshotGenerator::SnapshotGenerator(const SnapshotOptions& options) : m_state(std::make_unique<State>(options)) {}

SnapshotGenerator::~SnapshotGenerator() = default;

SnapshotSummary SnapshotGenerator::Write(std::ostream& out, std::ostream* rows) {
    State& s = *m_state;
    SnapshotSummary summary;
    summary.rowsKnown = !s.Hostile().truncatedEnd;
    XmlSink sink(&out);
    std::unique_ptr<RowModel> model;
    if (rows != nullptr && summary.rowsKnown)
        model = std::make_unique<RowModel>(*rows);
    XmlWriter xml(sink, model.get(), s.options.indent);
    s.xml = &xml;
    s.WriteFile(sink);
    s.xml = nullptr;
    sink.Flush();
    if (model) {
        model->Finish();
        summary.rows = model->Rows();
    }
    summary.snapshots = s.snapshot;
    summary.bytes = sink.Bytes();
    return summary;
}

std::string MakeSnapshot(const SnapshotOptions& options) {
    std::ostringstream out;
    WriteSnapshot(out, options);
    return out.str();
}

void WriteSnapshot(std::ostream& out, const SnapshotOptions& options) {
    SnapshotGenerator(options).Write(out, nullptr);
}

SnapshotSummary WriteSnapshotWithRows(std::ostream& out, std::ostream* rows, const SnapshotOptions& options) {
    return SnapshotGenerator(options).Write(out, rows);
}

} // namespace zdtgen
