// zdt-gen: writes generated classic traces, CAN filter files, snapshot files and process
// value traces.

#include "ClassicTraceGenerator.h"
#include "SnapshotGenerator.h"
#include "XpvtTraceGenerator.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

const char* const kUsage =
    R"(usage:
  zdt-gen classic [options] OUT          a classic trace; OUT "-" writes to standard output
  zdt-gen flt --type StopFilter|PassFilter --ids 7E8,7DF [--plain] OUT
  zdt-gen snp [--seed N] [--snapshots N | --bytes N] [--hostile LIST] [options] OUT
  zdt-gen xpvt --schema 701|702 [--schema-text T] [--size N | --results N] [--seed S] [--hostile] OUT
  zdt-gen --help

classic options:
  --schema S              Schema value: 2, 5, 501, 601 (default), 701, or any other text
  --no-schema             omit the Schema key
  --title T               Title value (default "ZDT Trace File"; others make CAN-onboard traces)
  --no-title              omit the Title key
  --no-description        write no [Description] section at all
  --creator X, --product-version X, --interface-board X, --date X, --time X
                          the other head keys
  --omit KEY              omit Creator, ProductVersion, InterfaceBoard, Date or Time
  --head-line TEXT        an extra line in [Description] (repeatable)
  --records N             record lines to write (default 1000)
  --bytes N               write records until the file holds N bytes (suffix K, M, G)
  --seed N                random seed (default 1)
  --mix M                 all | can | kline | events | traffic (default all)
  --format F              schema (default) | legacy | 701: the record line formats
  --times T               schema (default) | delta | absolute
  --history F:PATH        a CANFilter entry with flag F (1 or 0) (repeatable)
  --history-bare PATH     a CANFilter entry without flag (repeatable)
  --history-at W          end (default) | middle: where [AnalyzerHistory] stands
  --history-padding N     unknown lines ahead of the history entries
  --lf-only               end lines with LF instead of CR LF
  --no-final-eol          no line ending after the last line
  --hostile LIST          comma list of empty, one, bracket, long, overlong, garbage, all
  --hostile-every N       one hostile line after every N records (default 16)
  --summary FILE          write records, bytes, last record offset and line (hex) to FILE

flt options:
  --type T                StopFilter or PassFilter (any text is written as given)
  --ids LIST              comma list of hexadecimal identifiers; extended ones with bit 31 set
  --plain                 values as plain hex instead of 0x-prefixed

snp options:
  --seed N                random seed (default 1)
  --snapshots N           snapshots to write (default 4)
  --bytes N               write snapshots until the file holds N bytes (suffix K, M, G)
  --hostile LIST          comma list of unknown, catchall, split, control, nonascii, huge,
                          deep, truncated, foreign; "all" is the first seven (the file stays
                          a well-formed snapshot list); truncated and foreign must be named
  --huge-bytes N          size of the huge attribute value (default 1M)
  --depth N               levels of the deep nesting (default 300)
  --created TEXT          "Created" of SnapList (default "14:05:09,21.11.2023")
  --no-created            no "Created" on SnapList
  --compact               no line breaks or indentation between elements
  --rows FILE             also write the rows a reader must list: "#DateTime" TAB value,
                          then per row flags, Event, Description, Name, Value, Unit by TABs;
                          not written for a truncated file, which opens no document

xpvt options:
  --schema 701|702        the element tree to write (default 702)
  --schema-text T         the header's Schema text as given, e.g. "7.02", "7,02 " (default
                          "7.01" or "7,02"); C escapes \n, \t and \\ are read
  --no-schema             no Schema element in the header
  --size N                write results until the file holds N bytes (suffix K, M, G)
  --results N             results to write (default 8)
  --seed N                random seed (default 1)
  --hostile               unknown and misplaced elements, texts split by entities, CDATA and
                          comments, control characters, UTF-8, repeated leaves, deep nesting;
                          the file stays a well-formed trace
  --depth N               levels of the deep nesting (default 210)
  --truncated             the file stops in the middle of an element: not well-formed
  --foreign               well-formed, but the root is another element holding a trace
  --datetime TEXT         DateTime of the header (default "2023-11-21T14:05:09")
  --no-datetime           no DateTime on the header
  --no-date-children      no Date and Time children in the header
  --compact               no line breaks or indentation between elements
  --parameter-depth N     deepest level of nested parameters (default 3)
)";

struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

