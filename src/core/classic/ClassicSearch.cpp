#include "classic/ClassicSearch.h"

#include "classic/CAnalyzerDoc.h"
#include "classic/ClassicRowFormatter.h"
#include "classic/ClassicTime.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <memory>

namespace {

bool CodeIn(std::uint32_t code, std::initializer_list<std::uint32_t> codes) {
    return std::find(codes.begin(), codes.end(), code) != codes.end();
}

bool EventFlagSet(const ClassicFindCriteria& c, std::uint32_t code) {
    return (c.errorPassive && CodeIn(code, {0x50010001, 0x80010007})) || (c.warning96 && code == 0x50010006) ||
           (c.errorActive && CodeIn(code, {0x50010005, 0x80010006})) ||
           (c.receivedCorruptedBytes && code == 0x40020002) || (c.busOff && CodeIn(code, {0x50010002, 0x80010005})) ||
           (c.bufferOverflow && CodeIn(code, {0x2003000E, 0x20030006, 0x20030008})) ||
           (c.errorFrame && CodeIn(code, {0xC0010008, 0x50010007})) ||
           (c.timerOverflow && CodeIn(code, {0x2003000D, 0x20030005, 0x20030007}));
}

bool AnyEventCheck(const ClassicFindCriteria& c) {
    return c.errorPassive || c.warning96 || c.errorActive || c.receivedCorruptedBytes || c.busOff || c.bufferOverflow ||
           c.errorFrame || c.timerOverflow;
}

// Data text of a record as the scan sees it: events and time stamps have none.
std::string ScanDataText(const CTraceItem& item) {
    if (item.IsEvent() || item.IsPcTime() || !item.HasData())
        return {};
    return DataBytesText(item);
}

// Looks for the pattern in the row's data, joining up to ten following frames; a hit
// belongs to the row where it starts.
bool DataMatches(CAnalyzerDoc& doc, zdt::RowIndex row, const std::string& firstText, const std::string& pattern) {
    if (firstText.find(pattern) != std::string::npos)
        return true;
    const zdt::RowCount rows = doc.GetVisibleCount();
    std::string joined = firstText;
    for (zdt::RowIndex next = row + 1; next <= row + 10 && next < rows; ++next) {
        std::unique_ptr<CTraceItemI> item(doc.GetItem(next));
        if (!item || item->IsEvent() || item->IsPcTime() || !item->HasData())
            break;
        joined += ' ';
        joined += DataBytesText(*item);
        const std::size_t at = joined.find(pattern);
        if (at != std::string::npos)
            return at <= firstText.size();
        if (joined.size() >= pattern.size())
            break;
    }
    return false;
}

// The time as the scan compares it: the number of the Time column printed with "%d".
double ScanTimeValue(const CAnalyzerDoc& doc, zdt::RowIndex row, const CTraceItem& item, int& digits) {
    digits = doc.GetTimeMode() == TimeMode::Absolute ? 6 : 3;
    std::uint32_t time = 0;
    if (!item.HasTime() || item.GetTime(time) != 0 || time == 0)
        return 4294967295.0;
    const RowTime shown = ComputeRowTime(doc, row, item, TimeUse::Report);
    return static_cast<double>(static_cast<std::int32_t>(shown.value));
}

bool TimeInBounds(double value, const ClassicFindCriteria& c, int digits) {
    const double scale = std::pow(10.0, digits);
    const double half = 5.0 * std::pow(10.0, digits - 1);
    const double low = std::atof(c.minTime.c_str()) * scale - half;
    const double high = std::atof(c.maxTime.c_str()) * scale + half;
    return low <= value && value < high;
}

} // namespace

FindDialogEnabling FindEnabling(std::int32_t schemaNumber, bool class0, bool class4, bool class8) {
    FindDialogEnabling e;
    if (class4 || class0)
        e.errorPassive = e.errorActive = e.busOff = e.errorFrame = true;
    if (class0)
        e.warning96 = e.receivedCorruptedBytes = true;
    if (class8)
        e.timerOverflow = e.bufferOverflow = true;
    if (schemaNumber > 700) {
        e.time = false;
        e.errorPassive = e.errorActive = e.busOff = e.errorFrame = false;
    }
    return e;
}

void ApplyEnabling(ClassicFindCriteria& c, const FindDialogEnabling& e) {
    c.useTime = c.useTime && e.time;
    c.errorPassive = c.errorPassive && e.errorPassive;
    c.warning96 = c.warning96 && e.warning96;
    c.errorActive = c.errorActive && e.errorActive;
    c.receivedCorruptedBytes = c.receivedCorruptedBytes && e.receivedCorruptedBytes;
    c.busOff = c.busOff && e.busOff;
    c.bufferOverflow = c.bufferOverflow && e.bufferOverflow;
    c.errorFrame = c.errorFrame && e.errorFrame;
    c.timerOverflow = c.timerOverflow && e.timerOverflow;
}

std::optional<std::string> HexInputRefusal(const std::string& text, bool identifierEdit) {
    if (text.empty())
        return std::nullopt;
    const char last = text.back();
    bool allowed;
    if (identifierEdit && last == ',') {
        allowed = false;
    } else {
        const char upper = static_cast<char>(std::toupper(static_cast<unsigned char>(last)));
        allowed = (upper >= '0' && upper <= '9') || (upper >= 'A' && upper <= 'F') || (!identifierEdit && upper == ',');
    }
    if (allowed)
        return std::nullopt;
    return "\"" + std::string(1, last) + "\"  is not a valid hexadecimal character!";
}

