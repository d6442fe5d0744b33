#include "classic/CAnalyzerDoc.h"

#include "trace/CIniFile.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr const char* kZdtTitle = "ZDT Trace File";

unsigned ReadHex(const std::string& text) {
    unsigned value = 0;
    std::sscanf(text.c_str(), "%x", &value);
    return value;
}

} // namespace

CAnalyzerDoc::CAnalyzerDoc() {
    ResetIdTable();
}

CAnalyzerDoc::~CAnalyzerDoc() {
    if (m_fileObject)
        m_fileObject->CloseTrace();
}

void CAnalyzerDoc::ClearRunningTime() {
    m_firstTimeRow = 0;
    m_previousFilteredTime = 0;
    m_runningAbsolute = 0;
    m_runningDelta = 0;
}

void CAnalyzerDoc::ResetIdTable() {
    m_idTable.fill(FreeSlot);
}

bool CAnalyzerDoc::OnOpenDocument(const std::string& path, zdt::MessageSink* messages, zdt::ProgressSink* progress,
                                  CanFilterPrompt* filterPrompt) {
    m_filterActive = 0;
    m_filterWasActive = 0;
    m_currentFilterName.clear();
    ClearRunningTime();
    m_firstOpen = 1;
    if (&path != &m_pathName)
        m_pathName = path;

    // A reader on another thread finds the file from the start; it reads nothing of it
    // before the index pass publishes rows.
    m_traceFile.store(nullptr, std::memory_order_release);
    m_fileObject = std::make_unique<CTraceFile>();
    CTraceFile& file = *m_fileObject;
    m_traceFile.store(&file, std::memory_order_release);
    bool opened = file.OpenHead(path, messages);
    if (opened) {
        StoreHeadValues(file);
        opened = file.IndexTrace(progress);
    }
    if (!opened) {
        // A cancelled index pass is a document that did not open, without a box.
        if (messages != nullptr && !file.WasCancelled()) {
            char text[4096];
            std::snprintf(text, sizeof text, "The TraceFile %s is an invalid trace file!", path.c_str());
            messages->showMessage(zdt::UserMessage{"", text, zdt::MessageIcon::Error});
        }
        m_traceFile.store(nullptr, std::memory_order_release);
        return false;
    }
    m_lastFilterName = file.GetLastFilter();
    m_filterWasActive = file.GetFilterActive() ? 1 : 0;
    const bool diagnostic = m_title == kZdtTitle && !file.SeenIdentifier() && !file.SeenFlex();
    m_isDiagnosticTrace.store(diagnostic ? 1 : 0, std::memory_order_relaxed);
    m_isCanTrace.store(diagnostic ? 0 : 1, std::memory_order_relaxed);

    if (filterPrompt != nullptr)
        OfferHistoryFilter(*filterPrompt);
    return true;
}

void CAnalyzerDoc::StoreHeadValues(const CTraceFile& file) {
    m_title = file.GetTitle();
    m_schemaNumber = file.GetSchemaNumber();
    m_creator = file.GetCreator();
    m_productVersion = file.GetProductVersion();
    m_interfaceBoard = file.GetInterfaceBoard();
    m_date = file.GetDate();
    m_time = file.GetTime();
    m_deltaFile = m_title == kZdtTitle && (m_schemaNumber == 2 || m_schemaNumber == 501 || m_schemaNumber == 5);
    // Until the pass has seen the whole file, a ZDT trace counts as a diagnostic trace.
    const bool diagnostic = m_title == kZdtTitle;
    m_isDiagnosticTrace.store(diagnostic ? 1 : 0, std::memory_order_relaxed);
    m_isCanTrace.store(diagnostic ? 0 : 1, std::memory_order_relaxed);
}

std::optional<CanFilterPrompt::Request> CAnalyzerDoc::HistoryFilterRequest() const {
    if (TraceFile() == nullptr || !m_currentFilterName.empty() || m_lastFilterName.empty())
        return std::nullopt;
    return CanFilterPrompt::Request{m_filterWasActive != 0, m_lastFilterName, true};
}

