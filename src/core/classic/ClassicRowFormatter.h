#pragma once

#include "classic/ClassicTime.h"
#include "classic/TextFormat.h"
#include "common/RowTypes.h"
#include "trace/CTraceItemI.h"

#include <array>
#include <cstdint>
#include <string>

class CAnalyzerDoc;

// The eight list columns in their order; each renders one field of the record.
enum class ClassicColumn { Time, Channel, Identifier, Priority, Source, Destination, Data, PcTime };
constexpr std::size_t ClassicColumnCount = 8;

// The columns as the list registers them: name, width, field number, right alignment.
struct ClassicColumnSpec {
    const char* name;
    int width;
    int field;
    bool rightAligned;
    int menuId;
};
const std::array<ClassicColumnSpec, ClassicColumnCount>& ClassicColumns();
// The registration text of the list header.
const char* ClassicColumnRegistration();

// One row of the classic list, as the list draws it. Colours are 0xBBGGRR.
struct ClassicRow {
    std::string mark = " ";
    std::array<std::string, ClassicColumnCount> columns;
    std::uint32_t foreground = 0x000000;
    std::uint32_t background = 0xFFFFFF;
};

constexpr std::uint32_t ColourRed = 0x0000FF;
constexpr std::uint32_t ColourGreen = 0x00C800;
constexpr std::uint32_t ColourBlue = 0xC80000;
constexpr std::uint32_t ColourDirectionBlue = 0xFF0000;
constexpr std::uint32_t ColourSelectedRow = 0xC0C0C0;

// Data bytes as upper-case hex pairs joined by single blanks; empty without data.
std::string DataBytesText(const CTraceItem& item);
void AppendDataBytesText(std::string& text, const CTraceItem& item);

// Builds rows from freshly read records; keeps nothing of a row but the 701 time cache.
class ClassicRowFormatter {
public:
    // Each formatter reads through a reader of its own: formatters on several threads
    // may format rows of one document at once, and one may format the rows below
    // RowsReadSoFar() while the document is being opened.
    explicit ClassicRowFormatter(CAnalyzerDoc& doc) : m_doc(doc), m_reader(doc) {}
    // `selectedRow` zdt::NoRow: no selection.
    ClassicRow Format(zdt::RowIndex row, zdt::RowIndex selectedRow = zdt::NoRow);
    // The same into `out`, reusing its strings: for callers that format rows by the million.
    void Format(zdt::RowIndex row, ClassicRow& out, zdt::RowIndex selectedRow = zdt::NoRow);
    // The row as a line of text: its number (row + 1), the mark and the eight column texts of
    // Format, separated by tabs, and a line end.
    void AppendRowLine(zdt::RowIndex row, std::string& text);
    // The lines of rows [first, end) one after the other, as AppendRowLine gives them: the
    // fastest way to many rows' texts. The document's settings are read once for the run.
    void AppendRowLines(zdt::RowIndex first, zdt::RowIndex end, std::string& text);
    // The column texts of a record, with its time cell and the alarm flag.
    void FillColumns(zdt::RowIndex row, const CTraceItem& item, ClassicRow& out, bool& alarm);

private:
    class CellWriter;
    // What a row's time cell shows.
    struct TimeCell {
        enum class Show : std::uint8_t { Nothing, Blank, Dashes, Value };
        Show show = Show::Nothing;
        std::uint32_t value = 0;
        int digits = 3;
        bool alarm = false;
    };
    template <class Item>
    TimeCell RowTimeCell(zdt::RowIndex row, const Item& item, const RowTimeRules& rules, RecordReader* reader);
    // Reads the row into m_item and writes its column texts into m_cells; false when the row
    // cannot be read.
    bool ReadCells(zdt::RowIndex row, bool& alarm);
    // Writes the column texts, separated by tabs, and notes where each column ends in
    // m_columnEnds. A template so that the rows this formatter reads itself call the record
    // directly.
    template <class Item> void WriteCells(const Item& item, const TimeCell& time, CellWriter& cells);
    // Copies the column texts of m_cells into `out`.
    void SplitCells(ClassicRow& out) const;

    CAnalyzerDoc& m_doc;
    DocumentRecordReader m_reader;
    PreviousTimedRecordFinder m_previousTimed;
    CTraceItemI m_item;
    // The cell texts of the row last written, each column followed by a tab but the last; the
    // buffer only grows, so that formatting a row allocates nothing.
    std::string m_cells;
    std::array<std::size_t, ClassicColumnCount> m_columnEnds{};
    std::string m_eventText;
    textformat::DecimalCounter m_lineNumber;
};