std::string TypeIntoHexEdit(const std::string& text, bool identifierEdit, std::size_t limit,
                            std::vector<std::string>* refusals) {
    std::string edit;
    for (const char c : text) {
        if (edit.size() >= limit)
            break;
        edit += c;
        if (auto refusal = HexInputRefusal(edit, identifierEdit)) {
            edit.pop_back();
            if (refusals != nullptr)
                refusals->push_back(*refusal);
        }
    }
    return edit;
}

bool IsDataFormValid(const std::string& dataText) {
    std::string rest = dataText;
    for (std::size_t comma = rest.find(','); comma != std::string::npos; comma = rest.find(',')) {
        if (comma != 2)
            return false;
        rest.erase(0, 3);
    }
    return rest.empty() || rest.size() == 2;
}

std::string DataPattern(const std::string& dataText) {
    std::string pattern;
    for (const char c : dataText) {
        if (c == ' ')
            continue;
        pattern += c == ',' ? ' ' : c;
    }
    return pattern;
}

FindOkResult ValidateFindCriteria(const ClassicFindCriteria& c) {
    FindOkResult result;
    const bool badForm = c.useData && !IsDataFormValid(c.dataText);
    if (std::atof(c.maxTime.c_str()) < std::atof(c.minTime.c_str())) {
        result.staysOpen = true;
        result.message = "Maximum time must be greater than minimum time!";
        return result;
    }
    if (badForm) {
        result.badDataForm = true;
        result.message = NothingFoundText;
        return result;
    }
    result.hasCriteria = (c.useTime && !c.minTime.empty() && !c.maxTime.empty()) ||
                         (c.useData && !c.dataText.empty()) || (c.useIdentifier && !c.identifierText.empty()) ||
                         AnyEventCheck(c);
    return result;
}

bool FindClassicRows(CAnalyzerDoc& doc, const ClassicFindCriteria& c, std::vector<zdt::RowIndex>& hits,
                     zdt::ProgressSink* progress) {
    hits.clear();
    const std::string pattern = DataPattern(c.dataText);
    const bool anyOfThree = c.useTime || c.useData || c.useIdentifier;
    const zdt::RowCount rows = doc.GetVisibleCount();
    for (zdt::RowIndex row = 0; row < rows; ++row) {
        if (progress != nullptr && (row & 0x3FFF) == 0 && !progress->onProgress(row, rows))
            return false;
        std::unique_ptr<CTraceItemI> item(doc.GetItem(row));
        if (!item)
            continue;
        std::uint32_t identifier = 0xFFFFFFFFu;
        if (item->HasIdentifier())
            item->GetIdentifier(identifier);

        bool dataPass = true;
        if (c.useData)
            dataPass = DataMatches(doc, row, ScanDataText(*item), pattern);
        bool timePass = true;
        if (c.useTime) {
            int digits = 3;
            const double value = ScanTimeValue(doc, row, *item, digits);
            timePass = TimeInBounds(value, c, digits);
        }
        bool identifierPass = true;
        if (c.useIdentifier) {
            char text[16];
            std::snprintf(text, sizeof text, "%X", identifier);
            identifierPass = c.identifierText == text;
        }
        bool eventHit = false;
        if (item->IsEvent()) {
            std::uint32_t code = 0;
            item->GetEventCode(code);
            eventHit = EventFlagSet(c, code);
        }
        if ((anyOfThree && timePass && dataPass && identifierPass) || eventHit)
            hits.push_back(row);
    }
    return true;
}

void ApplyClassicFindResults(CAnalyzerDoc& doc, const std::vector<zdt::RowIndex>& hits, bool markAll) {
    doc.FindResults() = hits;
    if (!markAll)
        return;
    doc.ClearBookmarks();
    for (const zdt::RowIndex row : hits)
        doc.ToggleBookmark(row);
}

bool ScanClassicTrace(CAnalyzerDoc& doc, const ClassicFindCriteria& c, bool markAll, zdt::ProgressSink* progress) {
    std::vector<zdt::RowIndex> hits;
    const bool finished = FindClassicRows(doc, c, hits, progress);
    // Rows found before a stop are real results.
    ApplyClassicFindResults(doc, hits, markAll);
    return finished;
}

zdt::RowIndex FindNext(const std::vector<zdt::RowIndex>& results, zdt::RowIndex selectedRow,
                       zdt::MessageSink* messages) {
    for (const zdt::RowIndex row : results)
        if (row > selectedRow)
            return row;
    if (results.empty() || messages == nullptr)
        return zdt::NoRow;
    const bool wrap = messages->askYesNo(zdt::UserMessage{"", WrapToBeginQuestion, zdt::MessageIcon::Question});
    return wrap ? results.front() : zdt::NoRow;
}

zdt::RowIndex FindPrevious(const std::vector<zdt::RowIndex>& results, zdt::RowIndex selectedRow,
                           zdt::MessageSink* messages) {
    for (auto it = results.rbegin(); it != results.rend(); ++it)
        if (*it < selectedRow)
            return *it;
    if (results.empty() || messages == nullptr)
        return zdt::NoRow;
    const bool wrap = messages->askYesNo(zdt::UserMessage{"", WrapToEndQuestion, zdt::MessageIcon::Question});
    return wrap ? results.back() : zdt::NoRow;
}
