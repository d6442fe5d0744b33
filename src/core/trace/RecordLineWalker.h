#pragma once

#include "trace/IndexTimeReader.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>

enum : std::uint8_t {
    FactChannel = 1,
    FactIdentifier = 2,
    FactSourceDestinationPriority = 4,
    FactFlex = 8,
};

// A column of a batch: grows without initialising what it has not written yet, so that
// room for a whole block of lines costs nothing until lines fill it.
template <typename T> class BatchColumn {
public:
    std::size_t size() const { return m_size; }
    const T* data() const { return m_data.get(); }
    void clear() { m_size = 0; }
    // Room for `count` more values behind the end; write them, then Grow by as many.
    T* Reserve(std::size_t count) {
        if (m_size + count > m_capacity) {
            const std::size_t capacity = std::max(m_size + count, m_capacity * 2);
            auto grown = std::make_unique_for_overwrite<T[]>(capacity);
            if (m_size > 0)
                std::memcpy(grown.get(), m_data.get(), m_size * sizeof(T));
            m_data = std::move(grown);
            m_capacity = capacity;
        }
        return m_data.get() + m_size;
    }
    void Grow(std::size_t count) { m_size += count; }

private:
    std::unique_ptr<T[]> m_data;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

// The records of one walk, column by column, so that adding them to the index is a few
// bulk copies and one loop over the times. Reused from block to block: the columns keep
// their capacity.
struct IndexBatch {
    BatchColumn<std::uint64_t> offsets; // every record
    BatchColumn<std::uint32_t> times;   // the records of the time pass, in file order
    BatchColumn<std::int32_t> channels; // their channels
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
    Result Walk(std::uint64_t from, std::uint64_t limit, IndexBatch& out);

private:
    struct BlockStop {
        std::size_t next; // in the block
        bool lineNotFound;
        bool history;
    };
    // Scans the lines of the block that start in [start, end); the window of each lies in the
    // block, or the block holds the rest of the file.
    BlockStop ScanBlock(std::size_t start, std::size_t end, IndexBatch& out);
    // Scans a line the quick reader declines; `line` is writable up to its carriage return.
    IndexLineFacts ScanUnusualLine(char* line, std::size_t length) const;
    // Makes sure one window past `offset` is in the block (or the rest of the file); false at the end.
    bool Fill(std::uint64_t offset);

    ReadAt m_readAt;
    std::uint64_t m_fileLength;
    std::size_t m_window;
    std::int32_t m_schemaNumber;
    std::unique_ptr<char[]> m_storage;
    char* m_block = nullptr; // in m_storage, aligned for whole-vector loads
    std::uint64_t m_blockOffset = 0;
    std::size_t m_blockBytes = 0;
};

// The first line start behind `offset` (two bytes behind the first carriage return at or
// after it, within one window), or `offset` itself when none is found.
std::uint64_t LineStartAfter(const RecordLineWalker::ReadAt& readAt, std::uint64_t offset, std::size_t window);
