#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// Generator of classic trace files for the tests, the benchmarks and samples/.
// Everything is deterministic by seed: the same options give the same bytes on every
// platform (own random source, own number formatting).
namespace zdtgen {

// Which record lines a trace holds.
enum class RecordMix {
    All,     // every type code of the chosen reader, each once per block, in shuffled order
    Can,     // CAN frames only
    KLine,   // K-line bytes, byte blocks, addressed and priority frames, baud rates
    Events,  // events, bus states, baud rates and time marks only
    Traffic, // a bus log: mostly CAN frames of 5000/6000/5800/6800 with a few events
};

// Which line formats the records use. BySchema: the legacy formats for "2", "5", "501" and
// "601", the 701 formats for anything else (that is the reader a record fetch picks).
enum class LineFormat { BySchema, Legacy, V701 };

// BySchema: deltas for a ZDT-titled trace of schema "2", "5" or "501", absolute otherwise.
enum class TimeStyle { BySchema, Delta, Absolute };

enum class HistoryPlacement { None, AtEnd, InTraceData };

enum class LineEnding { CrLf, LfOnly };

// One "CANFilter=" entry of the history section.
struct HistoryEntry {
    std::string path;
    // '1' or '0' writes "flag:path"; 0 writes the bare path.
    char flag = '1';
};

// Lines a well-behaved writer never produces. Each enabled kind is inserted in turn, one
// after every `every` records. Kinds marked "record" take the place of a normal record,
// so the record count stays as asked; the others are extra lines that are no records.
struct HostileExtras {
    bool emptyLines = false;      // ""                                   (no record)
    bool digitOneLines = false;   // a line starting with '1'             (no record)
    bool bracketLines = false;    // a line starting with '['             (no record)
    bool longLines = false;       // a record line of 300 characters      (record)
    bool overlongLengths = false; // a declared length far beyond the line (record)
    bool binaryGarbage = false;   // a garbage line, and a record line with garbage fields
    std::uint32_t every = 16;

    bool Any() const;
    static HostileExtras AllKinds();
};

struct ClassicTraceOptions {
    // "2", "5", "501", "601", "701"; empty omits the Schema key; anything else is an
    // invalid version, written as given.
    std::string schema = "601";
    // A title other than "ZDT Trace File" makes a CAN-onboard trace. nullopt omits the key.
    std::optional<std::string> title = std::string("ZDT Trace File");
    bool writeDescription = true;
    std::optional<std::string> creator = std::string("zdt-gen");
    std::optional<std::string> productVersion = std::string("7.3.0");
    std::optional<std::string> interfaceBoard = std::string("ZDT CAN Box 2");
    std::optional<std::string> date = std::string("21.11.2023");
    std::optional<std::string> time = std::string("14:05:09");
    // Written as they stand at the end of [Description] (unknown keys, odd key case ...).
    std::vector<std::string> extraHeadLines;

    // Record lines to write; when targetBytes is not 0 it wins: records are written until
    // the file holds at least that many bytes.
    std::uint64_t records = 1000;
    std::uint64_t targetBytes = 0;
    std::uint64_t seed = 1;
    RecordMix mix = RecordMix::All;
    LineFormat format = LineFormat::BySchema;
    TimeStyle timeStyle = TimeStyle::BySchema;

    HistoryPlacement historyPlacement = HistoryPlacement::None;
    std::vector<HistoryEntry> history;
    // Unknown "key=value" lines ahead of the history entries; above 200 lines the section
    // is too long for a reader that gives up after 200.
    std::uint32_t historyPaddingLines = 0;

    LineEnding lineEnding = LineEnding::CrLf;
    // The very last line of the file gets no line ending at all.
    bool lastLineWithoutEnding = false;
    HostileExtras hostile;
};

// What a write produced. The record count is of the lines the index treats as records;
// an unterminated last record line is counted here although a line reader drops it.
struct ClassicTraceSummary {
    std::uint64_t records = 0;
    std::uint64_t bytes = 0;
    std::uint64_t lastRecordOffset = 0;
    std::string lastRecordLine; // without its line ending
};

bool UsesLegacyFormat(const ClassicTraceOptions& options);
bool UsesDeltaTimes(const ClassicTraceOptions& options);

std::string MakeClassicTrace(const ClassicTraceOptions& options);
// Streams the file; memory stays small whatever the size.
void WriteClassicTrace(std::ostream& out, const ClassicTraceOptions& options);
ClassicTraceSummary WriteClassicTraceWithSummary(std::ostream& out, const ClassicTraceOptions& options);

// Every type code of the reader of versions up to 601, and of the 701 reader, in table
// order, each with its variants (lengths, identifiers, channel cases, dash and timed forms).
// Times run absolute and include gaps above 10 ms.
std::vector<std::string> LegacyRecordLines(std::uint64_t seed);
std::vector<std::string> V701RecordLines(std::uint64_t seed);

enum class FilterValueStyle { Prefixed, PlainHex };

// A .flt CAN filter: section "[CAN]", Type, NoOfEntries in hex and one key per entry,
// the keys numbered from 1 in upper-case hex. Extended identifiers are given with the
// top bit set, as the filter compares them.
std::string MakeCanFilterFile(const std::string& type, const std::vector<std::uint32_t>& identifiers,
                              FilterValueStyle style = FilterValueStyle::Prefixed);

// The engine behind the functions above: one object writes one trace.
class ClassicTraceGenerator {
public:
    explicit ClassicTraceGenerator(const ClassicTraceOptions& options);
    ~ClassicTraceGenerator();
    ClassicTraceGenerator(const ClassicTraceGenerator&) = delete;
    ClassicTraceGenerator& operator=(const ClassicTraceGenerator&) = delete;

    ClassicTraceSummary Write(std::ostream& out);
    // One line per variant of every type code of the chosen format.
    std::vector<std::string> AllTypeLines();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zdtgen
