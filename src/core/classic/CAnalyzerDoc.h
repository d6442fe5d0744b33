#pragma once

#include "classic/CanFilterPrompt.h"
#include "common/UserMessage.h"
#include "trace/CTraceFile.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

enum class TimeMode { Absolute, Relative, RelativeChannel, InterByte };

// The document of a classic trace: the file and its index, the classification, the CAN
// filter, the time mode, bookmarks and find results. No window is involved here.
class CAnalyzerDoc {
public:
    static constexpr std::size_t IdTableSize = 200;
    static constexpr std::uint32_t FreeSlot = 0xFFFFFFFFu;

    CAnalyzerDoc();
    ~CAnalyzerDoc();
    CAnalyzerDoc(const CAnalyzerDoc&) = delete;
    CAnalyzerDoc& operator=(const CAnalyzerDoc&) = delete;

    // Opens and indexes the trace; a filter named in the file's history is offered to
    // `filterPrompt` (none: it is not re-applied). False leaves no usable document.
    bool OnOpenDocument(const std::string& path, zdt::MessageSink* messages = nullptr,
                        zdt::ProgressSink* progress = nullptr, CanFilterPrompt* filterPrompt = nullptr);
    // Closes the trace; appends the filter history when the filter changed and `writeHistory`.
    void OnCloseDocument(bool writeHistory = true);

    // The filter apply step from a ".flt" file, then the filter pass.
    void ApplyFilter(const std::string& fltPath, const std::string& name, zdt::ProgressSink* progress = nullptr);
    // The document's filter command, with the dialog behind `prompt`.
    void OnCanFilter(CanFilterPrompt& prompt, zdt::MessageSink* messages = nullptr,
                     zdt::ProgressSink* progress = nullptr);
    // `progress` only reports: a pass stopped half-way would leave a half-built row list.
    void FilterPass(zdt::ProgressSink* progress = nullptr);

    // The steps of opening and of the filter command taken apart, so that a desktop can
    // ask its dialog on one thread and do the long work on another. OnOpenDocument and
    // OnCanFilter are exactly these steps in a row.
    //
    // Opening's offer of the filter named in the file's history; nothing when none is offered.
    std::optional<CanFilterPrompt::Request> HistoryFilterRequest() const;
    // Acts on the answer to that offer; `fltPath` counts only when the answer applies a filter.
    void ApplyHistoryFilterAnswer(const CanFilterPrompt::Answer& answer, const std::string& fltPath,
                                  zdt::ProgressSink* progress = nullptr);
    // Both of the above with `prompt` asked in between.
    void OfferHistoryFilter(CanFilterPrompt& prompt);
    // The filter command up to its dialog: what the dialog is preset with.
    CanFilterPrompt::Request BeginCanFilter();
    // The filter command after its dialog: turns the filter off (reading the file anew) or
    // applies a changed one from `fltPath`.
    void FinishCanFilter(const CanFilterPrompt::Answer& answer, const std::string& fltPath,
                         zdt::MessageSink* messages = nullptr, zdt::ProgressSink* progress = nullptr);
    // Whether an answer of the filter dialog makes FinishCanFilter do anything at all.
    static bool CanFilterAnswerActs(const CanFilterPrompt::Answer& answer);
    // Whether the answer applies the filter it names, so that its ".flt" path is needed.
    static bool AnswerAppliesFilter(const CanFilterPrompt::Answer& answer);

    // The style dialogs' choice; `byteTime` (microseconds) counts in inter-byte mode only.
    void SetTimeMode(TimeMode mode, std::uint32_t byteTime = 1);
    TimeMode GetTimeMode() const;
    const char* FindBoundsText() const { return m_findBoundsText; }
    const char* FindUnitText() const { return m_findUnitText; }

    CTraceItemI* GetItem(std::uint32_t index) { return m_traceFile ? m_traceFile->GetItem(index) : nullptr; }
    void ReleaseItem(CTraceItem* item) { delete item; }
    // Reads row `index` into a fresh record of the caller's, without a heap record.
    bool ReadItem(std::uint32_t index, CTraceItemI& item) { return m_traceFile && m_traceFile->ReadItem(index, item); }
    std::uint32_t GetVisibleCount() const { return m_traceFile ? m_traceFile->VisibleCount() : 0; }
    CTraceFile* TraceFile() { return m_traceFile.get(); }
    const CTraceFile* TraceFile() const { return m_traceFile.get(); }

