#include "ClassicTraceGenerator.h"
#include "support/ClassicTraces.h"
#include "support/CliRunner.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <map>
#include <optional>
#include <sstream>
#include <tuple>

namespace {

using namespace classic_traces;

const std::string Header = "IDENTIFIER\tCHANNEL\tCOUNT\tCYCLE_MIN_MS\tCYCLE_MID_MS\tCYCLE_MAX_MS\t"
                           "LENGTH_MIN\tLENGTH_MID\tLENGTH_MAX\tSKIPPED_TIMES\n";

std::vector<std::string> Split(const std::string& line, char separator) {
    std::vector<std::string> cells;
    std::string cell;
    std::istringstream in(line);
    while (std::getline(in, cell, separator))
        cells.push_back(cell);
    if (!line.empty() && line.back() == separator)
        cells.emplace_back();
    return cells;
}

std::string Trimmed(const std::string& text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// "1.234,567890" of the absolute time column as microseconds; nothing for a blank cell.
std::optional<std::uint64_t> Micros(const std::string& cell) {
    std::string digits;
    for (const char c : cell)
        if (c >= '0' && c <= '9')
            digits += c;
    if (digits.empty())
        return std::nullopt;
    return std::stoull(digits);
}

std::string Fixed3(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%.3f", value);
    return text;
}

// The table worked out from what `zdt-cli rows --time absolute` shows, as a reader of the
// list would: per identifier cell and channel cell, the steps between successive times.
std::string TableFromRows(const std::string& rows) {
    struct Figures {
        std::uint64_t count = 0, skipped = 0, lengthSum = 0;
        unsigned lengthMin = 256, lengthMax = 0;
        std::vector<std::uint64_t> times;
    };
    // Key: identifier value, extended, channel number (0: none).
    std::map<std::tuple<std::uint32_t, bool, unsigned>, Figures> byKey;
    std::istringstream in(rows);
    for (std::string line; std::getline(in, line);) {
        const std::vector<std::string> cells = Split(line, '\t');
        const std::string identifier = Trimmed(cells.at(4));
        if (identifier.empty())
            continue;
        const bool extended = identifier.find("(x)") != std::string::npos;
        const auto value = static_cast<std::uint32_t>(std::stoul(identifier, nullptr, 16));
        const unsigned channel = cells.at(3).empty() ? 0 : static_cast<unsigned>(std::stoul(cells.at(3)));
        Figures& f = byKey[{value, extended, channel}];
        ++f.count;
        const std::string& data = cells.at(8);
        const unsigned length = data.empty() ? 0 : static_cast<unsigned>((data.size() + 1) / 3);
        f.lengthSum += length;
        f.lengthMin = std::min(f.lengthMin, length);
        f.lengthMax = std::max(f.lengthMax, length);
        if (const auto time = Micros(cells.at(2)))
            f.times.push_back(*time);
        else
            ++f.skipped;
    }
    std::string table = Header;
    for (const auto& [key, f] : byKey) {
        std::uint64_t cycles = 0, sum = 0, low = ~0ull, high = 0, skipped = f.skipped;
        for (std::size_t i = 1; i < f.times.size(); ++i) {
            if (f.times[i] < f.times[i - 1]) {
                ++skipped;
                continue;
            }
            const std::uint64_t step = f.times[i] - f.times[i - 1];
            ++cycles;
            sum += step;
            low = std::min(low, step);
            high = std::max(high, step);
        }
        char identifier[16];
        std::snprintf(identifier, sizeof identifier, "%X%s", std::get<0>(key), std::get<1>(key) ? "(x)" : "");
        table += std::string(identifier) + "\t" +
                 (std::get<2>(key) == 0 ? std::string("-") : std::to_string(std::get<2>(key))) + "\t" +
                 std::to_string(f.count) + "\t" +
                 (cycles == 0 ? std::string("-\t-\t-")
                              : Fixed3(static_cast<double>(low) / 1000) + "\t" +
                                    Fixed3(static_cast<double>(sum) / (static_cast<double>(cycles) * 1000)) + "\t" +
                                    Fixed3(static_cast<double>(high) / 1000)) +
                 "\t" + std::to_string(f.lengthMin) + "\t" +
                 Fixed3(static_cast<double>(f.lengthSum) / static_cast<double>(f.count)) + "\t" +
                 std::to_string(f.lengthMax) + "\t" + std::to_string(skipped) + "\n";
    }
    return table;
}

TEST(CliStats, PrintsOneLinePerIdentifierAndChannelSorted) {
    TempDir dir;
    const std::string trace =
        dir.Write("c.trc", Head("CAN Onboard", "601") +
                               CrLf({"[TraceData]", "5000 02 000007E8 0000001000 0008 01 02 03 04 05 06 07 08",
                                     "5800 01 18DAF110 0000002000 0003 10 20 30 00 00 00 00 00",
                                     "5000 01 000007E8 0000003000 0002 AA BB 00 00 00 00 00 00", "4403 01 X 0000004000",
                                     "5000 01 000007E8 0000007500 0001 AA 00 00 00 00 00 00 00",
                                     "5000 02 000007E8 0000000000 0008 01 02 03 04 05 06 07 08",
                                     "5000 01 000007E8 0000006000 0004 01 02 03 04 00 00 00 00"}));
    const CliRun run = RunCli(dir, {"stats", trace});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    // 7E8 on channel 1 at 3, 7.5 and 6 ms: one step of 4.5 ms, then one back in time.
    EXPECT_EQ(run.out, Header + "7E8\t1\t3\t4.500\t4.500\t4.500\t1\t2.333\t4\t1\n"
                                "7E8\t2\t2\t-\t-\t-\t8\t8.000\t8\t1\n"
                                "18DAF110(x)\t1\t1\t-\t-\t-\t3\t3.000\t3\t0\n");
    EXPECT_EQ(run.out, TableFromRows(RunCli(dir, {"rows", "--time", "absolute", trace}).out));

    // Whatever the time style, the steps are those of the trace's clock.
    EXPECT_EQ(RunCli(dir, {"stats", "--time", "relative-channel", trace}).out, run.out);
    EXPECT_EQ(RunCli(dir, {"stats", trace, "--time=inter-byte", "--baud", "9600"}).out, run.out);

    // The CAN filter decides what the list shows, and so what is counted.
    const std::string filter = dir.Write("f.flt", Filter("StopFilter", {"7E8"}));
    EXPECT_EQ(RunCli(dir, {"stats", "--can-filter", filter, trace}).out,
              Header + "18DAF110(x)\t1\t1\t-\t-\t-\t3\t3.000\t3\t0\n");
}

TEST(CliStats, AgreesWithTheRowsOfGeneratedTraces) {
    TempDir dir;
    struct Case {
        const char* schema;
        const char* title;
        zdtgen::RecordMix mix;
    } cases[] = {{"601", "CAN Onboard", zdtgen::RecordMix::Traffic},
                 {"601", "ZDT Trace File", zdtgen::RecordMix::All},
                 {"701", "ZDT Trace File", zdtgen::RecordMix::All},
                 {"2", "ZDT Trace File", zdtgen::RecordMix::All}};
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.schema) + " " + c.title);
        zdtgen::ClassicTraceOptions options;
        options.schema = c.schema;
        options.title = c.title;
        options.mix = c.mix;
        options.records = 20000;
        options.seed = 11;
        const std::string trace = dir.Write("g.trc", zdtgen::MakeClassicTrace(options));
        const CliRun stats = RunCli(dir, {"stats", trace});
        ASSERT_EQ(stats.status, 0);
        EXPECT_GT(stats.out.size(), Header.size());
        EXPECT_EQ(stats.out, TableFromRows(RunCli(dir, {"rows", "--time", "absolute", trace}).out));
    }
}