std::uint64_t ParseCount(const std::string& text) {
    char* end = nullptr;
    const unsigned long long value = std::strtoull(text.c_str(), &end, 10);
    std::uint64_t scale = 1;
    if (end != nullptr && *end != '\0') {
        switch (*end) {
        case 'K': case 'k': scale = 1ull << 10; break;
        case 'M': case 'm': scale = 1ull << 20; break;
        case 'G': case 'g': scale = 1ull << 30; break;
        default: throw UsageError("not a number: " + text);
        }
        if (end[1] != '\0')
            throw UsageError("not a number: " + text);
    }
    if (end == text.c_str())
        throw UsageError("not a number: " + text);
    return value * scale;
}

std::vector<std::string> SplitCommas(const std::string& text) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (;;) {
        const std::size_t comma = text.find(',', start);
        parts.push_back(text.substr(start, comma - start));
        if (comma == std::string::npos)
            return parts;
        start = comma + 1;
    }
}

// Walks the arguments of one command.
class Arguments {
public:
    Arguments(int argc, char** argv, int first) : m_args(argv + first, argv + argc) {}
    bool Done() const { return m_next >= m_args.size(); }
    std::string Next() { return m_args[m_next++]; }
    std::string Value(const std::string& option) {
        if (Done())
            throw UsageError(option + " needs a value");
        return Next();
    }

private:
    std::vector<std::string> m_args;
    std::size_t m_next = 0;
};

zdtgen::RecordMix ParseMix(const std::string& text) {
    if (text == "all") return zdtgen::RecordMix::All;
    if (text == "can") return zdtgen::RecordMix::Can;
    if (text == "kline") return zdtgen::RecordMix::KLine;
    if (text == "events") return zdtgen::RecordMix::Events;
    if (text == "traffic") return zdtgen::RecordMix::Traffic;
    throw UsageError("unknown mix: " + text);
}

void EnableHostile(zdtgen::HostileExtras& extras, const std::string& list) {
    for (const auto& kind : SplitCommas(list)) {
        if (kind == "empty") extras.emptyLines = true;
        else if (kind == "one") extras.digitOneLines = true;
        else if (kind == "bracket") extras.bracketLines = true;
        else if (kind == "long") extras.longLines = true;
        else if (kind == "overlong") extras.overlongLengths = true;
        else if (kind == "garbage") extras.binaryGarbage = true;
        else if (kind == "all") {
            const std::uint32_t every = extras.every;
            extras = zdtgen::HostileExtras::AllKinds();
            extras.every = every;
        } else
            throw UsageError("unknown hostile kind: " + kind);
    }
}

void OmitKey(zdtgen::ClassicTraceOptions& o, const std::string& key) {
    if (key == "Creator") o.creator.reset();
    else if (key == "ProductVersion") o.productVersion.reset();
    else if (key == "InterfaceBoard") o.interfaceBoard.reset();
    else if (key == "Date") o.date.reset();
    else if (key == "Time") o.time.reset();
    else throw UsageError("cannot omit key: " + key);
}

// True when the option was one of the head options.
bool ParseHeadOption(zdtgen::ClassicTraceOptions& o, const std::string& arg, Arguments& args) {
    if (arg == "--schema") o.schema = args.Value(arg);
    else if (arg == "--no-schema") o.schema.clear();
    else if (arg == "--title") o.title = args.Value(arg);
    else if (arg == "--no-title") o.title.reset();
    else if (arg == "--no-description") o.writeDescription = false;
    else if (arg == "--creator") o.creator = args.Value(arg);
    else if (arg == "--product-version") o.productVersion = args.Value(arg);
    else if (arg == "--interface-board") o.interfaceBoard = args.Value(arg);
    else if (arg == "--date") o.date = args.Value(arg);
    else if (arg == "--time") o.time = args.Value(arg);
    else if (arg == "--omit") OmitKey(o, args.Value(arg));
    else if (arg == "--head-line") o.extraHeadLines.push_back(args.Value(arg));
    else return false;
    return true;
}

bool ParseHistoryOption(zdtgen::ClassicTraceOptions& o, const std::string& arg, Arguments& args) {
    if (arg == "--history") {
        const std::string value = args.Value(arg);
        if (value.size() < 2 || value[1] != ':')
            throw UsageError("--history wants F:PATH, F being 1 or 0");
        o.history.push_back({value.substr(2), value[0]});
    } else if (arg == "--history-bare") {
        o.history.push_back({args.Value(arg), 0});
    } else if (arg == "--history-at") {
        const std::string where = args.Value(arg);
        if (where == "end") o.historyPlacement = zdtgen::HistoryPlacement::AtEnd;
        else if (where == "middle") o.historyPlacement = zdtgen::HistoryPlacement::InTraceData;
        else throw UsageError("--history-at wants end or middle");
    } else if (arg == "--history-padding") {
        o.historyPaddingLines = static_cast<std::uint32_t>(ParseCount(args.Value(arg)));
    } else {
        return false;
    }
    return true;
}

