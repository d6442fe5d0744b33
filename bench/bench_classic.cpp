// Benchmarks of the classic index pass and of `zdt-cli rows`, as ratios within one run:
//   1. index pass speed >= 1/4 of `wc -l` on the same file, both from the page cache;
//   2. peak and resident memory of a process that only opens the trace
//      <= 50 MB + 20 bytes per record;
//   3. `zdt-cli rows FILE > /dev/null` speed >= 1/10 of the index pass speed;
//   4. (--big) a trace above 4 GiB: record count and the last record read back;
//   5. (--mixed) `zdt-cli info` speed >= 1/5 of `wc -l` on a trace of short lines that mixes
//      every record type, where the index pass does the most work per byte.
// The traces and their summaries come from `zdt-gen classic ... --summary` (see
// run_classic_bench.sh). Exit status 1 when a figure misses its target, 2 on usage errors.

#include "trace/CTraceFile.h"
#include "trace/CTraceItemI.h"

#include "BenchSupport.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace benchsupport;

constexpr double kIndexToWcTarget = 0.25;
constexpr double kRowsToIndexTarget = 0.10;
constexpr double kMixedInfoToWcTarget = 0.20;
constexpr double kMemoryBaseBytes = 50.0 * kMegabyte;
constexpr double kMemoryBytesPerRecord = 20.0;

struct Summary {
    std::uint64_t records = 0;
    std::uint64_t bytes = 0;
    std::uint64_t lastOffset = 0;
    std::string lastLine;
};

std::string FromHex(const std::string& hex) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes.push_back(static_cast<char>(std::stoul(hex.substr(i, 2), nullptr, 16)));
    return bytes;
}

bool ReadSummary(const std::string& path, Summary& summary) {
    std::ifstream in(path);
    std::map<std::string, std::string> values;
    for (std::string line; std::getline(in, line);) {
        const auto equals = line.find('=');
        if (equals != std::string::npos)
            values[line.substr(0, equals)] = line.substr(equals + 1);
    }
    if (!values.count("records") || !values.count("last_offset") || !values.count("last_line_hex"))
        return false;
    summary.records = std::stoull(values["records"]);
    summary.bytes = std::stoull(values["bytes"]);
    summary.lastOffset = std::stoull(values["last_offset"]);
    summary.lastLine = FromHex(values["last_line_hex"]);
    return true;
}

// ---- the child that only opens ------------------------------------------------------------

int OpenOnly(const std::string& path) {
    CTraceFile trace;
    if (!trace.OpenTrace(path))
        return 1;
    PrintMemoryFigures();
    std::cout << "index_bytes=" << trace.IndexBytes() << "\n"
              << "records=" << trace.TotalCount() << "\n";
    return 0;
}

// ---- the benchmarks -----------------------------------------------------------------------

struct Options {
    std::string trace;
    std::string summary;
    std::string cli;
    std::string bigTrace;
    std::string bigSummary;
    std::string mixedTrace;
    std::string mixedSummary;
    int runs = 3;
};

double MeasureWc(const std::string& path, int runs, double bytes, Verdicts& verdicts) {
    double best = 0;
    const bool ok = BestOf(runs, best, [&](double& seconds) {
        const ChildRun run = RunProgram({"wc", "-l", path}, false);
        seconds = run.seconds;
        return run.exitCode == 0;
    });
    if (!ok) {
        verdicts.Check("wc -l", false, "could not run wc -l");
        return 0;
    }
    std::cout << "wc -l:         " << Speed(bytes, best) << " (best of " << runs << ")\n";
    return bytes / best;
}

double MeasureIndexPass(const Options& o, const Summary& summary, double bytes, Verdicts& verdicts) {
    std::uint32_t count = 0;
    std::size_t indexBytes = 0;
    double best = 0;
    const bool ok = BestOf(o.runs, best, [&](double& seconds) {
        auto trace = std::make_unique<CTraceFile>();
        const auto start = Clock::now();
        const bool opened = trace->OpenTrace(o.trace);
        seconds = SecondsSince(start);
        count = trace->TotalCount();
        indexBytes = trace->IndexBytes();
        return opened;
    });
    verdicts.Check("index pass opens the trace", ok, ok ? "OpenTrace true" : "OpenTrace false");
    if (!ok)
        return 0;
    std::cout << "index pass:    " << Speed(bytes, best) << " (best of " << o.runs << "), " << count
              << " records, IndexBytes " << Verdicts::Format(static_cast<double>(indexBytes) / kMegabyte, 1) << " MB\n";
    verdicts.Check("index pass record count", count == summary.records,
                   std::to_string(count) + " indexed, " + std::to_string(summary.records) + " written");
    return bytes / best;
}

