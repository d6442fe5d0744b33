// HTML export of a trace against Xalan-C alone with the same sheet on the same input: the
// pipeline adds the copy without a second processing instruction, the script and the
// rename, and must stay within 1.3 times the tool's own time.
//
// usage: bench_export --analyzer DIR --trace FILE.xpvt|FILE.snp --scratch DIR [--runs N]
// Prints both times and the ratio; exits 1 when the ratio misses its target.
#include "common/ChildProcess.h"
#include "common/Operation.h"
#include "export/SnpConversion.h"
#include "export/XpvtNewConversion.h"
#include "export/XpvtOldConversion.h"
#include "xpvt/XpvtSchemaProbe.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

namespace {

constexpr double TargetRatio = 1.3;

struct Arguments {
    std::string analyzer;
    std::string trace;
    std::string scratch;
    int runs = 3;
};

Arguments parse(int argc, char** argv) {
    Arguments arguments;
    for (int index = 1; index + 1 < argc; index += 2) {
        const std::string name = argv[index];
        const std::string value = argv[index + 1];
        if (name == "--analyzer")
            arguments.analyzer = value + "/";
        else if (name == "--trace")
            arguments.trace = value;
        else if (name == "--scratch")
            arguments.scratch = value + "/";
        else if (name == "--runs")
            arguments.runs = std::max(1, std::atoi(value.c_str()));
    }
    if (arguments.analyzer.empty() || arguments.trace.empty() || arguments.scratch.empty()) {
        std::fputs("usage: bench_export --analyzer DIR --trace FILE --scratch DIR [--runs N]\n", stderr);
        std::exit(2);
    }
    return arguments;
}

template <typename Work> double bestSeconds(int runs, Work&& work) {
    double best = 1e300;
    for (int run = 0; run < runs; ++run) {
        const auto start = std::chrono::steady_clock::now();
        if (!work()) {
            std::fputs("bench_export: a run failed\n", stderr);
            std::exit(2);
        }
        best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    return best;
}

} // namespace

int main(int argc, char** argv) {
    const Arguments arguments = parse(argc, argv);
    ZDTAnalyzer::ConversionSettings settings;
    settings.paths = ZDTAnalyzer::ConversionPaths(arguments.analyzer);
    settings.temporaryDirectory = arguments.scratch;

    std::unique_ptr<ZDTAnalyzer::Conversion> conversion;
    ZDTAnalyzer::ConversionKind kind = ZDTAnalyzer::ConversionKind::Snapshot;
    if (std::filesystem::path(arguments.trace).extension() == ".snp") {
        conversion = std::make_unique<ZDTAnalyzer::SnpConversion>(settings);
    } else if (ZDTAnalyzer::ProbeXpvtIs702(arguments.trace, arguments.scratch)) {
        kind = ZDTAnalyzer::ConversionKind::Xpvt702;
        conversion = std::make_unique<ZDTAnalyzer::XpvtNewConversion>(settings);
    } else {
        kind = ZDTAnalyzer::ConversionKind::Xpvt701;
        conversion = std::make_unique<ZDTAnalyzer::XpvtOldConversion>(settings);
    }
    const std::string sheet = settings.paths.sheets(kind).html;
    const std::string output = arguments.scratch + "export.html";

    const double tool = bestSeconds(arguments.runs, [&] {
        zdt::ChildProcessCommand command;
        command.arguments = {"Xalan", "-o", output, arguments.trace, sheet};
        return zdt::RunChildProcess(command, nullptr).succeeded();
    });
    const double exported = bestSeconds(arguments.runs, [&] {
        zdt::MessageList messages;
        zdt::OperationControl control;
        const bool done = conversion->toHtml(arguments.trace, output, messages, control) == zdt::OperationStatus::Done;
        for (const zdt::UserMessage& message : messages.messages())
            std::fprintf(stderr, "%s\n%s\n", message.title.c_str(), message.text.c_str());
        return done;
    });
    const double ratio = exported / tool;
    const auto megabytes = static_cast<double>(std::filesystem::file_size(arguments.trace)) / 1e6;
    std::printf("HTML export of %.1f MB: %.2f s; Xalan-C alone: %.2f s; ratio %.3f (target <= %.1f)\n", megabytes,
                exported, tool, ratio, TargetRatio);
    return ratio <= TargetRatio ? 0 : 1;
}
