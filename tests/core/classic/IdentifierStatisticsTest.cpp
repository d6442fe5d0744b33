#include "classic/IdentifierStatistics.h"
#include "classic/CAnalyzerDoc.h"
#include "classic/IdentifierCycleSeries.h"
#include "support/ClassicTraces.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <random>

namespace {

using namespace classic_traces;

// A legacy CAN frame line: "5000 CC IIIIIIII TTTTTTTTTT LLLL" and eight data bytes.
std::string Frame(const char* type, unsigned channel, unsigned identifier, unsigned time, unsigned length) {
    char line[96];
    std::snprintf(line, sizeof line, "%s %02x %08X %010u %04x 01 02 03 04 05 06 07 08", type, channel, identifier, time,
                  length);
    return line;
}

// CAN frames of a bus log with absolute times; the figures of each identifier are worked
// out by hand below.
std::string HandTrace() {
    return Head("CAN Onboard", "601") +
           CrLf({"[TraceData]", Frame("5000", 1, 0x7E8, 1000, 8), Frame("5000", 1, 0x100, 5000, 2),
                 Frame("5000", 2, 0x7E8, 6000, 1), Frame("5000", 1, 0x200, 7000, 4), Frame("5000", 1, 0x7E8, 11000, 8),
                 "4403 01 X 0000012000", Frame("5000", 1, 0x200, 0, 4), Frame("5000", 1, 0x100, 15000, 2),
                 Frame("5000", 1, 0x7E8, 21500, 3), Frame("5000", 1, 0x100, 12000, 2),
                 Frame("5800", 1, 0x18DAF110, 25000, 8), Frame("5000", 1, 0x200, 27000, 6),
                 Frame("5000", 1, 0x7E8, 31000, 8), Frame("5000", 1, 0x100, 23000, 2),
                 Frame("5800", 1, 0x18DAF110, 45000, 8), Frame("5000", 2, 0x100, 30000, 5)});
}

// Each line as `zdt-cli stats` prints it.
const char* const HandTable = "IDENTIFIER\tCHANNEL\tCOUNT\tCYCLE_MIN_MS\tCYCLE_MID_MS\tCYCLE_MAX_MS\t"
                              "LENGTH_MIN\tLENGTH_MID\tLENGTH_MAX\tSKIPPED_TIMES\n"
                              // 5000, 15000, 12000 runs backwards, 23000: gaps 10 and 11 ms
                              "100\t1\t4\t10.000\t10.500\t11.000\t2\t2.000\t2\t1\n"
                              "100\t2\t1\t-\t-\t-\t5\t5.000\t5\t0\n"
                              // 7000, time 0 (no time), 27000
                              "200\t1\t3\t20.000\t20.000\t20.000\t4\t4.667\t6\t1\n"
                              // 1000, 11000, 21500, 31000
                              "7E8\t1\t4\t9.500\t10.000\t10.500\t3\t6.750\t8\t0\n"
                              "7E8\t2\t1\t-\t-\t-\t1\t1.000\t1\t0\n"
                              "18DAF110(x)\t1\t2\t20.000\t20.000\t20.000\t8\t8.000\t8\t0\n";

IdentifierStatistics Collect(CAnalyzerDoc& doc) {
    IdentifierStatistics statistics;
    EXPECT_TRUE(CollectIdentifierStatistics(doc, statistics));
    return statistics;
}

std::string TableOf(CAnalyzerDoc& doc) {
    return StatisticsTableText(Collect(doc), '\t');
}

// Lets the pass run to its end and keeps its last report.
class LastReport final : public zdt::ProgressSink {
public:
    bool onProgress(unsigned long long done, unsigned long long total) override {
        last = {done, total};
        return true;
    }
    std::pair<unsigned long long, unsigned long long> last;
};

TEST(IdentifierStatistics, FiguresOfABusLogByHand) {
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write("bus.trc", HandTrace())));
    EXPECT_EQ(TableOf(doc), HandTable);
    const IdentifierStatistics statistics = Collect(doc);
    EXPECT_TRUE(statistics.emptyReason.empty());
    EXPECT_EQ(statistics.rowsPassed, 16);
    const IdentifierFigures* figures = statistics.Find({0x7E8, false, 1});
    ASSERT_NE(figures, nullptr);
    EXPECT_EQ(figures->cycles, 3u);
    EXPECT_EQ(figures->cycleSumMicros, 30000u);
    EXPECT_EQ(statistics.Find({0x7E8, true, 1}), nullptr);
    EXPECT_EQ(statistics.Find({0x7E8, false, 3}), nullptr);

    // Cycle times are inter-frame times on the trace's own clock in every time mode.
    for (const TimeMode mode : {TimeMode::Absolute, TimeMode::RelativeChannel, TimeMode::InterByte}) {
        doc.SetTimeMode(mode, 400);
        EXPECT_EQ(TableOf(doc), HandTable);
    }
}

