#include "classic/ClassicRowFormatter.h"

#include "classic/CAnalyzerDoc.h"

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

std::string HexByteUpper(std::uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "%02x", value);
    for (char* p = text; *p; ++p)
        *p = static_cast<char>(std::toupper(static_cast<unsigned char>(*p)));
    return text;
}

std::uint32_t RowColour(const CTraceItem& item) {
    if (item.HasSeverity()) {
        std::uint8_t severity = 0;
        item.GetSeverity(severity);
        switch (severity) {
        case 1: return ColourRed;
        case 2: return ColourGreen;
        case 5: return ColourBlue;
        default: return 0x000000;
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

std::string DataBytesText(const CTraceItem& item) {
    std::string text;
    if (!item.HasData())
        return text;
    std::uint8_t length = 0;
    item.GetDataLength(length);
    const std::uint8_t* data = nullptr;
    item.GetData(data);
    if (length == 0 || data == nullptr)
        return text;
    text.reserve(length * 3u);
    for (std::uint8_t i = 0; i < length; ++i) {
        if (i > 0)
            text += ' ';
        text += kHexDigits[data[i] >> 4];
        text += kHexDigits[data[i] & 0x0F];
    }
    return text;
}

std::string ClassicRowFormatter::TimeCell(std::uint32_t row, const CTraceItem& item, bool& alarm) {
    if (!item.HasTime())
        return {};
    if (m_doc.SchemaNumber() == 701)
        return FormatV701Time(m_doc, row, item, m_previousTimed);
    const RowTime time = ComputeRowTime(m_doc, row, item, TimeUse::Screen);
    alarm = time.alarm;
    return time.blank ? std::string(" ") : FormatTime(time.value, time.digits);
}

void ClassicRowFormatter::FillColumns(std::uint32_t row, const CTraceItem& item, ClassicRow& out, bool& alarm) {
    auto& c = out.columns;
    std::uint8_t channel = 0;
    if (item.HasChannel() && item.GetChannel(channel) == 0 && channel != 0)
        c[1] = std::to_string(channel);
    if (item.HasIdentifier()) {
        std::uint32_t identifier = 0;
        std::uint8_t extended = 0;
        item.GetIdentifier(identifier);
        item.GetExtendedFlag(extended);
        char text[32];
        if (extended)
            std::snprintf(text, sizeof text, "%8X%s", identifier, "(x)");
        else
            std::snprintf(text, sizeof text, "%8X   ", identifier);
        c[2] = text;
    }
    c[0] = TimeCell(row, item, alarm);
    if (item.IsEvent()) {
        item.GetEventText(c[6]);
        if (item.HasMarkText()) {
            std::string mark;
            item.GetMarkText(mark);
            c[6] += "(" + mark + ")";
        }
    } else if (item.IsPcTime()) {
        c[6] = "[PC Time Stamp]";
    } else {
        c[6] = DataBytesText(item);
    }
    if (item.HasPriority()) {
        std::uint32_t priority = 0;
        item.GetPriority(priority);
        c[3] = HexByteUpper(priority);
    }
    if (item.HasSource()) {
        std::uint32_t source = 0;
        item.GetSource(source);
        c[4] = HexByteUpper(source);
    }
    if (item.HasDestination()) {
        std::uint8_t destination = 0;
        item.GetDestination(destination);
        c[5] = HexByteUpper(destination);
    }
    if (item.IsPcTime())
        item.GetPcTimeText(c[7]);
}

ClassicRow ClassicRowFormatter::Format(std::uint32_t row, long long selectedRow) {
    ClassicRow out;
    std::unique_ptr<CTraceItemI> item(m_doc.GetItem(row));
    if (m_doc.NeedsHeaderUpdate())
        m_doc.ClearHeaderUpdate();
    if (!item) {
        m_previousTimed.Reset();
        return out;
    }
    out.foreground = RowColour(*item);
    const bool bookmarked = m_doc.IsBookmarked(row);
    bool alarm = false;
    FillColumns(row, *item, out, alarm);
    out.mark = alarm ? (bookmarked ? "BA" : "A") : (bookmarked ? "B" : " ");
    if (selectedRow >= 0 && static_cast<long long>(row) == selectedRow)
        out.background = ColourSelectedRow;
    return out;
}
