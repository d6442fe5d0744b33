#include "classic/ClassicTime.h"

#include "classic/CAnalyzerDoc.h"
#include "classic/TextFormat.h"
#include "trace/RecordReader.h"

#include <cstdio>
#include <memory>

namespace {

constexpr std::uint32_t Powers[MaxFormattedTimeDigits + 1] = {1,      10,      100,      1000,      10000,
                                                              100000, 1000000, 10000000, 100000000, 1000000000};

// "%0*u" with at least one digit before the comma, written from the end backwards. The
// common digit counts get a constant divisor.
template <int Fixed> char* WriteTime(char* out, std::uint32_t value, int digits) {
    const std::uint32_t divisor = Fixed >= 0 ? Powers[Fixed] : Powers[digits];
    if (Fixed >= 0)
        digits = Fixed;
    const std::uint32_t fraction = value % divisor;
    std::uint32_t integer = value / divisor;
    const int integerDigits = textformat::DecimalDigitCount(integer);
    char* const end = out + integerDigits + (integerDigits - 1) / 3 + 1 + digits;
    textformat::WriteDigitsBackwards(end, digits, fraction);
    char* p = end - digits;
    *--p = ',';
    // A dot before each group of three integer digits, counted from the comma.
    for (; integer >= 1000; integer /= 1000) {
        textformat::WriteDigitsBackwards(p, 3, integer % 1000);
        p -= 3;
        *--p = '.';
    }
    textformat::WriteDigitsBackwards(p, textformat::DecimalDigitCount(integer), integer);
    return end;
}

} // namespace

char* WriteFormattedTime(char* out, std::uint32_t value, int digits) {
    switch (digits) {
    case 3:
        return WriteTime<3>(out, value, digits);
    case 6:
        return WriteTime<6>(out, value, digits);
    default:
        digits = digits < 0 ? 0 : (digits > MaxFormattedTimeDigits ? MaxFormattedTimeDigits : digits);
        return WriteTime<-1>(out, value, digits);
    }
}

void AppendFormattedTime(std::string& text, std::uint32_t value, int digits) {
    char buffer[MaxFormattedTimeLength];
    text.append(buffer, static_cast<std::size_t>(WriteFormattedTime(buffer, value, digits) - buffer));
}

std::string FormatTime(std::uint32_t value, int digits) {
    std::string text;
    AppendFormattedTime(text, value, digits);
    return text;
}

RowTimeRules::RowTimeRules(const CAnalyzerDoc& doc, TimeUse use)
    // Null when an open failed on another thread after the row was read; the row is
    // dropped anyway.
    : m_file(doc.TraceFile()), m_mode(doc.GetTimeMode()), m_use(use), m_deltaFile(doc.IsDeltaFile()),
      m_filterActive(doc.IsFilterActive()), m_byteTime(doc.ByteTime()) {
    // A CAN trace never raises the alarm.
    if (!doc.IsCanTrace())
        m_alarmThreshold = std::uint64_t(doc.AlarmThreshold()) * 1000u;
}

RowTime ComputeRowTime(const CAnalyzerDoc& doc, zdt::RowIndex row, const CTraceItem& item, TimeUse use) {
    return RowTimeRules(doc, use).Compute(row, item);
}

bool PreviousTimedRecordFinder::Find(RecordReader& reader, zdt::RowIndex row, std::uint32_t& time) {
    zdt::RowIndex from = row;
    bool found = false;
    std::uint32_t foundTime = 0;
    // Rows asked in order: only the row just above is new.
    if (m_valid && row == m_forRow + 1) {
        found = m_found;
        foundTime = m_time;
        from = row;
        if (row >= 2) {
            CTraceItemI above;
            std::uint32_t aboveTime = 0;
            if (reader.ReadItem(row - 1, above) && above.HasTime()) {
                above.GetTime(aboveTime);
                found = true;
                foundTime = aboveTime;
            }
        }
    } else {
        for (zdt::RowIndex r = from; r-- > 1;) {
            CTraceItemI item;
            if (reader.ReadItem(r, item) && item.HasTime()) {
                item.GetTime(foundTime);
                found = true;
                break;
            }
        }
    }
    m_valid = true;
    m_forRow = row;
    m_found = found;
    m_time = foundTime;
    if (found)
        time = foundTime;
    return found;
}

bool V701TimeValue(const CAnalyzerDoc& doc, RecordReader& reader, zdt::RowIndex row, const CTraceItem& item,
                   PreviousTimedRecordFinder& finder, std::uint32_t& value) {
    std::uint32_t time = 0;
    item.GetTime(time);
    if (doc.GetTimeMode() == TimeMode::Absolute) {
        value = time;
        return true;
    }
    std::uint32_t previous = 0;
    if (!finder.Find(reader, row, previous))
        return false;
    value = time - previous - doc.BaseTime();
    return true;
}

std::string FormatV701Time(const CAnalyzerDoc& doc, RecordReader& reader, zdt::RowIndex row, const CTraceItem& item,
                           PreviousTimedRecordFinder& finder) {
    std::uint32_t value = 0;
    if (!V701TimeValue(doc, reader, row, item, finder, value))
        return "--";
    return FormatTime(value, 3);
}

DocumentRecordReader::DocumentRecordReader(const CAnalyzerDoc& doc) : m_doc(doc) {}

DocumentRecordReader::~DocumentRecordReader() = default;

RecordReader* DocumentRecordReader::Get() {
    const CTraceFile* file = m_doc.TraceFile();
    if (file == nullptr)
        return nullptr;
    if (!m_reader || &m_reader->File() != file)
        m_reader = std::make_unique<RecordReader>(*file);
    return m_reader.get();
}
