#pragma once

#include "common/RowTypes.h"
#include "common/UserMessage.h"
#include "trace/CBufFile.h"
#include "trace/CTraceItemI.h"
#include "trace/ChannelTimes.h"
#include "trace/ChunkedArray.h"
#include "trace/RecordLineWalker.h"
#include "trace/RecordReader.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

// A classic trace: its head, an index of record offsets and times, and records
// fetched one at a time on demand. Only the index lives in memory.
//
// While one thread opens the trace, one other thread may read the rows below
// RowsReadSoFar() (ReadItem, GetItem, the index arrays at those rows). Everything else
// belongs to the opening thread until the open returns.
class CTraceFile : public CBufFile {
public:
    static constexpr std::uint32_t MaxRecordLine = 256;

    CTraceFile();
    ~CTraceFile() override;

    // Reads the sections, checks the schema and indexes every record. Boxes go to
    // `messages`; `progress` may stop the pass, which then fails with no message.
    // A failed pass closes the file and leaves no readable row, but keeps the index and the
    // descriptor until the next open or the destructor, for a reader still at work.
    bool OpenTrace(const std::string& path, zdt::MessageSink* messages = nullptr,
                   zdt::ProgressSink* progress = nullptr);
    // OpenTrace in two steps: the sections up to [TraceData], then the index pass.
    bool OpenHead(const std::string& path, zdt::MessageSink* messages = nullptr);
    bool IndexTrace(zdt::ProgressSink* progress = nullptr);
    // Rows indexed so far, published in batches while the index pass runs; the visible
    // count once it is done, 0 after a failed or cancelled pass.
    zdt::RowCount RowsReadSoFar() const { return m_visibleCount.load(std::memory_order_acquire); }
    // Changes with every open, so that readers can tell a reopened file from the one they read.
    std::uint64_t OpenSerial() const { return m_openSerial.load(std::memory_order_relaxed); }
    // The record of visible row `index`, owned by the caller, or null.
    CTraceItemI* GetItem(zdt::RowIndex index);
    // The same into a freshly constructed record of the caller's: false where GetItem gives null.
    bool ReadItem(zdt::RowIndex index, CTraceItemI& item);
    void ReleaseItem(CTraceItem* item);
    void CloseTrace();
    bool AppendFilterHistory(const std::string& name, bool active);

    // Reads the record line at `offset` into `line` (MaxRecordLine + 1 bytes), cut at its
    // carriage return or at 256 characters and zero-terminated. False when nothing is read.
    bool ReadRecordLine(zdt::FileOffset offset, char* line);
    // Whether GetItem reads with the reader of versions up to 601 (by the schema text).
    bool UsesLegacyReader() const { return m_legacyReader; }

    const std::string& GetFileName() const { return m_fileName; }
    std::string GetTitle() const { return m_title; }
    std::string GetSchema() const { return m_schema; }
    std::int32_t GetSchemaNumber() const { return m_schemaNumber; }
    std::string GetCreator() const { return m_creator; }
    std::string GetProductVersion() const { return m_productVersion; }
    std::string GetInterfaceBoard() const { return m_interfaceBoard; }
    std::string GetDate() const { return m_date; }
    std::string GetTime() const { return m_time; }
    std::string GetLastFilter() const { return m_lastFilterName; }
    const std::string& GetLastFilterPath() const { return m_lastFilterPath; }
    bool GetFilterActive() const { return m_filterActive != 0; }
    bool HasHistory() const { return m_hasHistory != 0; }
    // The last OpenTrace failed because its progress sink asked to stop.
    bool WasCancelled() const { return m_cancelled; }

    bool SeenChannel() const { return m_seenChannel != 0; }
    bool SeenIdentifier() const { return m_seenIdentifier != 0; }
    bool SeenSource() const { return m_seenSource != 0; }
    bool SeenDestination() const { return m_seenDestination != 0; }
    bool SeenPriority() const { return m_seenPriority != 0; }
    bool SeenFlex() const { return m_seenFlexIdentifier || m_seenFlexChannel || m_seenFlexSlot; }
    bool SeenClass0() const { return m_seenClass0 != 0; }
    bool SeenClass8() const { return m_seenClass8 != 0; }
    bool SeenClass4() const { return m_seenClass4 != 0; }
    bool IsDeltaTimes() const { return m_deltaTimes != 0; }
    bool IsZdtTrace() const { return m_isZdtTrace != 0; }
    bool IsOtherTrace() const { return m_isOtherTrace != 0; }

