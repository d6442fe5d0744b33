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

#include "BenchSupport.h"

#include <expat.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

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

// Prints every box the document raises, so a failed open or search says why.
class PrintingSink : public zdt::MessageSink {
public:
    void showMessage(const zdt::UserMessage& message) override { std::cerr << "message: " << message.text << "\n"; }
    bool askYesNo(const zdt::UserMessage& question) override {
        std::cerr << "question: " << question.text << "\n";
        return false;
    }
};

// A private directory for swap files, removed with everything in it.
class ScratchDirectory {
public:
    explicit ScratchDirectory(const std::string& parent) {
        std::string pattern = parent + "/zdt-xpvt-swap.XXXXXX";
        if (::mkdtemp(pattern.data()) != nullptr)
            m_path = pattern;
    }
    ~ScratchDirectory() {
        std::error_code ignored;
        if (!m_path.empty())
            std::filesystem::remove_all(m_path, ignored);
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;
    bool ok() const { return !m_path.empty(); }
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

// ---- the bare parse -----------------------------------------------------------------------

void XMLCALL IgnoreStart(void*, const XML_Char*, const XML_Char**) {}
void XMLCALL IgnoreEnd(void*, const XML_Char*) {}
void XMLCALL IgnoreText(void*, const XML_Char*, int) {}

// Expat alone: the same reads and blocks as the document's parser, handlers that do nothing.
bool BareExpatParse(const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "r");
    if (file == nullptr)
        return false;
    XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetStartElementHandler(parser, &IgnoreStart);
    XML_SetEndElementHandler(parser, &IgnoreEnd);
    XML_SetCharacterDataHandler(parser, &IgnoreText);
    std::vector<char> buffer(kBlockSize);
    bool ok = parser != nullptr;
    while (ok) {
        const std::size_t count = std::fread(buffer.data(), 1, kBlockSize, file);
        if (count == 0)
            break;
        const int isFinal = count < kBlockSize ? 1 : 0;
        ok = XML_Parse(parser, buffer.data(), static_cast<int>(count), isFinal) != XML_STATUS_ERROR;
    }
    XML_ParserFree(parser);
    std::fclose(file);
    return ok;
}

// The bare Expat reference. One of its runs goes right before each timed run of the
// document, so a machine that is busier in one phase slows both sides of a ratio alike.
class ExpatBaseline {
public:
    explicit ExpatBaseline(const std::string& path) : m_path(path) {}

    void Run() {
        const auto start = Clock::now();
        const bool parsed = BareExpatParse(m_path);
        const double seconds = SecondsSince(start);
        m_failed = m_failed || !parsed;
        m_best = m_runs == 0 ? seconds : std::min(m_best, seconds);
        ++m_runs;
    }

    // Bytes a second of the best run; 0 when a run failed or none ran.
    double Report(const std::string& phase, double bytes, Verdicts& verdicts) const {
        if (m_failed || m_runs == 0) {
            verdicts.Check("bare Expat parse " + phase, false, "the file is not well-formed");
            return 0;
        }
        std::cout << "bare Expat " << phase << ": " << Speed(bytes, m_best) << " (best of " << m_runs << ")\n";
        return bytes / m_best;
    }

private:
    std::string m_path;
    double m_best = 0;
    int m_runs = 0;
    bool m_failed = false;
};

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

// ---- the child that only opens ------------------------------------------------------------

int OpenOnly(const std::string& path, const std::string& swapParent) {
    ScratchDirectory swap(swapParent);
    if (!swap.ok())
        return 1;
    PrintingSink messages;
    XpvtDoc document;
    if (!document.OnOpenDocument(path, swap.path(), &messages))
        return 1;
    std::cout << "hwm_kb=" << StatusKilobytes("VmHWM:") << "\n"
              << "rss_kb=" << StatusKilobytes("VmRSS:") << "\n"
              << "rows=" << document.container().rowCount() << "\n";
    return 0;
}

struct ChildRun {
    int exitCode = -1;
    std::string output;
};

ChildRun RunCaptured(const std::vector<std::string>& argv) {
    ChildRun run;
    int pipeFds[2] = {-1, -1};
    if (::pipe(pipeFds) != 0)
        return run;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, pipeFds[0]);
    posix_spawn_file_actions_addclose(&actions, pipeFds[1]);
    std::vector<char*> args;
    for (const auto& arg : argv)
        args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);
    pid_t pid = 0;
    const int spawned = posix_spawn(&pid, args[0], &actions, nullptr, args.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(pipeFds[1]);
    char buffer[4096];
    for (ssize_t n; spawned == 0 && (n = ::read(pipeFds[0], buffer, sizeof buffer)) > 0;)
        run.output.append(buffer, static_cast<std::size_t>(n));
    ::close(pipeFds[0]);
    if (spawned != 0)
        return run;
    int status = 0;
    ::waitpid(pid, &status, 0);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return run;
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
    PrintingSink messages;
    double best = 0;
    const bool ok = BestOf(o.runs, best, [&](double& seconds) {
        baseline.Run();
        kept.reset(); // the previous swap file goes before the next one is written
        kept = std::make_unique<XpvtDoc>();
        const auto start = Clock::now();
        const bool opened = kept->OnOpenDocument(trace.path, swap.path(), &messages);
        seconds = SecondsSince(start);
        return opened;
    });
    verdicts.Check(trace.label + " XpvtDoc opens the trace", ok, ok ? "OnOpenDocument true" : "OnOpenDocument false");
    if (!ok) {
        kept.reset();
        return 0;
    }
    auto& rows = kept->container();
    std::cout << trace.label << " XpvtDoc open: " << Speed(bytes, best) << " (best of " << o.runs << "), "
              << rows.rowCount() << " rows, swap file "
              << Verdicts::Format(static_cast<double>(rows.endOffset()) / kMegabyte, 1) << " MB\n";
    std::error_code error;
    const auto onFile = std::filesystem::file_size(rows.swapFileName(), error);
    verdicts.Check(trace.label + " schema read from the header", kept->is702() == trace.is702,
                   "Schema \"" + kept->description().Schema + "\"");
    verdicts.Check(trace.label + " rows built", rows.rowCount() > 0, std::to_string(rows.rowCount()) + " rows");
    verdicts.Check(trace.label + " every row on the swap file after the open", !error && onFile == rows.endOffset(),
                   std::to_string(error ? 0 : onFile) + " bytes on file, rows end at " +
                       std::to_string(rows.endOffset()));
    return bytes / best;
}

