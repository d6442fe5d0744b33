// The XML commands of zdt-gen: snapshot files and process value traces.

#include "GenArguments.h"
#include "SnapshotGenerator.h"
#include "XpvtTraceGenerator.h"

#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

namespace zdtgen::tool {
namespace {

void EnableSnapshotHostile(zdtgen::SnapshotHostile& h, const std::string& list) {
    for (const auto& kind : SplitCommas(list)) {
        if (kind == "unknown")
            h.unknownElements = true;
        else if (kind == "catchall")
            h.catchAllChildren = true;
        else if (kind == "split")
            h.splitText = true;
        else if (kind == "control")
            h.controlChars = true;
        else if (kind == "nonascii")
            h.nonAscii = true;
        else if (kind == "huge")
            h.hugeAttributes = true;
        else if (kind == "deep")
            h.deepNesting = true;
        else if (kind == "truncated")
            h.truncatedEnd = true;
        else if (kind == "foreign")
            h.foreignRoot = true;
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
    if (arg == "--seed")
        o.seed = ParseCount(args.Value(arg));
    else if (arg == "--snapshots") {
        o.snapshots = ParseCount(args.Value(arg));
        o.targetBytes = 0;
    } else if (arg == "--bytes")
        o.targetBytes = ParseCount(args.Value(arg));
    else if (arg == "--hostile")
        EnableSnapshotHostile(o.hostile, args.Value(arg));
    else if (arg == "--huge-bytes")
        o.hostile.hugeAttributeBytes = static_cast<std::uint32_t>(ParseCount(args.Value(arg)));
    else if (arg == "--depth")
        o.hostile.nestingDepth = static_cast<std::uint32_t>(ParseCount(args.Value(arg)));
    else if (arg == "--created")
        o.listCreated = args.Value(arg);
    else if (arg == "--no-created")
        o.listCreated.reset();
    else if (arg == "--compact")
        o.indent = false;
    else
        return false;
    return true;
}

} // namespace

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
    WriteOutput(outPath,
                [&](std::ostream& out) { zdtgen::WriteSnapshotWithRows(out, rowsPath.empty() ? nullptr : &rows, o); });
    if (!rowsPath.empty()) {
        rows.close();
        if (!rows)
            throw std::runtime_error("cannot write " + rowsPath);
    }
    return 0;
}

// "\n", "\t" and "\\" in a command-line text, so a line break can be asked for.
namespace {

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
        if (schema == "701")
            o.schema = zdtgen::XpvtSchema::V701;
        else if (schema == "702")
            o.schema = zdtgen::XpvtSchema::V702;
        else
            throw UsageError("--schema wants 701 or 702");
    } else if (arg == "--schema-text")
        o.schemaText = Unescape(args.Value(arg));
    else if (arg == "--no-schema")
        o.omitSchema = true;
    else if (arg == "--size")
        o.targetBytes = ParseCount(args.Value(arg));
    else if (arg == "--results") {
        o.results = ParseCount(args.Value(arg));
        o.targetBytes = 0;
    } else if (arg == "--seed")
        o.seed = ParseCount(args.Value(arg));
    else if (arg == "--hostile") {
        const zdtgen::XpvtHostile kept = o.hostile;
        o.hostile = zdtgen::XpvtHostile::InFileKinds();
        o.hostile.truncatedEnd = kept.truncatedEnd;
        o.hostile.foreignRoot = kept.foreignRoot;
        o.hostile.nestingDepth = kept.nestingDepth;
    } else if (arg == "--depth")
        o.hostile.nestingDepth = static_cast<std::uint32_t>(ParseCount(args.Value(arg)));
    else if (arg == "--truncated")
        o.hostile.truncatedEnd = true;
    else if (arg == "--foreign")
        o.hostile.foreignRoot = true;
    else if (arg == "--datetime")
        o.descriptionDateTime = args.Value(arg);
    else if (arg == "--no-datetime")
        o.descriptionDateTime.reset();
    else if (arg == "--no-date-children")
        o.descriptionDateChildren = false;
    else if (arg == "--compact")
        o.indent = false;
    else if (arg == "--parameter-depth")
        o.parameterDepth = static_cast<std::uint32_t>(ParseCount(args.Value(arg)));
    else
        return false;
    return true;
}

} // namespace

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

} // namespace zdtgen::tool
