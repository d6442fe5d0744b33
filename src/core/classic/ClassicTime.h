#pragma once

#include "common/RowTypes.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

class CAnalyzerDoc;
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