void MeasureMemory(const Options& o, const TraceCase& trace, Verdicts& verdicts) {
    const ChildRun run = RunCaptured({"/proc/self/exe", "--open-only", trace.path, o.swapParent});
    const auto values = ParseKeyValues(run.output);
    if (run.exitCode != 0 || !values.count("hwm_kb") || !values.count("rows")) {
        verdicts.Check(trace.label + " memory", false,
                       "the open-only child failed (exit " + std::to_string(run.exitCode) + ")");
        return;
    }
    const double rows = static_cast<double>(values.at("rows"));
    const double budget = kMemoryBaseBytes + kMemoryBytesPerRow * rows;
    const double peak = static_cast<double>(values.at("hwm_kb")) * 1024.0;
    const double resident = static_cast<double>(values.at("rss_kb")) * 1024.0;
    const std::string limit = " MB (target <= " + Verdicts::Format(budget / kMegabyte, 1) + " MB for " +
                              std::to_string(values.at("rows")) + " rows)";
    verdicts.Check(trace.label + " peak memory while opening (VmHWM)", peak <= budget,
                   Verdicts::Format(peak / kMegabyte, 1) + limit);
    verdicts.Check(trace.label + " memory after the open (VmRSS)", resident <= budget,
                   Verdicts::Format(resident / kMegabyte, 1) + limit);
}

double MeasureFind(const Options& o, const TraceCase& trace, double bytes, XpvtDoc& document,
                   ExpatBaseline& baseline, Verdicts& verdicts) {
    PrintingSink messages;
    if (trace.is702)
        SetCriteria702(document.findCriteria702());
    else
        SetCriteria701(document.findCriteria701());
    double best = 0;
    const bool ok = BestOf(o.runs, best, [&](double& seconds) {
        baseline.Run();
        const auto start = Clock::now();
        const bool found = document.find(&messages);
        seconds = SecondsSince(start);
        return found;
    });
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
    ScratchDirectory swap(o.swapParent);
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
    ExpatBaseline openBaseline(trace.path);
    std::unique_ptr<XpvtDoc> document;
    const double openSpeed = MeasureOpen(o, trace, bytes, swap, document, openBaseline, verdicts);
    const double expatSpeed = openBaseline.Report("(" + trace.label + " open phase)", bytes, verdicts);
    if (expatSpeed > 0 && openSpeed > 0)
        verdicts.Ratio(trace.label + " XpvtDoc open / bare Expat speed", openSpeed / expatSpeed, kOpenToExpatTarget);
    if (document) {
        ExpatBaseline findBaseline(trace.path);
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
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (i + 1 >= argc)
            return false;
        const std::string value = argv[++i];
        if (arg == "--trace702") o.trace702 = value;
        else if (arg == "--trace701") o.trace701 = value;
        else if (arg == "--swap-dir") o.swapParent = value;
        else if (arg == "--runs") o.runs = std::max(1, std::atoi(value.c_str()));
        else return false;
    }
    if (o.swapParent.empty()) {
        std::error_code error;
        o.swapParent = std::filesystem::temp_directory_path(error).string();
    }
    return (!o.trace702.empty() || !o.trace701.empty()) && !o.swapParent.empty();
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 4 && std::strcmp(argv[1], "--open-only") == 0)
        return OpenOnly(argv[2], argv[3]);
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
