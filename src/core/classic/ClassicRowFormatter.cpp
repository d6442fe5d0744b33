#include "classic/ClassicRowFormatter.h"

#include "classic/CAnalyzerDoc.h"
#include "classic/TextFormat.h"
#include "trace/RecordReader.h"

#include <algorithm>
#include <cstring>

const std::array<ClassicColumnSpec, ClassicColumnCount>& ClassicColumns() {
    static const std::array<ClassicColumnSpec, ClassicColumnCount> columns{{
        {"Time [ms]", 120, 4, true, 40039},
        {"Channel", 0, 1, false, 40043},
        {"Identifier", 0, 2, true, 40040},
        {"Priority", 0, 6, false, 40045},
        {"Source", 0, 7, false, 40046},
        {"Destination", 0, 8, false, 40047},
        {"Data / Events", 210, 5, false, 40041},
        {"PC Time", 200, 9, false, 40042},
    }};
    return columns;
}

const char* ClassicColumnRegistration() {
    return "|Time [ms]:120:4:1||Channel:0:1:0||Identifier:0:2:1||Priority:0:6:0||Source:0:7:0||Destination:0:8:0||"
           "Data / Events:210:5:0||PC Time: 200:9:0|";
}

namespace {

const char kHexDigits[] = "0123456789ABCDEF";

// The longest data text: 255 bytes as hex pairs joined by blanks, and the blank and the spare
// character that the writer puts behind the last one.
constexpr std::size_t MaxDataText = 3 * 255 + 1;
// Room for channel, identifier, priority, source and destination with their tabs.
constexpr std::size_t MaxNumberCells = 64;

std::uint32_t RowColour(const CTraceItem& item) {
    if (item.HasSeverity()) {
        std::uint8_t severity = 0;
        item.GetSeverity(severity);
        switch (severity) {
        case 1:
            return ColourRed;
        case 2:
            return ColourGreen;
        case 5:
            return ColourBlue;
        default:
            return 0x000000;
        }
    }
    std::uint8_t direction = 0;
    if (item.HasDirection()) {
        item.GetDirection(direction);
        if (direction != 0)
            return ColourDirectionBlue;
    }
    return 0x000000;
}

// "00 " to "FF ", four bytes apart, so that a data byte costs one four-byte copy.
constexpr struct HexTripleTable {
    char triples[256][4];
    constexpr HexTripleTable() : triples() {
        for (unsigned value = 0; value < 256; ++value) {
            triples[value][0] = kHexDigits[value >> 4];
            triples[value][1] = kHexDigits[value & 0x0F];
            triples[value][2] = ' ';
        }
    }
} HexTriples;

// Needs room for MaxDataText characters.
template <class Item> char* WriteDataBytes(char* out, const Item& item) {
    if (!item.HasData())
        return out;
    std::uint8_t length = 0;
    item.GetDataLength(length);
    const std::uint8_t* data = nullptr;
    item.GetData(data);
    if (length == 0 || data == nullptr)
        return out;
    // Each byte is written with a blank and one spare character behind it, which the next
    // byte overwrites; the last blank is taken back.
    for (std::size_t i = 0; i < length; ++i, out += 3)
        std::memcpy(out, HexTriples.triples[data[i]], 4);
    return out - 1;
}

const char* MarkText(bool alarm, bool bookmarked) {
    return alarm ? (bookmarked ? "BA" : "A") : (bookmarked ? "B" : " ");
}

} // namespace

// Writes a row's texts into the formatter's cell buffer with one room check per piece rather
// than per character: rows are formatted by the million.
class ClassicRowFormatter::CellWriter {
public:
    CellWriter(std::string& buffer, std::size_t start) : m_buffer(buffer), m_used(start) {
        if (m_buffer.size() < start + 1024)
            m_buffer.resize(start + 1024);
    }
    // Where to write up to `length` characters; Advance takes what was written.
    char* Room(std::size_t length) {
        if (m_buffer.size() - m_used < length)
            m_buffer.resize(std::max(2 * m_buffer.size(), m_used + length));
        return m_buffer.data() + m_used;
    }
    void Advance(const char* end) { m_used = static_cast<std::size_t>(end - m_buffer.data()); }
    void Append(const char* text, std::size_t length) {
        std::memcpy(Room(length), text, length);
        m_used += length;
    }
    void Append(const std::string& text) { Append(text.data(), text.size()); }
    std::size_t Used() const { return m_used; }

private:
    std::string& m_buffer;
    std::size_t m_used;
};

void AppendDataBytesText(std::string& text, const CTraceItem& item) {
    char buffer[MaxDataText];
    text.append(buffer, static_cast<std::size_t>(WriteDataBytes(buffer, item) - buffer));
}

std::string DataBytesText(const CTraceItem& item) {
    std::string text;
    AppendDataBytesText(text, item);
    return text;
}

void ClassicRowFormatter::WriteTimeCell(zdt::RowIndex row, const CTraceItem& item, CellWriter& cells, bool& alarm) {
    if (!item.HasTime())
        return;
    char* out = cells.Room(MaxFormattedTimeLength);
    if (m_doc.SchemaNumber() == 701) {
        std::uint32_t value = 0;
        if (V701TimeValue(m_doc, *m_reader.Get(), row, item, m_previousTimed, value)) {
            out = WriteFormattedTime(out, value, 3);
        } else {
            *out++ = '-';
            *out++ = '-';
        }
    } else {
        const RowTime time = ComputeRowTime(m_doc, row, item, TimeUse::Screen);
        alarm = time.alarm;
        if (time.blank)
            *out++ = ' ';
        else
            out = WriteFormattedTime(out, time.value, time.digits);
    }
    cells.Advance(out);
}