    bool HasChannelColumn() const;
    bool HasIdentifierColumn() const;
    bool HasSourceColumn() const;
    bool HasDestinationColumn() const;
    bool HasPriorityColumn() const;
    bool HasClass4() const;
    bool HasClass0() const;
    bool HasClass8() const;

    // Bookmarks: row numbers in row order.
    const std::vector<std::uint32_t>& Bookmarks() const { return m_bookmarks; }
    bool IsBookmarked(std::uint32_t row) const;
    void ToggleBookmark(std::uint32_t row);
    void ClearBookmarks() { m_bookmarks.clear(); }
    // Nearest bookmark after / before `row`, wrapping; -1 with no bookmark.
    long long NextBookmark(long long row) const;
    long long PreviousBookmark(long long row) const;
    std::vector<std::uint32_t>& FindResults() { return m_findResults; }
    const std::vector<std::uint32_t>& FindResults() const { return m_findResults; }

    const std::string& GetPathName() const { return m_pathName; }
    const std::string& Title() const { return m_title; }
    const std::string& Creator() const { return m_creator; }
    const std::string& ProductVersion() const { return m_productVersion; }
    const std::string& InterfaceBoard() const { return m_interfaceBoard; }
    const std::string& Date() const { return m_date; }
    const std::string& Time() const { return m_time; }
    const std::string& LastFilterName() const { return m_lastFilterName; }
    const std::string& CurrentFilterName() const { return m_currentFilterName; }
    std::int32_t SchemaNumber() const { return m_schemaNumber; }
    bool IsCanTrace() const { return m_isCanTrace != 0; }
    bool IsDiagnosticTrace() const { return m_isDiagnosticTrace != 0; }
    bool IsDeltaFile() const { return m_deltaFile != 0; }
    bool IsFilterActive() const { return m_filterActive != 0; }
    bool IsStopFilter() const { return m_stopFilter != 0; }
    bool NeedsHeaderUpdate() const { return m_needsHeaderUpdate != 0; }
    void ClearHeaderUpdate() { m_needsHeaderUpdate = 0; }
    std::uint32_t AlarmThreshold() const { return m_alarmThreshold; }
    void SetAlarmThreshold(std::uint32_t milliseconds) { m_alarmThreshold = milliseconds; }
    std::uint32_t ByteTime() const { return m_byteTime; }
    std::uint32_t BaseTime() const { return m_baseTime; }
    const std::array<std::uint32_t, IdTableSize>& IdTable() const { return m_idTable; }

private:
    void RecordStep(const CTraceItem& item, std::uint64_t offset);
    bool IdentifierInTable(std::uint32_t identifier) const;
    void ResetIdTable();
    void ClearRunningTime();

    std::unique_ptr<CTraceFile> m_traceFile;
    std::string m_pathName;
    std::vector<std::uint32_t> m_bookmarks;
    std::vector<std::uint32_t> m_findResults;
    std::string m_title, m_creator, m_productVersion, m_interfaceBoard, m_date, m_time;
    std::string m_lastFilterName, m_currentFilterName;
    std::int32_t m_schemaNumber = 0;
    std::uint8_t m_stopFilter = 0;
    std::uint8_t m_filterActive = 0;
    std::uint8_t m_filterWasActive = 0;
    std::uint8_t m_isCanTrace = 0;
    std::uint8_t m_isDiagnosticTrace = 0;
    std::uint8_t m_deltaFile = 0;
    std::uint8_t m_needsHeaderUpdate = 0;
    std::uint8_t m_showAbsolute = 0;
    std::uint8_t m_showRelative = 1;
    std::uint8_t m_showRelativeChannel = 0;
    std::uint8_t m_showDiagnosticRelative = 0;
    std::uint8_t m_firstOpen = 0;
    std::array<std::uint32_t, IdTableSize> m_idTable{};
    std::uint32_t m_alarmThreshold = 10;
    std::uint32_t m_byteTime = 1;
    std::uint32_t m_baseTime = 0;
    std::uint32_t m_firstTimeRow = 0;
    std::uint32_t m_previousFilteredTime = 0;
    std::uint32_t m_runningAbsolute = 0;
    std::uint32_t m_runningDelta = 0;
    const char* m_findBoundsText = "ms < x <";
    const char* m_findUnitText = "ms";
};

// Microseconds one K-line byte takes: start bit, data bits and stop bits at the baud
// rate; parity is not counted. A baud rate of 0 gives 0.
double ByteTimeMicros(std::uint32_t baudrate, std::uint32_t dataBits, std::uint32_t stopBits);