TEST(IdentifierStatistics, FollowTheCanFilter) {
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write("bus.trc", HandTrace())));
    doc.ApplyFilter(dir.Write("pass.flt", Filter("PassFilter", {"7E8"})), "pass.flt");
    const std::string header = std::string(HandTable).substr(0, std::string(HandTable).find('\n') + 1);
    EXPECT_EQ(TableOf(doc), header + "7E8\t1\t4\t9.500\t10.000\t10.500\t3\t6.750\t8\t0\n"
                                     "7E8\t2\t1\t-\t-\t-\t1\t1.000\t1\t0\n");

    doc.ApplyFilter(dir.Write("stop.flt", Filter("StopFilter", {"7E8", "100", "200"})), "stop.flt");
    EXPECT_EQ(TableOf(doc), header + "18DAF110(x)\t1\t2\t20.000\t20.000\t20.000\t8\t8.000\t8\t0\n");

    // Extended identifiers stand in the filter with their top bit set.
    doc.ApplyFilter(dir.Write("all.flt", Filter("StopFilter", {"7E8", "100", "200", "98DAF110"})), "all.flt");
    const IdentifierStatistics none = Collect(doc);
    EXPECT_TRUE(none.figures.empty());
    EXPECT_EQ(none.emptyReason, "No row the list shows carries an identifier: the CAN filter hides every frame.");
    EXPECT_EQ(StatisticsTableText(none, '\t'), header);
}

// A file of delta times: frames are placed by the running sum of all deltas, also those of
// records between them and of records the filter hides.
TEST(IdentifierStatistics, DeltaTimesAddUpToTheTimeLine) {
    const std::string trace =
        Head("ZDT Trace File", "2") +
        CrLf({"[TraceData]", "0020 00000064 0000 06 E8 07 00 00 01 02", "0003 000003E8 0001 55 00",
              "0021 000007D0 0000 0C E8 07 00 00 01 02 03 04 05 06 07 08", "0020 00000000 0000 05 E8 07 00 00 09",
              "0020 000001F4 0000 07 E8 07 00 80 01 02 03",
              "0020 000003E8 0000 0C E8 07 00 00 01 02 03 04 05 06 07 08"});
    // 7E8 at 100, 3100, no time, 4600; 7E8 extended once at 3600.
    const std::string expected = "7E8\t-\t4\t1.500\t2.250\t3.000\t1\t4.750\t8\t1\n"
                                 "7E8(x)\t-\t1\t-\t-\t-\t3\t3.000\t3\t0\n";
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write("delta.trc", trace)));
    ASSERT_TRUE(doc.IsDeltaFile());
    std::string table = TableOf(doc);
    EXPECT_EQ(table.substr(table.find('\n') + 1), expected);

    // A stop filter drops the line byte; its 1 ms still lies between the frames.
    doc.ApplyFilter(dir.Write("stop.flt", Filter("StopFilter", {"123"})), "stop.flt");
    ASSERT_EQ(doc.GetVisibleCount(), 5);
    table = TableOf(doc);
    EXPECT_EQ(table.substr(table.find('\n') + 1), expected);
}

// Schema 701: frames read their times from the record itself, and 0 is a time there;
// Flex frames count by their identifier and show no channel.
TEST(IdentifierStatistics, SchemaV701FramesAndFlexFrames) {
    const std::string trace =
        Head("ZDT Trace File", "701") +
        CrLf({"[TraceData]", "5000       7E8 0000000000 0008  01 02 03 04 05 06 07 08",
              "0038      123 0000005000    2 AA BB", "5000       7E8 0000002000 0002  01 02", "0000 X -",
              "0038      123 0000015000    1 AA", "6000       7E8 0000005000 0008  01 02 03 04 05 06 07 08"});
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write("v701.trc", trace)));
    const std::string table = TableOf(doc);
    EXPECT_EQ(table.substr(table.find('\n') + 1), "123\t-\t2\t10.000\t10.000\t10.000\t1\t1.500\t2\t0\n"
                                                  "7E8\t-\t3\t2.000\t2.500\t3.000\t2\t6.000\t8\t0\n");
}

