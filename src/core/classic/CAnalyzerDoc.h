#pragma once

#include "classic/CanFilterPrompt.h"
#include "common/RowTypes.h"
#include "common/UserMessage.h"
#include "trace/CTraceFile.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

enum class TimeMode { Absolute, Relative, RelativeChannel, InterByte };

// The document of a classic trace: the file and its index, the classification, the CAN
// filter, the time mode, bookmarks and find results. No window is involved here.
//
// While OnOpenDocument runs on one thread, one other thread may build a
// ClassicRowFormatter over the document and format, read or get the rows below
// RowsReadSoFar(); nothing else may be called until the open returns. The head's values
// (title, schema, delta file) hold from the first row on; whether the trace is a CAN or a
// diagnostic trace is known only at the end, so the alarm mark ("A", "BA") of rows formatted
// during the open can differ from the final rows.
class CAnalyzerDoc {
public:
    static constexpr std::size_t IdTableSize = 200;
    static constexpr std::uint32_t FreeSlot = 0xFFFFFFFFu;

    CAnalyzerDoc();
    ~CAnalyzerDoc();
    CAnalyzerDoc(const CAnalyzerDoc&) = delete;
    CAnalyzerDoc& operator=(const CAnalyzerDoc&) = delete;

    // Opens and indexes the trace; a filter named in the file's history is offered to
    // `filterPrompt` (none: it is not re-applied). False leaves no usable document; the file
    // object of a failed open lives on, unreadable, until the next open or the destructor.
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

    CTraceItemI* GetItem(zdt::RowIndex index) {
        CTraceFile* file = TraceFile();
        return file != nullptr ? file->GetItem(index) : nullptr;
    }
    void ReleaseItem(CTraceItem* item) { delete item; }
    // Reads row `index` into a fresh record of the caller's, without a heap record.
    bool ReadItem(zdt::RowIndex index, CTraceItemI& item) {
        CTraceFile* file = TraceFile();
        return file != nullptr && file->ReadItem(index, item);
    }
    zdt::RowCount GetVisibleCount() const {
        const CTraceFile* file = TraceFile();
        return file != nullptr ? file->VisibleCount() : 0;
    }
    // Rows an open has indexed so far, growing in batches while it runs: 0 before the first
    // batch, after a failed or cancelled open and without a trace; GetVisibleCount() after
    // a successful open. Any thread may ask.
    zdt::RowCount RowsReadSoFar() const {
        const CTraceFile* file = TraceFile();
        return file != nullptr ? file->RowsReadSoFar() : 0;
    }
    // The trace being opened or open; null without one and after a failed open.
    CTraceFile* TraceFile() { return m_traceFile.load(std::memory_order_acquire); }
    const CTraceFile* TraceFile() const { return m_traceFile.load(std::memory_order_acquire); }

    bool HasChannelColumn() const;
    bool HasIdentifierColumn() const;
    bool HasSourceColumn() const;
    bool HasDestinationColumn() const;
    bool HasPriorityColumn() const;
    bool HasClass4() const;
    bool HasClass0() const;
    bool HasClass8() const;

    // Bookmarks: row numbers in row order.
    const std::vector<zdt::RowIndex>& Bookmarks() const { return m_bookmarks; }
    bool IsBookmarked(zdt::RowIndex row) const;
    void ToggleBookmark(zdt::RowIndex row);
    void ClearBookmarks() { m_bookmarks.clear(); }
    // Nearest bookmark after / before `row`, wrapping; zdt::NoRow with no bookmark.
    zdt::RowIndex NextBookmark(zdt::RowIndex row) const;
    zdt::RowIndex PreviousBookmark(zdt::RowIndex row) const;
    std::vector<zdt::RowIndex>& FindResults() { return m_findResults; }
    const std::vector<zdt::RowIndex>& FindResults() const { return m_findResults; }

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
    bool IsCanTrace() const { return m_isCanTrace.load(std::memory_order_relaxed) != 0; }
    bool IsDiagnosticTrace() const { return m_isDiagnosticTrace.load(std::memory_order_relaxed) != 0; }
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

    void StoreHeadValues(const CTraceFile& file);

    // The file object of the last open, kept for a reader on another thread even when the
    // open failed; m_traceFile is what readers see, null when no trace is open.
    std::unique_ptr<CTraceFile> m_fileObject;
    std::atomic<CTraceFile*> m_traceFile{nullptr};
    std::string m_pathName;
    std::vector<zdt::RowIndex> m_bookmarks;
    std::vector<zdt::RowIndex> m_findResults;
    std::string m_title, m_creator, m_productVersion, m_interfaceBoard, m_date, m_time;
    std::string m_lastFilterName, m_currentFilterName;
    std::int32_t m_schemaNumber = 0;
    std::uint8_t m_stopFilter = 0;
    std::uint8_t m_filterActive = 0;
    std::uint8_t m_filterWasActive = 0;
    // Known at the end of an open, while a reader may be formatting rows.
    std::atomic<std::uint8_t> m_isCanTrace{0};
    std::atomic<std::uint8_t> m_isDiagnosticTrace{0};
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