TEST(CliStats, TraceWithoutIdentifiersPrintsTheNamesAndWhy) {
    TempDir dir;
    const CliRun run = RunCli(dir, {"stats", dir.Write("d.trc", Diagnostic601())});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, Header);
    EXPECT_EQ(run.err, "No record of this trace carries an identifier: it holds no CAN or Flex frames.\n");
}

TEST(CliStats, RefusesWhatItCannotCount) {
    TempDir dir;
    const std::string trace = dir.Write("c.trc", Can601());
    EXPECT_EQ(RunCli(dir, {"stats"}).status, 2);
    EXPECT_EQ(RunCli(dir, {"stats", trace, trace}).status, 2);
    const CliRun unknown = RunCli(dir, {"stats", "--use-time", trace});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_NE(unknown.err.find("unknown option --use-time"), std::string::npos);
    EXPECT_EQ(RunCli(dir, {"stats", "--time", "sideways", trace}).status, 2);
    EXPECT_EQ(RunCli(dir, {"stats", dir.Write("s.snp", "<x/>")}).status, 2);
    const CliRun missing = RunCli(dir, {"stats", dir.File("missing.trc")});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.out, "");

    const CliRun help = RunCli(dir, {"help"});
    EXPECT_NE(help.out.find("stats FILE"), std::string::npos);
    EXPECT_NE(help.out.find("SKIPPED_TIMES"), std::string::npos);
    EXPECT_EQ(RunCli(dir, {"stats", "--help"}).out, help.out);
}

} // namespace