TEST(IdentifierStatistics, TracesWithoutIdentifiersSayWhy) {
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write("kline.trc", Diagnostic601())));
    const IdentifierStatistics statistics = Collect(doc);
    EXPECT_TRUE(statistics.figures.empty());
    EXPECT_EQ(statistics.emptyReason, "No record of this trace carries an identifier: it holds no CAN or Flex frames.");

    CAnalyzerDoc empty;
    ASSERT_TRUE(empty.OnOpenDocument(dir.Write("empty.trc", Head("ZDT Trace File", "601") + "[TraceData]\r\n")));
    EXPECT_EQ(Collect(empty).emptyReason, "The list shows no rows.");
}

TEST(IdentifierStatistics, ReportsProgressAndAStoppedPassLeavesNothing) {
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write("bus.trc", HandTrace())));
    IdentifierStatistics statistics;
    LastReport report;
    EXPECT_TRUE(CollectIdentifierStatistics(doc, statistics, &report));
    EXPECT_EQ(statistics.figures.size(), 6u);
    EXPECT_EQ(report.last, std::make_pair(16ull, 16ull));

    class StopAtOnce final : public zdt::ProgressSink {
        bool onProgress(unsigned long long, unsigned long long) override { return false; }
    } stopAtOnce;
    EXPECT_FALSE(CollectIdentifierStatistics(doc, statistics, &stopAtOnce));
    EXPECT_TRUE(statistics.figures.empty());
    CycleSeries series;
    EXPECT_FALSE(CollectCycleSeries(doc, {0x7E8, false, 1}, series, &stopAtOnce));
    EXPECT_TRUE(series.points.empty());
}

// ---- many rows: the blocks read by two threads join to what one reading gives ------------

struct WrittenFrame {
    IdentifierKey key;
    unsigned time; // 0: no time
    unsigned length;
};

// Rows enough for many blocks, with frames without a time and clocks that jump back.
std::vector<WrittenFrame> ManyFrames(std::size_t count) {
    std::mt19937 random(7);
    const auto below = [&random](unsigned bound) { return static_cast<unsigned>(random() % bound); };
    std::vector<WrittenFrame> frames;
    unsigned clock = 1;
    for (std::size_t i = 0; i < count; ++i) {
        WrittenFrame frame;
        frame.key = {0x100u + below(40), below(5) == 0, static_cast<std::uint8_t>(1 + below(2))};
        clock += below(900);
        frame.time = below(97) == 0 ? 0u : clock;
        if (below(1000) == 0)
            frame.time = clock / 2; // runs backwards
        frame.length = below(9);
        frames.push_back(frame);
    }
    return frames;
}

// Figures worked out from the written frames alone: all times per key, then their steps.
std::map<IdentifierKey, IdentifierFigures> Reference(const std::vector<WrittenFrame>& frames) {
    std::map<IdentifierKey, std::vector<const WrittenFrame*>> byKey;
    for (const WrittenFrame& frame : frames)
        byKey[frame.key].push_back(&frame);
    std::map<IdentifierKey, IdentifierFigures> reference;
    for (const auto& [key, list] : byKey) {
        IdentifierFigures& f = reference[key];
        f.key = key;
        f.count = list.size();
        f.lengthMin = 255;
        std::vector<unsigned> times;
        for (const WrittenFrame* frame : list) {
            f.lengthSum += frame->length;
            f.lengthMin = std::min<std::uint8_t>(f.lengthMin, static_cast<std::uint8_t>(frame->length));
            f.lengthMax = std::max<std::uint8_t>(f.lengthMax, static_cast<std::uint8_t>(frame->length));
            if (frame->time == 0)
                ++f.skippedTimes;
            else
                times.push_back(frame->time);
        }
        f.cycleMinMicros = ~0u;
        for (std::size_t i = 1; i < times.size(); ++i) {
            if (times[i] < times[i - 1]) {
                ++f.skippedTimes;
                continue;
            }
            const unsigned cycle = times[i] - times[i - 1];
            ++f.cycles;
            f.cycleSumMicros += cycle;
            f.cycleMinMicros = std::min(f.cycleMinMicros, cycle);
            f.cycleMaxMicros = std::max(f.cycleMaxMicros, cycle);
        }
        if (f.cycles == 0)
            f.cycleMinMicros = 0;
    }
    return reference;
}