void CAnalyzerDoc::ApplyHistoryFilterAnswer(const CanFilterPrompt::Answer& answer, const std::string& fltPath,
                                            zdt::ProgressSink* progress) {
    if (!answer.ok)
        return;
    if (!answer.activate)
        m_filterActive = 0;
    else if (answer.changed)
        ApplyFilter(fltPath, answer.name, progress);
}

void CAnalyzerDoc::OfferHistoryFilter(CanFilterPrompt& prompt) {
    const std::optional<CanFilterPrompt::Request> request = HistoryFilterRequest();
    if (!request)
        return;
    const CanFilterPrompt::Answer answer = prompt.Run(*request);
    ApplyHistoryFilterAnswer(answer, AnswerAppliesFilter(answer) ? prompt.FilterPath(answer.name) : std::string());
}

bool CAnalyzerDoc::AnswerAppliesFilter(const CanFilterPrompt::Answer& answer) {
    return answer.ok && answer.activate && answer.changed;
}

bool CAnalyzerDoc::CanFilterAnswerActs(const CanFilterPrompt::Answer& answer) {
    return answer.ok && (!answer.activate || answer.changed);
}

void CAnalyzerDoc::OnCloseDocument(bool writeHistory) {
    CTraceFile* file = TraceFile();
    if (file == nullptr)
        return;
    file->CloseTrace();
    const bool changed = m_currentFilterName != m_lastFilterName || m_filterActive != m_filterWasActive;
    if (writeHistory && changed)
        file->AppendFilterHistory(m_currentFilterName, m_filterActive != 0);
}

void CAnalyzerDoc::ApplyFilter(const std::string& fltPath, const std::string& name, zdt::ProgressSink* progress) {
    m_filterActive = 1;
    m_currentFilterName = name;
    m_findResults.clear();
    m_bookmarks.clear();
    m_needsHeaderUpdate = 1;
    ResetIdTable();

    CIniFile ini(fltPath);
    m_stopFilter = ini.GetString("Type", "Unknown", "CAN") == "StopFilter" ? 1 : 0;
    const unsigned entries = ReadHex(ini.GetString("NoOfEntries", "Unknown", "CAN"));
    // Slot 0 stays free; a longer list than the table holds is cut at its end.
    for (unsigned number = 1; number <= entries && number < IdTableSize; ++number) {
        char key[16];
        std::snprintf(key, sizeof key, "%X", number);
        m_idTable[number] = ReadHex(ini.GetString(key, "0xFFFFFFFF", "CAN"));
    }
    FilterPass(progress);
}

void CAnalyzerDoc::FilterPass(zdt::ProgressSink* progress) {
    if (TraceFile() == nullptr)
        return;
    CTraceFile& file = *TraceFile();
    file.SetVisibleCount(0);
    file.VisibleOffsets().Clear();
    file.AbsoluteTimes().Clear();
    file.DeltaTimes().Clear();
    file.ChannelDeltas().Clear();
    file.ChannelTimeList().Clear();
    ClearRunningTime();

    const auto total = static_cast<std::uint32_t>(file.TotalCount());
    char line[CTraceFile::MaxRecordLine + 1];
    for (std::uint32_t i = 0; i < total; ++i) {
        if (progress != nullptr && (i & 0xFFFF) == 0)
            progress->onProgress(i, total);
        const std::uint64_t offset = file.AllOffsets().Get(i);
        if (!file.ReadRecordLine(offset, line) || line[0] == '\0')
            break;
        CTraceItemI item;
        if (m_schemaNumber < 701)
            item.ParseLine(line, 1);
        else
            item.ParseLineV701(line, 1);
        RecordStep(item, offset);
    }
    ResetIdTable();
    file.ChannelTimeList().Clear();
}

