#include "classic/ClassicRowFormatter.h"

#include "classic/CAnalyzerDoc.h"
#include "classic/TextFormat.h"
#include "trace/RecordReader.h"

#include <algorithm>
#include <cstring>
#include <string_view>

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

// Writes texts into a string from a given length on, with one room check per piece rather
// than per character: rows are formatted by the million. The string grows ahead of the
// writing; Finish cuts it to what was written.
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
    void Append(std::string_view text) { Append(text.data(), text.size()); }
    std::size_t Used() const { return m_used; }
    // Where `at` stands in the string.
    std::size_t OffsetOf(const char* at) const { return static_cast<std::size_t>(at - m_buffer.data()); }
    void Finish() { m_buffer.resize(m_used); }

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

template <class Item>
ClassicRowFormatter::TimeCell ClassicRowFormatter::RowTimeCell(zdt::RowIndex row, const Item& item,
                                                               const RowTimeRules& rules, RecordReader* reader) {
    TimeCell cell;
    if (!item.HasTime())
        return cell;
    if (m_doc.SchemaNumber() == 701) {
        cell.show = reader != nullptr && V701TimeValue(m_doc, *reader, row, item, m_previousTimed, cell.value)
                        ? TimeCell::Show::Value
                        : TimeCell::Show::Dashes;
        return cell;
    }
    const RowTime time = rules.Compute(row, item);
    cell.alarm = time.alarm;
    cell.show = time.blank ? TimeCell::Show::Blank : TimeCell::Show::Value;
    cell.value = time.value;
    cell.digits = time.digits;
    return cell;
}

template <class Item> void ClassicRowFormatter::WriteCells(const Item& item, const TimeCell& time, CellWriter& cells) {
    std::size_t column = 0;
    const auto endColumn = [&](char* out) {
        m_columnEnds[column++] = cells.OffsetOf(out);
        *out++ = '\t';
        return out;
    };

    char* out = cells.Room(MaxFormattedTimeLength + MaxNumberCells);
    switch (time.show) {
    case TimeCell::Show::Nothing:
        break;
    case TimeCell::Show::Blank:
        *out++ = ' ';
        break;
    case TimeCell::Show::Dashes:
        *out++ = '-';
        *out++ = '-';
        break;
    case TimeCell::Show::Value:
        out = WriteFormattedTime(out, time.value, time.digits);
        break;
    }
    out = endColumn(out);
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
    const TimeCell time = RowTimeCell(row, m_item, RowTimeRules(m_doc, TimeUse::Screen), reader);
    alarm = time.alarm;
    CellWriter cells(m_cells, 0);
    WriteCells(m_item, time, cells);
    return true;
}

void ClassicRowFormatter::SplitCells(ClassicRow& out) const {
    std::size_t begin = 0;
    for (std::size_t i = 0; i < ClassicColumnCount; ++i) {
        out.columns[i].assign(m_cells.data() + begin, m_columnEnds[i] - begin);
        begin = m_columnEnds[i] + 1;
    }
}

void ClassicRowFormatter::FillColumns(zdt::RowIndex row, const CTraceItem& item, ClassicRow& out, bool& alarm) {
    const TimeCell time = RowTimeCell(row, item, RowTimeRules(m_doc, TimeUse::Screen), m_reader.Get());
    alarm = time.alarm;
    CellWriter cells(m_cells, 0);
    WriteCells(item, time, cells);
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
    AppendRowLines(row, row + 1, text);
}

void ClassicRowFormatter::AppendRowLines(zdt::RowIndex first, zdt::RowIndex end, std::string& text) {
    RecordReader* const reader = m_reader.Get();
    const RowTimeRules rules(m_doc, TimeUse::Screen);
    const bool anyBookmark = !m_doc.Bookmarks().empty();
    // The lines go straight into `text`, each number, mark and cell where it stays.
    CellWriter line(text, text.size());
    for (zdt::RowIndex row = first; row < end; ++row) {
        const std::string_view number = m_lineNumber.Text(static_cast<std::uint32_t>(row) + 1);
        if (reader == nullptr || !reader->ReadItem(row, m_item)) {
            m_previousTimed.Reset();
            static constexpr char EmptyColumns[] = "\t \t\t\t\t\t\t\t\t\n";
            line.Append(number);
            line.Append(EmptyColumns, sizeof EmptyColumns - 1);
            continue;
        }
        const TimeCell time = RowTimeCell(row, m_item, rules, reader);
        const char* mark = MarkText(time.alarm, anyBookmark && m_doc.IsBookmarked(row));
        const std::size_t markLength = mark[1] == '\0' ? 1 : 2;
        char* out = line.Room(number.size() + 4);
        std::memcpy(out, number.data(), number.size());
        out += number.size();
        *out++ = '\t';
        std::memcpy(out, mark, markLength);
        out += markLength;
        *out++ = '\t';
        line.Advance(out);
        WriteCells(m_item, time, line);
        line.Append("\n", 1);
    }
    line.Finish();
}