template <class Item>
void ClassicRowFormatter::WriteCells(zdt::RowIndex row, const Item& item, CellWriter& cells, bool& alarm) {
    std::size_t column = 0;
    const auto endColumn = [&](char* out) {
        m_columnEnds[column++] = static_cast<std::size_t>(out - m_cells.data());
        *out++ = '\t';
        return out;
    };

    WriteTimeCell(row, item, cells, alarm);
    char* out = endColumn(cells.Room(MaxNumberCells));
    std::uint8_t channel = 0;
    if (item.HasChannel() && item.GetChannel(channel) == 0 && channel != 0)
        out = textformat::WriteUnsigned(out, channel);
    out = endColumn(out);
    if (item.HasIdentifier()) {
        std::uint32_t identifier = 0;
        std::uint8_t extended = 0;
        item.GetIdentifier(identifier);
        item.GetExtendedFlag(extended);
        out = textformat::WriteHex(out, identifier, 8, ' ');
        std::memcpy(out, extended ? "(x)" : "   ", 3);
        out += 3;
    }
    out = endColumn(out);
    if (item.HasPriority()) {
        std::uint32_t priority = 0;
        item.GetPriority(priority);
        out = textformat::WriteHex(out, priority, 2, '0');
    }
    out = endColumn(out);
    if (item.HasSource()) {
        std::uint32_t source = 0;
        item.GetSource(source);
        out = textformat::WriteHex(out, source, 2, '0');
    }
    out = endColumn(out);
    if (item.HasDestination()) {
        std::uint8_t destination = 0;
        item.GetDestination(destination);
        out = textformat::WriteHex(out, destination, 2, '0');
    }
    cells.Advance(endColumn(out));

    if (item.IsEvent()) {
        m_eventText.clear();
        item.GetEventText(m_eventText);
        if (item.HasMarkText()) {
            m_eventText += '(';
            std::string mark;
            item.GetMarkText(mark);
            m_eventText += mark;
            m_eventText += ')';
        }
        cells.Append(m_eventText);
    } else if (item.IsPcTime()) {
        static constexpr char PcTimeStamp[] = "[PC Time Stamp]";
        cells.Append(PcTimeStamp, sizeof PcTimeStamp - 1);
    } else {
        cells.Advance(WriteDataBytes(cells.Room(MaxDataText), item));
    }
    cells.Advance(endColumn(cells.Room(1)));

    if (item.IsPcTime()) {
        m_eventText.clear();
        item.GetPcTimeText(m_eventText);
        cells.Append(m_eventText);
    }
    m_columnEnds[column] = cells.Used();
}

bool ClassicRowFormatter::ReadCells(zdt::RowIndex row, bool& alarm) {
    RecordReader* reader = m_reader.Get();
    if (reader == nullptr || !reader->ReadItem(row, m_item)) {
        m_previousTimed.Reset();
        return false;
    }
    CellWriter cells(m_cells, CellsStart);
    WriteCells(row, m_item, cells, alarm);
    m_cellsEnd = cells.Used();
    // Room for the line end of AppendRowLine.
    cells.Room(1);
    return true;
}

void ClassicRowFormatter::SplitCells(ClassicRow& out) const {
    std::size_t begin = CellsStart;
    for (std::size_t i = 0; i < ClassicColumnCount; ++i) {
        out.columns[i].assign(m_cells.data() + begin, m_columnEnds[i] - begin);
        begin = m_columnEnds[i] + 1;
    }
}

void ClassicRowFormatter::FillColumns(zdt::RowIndex row, const CTraceItem& item, ClassicRow& out, bool& alarm) {
    CellWriter cells(m_cells, CellsStart);
    WriteCells(row, item, cells, alarm);
    m_cellsEnd = cells.Used();
    SplitCells(out);
}

ClassicRow ClassicRowFormatter::Format(zdt::RowIndex row, zdt::RowIndex selectedRow) {
    ClassicRow out;
    Format(row, out, selectedRow);
    return out;
}

void ClassicRowFormatter::Format(zdt::RowIndex row, ClassicRow& out, zdt::RowIndex selectedRow) {
    out.mark = " ";
    out.foreground = 0x000000;
    out.background = 0xFFFFFF;
    bool alarm = false;
    if (!ReadCells(row, alarm)) {
        for (std::string& column : out.columns)
            column.clear();
        return;
    }
    SplitCells(out);
    out.foreground = RowColour(m_item);
    out.mark = MarkText(alarm, m_doc.IsBookmarked(row));
    if (selectedRow >= 0 && row == selectedRow)
        out.background = ColourSelectedRow;
}

void ClassicRowFormatter::AppendRowLine(zdt::RowIndex row, std::string& text) {
    const std::string_view number = m_lineNumber.Text(static_cast<std::uint32_t>(row) + 1);
    bool alarm = false;
    if (!ReadCells(row, alarm)) {
        text += number;
        text += "\t \t\t\t\t\t\t\t\t\n";
        return;
    }
    // Number, mark and their tabs go just ahead of the cells, so that the line is appended whole.
    const char* mark = MarkText(alarm, m_doc.IsBookmarked(row));
    const std::size_t markLength = mark[1] == '\0' ? 1 : 2;
    char* start = m_cells.data() + CellsStart - 1;
    *start = '\t';
    start -= markLength;
    std::memcpy(start, mark, markLength);
    *--start = '\t';
    start -= number.size();
    std::memcpy(start, number.data(), number.size());
    m_cells[m_cellsEnd] = '\n';
    text.append(start, static_cast<std::size_t>(m_cells.data() + m_cellsEnd + 1 - start));
}
