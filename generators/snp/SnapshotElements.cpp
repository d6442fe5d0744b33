// Writing a snapshot list: the file, its snapshots and every element the viewer reads.

#include "SnapshotState.h"

#include <algorithm>
#include <array>
#include <memory>
#include <ostream>
#include <sstream>
#include <utility>

namespace zdtgen {
namespace {

// Huge attributes return this often: one per snapshot would be nearly all of a big file.
constexpr std::uint64_t kHugeEvery = 64;

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

void SnapshotGenerator::State::WriteFile(XmlSink& sink) {
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

void SnapshotGenerator::State::WriteSnapShot() {
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

void SnapshotGenerator::State::WriteProject() {
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

void SnapshotGenerator::State::WriteVit() {
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

void SnapshotGenerator::State::WriteLink(bool everyKind) {
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

void SnapshotGenerator::State::WriteService() {
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

void SnapshotGenerator::State::WriteComPrimitive() {
    static const std::array<const char*, 4> names = {"StartCommunication", "SendRecvRequest", "IdentifyECU",
                                                     "StopCommunication"};
    xml->Open("ComPrimitive", {{"Name", random.Pick(names)}});
    WriteValues(random.Below(3));
    if (Hostile().catchAllChildren)
        WriteCatchAll("ComPrimitive");
    xml->CloseOnNewLine();
}

void SnapshotGenerator::State::WriteDtc() {
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

void SnapshotGenerator::State::WriteError() {
    static const std::array<const char*, 3> names = {"Timeout of response", "Negative response 0x7F 0x22 0x31",
                                                     "Link lost"};
    xml->Open("Error", {{"Name", random.Pick(names)}, {"Code", "17"}});
    if (Hostile().unknownElements) // "Error" has no table: its children are skipped
        xml->Element("ProcessValue", {{"Name", "UnderError"}}, "5");
    xml->Close();
}

void SnapshotGenerator::State::WriteValues(std::uint32_t count) {
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

SnapshotGenerator::SnapshotGenerator(const SnapshotOptions& options) : m_state(std::make_unique<State>(options)) {}

SnapshotGenerator::~SnapshotGenerator() = default;

SnapshotSummary SnapshotGenerator::Write(std::ostream& out, std::ostream* rows) {
    State& s = *m_state;
    SnapshotSummary summary;
    summary.rowsKnown = !s.Hostile().truncatedEnd;
    XmlSink sink(&out);
    std::unique_ptr<snp::RowModel> model;
    if (rows != nullptr && summary.rowsKnown)
        model = std::make_unique<snp::RowModel>(*rows);
    snp::XmlWriter xml(sink, model.get(), s.options.indent);
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
