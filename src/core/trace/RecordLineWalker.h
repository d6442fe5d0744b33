#pragma once

#include "trace/IndexTimeReader.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <vector>

// What the index pass learns of one record line before the running times are known.
struct ScannedRecord {
    std::uint64_t offset = 0;
    std::uint32_t time = 0;
    std::int32_t channel = 0;
    std::uint8_t lineClass = 0; // 0 to 3, by the first character
    std::uint8_t facts = 0;     // FactChannel | FactIdentifier | ...
    bool skipsTimePass = false; // class 3 lines of 701 files
};

enum : std::uint8_t {
    FactChannel = 1,
    FactIdentifier = 2,
    FactSourceDestinationPriority = 4,
    FactFlex = 8,
};

// The records of one walk, column by column, so that adding them to the index is a few
// bulk copies and one loop over the times. Reused from block to block: the columns keep
// their capacity.
struct IndexBatch {
    std::vector<std::uint64_t> offsets; // every record
    std::vector<std::uint32_t> times;   // the records of the time pass, in file order
    std::vector<std::int32_t> channels; // their channels
    std::uint8_t lineClasses = 0;       // bit 1 << class of each record
    std::uint8_t facts = 0;             // the facts of all records ORed
    bool skippedTimePass = false;       // a class 3 line of a 701 file was among them

    void Clear() {
        offsets.clear();
        times.clear();
        channels.clear();
        lineClasses = 0;
        facts = 0;
        skippedTimePass = false;
    }
    void Add(const ScannedRecord& record) {
        offsets.push_back(record.offset);
        lineClasses = static_cast<std::uint8_t>(lineClasses | (1u << record.lineClass));
        if (record.skipsTimePass) {
            skippedTimePass = true;
            return;
        }
        facts = static_cast<std::uint8_t>(facts | record.facts);
        times.push_back(record.time);
        channels.push_back(record.channel);
    }
};

// Walks record lines from big blocks with the rules of the line window: a line is found
// only when its carriage return lies within one window of its start, the next line lies
// two bytes behind that carriage return, and the walk ends at a line that is not found.
class RecordLineWalker {
public:
    enum class Stop { ReachedLimit, EndOfLines, HistorySection };
    struct Result {
        std::uint64_t next = 0; // where the walk stopped: the first line not taken
        Stop stop = Stop::EndOfLines;
    };
    using ReadAt = std::function<std::size_t(std::uint64_t offset, char* into, std::size_t count)>;

    RecordLineWalker(ReadAt readAt, std::uint64_t fileLength, std::size_t window, std::int32_t schemaNumber);

    // Scans the lines that start in [from, limit) into `out` (appending). A line starting at
    // or beyond `limit` ends the walk, as do the end of the lines and a history section.
    Result Walk(std::uint64_t from, std::uint64_t limit, IndexBatch& out) {
        return Walk(from, limit, [&out](const ScannedRecord& record) { out.Add(record); });
    }
    // The same, handing each record to `take` as it is scanned.
    template <typename Take> Result Walk(std::uint64_t from, std::uint64_t limit, Take&& take);

private:
    // Scans one record line (zero-terminated at `length`) into `record`; false for no record.
    bool ScanRecord(std::uint64_t offset, char* line, std::size_t length, ScannedRecord& record) const;
    // Makes sure one window past `offset` is in the block (or the rest of the file); false at the end.
    bool Fill(std::uint64_t offset);

    ReadAt m_readAt;
    std::uint64_t m_fileLength;
    std::size_t m_window;
    std::int32_t m_schemaNumber;
    std::unique_ptr<char[]> m_block;
    std::uint64_t m_blockOffset = 0;
    std::size_t m_blockBytes = 0;
};

template <typename Take>
RecordLineWalker::Result RecordLineWalker::Walk(std::uint64_t from, std::uint64_t limit, Take&& take) {
    m_blockOffset = from;
    m_blockBytes = 0;
    std::uint64_t offset = from;
    while (offset < m_fileLength) {
        if (offset >= limit)
            return {offset, Stop::ReachedLimit};
        if (!Fill(offset))
            break;
        char* line = m_block.get() + (offset - m_blockOffset);
        const std::size_t available = m_blockBytes - static_cast<std::size_t>(offset - m_blockOffset);
        const std::size_t scan = available < m_window ? available : m_window;
        auto* cr = static_cast<char*>(std::memchr(line, '\r', scan));
        if (cr == nullptr)
            break;
        const std::size_t length = static_cast<std::size_t>(cr - line);
        if (length >= 17 && std::memcmp(line, "[AnalyzerHistory]", 17) == 0)
            return {offset, Stop::HistorySection};
        ScannedRecord record;
        *cr = '\0';
        const bool isRecord = ScanRecord(offset, line, length, record);
        *cr = '\r';
        if (isRecord)
            take(record);
        offset += length + 2;
    }
    return {offset, Stop::EndOfLines};
}

// The first line start behind `offset` (two bytes behind the first carriage return at or
// after it, within one window), or `offset` itself when none is found.
std::uint64_t LineStartAfter(const RecordLineWalker::ReadAt& readAt, std::uint64_t offset, std::size_t window);