void ExpectSameFigures(const IdentifierFigures& got, const IdentifierFigures& want) {
    SCOPED_TRACE(IdentifierText(want.key) + " channel " + ChannelText(want.key));
    EXPECT_EQ(got.key, want.key);
    EXPECT_EQ(got.count, want.count);
    EXPECT_EQ(got.skippedTimes, want.skippedTimes);
    EXPECT_EQ(got.cycles, want.cycles);
    EXPECT_EQ(got.cycleSumMicros, want.cycleSumMicros);
    EXPECT_EQ(got.cycleMinMicros, want.cycleMinMicros);
    EXPECT_EQ(got.cycleMaxMicros, want.cycleMaxMicros);
    EXPECT_EQ(got.lengthSum, want.lengthSum);
    EXPECT_EQ(got.lengthMin, want.lengthMin);
    EXPECT_EQ(got.lengthMax, want.lengthMax);
}

TEST(IdentifierStatistics, ManyRowsMatchFiguresOfTheWrittenFrames) {
    const std::vector<WrittenFrame> frames = ManyFrames(150000);
    std::string trace = Head("CAN Onboard", "601") + "[TraceData]\r\n";
    for (const WrittenFrame& frame : frames)
        trace += Frame(frame.key.extended ? "5800" : "5000", frame.key.channel, frame.key.identifier, frame.time,
                       frame.length) +
                 "\r\n";
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write("many.trc", trace)));
    const IdentifierStatistics statistics = Collect(doc);
    const auto reference = Reference(frames);
    ASSERT_EQ(statistics.figures.size(), reference.size());
    auto want = reference.begin();
    for (const IdentifierFigures& got : statistics.figures)
        ExpectSameFigures(got, (want++)->second);

    // The chart's series is made of exactly the cycle times the figures sum up.
    const IdentifierKey key = statistics.figures.front().key;
    CycleSeries series;
    ASSERT_TRUE(CollectCycleSeries(doc, key, series));
    const IdentifierFigures& figures = reference.at(key);
    ASSERT_EQ(series.points.size(), figures.cycles);
    std::uint64_t sum = 0;
    for (const CyclePoint& point : series.points)
        sum += point.cycleMicros;
    EXPECT_EQ(sum, figures.cycleSumMicros);

    // Cancel half-way, while both threads read.
    class StopHalfWay final : public zdt::ProgressSink {
        bool onProgress(unsigned long long done, unsigned long long total) override { return done < total / 2; }
    } stop;
    IdentifierStatistics stopped;
    EXPECT_FALSE(CollectIdentifierStatistics(doc, stopped, &stop));
    EXPECT_TRUE(stopped.figures.empty());
}

// The accumulator joined at any row gives what one run over all rows gives.
TEST(IdentifierStatisticsAccumulator, JoinsRunsAtAnyRow) {
    const std::vector<WrittenFrame> frames = ManyFrames(400);
    const auto addRange = [&](IdentifierStatisticsAccumulator& into, std::size_t from, std::size_t to) {
        for (std::size_t i = from; i < to; ++i)
            into.Add(frames[i].key, frames[i].time == 0 ? std::nullopt : std::optional<std::uint32_t>(frames[i].time),
                     static_cast<std::uint8_t>(frames[i].length));
    };
    const auto reference = Reference(frames);
    for (std::size_t cut = 0; cut <= frames.size(); cut += 23) {
        SCOPED_TRACE(cut);
        IdentifierStatisticsAccumulator early, late, last;
        addRange(early, 0, cut);
        addRange(late, cut, (cut + frames.size()) / 2);
        addRange(last, (cut + frames.size()) / 2, frames.size());
        early.Append(std::move(late));
        early.Append(std::move(last));
        EXPECT_EQ(last.Size(), 0u);
        const std::vector<IdentifierFigures> joined = early.TakeSorted();
        ASSERT_EQ(joined.size(), reference.size());
        auto want = reference.begin();
        for (const IdentifierFigures& got : joined)
            ExpectSameFigures(got, (want++)->second);
    }
}

TEST(CycleTracker, SkipsMissingAndBackwardTimesAndRestartsFromTheLatter) {
    CycleTracker tracker;
    std::uint32_t cycle = 0;
    EXPECT_EQ(tracker.Next(std::nullopt, cycle), CycleTracker::Step::Skipped);
    EXPECT_EQ(tracker.Next(100u, cycle), CycleTracker::Step::First);
    EXPECT_EQ(tracker.Next(100u, cycle), CycleTracker::Step::Cycle);
    EXPECT_EQ(cycle, 0u);
    EXPECT_EQ(tracker.Next(std::nullopt, cycle), CycleTracker::Step::Skipped);
    EXPECT_EQ(tracker.Next(50u, cycle), CycleTracker::Step::Skipped);
    EXPECT_EQ(tracker.Next(80u, cycle), CycleTracker::Step::Cycle);
    EXPECT_EQ(cycle, 30u);
}