bool CAnalyzerDoc::IdentifierInTable(std::uint32_t identifier) const {
    return std::find(m_idTable.begin(), m_idTable.end(), identifier) != m_idTable.end();
}

void CAnalyzerDoc::RecordStep(const CTraceItem& item, std::uint64_t offset) {
    const bool hasIdentifier = item.HasIdentifier();
    std::uint32_t identifier = 0;
    std::uint8_t extended = 0;
    if (hasIdentifier) {
        item.GetIdentifier(identifier);
        item.GetExtendedFlag(extended);
    }
    std::uint32_t time = 0;
    item.GetRawTime(time);
    std::uint8_t channel = 0;
    if (item.HasChannel())
        item.GetChannel(channel);

    if (time != 0) {
        if (!m_deltaFile) {
            m_runningAbsolute = time;
            m_runningDelta = time - m_baseTime - m_previousFilteredTime;
        } else {
            m_runningDelta = time + m_previousFilteredTime;
            m_runningAbsolute += time;
            m_previousFilteredTime = m_runningDelta;
        }
    }
    if (extended)
        identifier |= 0x80000000u;

    bool kept;
    if (!hasIdentifier)
        kept = !m_stopFilter;
    else if (IdentifierInTable(identifier))
        kept = !m_stopFilter;
    else
        kept = m_stopFilter || item.IsEvent();
    if (!kept)
        return;

    CTraceFile& file = *TraceFile();
    file.VisibleOffsets().Append(offset);
    file.AbsoluteTimes().Append(m_runningAbsolute);
    file.DeltaTimes().Append(m_runningDelta);
    // What dropped records carried is now spent.
    m_runningDelta = 0;
    m_previousFilteredTime = m_deltaFile ? 0 : m_runningAbsolute;
    if (IsCanTrace())
        file.ChannelDeltas().Append(file.ChannelTimeList().Exchange(channel, m_runningAbsolute));
    file.SetVisibleCount(file.VisibleCount() + 1);
}

void CAnalyzerDoc::OnCanFilter(CanFilterPrompt& prompt, zdt::MessageSink* messages, zdt::ProgressSink* progress) {
    const CanFilterPrompt::Answer answer = prompt.Run(BeginCanFilter());
    FinishCanFilter(answer, AnswerAppliesFilter(answer) ? prompt.FilterPath(answer.name) : std::string(), messages,
                    progress);
}

CanFilterPrompt::Request CAnalyzerDoc::BeginCanFilter() {
    ClearRunningTime();
    m_firstOpen = 0;
    CanFilterPrompt::Request request;
    if (!m_currentFilterName.empty()) {
        request.activate = m_filterActive != 0;
        request.name = m_currentFilterName;
    } else if (!m_lastFilterName.empty()) {
        request.activate = true;
        request.name = m_lastFilterName;
    } else {
        request.activate = m_filterActive != 0;
    }
    return request;
}

void CAnalyzerDoc::FinishCanFilter(const CanFilterPrompt::Answer& answer, const std::string& fltPath,
                                   zdt::MessageSink* messages, zdt::ProgressSink* progress) {
    if (!answer.ok)
        return;
    if (!answer.activate) {
        m_filterActive = 0;
        m_needsHeaderUpdate = 1;
        m_findResults.clear();
        m_bookmarks.clear();
        // Without a filter every record is visible again: read the file anew. The
        // history's filter is not offered a second time on this re-read.
        if (TraceFile() != nullptr)
            TraceFile()->CloseTrace();
        OnOpenDocument(m_pathName, messages, progress, nullptr);
        m_needsHeaderUpdate = 1;
    } else if (answer.changed) {
        ApplyFilter(fltPath, answer.name, progress);
    }
}

