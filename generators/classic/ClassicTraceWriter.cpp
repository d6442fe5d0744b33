// Writing a whole classic trace: the head, the records in turn with the hostile lines, the
// history section; and the CAN filter files.

#include "ClassicTraceState.h"

#include <optional>
#include <ostream>
#include <sstream>
#include <string_view>

namespace zdtgen {
namespace {

constexpr const char* kZdtTitle = "ZDT Trace File";
constexpr std::size_t kFlushBytes = 1u << 20;

bool IsLegacySchema(const std::string& schema) {
    return schema == "2" || schema == "5" || schema == "501" || schema == "601";
}

} // namespace

bool HostileExtras::Any() const {
    return emptyLines || digitOneLines || bracketLines || longLines || overlongLengths || binaryGarbage;
}

HostileExtras HostileExtras::AllKinds() {
    HostileExtras extras;
    extras.emptyLines = extras.digitOneLines = extras.bracketLines = true;
    extras.longLines = extras.overlongLengths = extras.binaryGarbage = true;
    return extras;
}

bool UsesLegacyFormat(const ClassicTraceOptions& options) {
    switch (options.format) {
    case LineFormat::Legacy:
        return true;
    case LineFormat::V701:
        return false;
    case LineFormat::BySchema:
        break;
    }
    return IsLegacySchema(options.schema);
}

bool UsesDeltaTimes(const ClassicTraceOptions& options) {
    switch (options.timeStyle) {
    case TimeStyle::Delta:
        return true;
    case TimeStyle::Absolute:
        return false;
    case TimeStyle::BySchema:
        break;
    }
    const std::string& s = options.schema;
    return options.title && *options.title == kZdtTitle && (s == "2" || s == "5" || s == "501");
}

namespace {

// Buffers the output, counts bytes, and holds back each line's ending until the next
// line, so that the very last line can go without one.
class TraceSink {
public:
    TraceSink(std::ostream& out, const ClassicTraceOptions& options)
        : m_out(out), m_eol(options.lineEnding == LineEnding::CrLf ? "\r\n" : "\n"),
          m_lastWithoutEnding(options.lastLineWithoutEnding) {
        m_buffer.reserve(kFlushBytes + 1024);
    }
    // Returns the offset of the line's first byte.
    std::uint64_t Line(std::string_view text) {
        if (m_pendingEnding)
            Put(m_eol);
        const std::uint64_t offset = m_bytes;
        Put(text);
        m_pendingEnding = true;
        return offset;
    }
    void Finish() {
        if (m_pendingEnding && !m_lastWithoutEnding)
            Put(m_eol);
        m_pendingEnding = false;
        Flush();
    }
    // Bytes so far, counting the ending still held back.
    std::uint64_t Bytes() const { return m_bytes + (m_pendingEnding ? m_eol.size() : 0); }
    std::uint64_t WrittenBytes() const { return m_bytes; }

private:
    void Put(std::string_view text) {
        m_buffer.append(text);
        m_bytes += text.size();
        if (m_buffer.size() >= kFlushBytes)
            Flush();
    }
    void Flush() {
        m_out.write(m_buffer.data(), static_cast<std::streamsize>(m_buffer.size()));
        m_buffer.clear();
    }
    std::ostream& m_out;
    std::string_view m_eol;
    bool m_lastWithoutEnding;
    bool m_pendingEnding = false;
    std::string m_buffer;
    std::uint64_t m_bytes = 0;
};

void WriteHead(TraceSink& sink, const ClassicTraceOptions& o) {
    if (!o.writeDescription)
        return;
    sink.Line("[Description]");
    auto key = [&sink](const char* name, const std::optional<std::string>& value) {
        if (value)
            sink.Line(std::string(name) + "=" + *value);
    };
    key("Title", o.title);
    if (!o.schema.empty())
        sink.Line("Schema=" + o.schema);
    key("Creator", o.creator);
    key("ProductVersion", o.productVersion);
    key("InterfaceBoard", o.interfaceBoard);
    key("Date", o.date);
    key("Time", o.time);
    for (const auto& line : o.extraHeadLines)
        sink.Line(line);
}

// At the end the section looks as the viewer appends it; inside the records it must end
// with an empty line, where a history reader stops and the record walk goes on.
void WriteHistory(TraceSink& sink, const ClassicTraceOptions& o, bool atEnd) {
    sink.Line("");
    if (atEnd)
        sink.Line("");
    sink.Line("[AnalyzerHistory]");
    for (std::uint32_t i = 0; i < o.historyPaddingLines; ++i)
        sink.Line("Note" + std::to_string(i) + "=padding");
    for (const auto& entry : o.history) {
        std::string text = "CANFilter=";
        if (entry.flag != 0) {
            text += entry.flag;
            text += ':';
        }
        sink.Line(text + entry.path);
    }
    if (!atEnd)
        sink.Line("");
}

} // namespace

ClassicTraceGenerator::ClassicTraceGenerator(const ClassicTraceOptions& options)
    : m_state(std::make_unique<State>(options)) {}

ClassicTraceGenerator::~ClassicTraceGenerator() = default;

std::vector<std::string> ClassicTraceGenerator::AllTypeLines() {
    return m_state->AllTypeLines();
}

ClassicTraceSummary ClassicTraceGenerator::Write(std::ostream& out) {
    State& s = *m_state;
    const ClassicTraceOptions& o = s.options;
    TraceSink sink(out, o);
    ClassicTraceSummary summary;
    WriteHead(sink, o);
    sink.Line("[TraceData]");

    const std::uint64_t headBytes = sink.Bytes();
    const bool bySize = o.targetBytes != 0;
    const bool hostile = !s.hostileKinds.empty();
    const std::uint32_t every = o.hostile.every == 0 ? 1 : o.hostile.every;
    bool historyWritten = o.historyPlacement != HistoryPlacement::InTraceData;
    auto more = [&] { return bySize ? sink.Bytes() < o.targetBytes : summary.records < o.records; };
    const std::uint64_t recordBytesWanted = o.targetBytes > headBytes ? o.targetBytes - headBytes : 0;
    auto halfWay = [&] {
        return bySize ? sink.Bytes() - headBytes >= recordBytesWanted / 2 : summary.records >= o.records / 2;
    };
    auto emitRecord = [&] {
        summary.lastRecordOffset = sink.Line(s.line.Str());
        summary.lastRecordLine = s.line.Str();
        ++summary.records;
    };

    while (more()) {
        if (!historyWritten && halfWay()) {
            WriteHistory(sink, o, false);
            historyWritten = true;
        }
        if (hostile && (summary.records + 1) % every == 0) {
            const bool isRecord = s.BuildHostileLine();
            if (isRecord) {
                emitRecord();
                continue;
            }
            sink.Line(s.line.Str());
        }
        s.BuildStreamRecord();
        emitRecord();
    }
    if (!historyWritten)
        WriteHistory(sink, o, false);
    if (o.historyPlacement == HistoryPlacement::AtEnd)
        WriteHistory(sink, o, true);
    sink.Finish();
    summary.bytes = sink.WrittenBytes();
    return summary;
}

std::string MakeClassicTrace(const ClassicTraceOptions& options) {
    std::ostringstream out;
    WriteClassicTrace(out, options);
    return out.str();
}

void WriteClassicTrace(std::ostream& out, const ClassicTraceOptions& options) {
    WriteClassicTraceWithSummary(out, options);
}

ClassicTraceSummary WriteClassicTraceWithSummary(std::ostream& out, const ClassicTraceOptions& options) {
    ClassicTraceGenerator generator(options);
    return generator.Write(out);
}

std::vector<std::string> LegacyRecordLines(std::uint64_t seed) {
    ClassicTraceOptions options;
    options.schema = "601";
    options.seed = seed;
    options.format = LineFormat::Legacy;
    options.timeStyle = TimeStyle::Absolute;
    return ClassicTraceGenerator(options).AllTypeLines();
}

std::vector<std::string> V701RecordLines(std::uint64_t seed) {
    ClassicTraceOptions options;
    options.schema = "701";
    options.seed = seed;
    options.format = LineFormat::V701;
    options.timeStyle = TimeStyle::Absolute;
    return ClassicTraceGenerator(options).AllTypeLines();
}

std::string MakeCanFilterFile(const std::string& type, const std::vector<std::uint32_t>& identifiers,
                              FilterValueStyle style) {
    classic::LineBuffer text;
    text.Text("[CAN]\r\nType=");
    text.Text(type);
    text.Text("\r\nNoOfEntries=");
    text.Hex(static_cast<std::uint32_t>(identifiers.size()), 1);
    text.Text("\r\n");
    for (std::size_t i = 0; i < identifiers.size(); ++i) {
        text.Hex(static_cast<std::uint32_t>(i + 1), 1);
        text.Char('=');
        if (style == FilterValueStyle::Prefixed)
            text.Text("0x");
        text.Hex(identifiers[i], 1);
        text.Text("\r\n");
    }
    return text.Str();
}

} // namespace zdtgen