bool ParseRecordOption(zdtgen::ClassicTraceOptions& o, const std::string& arg, Arguments& args) {
    if (arg == "--records") o.records = ParseCount(args.Value(arg));
    else if (arg == "--bytes") o.targetBytes = ParseCount(args.Value(arg));
    else if (arg == "--seed") o.seed = ParseCount(args.Value(arg));
    else if (arg == "--mix") o.mix = ParseMix(args.Value(arg));
    else if (arg == "--format") {
        const std::string f = args.Value(arg);
        if (f == "schema") o.format = zdtgen::LineFormat::BySchema;
        else if (f == "legacy") o.format = zdtgen::LineFormat::Legacy;
        else if (f == "701") o.format = zdtgen::LineFormat::V701;
        else throw UsageError("--format wants schema, legacy or 701");
    } else if (arg == "--times") {
        const std::string t = args.Value(arg);
        if (t == "schema") o.timeStyle = zdtgen::TimeStyle::BySchema;
        else if (t == "delta") o.timeStyle = zdtgen::TimeStyle::Delta;
        else if (t == "absolute") o.timeStyle = zdtgen::TimeStyle::Absolute;
        else throw UsageError("--times wants schema, delta or absolute");
    } else if (arg == "--lf-only") o.lineEnding = zdtgen::LineEnding::LfOnly;
    else if (arg == "--no-final-eol") o.lastLineWithoutEnding = true;
    else if (arg == "--hostile") EnableHostile(o.hostile, args.Value(arg));
    else if (arg == "--hostile-every") o.hostile.every = static_cast<std::uint32_t>(ParseCount(args.Value(arg)));
    else return false;
    return true;
}

std::string Hex(const std::string& bytes) {
    static const char* digits = "0123456789ABCDEF";
    std::string text;
    for (unsigned char c : bytes) {
        text += digits[c >> 4];
        text += digits[c & 15];
    }
    return text;
}

void WriteSummary(const std::string& path, const zdtgen::ClassicTraceSummary& summary) {
    std::ofstream out(path, std::ios::binary);
    out << "records=" << summary.records << "\n"
        << "bytes=" << summary.bytes << "\n"
        << "last_offset=" << summary.lastRecordOffset << "\n"
        << "last_line_hex=" << Hex(summary.lastRecordLine) << "\n";
    if (!out)
        throw std::runtime_error("cannot write " + path);
}

// Writes through `write` to OUT, or to standard output for "-".
template <typename Writer>
void WriteOutput(const std::string& path, Writer write) {
    if (path == "-") {
        write(std::cout);
        std::cout.flush();
        if (!std::cout)
            throw std::runtime_error("cannot write to standard output");
        return;
    }
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out)
        throw std::runtime_error("cannot create " + path);
    write(out);
    out.close();
    if (!out)
        throw std::runtime_error("cannot write " + path);
}

int RunClassic(Arguments args) {
    zdtgen::ClassicTraceOptions o;
    std::string summaryPath;
    std::string outPath;
    bool historyPlaced = false;
    while (!args.Done()) {
        const std::string arg = args.Next();
        if (arg == "--history-at")
            historyPlaced = true;
        if (ParseHeadOption(o, arg, args) || ParseHistoryOption(o, arg, args) || ParseRecordOption(o, arg, args))
            continue;
        if (arg == "--summary")
            summaryPath = args.Value(arg);
        else if (arg.size() > 1 && arg[0] == '-')
            throw UsageError("unknown option: " + arg);
        else if (!outPath.empty())
            throw UsageError("more than one output file");
        else
            outPath = arg;
    }
    if (outPath.empty())
        throw UsageError("no output file");
    if (!historyPlaced && (!o.history.empty() || o.historyPaddingLines != 0))
        o.historyPlacement = zdtgen::HistoryPlacement::AtEnd;
    zdtgen::ClassicTraceSummary summary;
    WriteOutput(outPath, [&](std::ostream& out) { summary = zdtgen::WriteClassicTraceWithSummary(out, o); });
    if (!summaryPath.empty())
        WriteSummary(summaryPath, summary);
    return 0;
}

