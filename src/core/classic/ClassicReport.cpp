#include "classic/ClassicReport.h"

#include "classic/CAnalyzerDoc.h"
#include "classic/ClassicRowFormatter.h"
#include "trace/RecordReader.h"

#include <cctype>
#include <cstdio>
#include <memory>

namespace {

constexpr int kEditionPartner = 2;
constexpr const char* kPartnerVersion = "V1.0.0";

std::string Printf(const char* format, const char* text) {
    char buffer[512];
    std::snprintf(buffer, sizeof buffer, format, text);
    return buffer;
}

std::string PaddedHexByte(std::uint32_t value) {
    char text[32];
    std::snprintf(text, sizeof text, "%02x%s", value, " ");
    for (char* p = text; *p; ++p)
        *p = static_cast<char>(std::toupper(static_cast<unsigned char>(*p)));
    return text;
}

const char* TypeWord(std::uint16_t type) {
    switch (type) {
    case 0x0003:
    case 0x8002:
        return "K line byte sent";
    case 0x0004:
    case 0x8003:
        return "K line byte received";
    case 0x0021:
    case 0x8012:
        return "Can frame sent";
    case 0x0020:
    case 0x8013:
        return "Can frame received";
    default:
        return "";
    }
}

} // namespace

std::string ReportHead(const CAnalyzerDoc& doc, int edition) {
    std::string head;
    if (edition == kEditionPartner) {
        head += "Title: OVX Trace File\n";
        head += std::string("Product Version: ") + kPartnerVersion + "\n";
        head += "ZDT Version: " + doc.ProductVersion() + "\n";
    } else {
        head += "Title: " + doc.Title() + "\n";
        head += "Product Version: " + doc.ProductVersion() + "\n";
    }
    head += "InterfaceBoard: " + doc.InterfaceBoard() + "\n";
    head += "Date: " + doc.Date() + "\nTime: " + doc.Time() + "\n\n";
    return head;
}

std::string ClassicReportFormatter::FormatLine(zdt::RowIndex row) {
    CTraceItemI item;
    RecordReader* reader = m_reader.Get();
    if (reader == nullptr || !reader->ReadItem(row, item)) {
        m_previousTimed.Reset();
        return {};
    }
    const CTraceItem& record = item;
    std::string line;

    // Time, with the alarm mark in front when alarms are on.
    std::string timeText;
    bool alarm = false;
    if (record.HasTime()) {
        if (m_doc.SchemaNumber() == 701) {
            timeText = FormatV701Time(m_doc, *reader, row, record, m_previousTimed);
        } else {
            const RowTime time = ComputeRowTime(m_doc, row, record, TimeUse::Report);
            alarm = time.alarm;
            timeText = time.blank ? " " : FormatTime(time.value, time.digits);
        }
    }
    if (m_doc.AlarmThreshold() != 0)
        line += alarm ? "A" : " ";
    line += Printf("%13s   ", timeText.c_str());

    if (record.HasChannel()) {
        std::uint8_t channel = 0;
        record.GetChannel(channel);
        char text[32];
        if (channel != 0)
            std::snprintf(text, sizeof text, "%2d %s", channel, " ");
        else
            std::snprintf(text, sizeof text, "%2s", "  ");
        line += text;
    } else {
        line += m_doc.HasChannelColumn() ? Printf("%4s", " ") : Printf("%2s", "  ");
    }

    if (record.HasIdentifier()) {
        std::uint32_t identifier = 0;
        std::uint8_t extended = 0;
        record.GetIdentifier(identifier);
        record.GetExtendedFlag(extended);
        char text[48];
        std::snprintf(text, sizeof text, "%8X %2s", identifier, extended ? "x " : " ");
        line += text;
    } else {
        line += m_doc.HasIdentifierColumn() ? Printf("%11s", " ") : Printf("%2s", "  ");
    }

    auto optionalByte = [&](bool present, std::uint32_t value, bool column) {
        if (present)
            line += PaddedHexByte(value);
        else
            line += column ? Printf("%3s", "") : std::string();
    };
    std::uint32_t priority = 0, source = 0;
    std::uint8_t destination = 0;
    if (record.HasPriority())
        record.GetPriority(priority);
    if (record.HasSource())
        record.GetSource(source);
    if (record.HasDestination())
        record.GetDestination(destination);
    optionalByte(record.HasPriority(), priority, m_doc.HasPriorityColumn());
    optionalByte(record.HasSource(), source, m_doc.HasSourceColumn());
    optionalByte(record.HasDestination(), destination, m_doc.HasDestinationColumn());

    std::string data;
    if (record.IsEvent()) {
        std::string text;
        record.GetEventText(text);
        if (record.HasMarkText()) {
            std::string mark;
            record.GetMarkText(mark);
            text.append("(").append(mark).append(")");
        }
        data = Printf("%-30s", text.c_str()) + " ";
    } else if (record.IsPcTime()) {
        data = "[PC Time Stamp]          ";
    } else {
        const std::string bytes = DataBytesText(record);
        data = bytes.empty() ? Printf("%-31s", " ") : Printf("%-30s", bytes.c_str()) + " ";
    }
    line += data;
    line += TypeWord(record.GetTypeCode());

    if (record.IsPcTime()) {
        std::string stamp;
        record.GetPcTimeText(stamp);
        line += stamp + "\n";
    } else {
        line += "\n";
    }
    return line;
}

bool WriteSbtReport(CAnalyzerDoc& doc, const std::string& path, int edition, zdt::ProgressSink* progress) {
    std::FILE* out = std::fopen(path.c_str(), "w");
    if (out == nullptr)
        return false;
    static char buffer[1 << 16];
    std::setvbuf(out, buffer, _IOFBF, sizeof buffer);
    const std::string head = ReportHead(doc, edition);
    bool ok = std::fwrite(head.data(), 1, head.size(), out) == head.size();
    ClassicReportFormatter formatter(doc);
    const zdt::RowCount rows = doc.GetVisibleCount();
    for (zdt::RowIndex row = 0; ok && row < rows; ++row) {
        const std::string line = formatter.FormatLine(row);
        ok = std::fwrite(line.data(), 1, line.size(), out) == line.size();
        if (progress != nullptr && (row & 0xFFFF) == 0 && !progress->onProgress(row, rows))
            ok = false;
    }
    ok = std::fclose(out) == 0 && ok;
    return ok;
}

std::vector<std::pair<std::string, std::string>> SessionInfoFields(const CAnalyzerDoc& doc, int edition) {
    std::vector<std::pair<std::string, std::string>> fields;
    if (edition == kEditionPartner) {
        fields.emplace_back("Title:", "OVX Trace File");
        fields.emplace_back("Product Version:",
                            std::string(kPartnerVersion) + "  (ZDT Version: " + doc.ProductVersion() + ")");
    } else {
        fields.emplace_back("Title:", doc.Title());
        fields.emplace_back("Product Version:", doc.ProductVersion());
    }
    fields.emplace_back("Interface Board:", doc.InterfaceBoard());
    fields.emplace_back("Date:", doc.Date());
    fields.emplace_back("Time:", doc.Time());
    fields.emplace_back("No.Items:", std::to_string(static_cast<int>(doc.GetVisibleCount())));
    fields.emplace_back("Last CANFilter:", doc.LastFilterName());
    return fields;
}
