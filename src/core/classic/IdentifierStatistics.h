#pragma once

#include "common/Operation.h"
#include "common/RowTypes.h"

#include <compare>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class CAnalyzerDoc;
class CTraceItem;

// What the statistics tell apart: a frame's identifier with its extended flag, on the
// channel the list shows for it (0: the list shows none, as for Flex frames). Ordered by
// identifier, then standard before extended, then channel.
struct IdentifierKey {
    std::uint32_t identifier = 0;
    bool extended = false;
    std::uint8_t channel = 0;

    auto operator<=>(const IdentifierKey&) const = default;
};

// The time of a frame on the trace's own time line, in microseconds: the time the list
// shows in absolute mode (the record's time, or the running sum of a file of delta times).
// Cycle times are differences of these, so they are real inter-frame times whatever the
// time mode. Nothing when the list shows the frame no time (no time, or time 0 outside
// schema 701).
std::optional<std::uint32_t> AbsoluteFrameTime(const CAnalyzerDoc& doc, zdt::RowIndex row, const CTraceItem& item);

// The cycle-time rule of one identifier and channel: each frame with a time is compared
// with the frame with a time before it. A frame without a time, or with a time before
// that one, gives no cycle time and is counted as skipped; a frame that ran backwards
// becomes the base of the next, so that a clock that restarted costs one frame, not all.
class CycleTracker {
public:
    enum class Step { First, Cycle, Skipped };
    Step Next(std::optional<std::uint32_t> time, std::uint32_t& cycle);
    bool HasTime() const { return m_hasTime; }
    std::uint32_t LastTime() const { return m_lastTime; }

private:
    bool m_hasTime = false;
    std::uint32_t m_lastTime = 0;
};

// The figures of one identifier and channel. Sums, not lists: memory grows with the
// number of identifiers, never with the number of rows. Counts are of rows, so 32 bits hold them.
struct IdentifierFigures {
    IdentifierKey key;
    std::uint32_t count = 0;
    std::uint32_t skippedTimes = 0;
    std::uint32_t cycles = 0;
    std::uint32_t cycleMinMicros = 0;
    std::uint32_t cycleMaxMicros = 0;
    std::uint8_t lengthMin = 0;
    std::uint8_t lengthMax = 0;
    std::uint64_t cycleSumMicros = 0;
    std::uint64_t lengthSum = 0;

    bool HasCycleTime() const { return cycles != 0; }
    double CycleMeanMillis() const;
    double LengthMean() const;
};

// The outcome of one pass: one entry per identifier and channel, in key order.
struct IdentifierStatistics {
    std::vector<IdentifierFigures> figures;
    zdt::RowCount rowsPassed = 0;
    // Why the table is empty; empty when it is not.
    std::string emptyReason;

    // Null when the key was not seen.
    const IdentifierFigures* Find(const IdentifierKey& key) const;
};

// Adds frames of a run of rows in row order; a later run is joined onto an earlier one.
// An open-addressing table keeps the lookup of each frame cheap even with millions of
// identifiers, as traces with random extended identifiers have.
class IdentifierStatisticsAccumulator {
public:
    IdentifierStatisticsAccumulator();
    ~IdentifierStatisticsAccumulator();
    IdentifierStatisticsAccumulator(IdentifierStatisticsAccumulator&&) noexcept;
    IdentifierStatisticsAccumulator& operator=(IdentifierStatisticsAccumulator&&) noexcept;

    void Add(const IdentifierKey& key, std::optional<std::uint32_t> time, std::uint8_t length);
    // Takes in the frames of the rows that follow this accumulator's rows; `later` is emptied.
    void Append(IdentifierStatisticsAccumulator&& later);
    // The figures in key order; the accumulator is emptied.
    std::vector<IdentifierFigures> TakeSorted();
    std::size_t Size() const;

private:
    struct Table;
    std::unique_ptr<Table> m_table;
};

// The key of a record, or nothing for a record without an identifier.
std::optional<IdentifierKey> IdentifierKeyOf(const CTraceItem& item);

// One pass over the visible rows of `doc`. It only reads, through readers of its own, so it
// may run on another thread while nothing rebuilds the rows. False (and `result` emptied)
// when `progress` stopped it.
bool CollectIdentifierStatistics(CAnalyzerDoc& doc, IdentifierStatistics& result,
                                 zdt::ProgressSink* progress = nullptr);
// The same as a long operation whose figures land in `result`.
zdt::OperationJob IdentifierStatisticsJob(CAnalyzerDoc& doc, std::shared_ptr<IdentifierStatistics> result);

// The table as text: the column names, and the cells of one entry ("-" where there is no value).
constexpr std::size_t StatisticsColumnCount = 10;
const std::vector<std::string>& StatisticsColumnNames();
std::vector<std::string> StatisticsCells(const IdentifierFigures& figures);
// The cells joined by `separator`, and "\n".
void AppendStatisticsLine(std::string& text, const std::vector<std::string>& cells, char separator);
// The same for the cells of `figures`, without building them one by one.
void AppendStatisticsLine(std::string& text, const IdentifierFigures& figures, char separator);
// Header line and one line per entry, cells joined by `separator`, each line ended by "\n".
std::string StatisticsTableText(const IdentifierStatistics& statistics, char separator);

// "7E8", "18DAF110(x)": the identifier as the list shows it, without its blanks.
std::string IdentifierText(const IdentifierKey& key);
// The channel as the list shows it, "-" for none.
std::string ChannelText(const IdentifierKey& key);
// Microseconds as milliseconds with three decimals: "12.345".
std::string MillisText(std::uint32_t micros);
// A mean with three decimals.
std::string MeanText(double value);

constexpr const char* NoCycleTimeText = "-";
