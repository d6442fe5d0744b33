// Benchmarks of snapshot documents, as ratios within one run, every file from the page cache:
//   1. opening with SnpDoc (every row on the swap file, flush included) runs at >= 1/2 the
//      speed of a bare Expat parse of the same file in the same 10,240-byte blocks;
//   2. peak and resident memory of a process that only opens the file
//      <= 60 MB + 6 bytes per row;
//   3. a search whose criteria match a few percent of the rows runs at >= 60% of the bare
//      Expat speed;
//   4. reading random rows of the opened document, cell by cell as the list view does:
//      worst and median of 1,000 rows against the same number of rows read in order;
//      the worst row stays below 50 ms.
// Every timed run of the document follows a bare Expat run; the best run of each side counts.
// The snapshot file and its rows file come from `zdt-gen snp ... --rows` (see
// run_snapshot_bench.sh); the rows file is the reference for row count, search hits and
// row contents. Exit status 1 when a figure misses its target, 2 on usage errors.

#include "snp/SnpDoc.h"
#include "snp/SnpFindCriteria.h"
#include "xmldoc/SaxParser.h"

#include "XmlDocBench.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace benchsupport;

using ZDTAnalyzer::SnpDoc;
using ZDTAnalyzer::SnpFindCriteria;

constexpr double kOpenToExpatTarget = 0.50;
constexpr double kFindToExpatTarget = 0.60;
constexpr double kMemoryBaseBytes = 60.0 * kMegabyte;
constexpr double kMemoryBytesPerRow = 6.0;
constexpr double kWorstRandomRowTargetMs = 50.0;
// The bare parse reads exactly as the document's parser does.
constexpr std::size_t kBlockSize = ZDTAnalyzer::Snp::UserInterfaceParser::BlockSize;
static_assert(kBlockSize == 10240);
constexpr const char* kSwapPrefix = "zdt-snp-swap";
// The list view's columns: flags, event, description, name, value, unit.
constexpr int kColumns = 6;
// A cell buffer as large as a list view item's text.
constexpr int kCellCapacity = 260;

std::vector<std::string> SplitTabs(const std::string& line) {
    std::vector<std::string> fields;
    std::size_t start = 0;
    for (std::size_t tab; (tab = line.find('\t', start)) != std::string::npos; start = tab + 1)
        fields.push_back(line.substr(start, tab - start));
    fields.push_back(line.substr(start));
    return fields;
}

// ---- the reference rows -------------------------------------------------------------------

// What the generator says the document must hold: the row count, the rows the search
// must mark and the full text of the rows that the random reads will check.
struct Reference {
    std::uint64_t rows = 0;
    std::uint64_t searchHits = 0;
    std::map<int, std::vector<std::string>> sampled;
};

// The search: one service name among the few the generator uses, on service rows only.
SnpFindCriteria SearchCriteria() {
    SnpFindCriteria criteria;
    criteria.searchService = true;
    criteria.serviceNameOn = true;
    criteria.serviceName = "ReadDTCInformation";
    return criteria;
}

bool IsSearchHit(const std::vector<std::string>& fields, const SnpFindCriteria& criteria) {
    return fields.size() == kColumns && fields[1] == "Service" &&
           fields[2].find(criteria.serviceName) != std::string::npos;
}

// One pass over the rows file; `wanted` rows (ascending) are kept whole.
bool ReadReference(const std::string& path, const std::vector<int>& wanted, Reference& reference) {
    std::ifstream in(path);
    std::string line;
    if (!std::getline(in, line) || line.rfind("#DateTime\t", 0) != 0)
        return false;
    const SnpFindCriteria criteria = SearchCriteria();
    auto next = wanted.begin();
    for (int row = 0; std::getline(in, line); ++row) {
        const std::vector<std::string> fields = SplitTabs(line);
        reference.searchHits += IsSearchHit(fields, criteria) ? 1 : 0;
        if (next != wanted.end() && *next == row) {
            reference.sampled[row] = fields;
            while (next != wanted.end() && *next == row)
                ++next;
        }
        ++reference.rows;
    }
    return true;
}

