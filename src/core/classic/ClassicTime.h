#pragma once

#include "classic/CAnalyzerDoc.h"
#include "common/RowTypes.h"
#include "trace/ChunkedArray.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

class CTraceItem;
class RecordReader;

// "1.234,567": the value with `digits` decimals behind a comma and a dot before each
// group of three integer digits, whatever the locale.
std::string FormatTime(std::uint32_t value, int digits);
void AppendFormattedTime(std::string& text, std::uint32_t value, int digits);
// The same into `out`, which has room for MaxFormattedTimeLength characters; returns the end.
constexpr int MaxFormattedTimeDigits = 9;
constexpr std::size_t MaxFormattedTimeLength = 16;
char* WriteFormattedTime(char* out, std::uint32_t value, int digits);

// Where a row's time is shown: the list and the search, or the ".sbt" report, which
// prints relative-channel times from the per-channel array.
enum class TimeUse { Screen, Report };

// The time of one row of a file of schema other than 701, before formatting.
struct RowTime {
    bool blank = true; // time 0: the cell is a single blank
    std::uint32_t value = 0;
    int digits = 3;
    bool alarm = false; // the gap to the previous row reaches the alarm threshold
};

// Requires item.HasTime(). Reads the document's index arrays for row `row`.
RowTime ComputeRowTime(const CAnalyzerDoc& doc, zdt::RowIndex row, const CTraceItem& item, TimeUse use);

// The document's settings that the times of rows depend on, read once for a run of rows
// rather than once per row. Valid while the document keeps its file, filter and time mode.
class RowTimeRules {
public:
    RowTimeRules(const CAnalyzerDoc& doc, TimeUse use);
    // ComputeRowTime of the document the rules were read from. A template so that a
    // concrete record is called directly.
    template <class Item> RowTime Compute(zdt::RowIndex row, const Item& item) const;

private:
    static std::uint32_t ArrayValue(const ChunkedArray& array, zdt::RowIndex row) {
        return row >= 0 && static_cast<std::uint32_t>(row) < array.Size() ? array.Get(static_cast<std::uint32_t>(row))
                                                                          : 0;
    }

    // Null without a trace: every time is blank.
    const CTraceFile* m_file = nullptr;
    // Microseconds; 0 when no gap raises an alarm.
    std::uint64_t m_alarmThreshold = 0;
    TimeMode m_mode = TimeMode::Relative;
    TimeUse m_use = TimeUse::Screen;
    bool m_deltaFile = false;
    bool m_filterActive = false;
    std::uint32_t m_byteTime = 0;
};

template <class Item> RowTime RowTimeRules::Compute(zdt::RowIndex row, const Item& item) const {
    RowTime result;
    if (m_file == nullptr)
        return result;
    const std::uint32_t delta = ArrayValue(m_file->DeltaTimes(), row);
    result.alarm = m_alarmThreshold != 0 && delta >= m_alarmThreshold;

    std::uint32_t time = 0;
    item.GetTime(time);
    if (time == 0)
        return result;
    result.blank = false;
    result.digits = 3;
    if (m_mode == TimeMode::InterByte) {
        if (!item.IsLineByte())
            result.value = delta;
        else
            result.value = delta > m_byteTime ? delta - m_byteTime : 0;
    } else if (m_deltaFile) {
        if (m_mode == TimeMode::Absolute) {
            result.value = ArrayValue(m_file->AbsoluteTimes(), row);
            result.digits = 6;
        } else {
            result.value = m_filterActive ? delta : time;
        }
    } else if (m_mode == TimeMode::Absolute) {
        result.value = time;
        result.digits = 6;
    } else if (m_mode == TimeMode::RelativeChannel && m_use == TimeUse::Report) {
        result.value = time - ArrayValue(m_file->ChannelDeltas(), row);
    } else {
        result.value = delta;
    }
    return result;
}

// Finds, for schema 701, the nearest earlier timed record by reading rows backwards
// (never row 0). Remembers the last answer so that rows read in order cost one step.
class PreviousTimedRecordFinder {
public:
    // True and the time when a timed record stands in rows [1, row).
    bool Find(RecordReader& reader, zdt::RowIndex row, std::uint32_t& time);
    void Reset() { m_valid = false; }

private:
    bool m_valid = false;
    zdt::RowIndex m_forRow = 0; // the answer below is for this row
    bool m_found = false;
    std::uint32_t m_time = 0;
};

// The time a schema 701 row that has a time shows, before formatting with 3 decimals; false
// when the cell shows "--" instead.
bool V701TimeValue(const CAnalyzerDoc& doc, RecordReader& reader, zdt::RowIndex row, const CTraceItem& item,
                   PreviousTimedRecordFinder& finder, std::uint32_t& value);
// The time cell of a schema 701 row that has a time.
std::string FormatV701Time(const CAnalyzerDoc& doc, RecordReader& reader, zdt::RowIndex row, const CTraceItem& item,
                           PreviousTimedRecordFinder& finder);

// A reader of the document's current file for one formatter; a document that read its
// file anew (the filter turned off) gets a new reader.
class DocumentRecordReader {
public:
    explicit DocumentRecordReader(const CAnalyzerDoc& doc);
    ~DocumentRecordReader();
    // Null while the document has no file.
    RecordReader* Get();

private:
    const CAnalyzerDoc& m_doc;
    std::unique_ptr<RecordReader> m_reader;
};
