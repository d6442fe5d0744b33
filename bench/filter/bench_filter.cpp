// Filter benchmark: `zdt-cli filter` on a 7.02 trace, start-up and the opening of the
// result included, against the engine alone running the same query on the same file.
//
// usage: bench_filter --cli ZDT_CLI --trace702 FILE --out-dir DIR [--runs N]
#include "../BenchSupport.h"
#include "common/Operation.h"
#include "filter/FilterCondition702.h"
#include "filter/FilterXQuery702.h"
#include "filter/XQueryEngine.h"
#include "xpvt/XpvtDoc.h"

using namespace benchsupport;
using namespace ZDTAnalyzer::Filter;

namespace {

constexpr double TargetRatio = 1.2;
// What a laptop spares for one filter, whatever the trace's size.
constexpr double TargetPeakMegabytes = 2048;

// Keeps a tenth of the results or so, and every other child of the trace.
XPVT_7_02::FilterCondition702 benchFilter() {
    XPVT_7_02::FilterCondition702 record;
    record.includeResults = true;
    record.responseShortName = {false, true, "Resp_1"};
    return record;
}

bool openResult(const std::string& path, const std::string& swapDirectory) {
    zdt::MessageList messages;
    ZDTAnalyzer::XpvtDoc doc;
    return doc.OnOpenDocument(path, swapDirectory, &messages);
}

} // namespace

int main(int argc, char** argv) {
    std::string cli, trace, outDir;
    int runs = 3;
    if (!ParseValueOptions(argc, argv,
                           [&](const std::string& name, const std::string& value) {
                               if (name == "--cli")
                                   cli = value;
                               else if (name == "--trace702")
                                   trace = value;
                               else if (name == "--out-dir")
                                   outDir = value;
                               else if (name == "--runs")
                                   runs = RunsOption(value);
                               else
                                   return false;
                               return true;
                           }) ||
        cli.empty() || trace.empty() || outDir.empty()) {
        std::cerr << "usage: bench_filter --cli ZDT_CLI --trace702 FILE --out-dir DIR [--runs N]\n";
        return 2;
    }
    const std::optional<XQueryEngineLocation> engine = findXQueryEngine();
    if (!engine) {
        std::cerr << "bench_filter: no XQuery engine (java and Saxon-HE) installed\n";
        return 2;
    }
    const XPVT_7_02::FilterCondition702 record = benchFilter();
    const std::string filterFile = outDir + "/bench.pvflt2";
    const std::string absoluteTrace = std::filesystem::absolute(trace).string();
    const std::string queryFile = outDir + "/bench.xq";
    if (!XPVT_7_02::saveFilter702(filterFile, record)) {
        std::cerr << "bench_filter: cannot write into " << outDir << "\n";
        return 2;
    }
    // The very text the filter runs: the multi-value tests as the run writes them.
    std::ofstream(queryFile) << XPVT_7_02::buildFilterXQuery702(absoluteTrace, record,
                                                                XPVT_7_02::MultiValueTests::AnyValue);
    const double bytes = static_cast<double>(WarmPageCache(trace));
    const std::string heap =
        "-Xmx" + std::to_string(engineHeapMegabytes(machineMemoryBytes(), static_cast<std::uint64_t>(bytes))) + "m";

    double engineSeconds = 0;
    double enginePeak = 0;
    const bool engineOk = BestOf(runs, engineSeconds, [&](double& seconds) {
        const ChildRun run =
            RunProgram({engine->java, heap, "-XX:+UseParallelGC", "-cp", engine->jar, "net.sf.saxon.Query",
                        "-q:" + queryFile, "-s:" + absoluteTrace, "-o:" + outDir + "/engine.xpvt"},
                       false);
        seconds = run.seconds;
        enginePeak = std::max(enginePeak, run.peakMegabytes);
        return run.exitCode == 0;
    });
    double filterSeconds = 0;
    double filterPeak = 0;
    const std::string result = outDir + "/filtered.xpvt";
    const bool filterOk = BestOf(runs, filterSeconds, [&](double& seconds) {
        std::filesystem::remove(result);
        const auto start = Clock::now();
        const ChildRun run = RunProgram({cli, "filter", trace, "--pvflt2", filterFile, result}, false);
        filterPeak = std::max(filterPeak, run.peakMegabytes);
        const bool opened = run.exitCode == 0 && openResult(result, outDir);
        seconds = SecondsSince(start);
        return opened;
    });
    if (!engineOk || !filterOk) {
        std::cerr << "bench_filter: the " << (engineOk ? "filter" : "engine") << " run failed\n";
        return 1;
    }
    std::cout << "trace: " << Verdicts::Format(bytes / kMegabyte, 1) << " MB, result "
              << Verdicts::Format(static_cast<double>(std::filesystem::file_size(result)) / kMegabyte, 1) << " MB\n"
              << "engine alone: " << Verdicts::Format(engineSeconds, 2)
              << " s; zdt-cli filter and open: " << Verdicts::Format(filterSeconds, 2) << " s (best of " << runs
              << ")\n"
              << "largest process: engine alone " << Verdicts::Format(enginePeak, 1) << " MB, zdt-cli filter "
              << Verdicts::Format(filterPeak, 1) << " MB\n";
    Verdicts verdicts;
    const double ratio = filterSeconds / engineSeconds;
    verdicts.Check("filter incl. start-up and open vs engine alone", ratio <= TargetRatio,
                   "ratio " + Verdicts::Format(ratio, 3) + " (target <= " + Verdicts::Format(TargetRatio, 2) + ")");
    verdicts.Check("peak memory of the filter", filterPeak <= TargetPeakMegabytes,
                   Verdicts::Format(filterPeak, 1) + " MB (target <= " + Verdicts::Format(TargetPeakMegabytes, 0) +
                       " MB)");
    std::ifstream ours(result, std::ios::binary), engines(outDir + "/engine.xpvt", std::ios::binary);
    const bool sameResult = std::equal(std::istreambuf_iterator<char>(ours), std::istreambuf_iterator<char>(),
                                       std::istreambuf_iterator<char>(engines), std::istreambuf_iterator<char>());
    verdicts.Check("result equals the engine's", sameResult, sameResult ? "identical bytes" : "differs");
    return verdicts.AllPassed() ? 0 : 1;
}
