// Benchmark of the identifier statistics of classic traces, as ratios within one run:
//   1. `zdt-cli stats FILE` speed >= 1/2 of `zdt-cli rows FILE > /dev/null` speed on the
//      same trace, both from the page cache (both open and index the trace first);
//   2. the memory the statistics pass adds to an opened trace (its peak, VmHWM, after the
//      open) <= 32 MB + 192 bytes per distinct identifier and channel: it grows with the
//      identifiers, not with the rows.
// The trace comes from `zdt-gen classic ...` (see run_stats_bench.sh). Exit status 1 when a
// figure misses its target, 2 on usage errors.

#include "classic/CAnalyzerDoc.h"
#include "classic/IdentifierStatistics.h"

#include "BenchSupport.h"

#include <cstring>
#include <fstream>
#include <iostream>
#include <string>

namespace {

using namespace benchsupport;

constexpr double kStatsToRowsTarget = 0.5;
constexpr double kPassBaseBytes = 32.0 * kMegabyte;
constexpr double kPassBytesPerIdentifier = 192.0;

struct Options {
    std::string trace;
    std::string cli;
    int runs = 3;
};

// The child: opens the trace, forgets the peak so far, runs the pass and reports.
int PassOnly(const std::string& path) {
    CAnalyzerDoc doc;
    if (!doc.OnOpenDocument(path))
        return 1;
    const long openKb = StatusKilobytes("VmRSS:");
    // Writing 5 resets VmHWM to the current resident size (Linux 4.0 and later).
    std::ofstream("/proc/self/clear_refs") << "5";
    IdentifierStatistics statistics;
    if (!CollectIdentifierStatistics(doc, statistics))
        return 1;
    std::cout << "open_kb=" << openKb << "\n"
              << "pass_hwm_kb=" << StatusKilobytes("VmHWM:") << "\n"
              << "identifiers=" << statistics.figures.size() << "\n"
              << "rows=" << statistics.rowsPassed << "\n";
    return 0;
}

double MeasureCli(const Options& o, const char* command, double bytes, Verdicts& verdicts) {
    double best = 0;
    int exitCode = 0;
    const bool ok = BestOf(o.runs, best, [&](double& seconds) {
        const ChildRun run = RunProgram({o.cli, command, o.trace}, false);
        seconds = run.seconds;
        exitCode = run.exitCode;
        return run.exitCode == 0;
    });
    if (!ok) {
        verdicts.Check(std::string("zdt-cli ") + command, false, "exit status " + std::to_string(exitCode));
        return 0;
    }
    std::cout << "zdt-cli " << command << ": " << Speed(bytes, best) << " (best of " << o.runs << ")\n";
    return bytes / best;
}

void MeasurePassMemory(const Options& o, Verdicts& verdicts) {
    const ChildRun run = RunProgram({"/proc/self/exe", "--pass-only", o.trace}, true);
    const auto values = ParseKeyValues(run.output);
    if (run.exitCode != 0 || !values.count("pass_hwm_kb") || !values.count("identifiers")) {
        verdicts.Check("pass memory", false, "the pass-only child failed (exit " + std::to_string(run.exitCode) + ")");
        return;
    }
    const double added = static_cast<double>(values.at("pass_hwm_kb") - values.at("open_kb")) * 1024.0;
    const auto identifiers = static_cast<double>(values.at("identifiers"));
    const auto rows = static_cast<double>(values.at("rows"));
    const double budget = kPassBaseBytes + kPassBytesPerIdentifier * identifiers;
    std::cout << "statistics pass: " << values.at("identifiers") << " identifiers and channels over "
              << values.at("rows") << " rows, " << Verdicts::Format(added / kMegabyte, 1)
              << " MB added = " << Verdicts::Format(identifiers > 0 ? added / identifiers : 0, 1)
              << " bytes per identifier, " << Verdicts::Format(rows > 0 ? added / rows : 0, 2) << " bytes per row\n";
    verdicts.Check("memory the statistics pass adds (VmHWM after the open)", added <= budget,
                   Verdicts::Format(added / kMegabyte, 1) + " MB (target <= " +
                       Verdicts::Format(budget / kMegabyte, 1) + " MB: 32 MB + 192 bytes per identifier)");
}

int Usage() {
    std::cerr << "usage: bench_stats --trace FILE --cli ZDT_CLI [--runs N]\n"
                 "       bench_stats --pass-only FILE\n";
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "--pass-only") == 0)
        return PassOnly(argv[2]);
    Options o;
    const bool known = ParseValueOptions(argc, argv, [&o](const std::string& name, const std::string& value) {
        if (name == "--trace")
            o.trace = value;
        else if (name == "--cli")
            o.cli = value;
        else if (name == "--runs")
            o.runs = RunsOption(value);
        else
            return false;
        return true;
    });
    if (!known || o.trace.empty() || o.cli.empty())
        return Usage();
    const double bytes = static_cast<double>(WarmPageCache(o.trace));
    std::cout << "trace: " << o.trace << ", " << Verdicts::Format(bytes / kMegabyte, 1) << " MB\n";
    Verdicts verdicts;
    const double rowsSpeed = MeasureCli(o, "rows", bytes, verdicts);
    const double statsSpeed = MeasureCli(o, "stats", bytes, verdicts);
    if (rowsSpeed > 0 && statsSpeed > 0)
        verdicts.Ratio("zdt-cli stats / zdt-cli rows speed", statsSpeed / rowsSpeed, kStatsToRowsTarget);
    MeasurePassMemory(o, verdicts);
    std::cout << (verdicts.AllPassed() ? "all targets met\n" : "some targets missed\n");
    return verdicts.AllPassed() ? 0 : 1;
}
