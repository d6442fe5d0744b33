#include "StatsCommands.h"

#include "CliOptions.h"
#include "StderrMessages.h"
#include "app/DocumentRoute.h"
#include "classic/CAnalyzerDoc.h"
#include "classic/IdentifierStatistics.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

namespace {

struct StatsArguments {
    ClassicViewOptions view;
    std::string file;
    bool help = false;
};

StatsArguments ParseStatsArguments(int argc, char** argv) {
    StatsArguments args;
    for (int i = 2; i < argc; ++i) {
        std::string arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            args.help = true;
            return args;
        }
        if (arg.rfind("--", 0) != 0 || arg.size() == 2) {
            if (!args.file.empty())
                throw UsageError{"stats takes one file"};
            args.file = arg;
            continue;
        }
        std::string value;
        if (const auto equals = arg.find('='); equals != std::string::npos) {
            value = arg.substr(equals + 1);
            arg.resize(equals);
        } else if (i + 1 < argc) {
            value = argv[++i];
        } else {
            throw UsageError{arg + " needs a value"};
        }
        if (arg == "--time")
            args.view.timeMode = ParseTimeMode(value);
        else if (arg == "--baud")
            args.view.baudrate = ParseNumber(arg, value);
        else if (arg == "--data-bits")
            args.view.dataBits = ParseNumber(arg, value);
        else if (arg == "--stop-bits")
            args.view.stopBits = ParseNumber(arg, value);
        else if (arg == "--can-filter")
            args.view.canFilter = value;
        else
            throw UsageError{"unknown option " + arg + " for stats"};
    }
    if (args.file.empty())
        throw UsageError{"stats needs a file"};
    return args;
}

std::string BaseName(const std::string& path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// As `rows` opens a trace: the history's filter is not offered again, and nothing is
// written into the trace.
bool OpenForStats(CAnalyzerDoc& doc, const StatsArguments& args) {
    StderrMessages messages;
    if (!doc.OnOpenDocument(args.file, &messages))
        return false;
    if (!args.view.canFilter.empty()) {
        if (!std::ifstream(args.view.canFilter).good())
            std::fprintf(stderr, "warning: cannot read the filter file %s\n", args.view.canFilter.c_str());
        doc.ApplyFilter(args.view.canFilter, BaseName(args.view.canFilter));
    }
    const auto byteTime =
        static_cast<std::uint32_t>(ByteTimeMicros(args.view.baudrate, args.view.dataBits, args.view.stopBits));
    doc.SetTimeMode(args.view.timeMode, byteTime);
    return true;
}

} // namespace

bool IsStatsCommand(const char* command) {
    return command != nullptr && std::strcmp(command, "stats") == 0;
}

int RunStatsCommand(int argc, char** argv) {
    const StatsArguments args = ParseStatsArguments(argc, argv);
    if (args.help) {
        std::fputs(UsageText(), stdout);
        return 0;
    }
    const zdt::DocumentFamily family = zdt::FamilyForPath(args.file);
    if (family == zdt::DocumentFamily::Snp || family == zdt::DocumentFamily::Xpvt)
        throw UsageError{"stats takes a classic trace"};
    CAnalyzerDoc doc;
    if (!OpenForStats(doc, args))
        return 1;
    IdentifierStatistics statistics;
    CollectIdentifierStatistics(doc, statistics);
    // Line by line: a trace of random identifiers has a line for nearly every frame.
    std::string text;
    AppendStatisticsLine(text, StatisticsColumnNames(), '\t');
    for (const IdentifierFigures& figures : statistics.figures) {
        AppendStatisticsLine(text, figures, '\t');
        if (text.size() >= (1u << 20)) {
            std::fwrite(text.data(), 1, text.size(), stdout);
            text.clear();
        }
    }
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
    if (!statistics.emptyReason.empty())
        std::fprintf(stderr, "%s\n", statistics.emptyReason.c_str());
    doc.OnCloseDocument(false);
    return 0;
}