TEST(IdentifierStatisticsText, CellsAsTheTablePrintsThem) {
    EXPECT_EQ(IdentifierText({0x7E8, false, 0}), "7E8");
    EXPECT_EQ(IdentifierText({0, false, 0}), "0");
    EXPECT_EQ(IdentifierText({0x18DAF110, true, 0}), "18DAF110(x)");
    EXPECT_EQ(ChannelText({1, false, 0}), "-");
    EXPECT_EQ(ChannelText({1, false, 12}), "12");
    EXPECT_EQ(MillisText(0), "0.000");
    EXPECT_EQ(MillisText(1005), "1.005");
    EXPECT_EQ(MillisText(4294967295u), "4294967.295");
    EXPECT_EQ(MeanText(2.0 / 3.0), "0.667");

    IdentifierFigures f;
    f.key = {0x10, false, 3};
    f.count = 2;
    f.cycles = 1;
    f.cycleSumMicros = f.cycleMinMicros = f.cycleMaxMicros = 999999;
    f.lengthMin = 0;
    f.lengthMax = 8;
    f.lengthSum = 8;
    EXPECT_EQ(StatisticsCells(f),
              (std::vector<std::string>{"10", "3", "2", "999.999", "999.999", "999.999", "0", "4.000", "8", "0"}));
    IdentifierStatistics statistics;
    statistics.figures = {f};
    EXPECT_EQ(StatisticsTableText(statistics, ','),
              "IDENTIFIER,CHANNEL,COUNT,CYCLE_MIN_MS,CYCLE_MID_MS,CYCLE_MAX_MS,LENGTH_MIN,LENGTH_MID,LENGTH_MAX,"
              "SKIPPED_TIMES\n10,3,2,999.999,999.999,999.999,0,4.000,8,0\n");
}

// ---- the chart's points ------------------------------------------------------------------

TEST(DecimateCycleSeries, KeepsEachColumnsExtremesInTimeOrder) {
    std::vector<CyclePoint> points;
    for (std::uint32_t i = 0; i < 1000000; ++i)
        points.push_back({i * 10, 10000 + (i * 7919) % 501});
    points[123456].cycleMicros = 50; // a gap and a burst must survive
    points[765432].cycleMicros = 900000;
    const std::vector<CyclePoint> shown = DecimateCycleSeries(points, 0, 9999990, 800);
    ASSERT_LE(shown.size(), 1600u);
    ASSERT_GE(shown.size(), 800u);
    EXPECT_NE(std::find(shown.begin(), shown.end(), points[123456]), shown.end());
    EXPECT_NE(std::find(shown.begin(), shown.end(), points[765432]), shown.end());
    for (std::size_t i = 1; i < shown.size(); ++i)
        EXPECT_LT(shown[i - 1].timeMicros, shown[i].timeMicros);
    // Every column's lowest and highest value is there.
    const double width = 9999990.0 / 800;
    for (std::size_t column = 0; column < 800; column += 97) {
        std::uint32_t low = ~0u, high = 0, shownLow = ~0u, shownHigh = 0;
        for (const CyclePoint& p : points)
            if (static_cast<std::size_t>(p.timeMicros / width) == column) {
                low = std::min(low, p.cycleMicros);
                high = std::max(high, p.cycleMicros);
            }
        for (const CyclePoint& p : shown)
            if (static_cast<std::size_t>(p.timeMicros / width) == column) {
                shownLow = std::min(shownLow, p.cycleMicros);
                shownHigh = std::max(shownHigh, p.cycleMicros);
            }
        EXPECT_EQ(shownLow, low) << column;
        EXPECT_EQ(shownHigh, high) << column;
    }
}

TEST(DecimateCycleSeries, ShowsOnlyTheRangeAndFewPointsAsThey) {
    const std::vector<CyclePoint> points = {{10, 5}, {20, 7}, {30, 6}, {40, 1}};
    EXPECT_EQ(DecimateCycleSeries(points, 15, 35, 100), (std::vector<CyclePoint>{{20, 7}, {30, 6}}));
    EXPECT_EQ(DecimateCycleSeries(points, 0, 100, 1), (std::vector<CyclePoint>{{20, 7}, {40, 1}}));
    EXPECT_EQ(DecimateCycleSeries(points, 30, 30, 10), (std::vector<CyclePoint>{{30, 6}}));
    EXPECT_TRUE(DecimateCycleSeries(points, 0, 100, 0).empty());
    EXPECT_TRUE(DecimateCycleSeries({}, 0, 100, 10).empty());
}

} // namespace