// Rows are counted first, so the random sample can cover the whole document.
std::uint64_t CountRows(const std::string& path) {
    std::ifstream in(path);
    std::uint64_t lines = 0;
    for (std::string line; std::getline(in, line);)
        ++lines;
    return lines > 0 ? lines - 1 : 0;
}

// ---- the benchmarks -----------------------------------------------------------------------

struct Options {
    std::string snapshot;
    std::string rows;
    std::string swapParent;
    int runs = 3;
    int samples = 1000;
    std::uint64_t seed = 1;
};

// Opens `runs` times, each into the same swap directory after the last document went; the
// last document stays open in `kept` for the search and the row reads.
double MeasureOpen(const Options& o, const Reference& reference, double bytes, const ScratchDirectory& swap,
                   std::unique_ptr<SnpDoc>& kept, ExpatBaseline& baseline, Verdicts& verdicts) {
    double best = 0;
    const bool ok = TimedOpens(o.runs, o.snapshot, swap, kept, baseline, best);
    verdicts.Check("SnpDoc opens the snapshot", ok, ok ? "OnOpenDocument true" : "OnOpenDocument false");
    if (!ok)
        return 0;
    auto& rows = kept->container();
    std::cout << "SnpDoc open:   " << Speed(bytes, best) << " (best of " << o.runs << "), " << rows.rowCount()
              << " rows, swap file " << Verdicts::Format(static_cast<double>(rows.endOffset()) / kMegabyte, 1)
              << " MB\n";
    verdicts.Check("row count", static_cast<std::uint64_t>(rows.rowCount()) == reference.rows,
                   std::to_string(rows.rowCount()) + " opened, " + std::to_string(reference.rows) + " written");
    CheckSwapFileComplete("every row on the swap file after the open", rows, verdicts);
    return bytes / best;
}

void MeasureMemory(const Options& o, const Reference& reference, Verdicts& verdicts) {
    const ChildRun run = RunProgram({"/proc/self/exe", "--open-only", o.snapshot, o.swapParent}, true);
    const auto values = ParseKeyValues(run.output);
    if (run.exitCode != 0 || !values.count("hwm_kb")) {
        verdicts.Check("memory", false, "the open-only child failed (exit " + std::to_string(run.exitCode) + ")");
        return;
    }
    const double budget = kMemoryBaseBytes + kMemoryBytesPerRow * static_cast<double>(reference.rows);
    std::cout << "open-only process: " << values.at("rows") << " rows\n";
    CheckMemory(verdicts, "peak memory while opening (VmHWM)", "memory after the open (VmRSS)", values, budget, "");
}

double MeasureFind(const Options& o, const Reference& reference, double bytes, SnpDoc& document,
                   ExpatBaseline& baseline, Verdicts& verdicts) {
    PrintingSink messages;
    const SnpFindCriteria criteria = SearchCriteria();
    double best = 0;
    const bool ok = TimedSearches(o.runs, baseline, best, [&] { return document.find(criteria, &messages); });
    verdicts.Check("search runs to its end", ok, ok ? "find true" : "find false");
    if (!ok)
        return 0;
    const std::size_t hits = document.findResults().size();
    const double share =
        reference.rows > 0 ? 100.0 * static_cast<double>(hits) / static_cast<double>(reference.rows) : 0;
    std::cout << "SnpDoc find:   " << Speed(bytes, best) << " (best of " << o.runs << "), " << hits << " rows marked ("
              << Verdicts::Format(share, 2) << "%)\n";
    verdicts.Check("search marks the rows written as hits", hits == reference.searchHits,
                   std::to_string(hits) + " marked, " + std::to_string(reference.searchHits) + " expected");
    return bytes / best;
}