void MeasureMemory(const Options& o, const Summary& summary, Verdicts& verdicts) {
    const ChildRun run = RunProgram({"/proc/self/exe", "--open-only", o.trace}, true);
    const auto values = ParseKeyValues(run.output);
    if (run.exitCode != 0 || !values.count("hwm_kb")) {
        verdicts.Check("memory", false, "the open-only child failed (exit " + std::to_string(run.exitCode) + ")");
        return;
    }
    const double budget = kMemoryBaseBytes + kMemoryBytesPerRecord * static_cast<double>(summary.records);
    std::cout << "open-only process: IndexBytes "
              << Verdicts::Format(static_cast<double>(values.at("index_bytes")) / kMegabyte, 1) << " MB, "
              << values.at("records") << " records\n";
    CheckMemory(verdicts, "peak memory during the index pass (VmHWM)", "memory after the index pass (VmRSS)", values,
                budget, "");
}

double MeasureRows(const Options& o, double bytes, Verdicts& verdicts) {
    double best = 0;
    int exitCode = 0;
    const bool ok = BestOf(o.runs, best, [&](double& seconds) {
        const ChildRun run = RunProgram({o.cli, "rows", o.trace}, false);
        seconds = run.seconds;
        exitCode = run.exitCode;
        return run.exitCode == 0;
    });
    if (!ok) {
        verdicts.Check("zdt-cli rows", false, "exit status " + std::to_string(exitCode));
        return 0;
    }
    std::cout << "zdt-cli rows:  " << Speed(bytes, best) << " (best of " << o.runs << ")\n";
    return bytes / best;
}

// Every field a row shows, as text, to compare two records.
std::string Describe(const CTraceItemI& item) {
    std::ostringstream text;
    std::uint8_t kind = 0, channel = 0, extended = 0, length = 0;
    std::uint32_t time = 0, code = 0, identifier = 0;
    item.GetKind(kind);
    item.GetRawTime(time);
    item.GetChannel(channel);
    text << "type " << item.GetTypeCode() << " kind " << int(kind) << " time " << time << " channel " << int(channel);
    if (item.IsEvent() && item.GetEventCode(code) == 0)
        text << " code " << code;
    if (item.HasIdentifier() && item.GetIdentifier(identifier) == 0 && item.GetExtendedFlag(extended) == 0)
        text << " id " << identifier << " ext " << int(extended);
    const std::uint8_t* data = nullptr;
    if (item.HasData() && item.GetDataLength(length) == 0 && item.GetData(data) == 0 && data != nullptr)
        for (int i = 0; i < length; ++i)
            text << " " << int(data[i]);
    return text.str();
}

// The "No.Items:" figure of `zdt-cli info`, or -1 when it prints none.
long long InfoItemCount(const std::string& output) {
    const std::string key = "No.Items: ";
    const auto at = output.find(key);
    return at == std::string::npos ? -1 : std::atoll(output.c_str() + at + key.size());
}

void MeasureMixedInfo(const Options& o, Verdicts& verdicts) {
    Summary summary;
    if (!ReadSummary(o.mixedSummary, summary)) {
        verdicts.Check("mixed trace", false, "cannot read " + o.mixedSummary);
        return;
    }
    const double bytes = static_cast<double>(WarmPageCache(o.mixedTrace));
    std::cout << "mixed trace: " << o.mixedTrace << ", " << Verdicts::Format(bytes / kMegabyte, 1) << " MB, "
              << summary.records << " records, " << Verdicts::Format(bytes / summary.records, 1) << " bytes a line\n";
    const double wcSpeed = MeasureWc(o.mixedTrace, o.runs, bytes, verdicts);
    double best = 0;
    ChildRun last;
    const bool ok = BestOf(o.runs, best, [&](double& seconds) {
        last = RunProgram({o.cli, "info", o.mixedTrace}, true);
        seconds = last.seconds;
        return last.exitCode == 0;
    });
    if (!ok) {
        verdicts.Check("zdt-cli info on the mixed trace", false, "exit status " + std::to_string(last.exitCode));
        return;
    }
    std::cout << "zdt-cli info:  " << Speed(bytes, best) << " (best of " << o.runs << ")\n";
    const long long items = InfoItemCount(last.output);
    verdicts.Check("zdt-cli info item count", items == static_cast<long long>(summary.records),
                   std::to_string(items) + " listed, " + std::to_string(summary.records) + " written");
    if (wcSpeed > 0)
        verdicts.Ratio("zdt-cli info / wc -l speed, mixed short lines", bytes / best / wcSpeed, kMixedInfoToWcTarget);
}

