#include "classic/ClassicRowFormatter.h"

#include "classic/CAnalyzerDoc.h"
#include "classic/TextFormat.h"
#include "trace/RecordReader.h"

#include <cctype>
#include <cstdio>
#include <memory>

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

// "%02x" upper-cased.
void AppendHexByteUpper(std::string& out, std::uint32_t value) {
    textformat::AppendHex(out, value, 2, '0');
}

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

} // namespace

void AppendDataBytesText(std::string& text, const CTraceItem& item) {
    if (!item.HasData())
        return;
    std::uint8_t length = 0;
    item.GetDataLength(length);
    const std::uint8_t* data = nullptr;
    item.GetData(data);
    if (length == 0 || data == nullptr)
        return;
    char buffer[3 * 256];
    std::size_t used = 0;
    for (std::uint8_t i = 0; i < length; ++i) {
        if (i > 0)
            buffer[used++] = ' ';
        buffer[used++] = kHexDigits[data[i] >> 4];
        buffer[used++] = kHexDigits[data[i] & 0x0F];
    }
    text.append(buffer, used);
}

std::string DataBytesText(const CTraceItem& item) {
    std::string text;
    AppendDataBytesText(text, item);
    return text;
}

void ClassicRowFormatter::TimeCell(zdt::RowIndex row, const CTraceItem& item, std::string& cell, bool& alarm) {
    if (!item.HasTime())
        return;
    if (m_doc.SchemaNumber() == 701) {
        cell = FormatV701Time(m_doc, *m_reader.Get(), row, item, m_previousTimed);
        return;
    }
    const RowTime time = ComputeRowTime(m_doc, row, item, TimeUse::Screen);
    alarm = time.alarm;
    if (time.blank)
        cell = " ";
    else
        AppendFormattedTime(cell, time.value, time.digits);
}

void ClassicRowFormatter::FillColumns(zdt::RowIndex row, const CTraceItem& item, ClassicRow& out, bool& alarm) {
    auto& c = out.columns;
    std::uint8_t channel = 0;
    if (item.HasChannel() && item.GetChannel(channel) == 0 && channel != 0)
        textformat::AppendUnsigned(c[1], channel);
    if (item.HasIdentifier()) {
        std::uint32_t identifier = 0;
        std::uint8_t extended = 0;
        item.GetIdentifier(identifier);
        item.GetExtendedFlag(extended);
        textformat::AppendHex(c[2], identifier, 8, ' ');
        c[2] += extended ? "(x)" : "   ";
    }
    TimeCell(row, item, c[0], alarm);
    if (item.IsEvent()) {
        item.GetEventText(c[6]);
        if (item.HasMarkText()) {
            std::string mark;
            item.GetMarkText(mark);
            c[6].append("(").append(mark).append(")");
        }
    } else if (item.IsPcTime()) {
        c[6] = "[PC Time Stamp]";
    } else {
        AppendDataBytesText(c[6], item);
    }
    if (item.HasPriority()) {
        std::uint32_t priority = 0;
        item.GetPriority(priority);
        AppendHexByteUpper(c[3], priority);
    }
    if (item.HasSource()) {
        std::uint32_t source = 0;
        item.GetSource(source);
        AppendHexByteUpper(c[4], source);
    }
    if (item.HasDestination()) {
        std::uint8_t destination = 0;
        item.GetDestination(destination);
        AppendHexByteUpper(c[5], destination);
    }
    if (item.IsPcTime())
        item.GetPcTimeText(c[7]);
}

ClassicRow ClassicRowFormatter::Format(zdt::RowIndex row, zdt::RowIndex selectedRow) {
    ClassicRow out;
    Format(row, out, selectedRow);
    return out;
}

void ClassicRowFormatter::Format(zdt::RowIndex row, ClassicRow& out, zdt::RowIndex selectedRow) {
    for (std::string& column : out.columns)
        column.clear();
    out.mark = " ";
    out.foreground = 0x000000;
    out.background = 0xFFFFFF;
    CTraceItemI item;
    RecordReader* reader = m_reader.Get();
    const bool read = reader != nullptr && reader->ReadItem(row, item);
    if (!read) {
        m_previousTimed.Reset();
        return;
    }
    out.foreground = RowColour(item);
    const bool bookmarked = m_doc.IsBookmarked(row);
    bool alarm = false;
    FillColumns(row, item, out, alarm);
    out.mark = alarm ? (bookmarked ? "BA" : "A") : (bookmarked ? "B" : " ");
    if (selectedRow >= 0 && row == selectedRow)
        out.background = ColourSelectedRow;
}