// One row as the list view draws it: every cell through getColumnText.
void DrawRow(SnpDoc& document, int row, std::vector<std::string>& cells) {
    char buffer[kCellCapacity];
    for (int column = 0; column < kColumns; ++column) {
        document.container().getColumnText(row, column, buffer, kCellCapacity);
        cells[static_cast<std::size_t>(column)] = buffer;
    }
}

// The cells as the generator wrote them, cut as a list view cell cuts them.
bool SameCells(const Reference& reference, int row, const std::vector<std::string>& cells) {
    const auto expected = reference.sampled.find(row);
    if (expected == reference.sampled.end() || expected->second.size() != cells.size())
        return false;
    for (std::size_t i = 0; i < cells.size(); ++i)
        if (expected->second[i].substr(0, kCellCapacity - 1) != cells[i])
            return false;
    return true;
}

double Percentile(std::vector<double> values, double fraction) {
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    const auto index = static_cast<std::size_t>(fraction * static_cast<double>(values.size() - 1) + 0.5);
    return values[index];
}

void MeasureRowReads(const Options& o, const std::vector<int>& randomRows, const Reference& reference, SnpDoc& document,
                     Verdicts& verdicts) {
    const int rowCount = document.container().rowCount();
    if (rowCount == 0 || randomRows.empty()) {
        verdicts.Check("row reads", false, "no rows to read");
        return;
    }
    std::vector<std::string> cells(kColumns);
    std::vector<double> randomMs;
    int mismatches = 0;
    double randomTotal = 0;
    for (const int row : randomRows) {
        const auto start = Clock::now();
        DrawRow(document, row, cells);
        const double seconds = SecondsSince(start);
        randomTotal += seconds;
        randomMs.push_back(seconds * 1000.0);
        if (!SameCells(reference, row, cells))
            ++mismatches;
    }
    // The same number of rows read in order, as scrolling down one page after another.
    const int count = static_cast<int>(std::min<std::size_t>(randomRows.size(), static_cast<std::size_t>(rowCount)));
    const int first = (rowCount - count) / 2;
    const auto start = Clock::now();
    for (int row = first; row < first + count; ++row)
        DrawRow(document, row, cells);
    const double inOrderTotal = SecondsSince(start);

    const double worst = *std::max_element(randomMs.begin(), randomMs.end());
    std::cout << "random rows:   " << randomMs.size() << " rows (seed " << o.seed << "), median "
              << Verdicts::Format(Percentile(randomMs, 0.5), 4) << " ms, 99th percentile "
              << Verdicts::Format(Percentile(randomMs, 0.99), 4) << " ms, worst " << Verdicts::Format(worst, 4)
              << " ms, total " << Verdicts::Format(randomTotal * 1000.0, 2) << " ms\n";
    std::cout << "rows in order: " << count << " rows from row " << first << ", "
              << Verdicts::Format(inOrderTotal * 1000.0, 2) << " ms, "
              << Verdicts::Format(inOrderTotal * 1000.0 / count, 4) << " ms a row\n";
    if (inOrderTotal > 0)
        std::cout << "random / in-order time: ratio " << Verdicts::Format(randomTotal / inOrderTotal, 2)
                  << " (reported, no target)\n";
    verdicts.Check("random rows read as written", mismatches == 0,
                   std::to_string(mismatches) + " of " + std::to_string(randomRows.size()) + " rows differ");
    verdicts.Check("worst random row", worst < kWorstRandomRowTargetMs,
                   Verdicts::Format(worst, 3) + " ms (target < " + Verdicts::Format(kWorstRandomRowTargetMs, 0) +
                       " ms)");
}

std::vector<int> RandomRows(std::uint64_t rows, int samples, std::uint64_t seed) {
    std::vector<int> picked;
    if (rows == 0)
        return picked;
    std::mt19937_64 random(seed);
    std::uniform_int_distribution<std::uint64_t> pick(0, rows - 1);
    for (int i = 0; i < samples; ++i)
        picked.push_back(static_cast<int>(pick(random)));
    return picked;
}

