// The classic commands of zdt-gen: classic traces and CAN filter files.

#include "ClassicTraceGenerator.h"
#include "GenArguments.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace zdtgen::tool {
namespace {

zdtgen::RecordMix ParseMix(const std::string& text) {
    if (text == "all")
        return zdtgen::RecordMix::All;
    if (text == "can")
        return zdtgen::RecordMix::Can;
    if (text == "kline")
        return zdtgen::RecordMix::KLine;
    if (text == "events")
        return zdtgen::RecordMix::Events;
    if (text == "traffic")
        return zdtgen::RecordMix::Traffic;
    throw UsageError("unknown mix: " + text);
}

void EnableHostile(zdtgen::HostileExtras& extras, const std::string& list) {
    for (const auto& kind : SplitCommas(list)) {
        if (kind == "empty")
            extras.emptyLines = true;
        else if (kind == "one")
            extras.digitOneLines = true;
        else if (kind == "bracket")
            extras.bracketLines = true;
        else if (kind == "long")
            extras.longLines = true;
        else if (kind == "overlong")
            extras.overlongLengths = true;
        else if (kind == "garbage")
            extras.binaryGarbage = true;
        else if (kind == "all") {
            const std::uint32_t every = extras.every;
            extras = zdtgen::HostileExtras::AllKinds();
            extras.every = every;
        } else
            throw UsageError("unknown hostile kind: " + kind);
    }
}

void OmitKey(zdtgen::ClassicTraceOptions& o, const std::string& key) {
    if (key == "Creator")
        o.creator.reset();
    else if (key == "ProductVersion")
        o.productVersion.reset();
    else if (key == "InterfaceBoard")
        o.interfaceBoard.reset();
    else if (key == "Date")
        o.date.reset();
    else if (key == "Time")
        o.time.reset();
    else
        throw UsageError("cannot omit key: " + key);
}

// True when the option was one of the head options.
bool ParseHeadOption(zdtgen::ClassicTraceOptions& o, const std::string& arg, Arguments& args) {
    if (arg == "--schema")
        o.schema = args.Value(arg);
    else if (arg == "--no-schema")
        o.schema.clear();
    else if (arg == "--title")
        o.title = args.Value(arg);
    else if (arg == "--no-title")
        o.title.reset();
    else if (arg == "--no-description")
        o.writeDescription = false;
    else if (arg == "--creator")
        o.creator = args.Value(arg);
    else if (arg == "--product-version")
        o.productVersion = args.Value(arg);
    else if (arg == "--interface-board")
        o.interfaceBoard = args.Value(arg);
    else if (arg == "--date")
        o.date = args.Value(arg);
    else if (arg == "--time")
        o.time = args.Value(arg);
    else if (arg == "--omit")
        OmitKey(o, args.Value(arg));
    else if (arg == "--head-line")
        o.extraHeadLines.push_back(args.Value(arg));
    else
        return false;
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
        if (where == "end")
            o.historyPlacement = zdtgen::HistoryPlacement::AtEnd;
        else if (where == "middle")
            o.historyPlacement = zdtgen::HistoryPlacement::InTraceData;
        else
            throw UsageError("--history-at wants end or middle");
    } else if (arg == "--history-padding") {
        o.historyPaddingLines = static_cast<std::uint32_t>(ParseCount(args.Value(arg)));
    } else {
        return false;
    }
    return true;
}

bool ParseRecordOption(zdtgen::ClassicTraceOptions& o, const std::string& arg, Arguments& args) {
    if (arg == "--records")
        o.records = ParseCount(args.Value(arg));
    else if (arg == "--bytes")
        o.targetBytes = ParseCount(args.Value(arg));
    else if (arg == "--seed")
        o.seed = ParseCount(args.Value(arg));
    else if (arg == "--mix")
        o.mix = ParseMix(args.Value(arg));
    else if (arg == "--format") {
        const std::string f = args.Value(arg);
        if (f == "schema")
            o.format = zdtgen::LineFormat::BySchema;
        else if (f == "legacy")
            o.format = zdtgen::LineFormat::Legacy;
        else if (f == "701")
            o.format = zdtgen::LineFormat::V701;
        else
            throw UsageError("--format wants schema, legacy or 701");
    } else if (arg == "--times") {
        const std::string t = args.Value(arg);
        if (t == "schema")
            o.timeStyle = zdtgen::TimeStyle::BySchema;
        else if (t == "delta")
            o.timeStyle = zdtgen::TimeStyle::Delta;
        else if (t == "absolute")
            o.timeStyle = zdtgen::TimeStyle::Absolute;
        else
            throw UsageError("--times wants schema, delta or absolute");
    } else if (arg == "--lf-only")
        o.lineEnding = zdtgen::LineEnding::LfOnly;
    else if (arg == "--no-final-eol")
        o.lastLineWithoutEnding = true;
    else if (arg == "--hostile")
        EnableHostile(o.hostile, args.Value(arg));
    else if (arg == "--hostile-every")
        o.hostile.every = static_cast<std::uint32_t>(ParseCount(args.Value(arg)));
    else
        return false;
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

} // namespace

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
} // namespace zdtgen::tool
