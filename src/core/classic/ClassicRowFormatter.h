#pragma once

#include "classic/ClassicTime.h"

#include <array>
#include <cstdint>
#include <string>

class CAnalyzerDoc;
class CTraceItem;

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
    // may format rows of one document at once.
    explicit ClassicRowFormatter(CAnalyzerDoc& doc) : m_doc(doc), m_reader(doc) {}
    // `selectedRow` < 0: no selection.
    ClassicRow Format(std::uint32_t row, long long selectedRow = -1);
    // The same into `out`, reusing its strings: for callers that format rows by the million.
    void Format(std::uint32_t row, ClassicRow& out, long long selectedRow = -1);
    // The column texts of a record, with its time cell and the alarm flag.
    void FillColumns(std::uint32_t row, const CTraceItem& item, ClassicRow& out, bool& alarm);

private:
    void TimeCell(std::uint32_t row, const CTraceItem& item, std::string& cell, bool& alarm);

    CAnalyzerDoc& m_doc;
    DocumentRecordReader m_reader;
    PreviousTimedRecordFinder m_previousTimed;
};