    zdt::RowCount VisibleCount() const { return RowsReadSoFar(); }
    zdt::RowCount TotalCount() const { return m_totalCount; }
    void SetVisibleCount(zdt::RowCount count) { m_visibleCount.store(count, std::memory_order_release); }

    // The index. The document's filter pass rewrites the visible offsets and the times.
    // Until then the visible offsets show the full list and the time steps follow from the
    // absolute times, without memory of their own (clearing either ends that).
    OffsetArray& VisibleOffsets() { return m_visibleOffsets; }
    const OffsetArray& AllOffsets() const { return m_allOffsets; }
    const OffsetArray& VisibleOffsets() const { return m_visibleOffsets; }
    ChunkedArray& AbsoluteTimes() { return m_absoluteTimes; }
    ChunkedArray& DeltaTimes() { return m_deltaTimesArray; }
    ChunkedArray& ChannelDeltas() { return m_channelDeltas; }
    const ChunkedArray& AbsoluteTimes() const { return m_absoluteTimes; }
    const ChunkedArray& DeltaTimes() const { return m_deltaTimesArray; }
    const ChunkedArray& ChannelDeltas() const { return m_channelDeltas; }
    ChannelTimes& ChannelTimeList() { return m_channelTimes; }
    // Memory the index holds, for the benchmarks.
    std::size_t IndexBytes() const;

private:
    bool ReadHead(std::uint64_t& offset, zdt::MessageSink* messages);
    bool ReadHistory(std::uint64_t& offset);
    void StoreHeadValue(const std::string& key, const std::string& value, bool& schemaOk);
    bool IndexRecords(std::uint64_t offset, zdt::ProgressSink* progress);
    // Adds a walk's records to the index and publishes them.
    void AbsorbBatch(const IndexBatch& batch);
    void TimePass(const IndexBatch& batch);
    void ResetIndex();

    std::string m_fileName;
    std::string m_title;
    std::string m_schema;
    std::int32_t m_schemaNumber = 0;
    std::string m_creator;
    std::string m_productVersion;
    std::string m_interfaceBoard;
    std::string m_date;
    std::string m_time;
    std::string m_lastFilterPath;
    std::string m_lastFilterName;
    std::uint8_t m_filterActive = 0;
    std::uint8_t m_hasHistory = 0;
    std::uint8_t m_seenChannel = 0;
    std::uint8_t m_seenIdentifier = 0;
    std::uint8_t m_seenSource = 0;
    std::uint8_t m_seenDestination = 0;
    std::uint8_t m_seenPriority = 0;
    std::uint8_t m_seenFlexIdentifier = 0;
    std::uint8_t m_seenFlexChannel = 0;
    std::uint8_t m_seenFlexSlot = 0;
    std::uint8_t m_seenClass0 = 0;
    std::uint8_t m_seenClass8 = 0;
    std::uint8_t m_seenClass4 = 0;
    std::uint8_t m_deltaTimes = 0;
    std::uint8_t m_isZdtTrace = 0;
    std::uint8_t m_isOtherTrace = 0;
    bool m_legacyReader = false;
    bool m_cancelled = false;
    std::uint64_t m_traceDataOffset = 0; // the first line behind [TraceData]
    std::atomic<std::uint64_t> m_openSerial{0};
    std::atomic<zdt::RowCount> m_visibleCount{0};
    // Rows absorbed by the index pass, ahead of the published count.
    zdt::RowCount m_absorbedCount = 0;
    zdt::RowCount m_totalCount = 0;
    std::uint32_t m_previousTime = 0;
    std::uint32_t m_absoluteTime = 0;
    std::uint32_t m_deltaTime = 0;
    ChannelTimes m_channelTimes;

    OffsetArray m_visibleOffsets;
    OffsetArray m_allOffsets;
    ChunkedArray m_absoluteTimes;
    ChunkedArray m_deltaTimesArray;
    ChunkedArray m_channelDeltas;

    // The reader of GetItem and ReadItem, for the thread that owns the document.
    RecordReader m_reader;
};