int RunFilter(Arguments args) {
    std::string type;
    std::vector<std::uint32_t> ids;
    bool idsGiven = false;
    auto style = zdtgen::FilterValueStyle::Prefixed;
    std::string outPath;
    while (!args.Done()) {
        const std::string arg = args.Next();
        if (arg == "--type") {
            type = args.Value(arg);
        } else if (arg == "--ids") {
            idsGiven = true;
            const std::string list = args.Value(arg);
            if (!list.empty())
                for (const auto& id : SplitCommas(list)) {
                    char* end = nullptr;
                    ids.push_back(static_cast<std::uint32_t>(std::strtoul(id.c_str(), &end, 16)));
                    if (id.empty() || *end != '\0')
                        throw UsageError("not a hexadecimal identifier: " + id);
                }
        } else if (arg == "--plain") {
            style = zdtgen::FilterValueStyle::PlainHex;
        } else if (arg.size() > 1 && arg[0] == '-') {
            throw UsageError("unknown option: " + arg);
        } else {
            outPath = arg;
        }
    }
    if (type.empty() || !idsGiven || outPath.empty())
        throw UsageError("flt needs --type, --ids and OUT");
    const std::string text = zdtgen::MakeCanFilterFile(type, ids, style);
    WriteOutput(outPath, [&](std::ostream& out) { out << text; });
    return 0;
}

void EnableSnapshotHostile(zdtgen::SnapshotHostile& h, const std::string& list) {
    for (const auto& kind : SplitCommas(list)) {
        if (kind == "unknown") h.unknownElements = true;
        else if (kind == "catchall") h.catchAllChildren = true;
        else if (kind == "split") h.splitText = true;
        else if (kind == "control") h.controlChars = true;
        else if (kind == "nonascii") h.nonAscii = true;
        else if (kind == "huge") h.hugeAttributes = true;
        else if (kind == "deep") h.deepNesting = true;
        else if (kind == "truncated") h.truncatedEnd = true;
        else if (kind == "foreign") h.foreignRoot = true;
        else if (kind == "all") {
            zdtgen::SnapshotHostile all = zdtgen::SnapshotHostile::InFileKinds();
            all.truncatedEnd = h.truncatedEnd;
            all.foreignRoot = h.foreignRoot;
            all.hugeAttributeBytes = h.hugeAttributeBytes;
            all.nestingDepth = h.nestingDepth;
            h = all;
        } else
            throw UsageError("unknown hostile kind: " + kind);
    }
}

bool ParseSnapshotOption(zdtgen::SnapshotOptions& o, const std::string& arg, Arguments& args) {
    if (arg == "--seed") o.seed = ParseCount(args.Value(arg));
    else if (arg == "--snapshots") { o.snapshots = ParseCount(args.Value(arg)); o.targetBytes = 0; }
    else if (arg == "--bytes") o.targetBytes = ParseCount(args.Value(arg));
    else if (arg == "--hostile") EnableSnapshotHostile(o.hostile, args.Value(arg));
    else if (arg == "--huge-bytes") o.hostile.hugeAttributeBytes = static_cast<std::uint32_t>(ParseCount(args.Value(arg)));
    else if (arg == "--depth") o.hostile.nestingDepth = static_cast<std::uint32_t>(ParseCount(args.Value(arg)));
    else if (arg == "--created") o.listCreated = args.Value(arg);
    else if (arg == "--no-created") o.listCreated.reset();
    else if (arg == "--compact") o.indent = false;
    else return false;
    return true;
}

int RunSnapshot(Arguments args) {
    zdtgen::SnapshotOptions o;
    std::string rowsPath;
    std::string outPath;
    bool countGiven = false, bytesGiven = false;
    while (!args.Done()) {
        const std::string arg = args.Next();
        countGiven = countGiven || arg == "--snapshots";
        bytesGiven = bytesGiven || arg == "--bytes";
        if (ParseSnapshotOption(o, arg, args))
            continue;
        if (arg == "--rows")
            rowsPath = args.Value(arg);
        else if (arg.size() > 1 && arg[0] == '-')
            throw UsageError("unknown option: " + arg);
        else if (!outPath.empty())
            throw UsageError("more than one output file");
        else
            outPath = arg;
    }
    if (countGiven && bytesGiven)
        throw UsageError("--snapshots and --bytes exclude each other");
    if (outPath.empty())
        throw UsageError("no output file");
    if (!rowsPath.empty() && o.hostile.truncatedEnd) {
        std::cerr << "zdt-gen: no rows file for a truncated snapshot file: it opens no document\n";
        rowsPath.clear();
    }
    std::ofstream rows;
    if (!rowsPath.empty()) {
        rows.open(rowsPath, std::ios::binary | std::ios::trunc);
        if (!rows)
            throw std::runtime_error("cannot create " + rowsPath);
    }
    WriteOutput(outPath, [&](std::ostream& out) {
        zdtgen::WriteSnapshotWithRows(out, rowsPath.empty() ? nullptr : &rows, o);
    });
    if (!rowsPath.empty()) {
        rows.close();
        if (!rows)
            throw std::runtime_error("cannot write " + rowsPath);
    }
    return 0;
}

