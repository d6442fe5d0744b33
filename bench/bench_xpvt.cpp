// Benchmarks of process value trace documents, as ratios within one run, every file from the
// page cache, for a 7.02 and a 7.01 trace each:
//   1. opening with XpvtDoc (every row on the swap file, flush included) runs at >= 1/2 the
//      speed of a bare Expat parse of the same file in the same 10,240-byte blocks;
//   2. a search whose criteria make it test every kind of row runs at >= 60% of the bare
//      Expat speed;
//   3. peak and resident memory of a process that only opens the file
//      <= 60 MB + 6 bytes per row.
// Every timed run of the document follows a bare Expat run; the best run of each side counts.
// The traces come from `zdt-gen xpvt` (see run_xpvt_bench.sh). Exit status 1 when a figure
// misses its target, 2 on usage errors.

#include "xmldoc/SaxParser.h"
#include "xpvt/XpvtDoc.h"

#include "XmlDocBench.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <string>

namespace {

using namespace benchsupport;

using ZDTAnalyzer::XpvtDoc;

constexpr double kOpenToExpatTarget = 0.50;
constexpr double kFindToExpatTarget = 0.60;
constexpr double kMemoryBaseBytes = 60.0 * kMegabyte;
constexpr double kMemoryBytesPerRow = 6.0;
// The bare parse reads exactly as the document's parser does.
constexpr std::size_t kBlockSize = ZDTAnalyzer::Xpvt::UserInterfaceParser::BlockSize;
static_assert(kBlockSize == 10240);
constexpr const char* kSwapPrefix = "zdt-xpvt-swap";

// ---- search criteria ----------------------------------------------------------------------

// Every kind the 7.01 search tests (primitives, PDUs of both sides, request and response
// parameters, errors), each with a text that only a few rows hold.
void SetCriteria701(ZDTAnalyzer::XpvtFindCriteria701& c) {
    c.searchPrimitives = c.searchRequests = c.searchResponses = c.searchBothSides = true;
    c.matchByName = true;
    c.nameText = "LL_3";
    c.pduEnabled = true;
    c.pduText = "7E 7";
    c.parameterEnabled = c.parameterValueEnabled = true;
    c.parameterText = "Param_77";
    c.errorEnabled = c.errorByCode = true;
    c.errorCodeText = "ERR_12";
}

// Every page of the 7.02 sheet takes part, each with a text that only a few rows hold.
void SetCriteria702(ZDTAnalyzer::XpvtFindCriteria702& c) {
    c.logicalLinkSection.findPressed = true;
    c.logicalLinkSection.link = "LL_3";
    c.requestSection.findPressed = true;
    c.requestSection.name = "Req_7";
    c.requestSection.parameterEnabled = true;
    c.requestSection.paramName = "Param_1";
    c.responseSection.findPressed = true;
    c.responseSection.name = "Resp_9";
    c.responseSection.message = "7";
    c.primitiveSection.findPressed = true;
    c.primitiveSection.name = "DiagService_42";
    c.resultSection.findPressed = true;
    c.resultSection.primitiveId = "77";
    c.parameterSection.findPressed = true;
    c.parameterSection.name = "Param_99";
}

// ---- the benchmarks -----------------------------------------------------------------------

struct Options {
    std::string trace702;
    std::string trace701;
    std::string swapParent;
    int runs = 3;
};

struct TraceCase {
    std::string label; // "7.02" or "7.01"
    std::string path;
    bool is702 = false;
};

// Opens `runs` times, each into the same swap directory after the last document went; the
// last document stays open in `kept` for the search.
double MeasureOpen(const Options& o, const TraceCase& trace, double bytes, const ScratchDirectory& swap,
                   std::unique_ptr<XpvtDoc>& kept, ExpatBaseline& baseline, Verdicts& verdicts) {
    double best = 0;
    const bool ok = TimedOpens(o.runs, trace.path, swap, kept, baseline, best);
    verdicts.Check(trace.label + " XpvtDoc opens the trace", ok, ok ? "OnOpenDocument true" : "OnOpenDocument false");
    if (!ok)
        return 0;
    auto& rows = kept->container();
    std::cout << trace.label << " XpvtDoc open: " << Speed(bytes, best) << " (best of " << o.runs << "), "
              << rows.rowCount() << " rows, swap file "
              << Verdicts::Format(static_cast<double>(rows.endOffset()) / kMegabyte, 1) << " MB\n";
    verdicts.Check(trace.label + " schema read from the header", kept->is702() == trace.is702,
                   "Schema \"" + kept->description().Schema + "\"");
    verdicts.Check(trace.label + " rows built", rows.rowCount() > 0, std::to_string(rows.rowCount()) + " rows");
    CheckSwapFileComplete(trace.label + " every row on the swap file after the open", rows, verdicts);
    return bytes / best;
}

void MeasureMemory(const Options& o, const TraceCase& trace, Verdicts& verdicts) {
    const ChildRun run = RunProgram({"/proc/self/exe", "--open-only", trace.path, o.swapParent}, true);
    const auto values = ParseKeyValues(run.output);
    if (run.exitCode != 0 || !values.count("hwm_kb") || !values.count("rows")) {
        verdicts.Check(trace.label + " memory", false,
                       "the open-only child failed (exit " + std::to_string(run.exitCode) + ")");
        return;
    }
    const double budget = kMemoryBaseBytes + kMemoryBytesPerRow * static_cast<double>(values.at("rows"));
    CheckMemory(verdicts, trace.label + " peak memory while opening (VmHWM)",
                trace.label + " memory after the open (VmRSS)", values, budget,
                " for " + std::to_string(values.at("rows")) + " rows");
}

double MeasureFind(const Options& o, const TraceCase& trace, double bytes, XpvtDoc& document, ExpatBaseline& baseline,
                   Verdicts& verdicts) {
    PrintingSink messages;
    if (trace.is702)
        SetCriteria702(document.findCriteria702());
    else
        SetCriteria701(document.findCriteria701());
    double best = 0;
    const bool ok = TimedSearches(o.runs, baseline, best, [&] { return document.find(&messages); });
    verdicts.Check(trace.label + " search runs to its end", ok, ok ? "find true" : "find false");
    if (!ok)
        return 0;
    const auto& hits = document.findResults();
    const int rowCount = document.container().rowCount();
    const double share = rowCount > 0 ? 100.0 * static_cast<double>(hits.size()) / rowCount : 0;
    std::cout << trace.label << " XpvtDoc find: " << Speed(bytes, best) << " (best of " << o.runs << "), "
              << hits.size() << " rows marked (" << Verdicts::Format(share, 2) << "%)\n";
    const bool inside = std::all_of(hits.begin(), hits.end(), [&](int row) { return row >= 0 && row < rowCount; });
    verdicts.Check(trace.label + " search marks some rows, all inside the list",
                   !hits.empty() && inside && static_cast<int>(hits.size()) < rowCount,
                   std::to_string(hits.size()) + " marks of " + std::to_string(rowCount) + " rows");
    return bytes / best;
}

void RunCase(const Options& o, const TraceCase& trace, Verdicts& verdicts) {
    ScratchDirectory swap(o.swapParent, kSwapPrefix);
    if (!swap.ok()) {
        verdicts.Check(trace.label + " swap directory", false, "cannot make one in " + o.swapParent);
        return;
    }
    const double bytes = static_cast<double>(WarmPageCache(trace.path));
    std::cout << "== " << trace.label << " trace: " << trace.path << ", " << Verdicts::Format(bytes / kMegabyte, 1)
              << " MB\n";
    if (bytes <= 0) {
        verdicts.Check(trace.label + " trace readable", false, "empty or missing");
        return;
    }
    ExpatBaseline openBaseline(trace.path, kBlockSize);
    std::unique_ptr<XpvtDoc> document;
    const double openSpeed = MeasureOpen(o, trace, bytes, swap, document, openBaseline, verdicts);
    const double expatSpeed = openBaseline.Report("(" + trace.label + " open phase)", bytes, verdicts);
    if (expatSpeed > 0 && openSpeed > 0)
        verdicts.Ratio(trace.label + " XpvtDoc open / bare Expat speed", openSpeed / expatSpeed, kOpenToExpatTarget);
    if (document) {
        ExpatBaseline findBaseline(trace.path, kBlockSize);
        const double findSpeed = MeasureFind(o, trace, bytes, *document, findBaseline, verdicts);
        const double findExpatSpeed = findBaseline.Report("(" + trace.label + " search phase)", bytes, verdicts);
        if (findExpatSpeed > 0 && findSpeed > 0)
            verdicts.Ratio(trace.label + " XpvtDoc find / bare Expat speed", findSpeed / findExpatSpeed,
                           kFindToExpatTarget);
    }
    document.reset(); // its swap file goes before the memory child writes its own
    MeasureMemory(o, trace, verdicts);
}

int Usage() {
    std::cerr << "usage: bench_xpvt [--trace702 FILE] [--trace701 FILE] [--swap-dir DIR] [--runs N]\n"
                 "       bench_xpvt --open-only FILE SWAP_PARENT_DIR\n";
    return 2;
}

bool ParseOptions(int argc, char** argv, Options& o) {
    const bool known = ParseValueOptions(argc, argv, [&o](const std::string& name, const std::string& value) {
        if (name == "--trace702")
            o.trace702 = value;
        else if (name == "--trace701")
            o.trace701 = value;
        else if (name == "--swap-dir")
            o.swapParent = value;
        else if (name == "--runs")
            o.runs = RunsOption(value);
        else
            return false;
        return true;
    });
    if (!known)
        return false;
    if (o.swapParent.empty())
        o.swapParent = DefaultTempDirectory();
    return (!o.trace702.empty() || !o.trace701.empty()) && !o.swapParent.empty();
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 4 && std::strcmp(argv[1], "--open-only") == 0)
        return OpenOnly<XpvtDoc>(argv[2], argv[3], kSwapPrefix);
    Options o;
    if (!ParseOptions(argc, argv, o))
        return Usage();
    Verdicts verdicts;
    if (!o.trace702.empty())
        RunCase(o, {"7.02", o.trace702, true}, verdicts);
    if (!o.trace701.empty())
        RunCase(o, {"7.01", o.trace701, false}, verdicts);
    std::cout << (verdicts.AllPassed() ? "all targets met\n" : "some targets missed\n");
    return verdicts.AllPassed() ? 0 : 1;
}