int Usage() {
    std::cerr << "usage: bench_snapshot --snapshot FILE --rows FILE [--swap-dir DIR] [--runs N] [--samples N]\n"
                 "                      [--seed N]\n"
                 "       bench_snapshot --open-only FILE SWAP_PARENT_DIR\n";
    return 2;
}

bool ParseOptions(int argc, char** argv, Options& o) {
    const bool known = ParseValueOptions(argc, argv, [&o](const std::string& name, const std::string& value) {
        if (name == "--snapshot")
            o.snapshot = value;
        else if (name == "--rows")
            o.rows = value;
        else if (name == "--swap-dir")
            o.swapParent = value;
        else if (name == "--runs")
            o.runs = RunsOption(value);
        else if (name == "--samples")
            o.samples = std::max(1, std::atoi(value.c_str()));
        else if (name == "--seed")
            o.seed = std::strtoull(value.c_str(), nullptr, 10);
        else
            return false;
        return true;
    });
    if (!known)
        return false;
    if (o.swapParent.empty())
        o.swapParent = DefaultTempDirectory();
    return !o.snapshot.empty() && !o.rows.empty() && !o.swapParent.empty();
}

int RunBenchmarks(const Options& o) {
    const std::vector<int> randomRows = RandomRows(CountRows(o.rows), o.samples, o.seed);
    std::vector<int> wanted = randomRows;
    std::sort(wanted.begin(), wanted.end());
    Reference reference;
    if (!ReadReference(o.rows, wanted, reference)) {
        std::cerr << "bench_snapshot: cannot read the rows file " << o.rows << "\n";
        return 2;
    }
    ScratchDirectory swap(o.swapParent, kSwapPrefix);
    if (!swap.ok()) {
        std::cerr << "bench_snapshot: cannot make a swap directory in " << o.swapParent << "\n";
        return 2;
    }
    const double bytes = static_cast<double>(WarmPageCache(o.snapshot));
    std::cout << "snapshot: " << o.snapshot << ", " << Verdicts::Format(bytes / kMegabyte, 1) << " MB, "
              << reference.rows << " rows, " << reference.searchHits << " search hits, swap files in " << swap.path()
              << "\n";
    Verdicts verdicts;
    ExpatBaseline openBaseline(o.snapshot, kBlockSize);
    std::unique_ptr<SnpDoc> document;
    const double openSpeed = MeasureOpen(o, reference, bytes, swap, document, openBaseline, verdicts);
    const double expatSpeed = openBaseline.Report("(open phase)", bytes, verdicts);
    if (expatSpeed > 0 && openSpeed > 0)
        verdicts.Ratio("SnpDoc open / bare Expat speed", openSpeed / expatSpeed, kOpenToExpatTarget);
    MeasureMemory(o, reference, verdicts);
    if (document) {
        // Rows first: a search writes its marks into the rows, and the reference has none.
        MeasureRowReads(o, randomRows, reference, *document, verdicts);
        ExpatBaseline findBaseline(o.snapshot, kBlockSize);
        const double findSpeed = MeasureFind(o, reference, bytes, *document, findBaseline, verdicts);
        const double findExpatSpeed = findBaseline.Report("(search phase)", bytes, verdicts);
        if (findExpatSpeed > 0 && findSpeed > 0)
            verdicts.Ratio("SnpDoc find / bare Expat speed", findSpeed / findExpatSpeed, kFindToExpatTarget);
    }
    document.reset();
    std::cout << (verdicts.AllPassed() ? "all targets met\n" : "some targets missed\n");
    return verdicts.AllPassed() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 4 && std::strcmp(argv[1], "--open-only") == 0)
        return OpenOnly<SnpDoc>(argv[2], argv[3], kSwapPrefix);
    Options o;
    if (!ParseOptions(argc, argv, o))
        return Usage();
    return RunBenchmarks(o);
}