// "\n", "\t" and "\\" in a command-line text, so a line break can be asked for.
std::string Unescape(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            out += text[i];
            continue;
        }
        const char next = text[++i];
        out += next == 'n' ? '\n' : next == 't' ? '\t' : next == 'r' ? '\r' : next;
    }
    return out;
}

bool ParseXpvtOption(zdtgen::XpvtTraceOptions& o, const std::string& arg, Arguments& args) {
    if (arg == "--schema") {
        const std::string schema = args.Value(arg);
        if (schema == "701") o.schema = zdtgen::XpvtSchema::V701;
        else if (schema == "702") o.schema = zdtgen::XpvtSchema::V702;
        else throw UsageError("--schema wants 701 or 702");
    } else if (arg == "--schema-text") o.schemaText = Unescape(args.Value(arg));
    else if (arg == "--no-schema") o.omitSchema = true;
    else if (arg == "--size") o.targetBytes = ParseCount(args.Value(arg));
    else if (arg == "--results") { o.results = ParseCount(args.Value(arg)); o.targetBytes = 0; }
    else if (arg == "--seed") o.seed = ParseCount(args.Value(arg));
    else if (arg == "--hostile") {
        const zdtgen::XpvtHostile kept = o.hostile;
        o.hostile = zdtgen::XpvtHostile::InFileKinds();
        o.hostile.truncatedEnd = kept.truncatedEnd;
        o.hostile.foreignRoot = kept.foreignRoot;
        o.hostile.nestingDepth = kept.nestingDepth;
    } else if (arg == "--depth") o.hostile.nestingDepth = static_cast<std::uint32_t>(ParseCount(args.Value(arg)));
    else if (arg == "--truncated") o.hostile.truncatedEnd = true;
    else if (arg == "--foreign") o.hostile.foreignRoot = true;
    else if (arg == "--datetime") o.descriptionDateTime = args.Value(arg);
    else if (arg == "--no-datetime") o.descriptionDateTime.reset();
    else if (arg == "--no-date-children") o.descriptionDateChildren = false;
    else if (arg == "--compact") o.indent = false;
    else if (arg == "--parameter-depth") o.parameterDepth = static_cast<std::uint32_t>(ParseCount(args.Value(arg)));
    else return false;
    return true;
}

int RunXpvt(Arguments args) {
    zdtgen::XpvtTraceOptions o;
    std::string outPath;
    bool countGiven = false, sizeGiven = false;
    while (!args.Done()) {
        const std::string arg = args.Next();
        countGiven = countGiven || arg == "--results";
        sizeGiven = sizeGiven || arg == "--size";
        if (ParseXpvtOption(o, arg, args))
            continue;
        if (arg.size() > 1 && arg[0] == '-')
            throw UsageError("unknown option: " + arg);
        if (!outPath.empty())
            throw UsageError("more than one output file");
        outPath = arg;
    }
    if (countGiven && sizeGiven)
        throw UsageError("--results and --size exclude each other");
    if (outPath.empty())
        throw UsageError("no output file");
    WriteOutput(outPath, [&](std::ostream& out) { zdtgen::WriteXpvtTrace(out, o); });
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    try {
        if (argc < 2)
            throw UsageError("no command");
        const std::string command = argv[1];
        if (command == "--help" || command == "-h" || command == "help") {
            std::cout << kUsage;
            return 0;
        }
        for (int i = 2; i < argc; ++i)
            if (std::strcmp(argv[i], "--help") == 0) {
                std::cout << kUsage;
                return 0;
            }
        if (command == "classic")
            return RunClassic(Arguments(argc, argv, 2));
        if (command == "flt")
            return RunFilter(Arguments(argc, argv, 2));
        if (command == "snp")
            return RunSnapshot(Arguments(argc, argv, 2));
        if (command == "xpvt")
            return RunXpvt(Arguments(argc, argv, 2));
        throw UsageError("unknown command: " + command);
    } catch (const UsageError& e) {
        std::cerr << "zdt-gen: " << e.what() << "\n" << kUsage;
        return 2;
    } catch (const std::exception& e) {
        std::cerr << "zdt-gen: " << e.what() << "\n";
        return 1;
    }
}