void CheckBeyond4GiB(const Options& o, Verdicts& verdicts) {
    Summary summary;
    if (!ReadSummary(o.bigSummary, summary)) {
        verdicts.Check("beyond 4 GiB", false, "cannot read " + o.bigSummary);
        return;
    }
    verdicts.Check("file beyond 4 GiB", summary.bytes > (1ull << 32), std::to_string(summary.bytes) + " bytes");
    const auto start = Clock::now();
    CTraceFile trace;
    if (!trace.OpenTrace(o.bigTrace)) {
        verdicts.Check("beyond 4 GiB", false, "OpenTrace false");
        return;
    }
    const double seconds = SecondsSince(start);
    std::cout << "index pass beyond 4 GiB: " << Speed(static_cast<double>(summary.bytes), seconds) << "\n";
    verdicts.Check("record count beyond 4 GiB", static_cast<std::uint64_t>(trace.TotalCount()) == summary.records,
                   std::to_string(trace.TotalCount()) + " indexed, " + std::to_string(summary.records) + " written");
    if (trace.TotalCount() == 0)
        return;
    const std::uint32_t last = trace.TotalCount() - 1;
    const std::uint64_t offset = trace.VisibleOffsets().Get(last);
    verdicts.Check("offset of the last record", offset == summary.lastOffset,
                   std::to_string(offset) + ", written at " + std::to_string(summary.lastOffset));
    char line[CTraceFile::MaxRecordLine + 1] = {};
    const std::string expected = summary.lastLine.substr(0, CTraceFile::MaxRecordLine);
    const bool lineRead = trace.ReadRecordLine(offset, line);
    verdicts.Check("last record line read back", lineRead && expected == line, "\"" + std::string(line) + "\"");
    CTraceItemI reference;
    if (trace.UsesLegacyReader())
        reference.ParseLine(expected.c_str(), 1);
    else
        reference.ParseLineV701(expected.c_str(), 1);
    CTraceItemI* item = trace.GetItem(last);
    const std::string got = item != nullptr ? Describe(*item) : std::string("no record");
    trace.ReleaseItem(item);
    verdicts.Check("last record by GetItem", got == Describe(reference), got);
}

int Usage() {
    std::cerr << "usage: bench_classic --trace FILE --summary FILE --cli ZDT_CLI [--runs N]\n"
                 "                     [--big FILE --big-summary FILE] [--mixed FILE --mixed-summary FILE]\n"
                 "       bench_classic --open-only FILE\n";
    return 2;
}

bool ParseOptions(int argc, char** argv, Options& o) {
    const bool known = ParseValueOptions(argc, argv, [&o](const std::string& name, const std::string& value) {
        if (name == "--trace")
            o.trace = value;
        else if (name == "--summary")
            o.summary = value;
        else if (name == "--cli")
            o.cli = value;
        else if (name == "--big")
            o.bigTrace = value;
        else if (name == "--big-summary")
            o.bigSummary = value;
        else if (name == "--mixed")
            o.mixedTrace = value;
        else if (name == "--mixed-summary")
            o.mixedSummary = value;
        else if (name == "--runs")
            o.runs = RunsOption(value);
        else
            return false;
        return true;
    });
    return known && !o.trace.empty() && !o.summary.empty() && !o.cli.empty() &&
           o.bigTrace.empty() == o.bigSummary.empty() && o.mixedTrace.empty() == o.mixedSummary.empty();
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "--open-only") == 0)
        return OpenOnly(argv[2]);
    Options o;
    if (!ParseOptions(argc, argv, o))
        return Usage();
    Summary summary;
    if (!ReadSummary(o.summary, summary)) {
        std::cerr << "bench_classic: cannot read " << o.summary << "\n";
        return 2;
    }
    const double bytes = static_cast<double>(WarmPageCache(o.trace));
    std::cout << "trace: " << o.trace << ", " << Verdicts::Format(bytes / kMegabyte, 1) << " MB, " << summary.records
              << " records, " << Verdicts::Format(bytes / summary.records, 1) << " bytes a line\n";
    Verdicts verdicts;
    const double wcSpeed = MeasureWc(o.trace, o.runs, bytes, verdicts);
    const double indexSpeed = MeasureIndexPass(o, summary, bytes, verdicts);
    if (wcSpeed > 0 && indexSpeed > 0)
        verdicts.Ratio("index pass / wc -l speed", indexSpeed / wcSpeed, kIndexToWcTarget);
    MeasureMemory(o, summary, verdicts);
    const double rowsSpeed = MeasureRows(o, bytes, verdicts);
    if (rowsSpeed > 0 && indexSpeed > 0)
        verdicts.Ratio("zdt-cli rows / index pass speed", rowsSpeed / indexSpeed, kRowsToIndexTarget);
    if (!o.mixedTrace.empty())
        MeasureMixedInfo(o, verdicts);
    if (!o.bigTrace.empty()) {
        WarmPageCache(o.bigTrace);
        CheckBeyond4GiB(o, verdicts);
    }
    std::cout << (verdicts.AllPassed() ? "all targets met\n" : "some targets missed\n");
    return verdicts.AllPassed() ? 0 : 1;
}