void CAnalyzerDoc::SetTimeMode(TimeMode mode, std::uint32_t byteTime) {
    m_needsHeaderUpdate = 1;
    ClearRunningTime();
    m_showAbsolute = mode == TimeMode::Absolute;
    m_showRelative = mode == TimeMode::Relative;
    m_showRelativeChannel = mode == TimeMode::RelativeChannel;
    m_showDiagnosticRelative = mode == TimeMode::InterByte;
    m_baseTime = 0;
    switch (mode) {
    case TimeMode::Absolute:
        m_findBoundsText = "s  < x <";
        m_findUnitText = "s";
        break;
    case TimeMode::Relative:
        m_findBoundsText = IsCanTrace() ? "ms < x <" : "ms  < x <";
        m_findUnitText = "ms";
        break;
    case TimeMode::RelativeChannel:
        m_findBoundsText = "ms < x <";
        m_findUnitText = "ms";
        break;
    case TimeMode::InterByte:
        m_findBoundsText = "ms < x <";
        m_findUnitText = "ms";
        m_byteTime = byteTime;
        m_baseTime = byteTime;
        break;
    }
}

TimeMode CAnalyzerDoc::GetTimeMode() const {
    if (m_showAbsolute)
        return TimeMode::Absolute;
    if (m_showRelativeChannel)
        return TimeMode::RelativeChannel;
    if (m_showDiagnosticRelative)
        return TimeMode::InterByte;
    return TimeMode::Relative;
}

bool CAnalyzerDoc::HasChannelColumn() const {
    const CTraceFile* file = TraceFile();
    return file != nullptr && m_schemaNumber <= 700 && file->SeenChannel();
}
bool CAnalyzerDoc::HasIdentifierColumn() const {
    const CTraceFile* file = TraceFile();
    return file != nullptr && (file->SeenIdentifier() || file->SeenFlex());
}
bool CAnalyzerDoc::HasSourceColumn() const {
    return TraceFile() != nullptr && TraceFile()->SeenSource();
}
bool CAnalyzerDoc::HasDestinationColumn() const {
    return TraceFile() != nullptr && TraceFile()->SeenDestination();
}
bool CAnalyzerDoc::HasPriorityColumn() const {
    return TraceFile() != nullptr && TraceFile()->SeenPriority();
}
bool CAnalyzerDoc::HasClass4() const {
    return TraceFile() != nullptr && TraceFile()->SeenClass4();
}
bool CAnalyzerDoc::HasClass0() const {
    return TraceFile() != nullptr && TraceFile()->SeenClass0();
}
bool CAnalyzerDoc::HasClass8() const {
    return TraceFile() != nullptr && TraceFile()->SeenClass8();
}

bool CAnalyzerDoc::IsBookmarked(zdt::RowIndex row) const {
    return std::binary_search(m_bookmarks.begin(), m_bookmarks.end(), row);
}

void CAnalyzerDoc::ToggleBookmark(zdt::RowIndex row) {
    const auto at = std::lower_bound(m_bookmarks.begin(), m_bookmarks.end(), row);
    if (at != m_bookmarks.end() && *at == row)
        m_bookmarks.erase(at);
    else
        m_bookmarks.insert(at, row);
}

zdt::RowIndex CAnalyzerDoc::NextBookmark(zdt::RowIndex row) const {
    if (m_bookmarks.empty())
        return zdt::NoRow;
    for (const zdt::RowIndex bookmark : m_bookmarks)
        if (bookmark > row)
            return bookmark;
    return m_bookmarks.front();
}

zdt::RowIndex CAnalyzerDoc::PreviousBookmark(zdt::RowIndex row) const {
    if (m_bookmarks.empty())
        return zdt::NoRow;
    for (auto it = m_bookmarks.rbegin(); it != m_bookmarks.rend(); ++it)
        if (*it < row)
            return *it;
    return m_bookmarks.back();
}

double ByteTimeMicros(std::uint32_t baudrate, std::uint32_t dataBits, std::uint32_t stopBits) {
    if (baudrate == 0)
        return 0.0;
    const double bits = static_cast<double>(dataBits) + static_cast<double>(stopBits) + 1.0;
    return bits * 1000000.0 / static_cast<double>(baudrate);
}
