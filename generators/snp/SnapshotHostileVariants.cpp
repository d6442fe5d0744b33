// Content a well-behaved writer never produces: split texts, control and UTF-8 characters,
// huge values, catch-all children, deep nesting and unknown or misplaced elements.

#include "SnapshotState.h"

#include <algorithm>
#include <string>

namespace zdtgen {

// Splits the text into pieces at character boundaries and writes each in another way,
// with comments, instructions and unknown children between them.
void SnapshotGenerator::State::WriteSplit(const std::string& text) {
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = std::min(text.size(), start + 1 + random.Below(6));
        while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
            ++end;
        const std::string_view piece(text.data() + start, end - start);
        const bool cdataSafe = piece.find('\r') == std::string_view::npos && piece.find(']') == std::string_view::npos;
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

void SnapshotGenerator::State::WriteSplitValue() {
    xml->Newline();
    xml->Open("ProcessValue", {{"Name", "SplitValue"}, {"Unit", "A&B"}});
    WriteSplit("12\n34 & \"x\" <y> 'z' ]]x\r\n" + Number());
    xml->Close();
}

void SnapshotGenerator::State::WriteControlValues() {
    xml->Newline();
    xml->Element("ProcessValue", {{"Name", "Engine\tSpeed\n"}, {"Unit", "r\rpm"}},
                 "\t81\x7F"
                 "2\n.5\r\n");
    xml->Newline();
    xml->Element("ProcessValue", {{"Name", "\t\n\r\x7F"}, {"Unit", "V"}}, "control-only name");
}

void SnapshotGenerator::State::WriteNonAsciiValues() {
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

void SnapshotGenerator::State::WriteHugeValue() {
    std::string huge;
    huge.reserve(Hostile().hugeAttributeBytes);
    while (huge.size() < Hostile().hugeAttributeBytes)
        huge.push_back(static_cast<char>('A' + random.Below(26)));
    xml->Newline();
    xml->Element("ProcessValue", {{"Name", huge}, {"Unit", "B"}}, "huge name");
}

void SnapshotGenerator::State::WriteCatchAll(std::string_view parent) {
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
void SnapshotGenerator::State::WriteDeepCatchAll() {
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

void SnapshotGenerator::State::WriteLinkExtras() {
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

void SnapshotGenerator::State::WriteSnapshotExtras() {
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

void SnapshotGenerator::State::WriteListExtras() {
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

} // namespace zdtgen
