// Writing a whole process value trace, and the values of its leaves with the hostile
// decorations.

#include "XpvtTraceState.h"

#include <array>
#include <memory>
#include <ostream>
#include <sstream>
#include <string_view>
#include <utility>

namespace zdtgen {
namespace {

// Message and PDU lengths that sit on the edges of an 8-byte row and a 16-byte line.
constexpr std::array<std::uint32_t, 10> kEdgeLengths = {0, 1, 7, 8, 9, 10, 15, 16, 17, 33};
// Separators between hexadecimal bytes: readers must cope with more than blanks.
constexpr std::array<std::string_view, 7> kSeparators = {" ", " ", "", "-", ":", ", ", "\t"};

const char* const kHexUpper = "0123456789ABCDEF";
const char* const kHexLower = "0123456789abcdef";

} // namespace

bool XpvtHostile::Any() const {
    return unknownElements || splitText || controlChars || nonAscii || repeatedLeaves || deepNesting || truncatedEnd ||
           foreignRoot;
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

// A value as markup, with the hostile decorations that are switched on.
std::string XpvtTraceGenerator::State::Text(std::string plain) {
    // Controls go in before the UTF-8 extras and never inside a multi-byte character.
    if (Hostile().controlChars && random.OneIn(6)) {
        static constexpr std::array<std::string_view, 4> kControls = {"\t", "\n", "\r", "\x7F"};
        std::size_t at = random.Below(static_cast<std::uint32_t>(plain.size()) + 1);
        while (at > 0 && at < plain.size() && (static_cast<unsigned char>(plain[at]) & 0xC0) == 0x80)
            --at;
        plain.insert(at, kControls[random.Below(4)]);
    }
    if (Hostile().nonAscii && random.OneIn(5))
        plain += random.OneIn(2) ? " Pr\xC3\xBC"
                                   "fung \xE8\xA8\xBA\xE6\x96\xAD"
                                 : " \xF0\x9D\x84\x9E\xC2\x85";
    std::string markup = EscapedText(plain);
    if (Hostile().splitText && random.OneIn(4))
        markup = Split(markup);
    return markup;
}

// The same text in pieces a parser delivers separately.
std::string XpvtTraceGenerator::State::Split(const std::string& markup) {
    // Cut only where no reference or multi-byte character would break.
    std::size_t cut = markup.find_first_of("&;") == std::string::npos ? markup.size() / 2 : 0;
    while (cut > 0 && (static_cast<unsigned char>(markup[cut]) & 0xC0) == 0x80)
        --cut;
    const std::string head = markup.substr(0, cut), tail = markup.substr(cut);
    switch (random.Below(4)) {
    case 0:
        return head + "&amp;" + tail + "&lt;";
    case 1:
        return head + "<![CDATA[" + "<cd&ata>" + "]]>" + tail;
    case 2:
        return head + "<!-- between -->" + tail + "&#65;";
    default:
        return "&lt;" + head + "&amp;&amp;" + tail;
    }
}

// A name attribute's value: plain names, with the hostile extras when switched on.
std::string XpvtTraceGenerator::State::Name(std::string plain) {
    if (Hostile().nonAscii && random.OneIn(6))
        plain += "_\xC3\x9C\xC3\x9F\xE2\x80\x93";
    if (Hostile().controlChars && random.OneIn(8))
        plain += random.OneIn(2) ? "\t&<\"" : "\x7F\n";
    return plain;
}

std::string XpvtTraceGenerator::State::Stamp() {
    timeStamp += 1 + random.Below(5000);
    return Decimal(timeStamp);
}

std::string XpvtTraceGenerator::State::Time701() {
    const std::uint64_t seconds = 8 * 3600 + result * 3 + random.Below(3);
    return TwoDigits(seconds / 3600 % 24) + ":" + TwoDigits(seconds / 60 % 60) + ":" + TwoDigits(seconds % 60) + "." +
           Decimal(100 + random.Below(900));
}

std::uint32_t XpvtTraceGenerator::State::EdgeLength() {
    if (random.OneIn(4))
        return random.Below(40);
    return kEdgeLengths[edgeIndex++ % kEdgeLengths.size()];
}

// `count` bytes as hexadecimal digits joined by one separator, upper or lower case.
std::string XpvtTraceGenerator::State::HexBytes(std::uint32_t count) {
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

void XpvtTraceGenerator::State::Leaf(std::string_view name, std::string plain) {
    const std::string markup = Text(std::move(plain));
    xml->Leaf(name, markup);
    if (Hostile().repeatedLeaves && random.OneIn(12))
        xml->Leaf(name, markup);
}

void XpvtTraceGenerator::State::WriteFile(XmlSink& sink) {
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

XpvtTraceGenerator::XpvtTraceGenerator(const XpvtTraceOptions& options) : m_state(std::make_unique<State>(options)) {}

XpvtTraceGenerator::~XpvtTraceGenerator() = default;

XpvtTraceSummary XpvtTraceGenerator::Write(std::ostream& out) {
    XmlSink sink(&out);
    xpvt::XmlOut xml(sink, m_state->options.indent);
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
