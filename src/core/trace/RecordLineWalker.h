#pragma once

#include "trace/IndexTimeReader.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

// What the index pass learns of one record line before the running times are known.
struct ScannedRecord {
    std::uint64_t offset = 0;
    std::uint32_t time = 0;
    std::int32_t channel = 0;
    std::uint8_t lineClass = 0;    // 0 to 3, by the first character
    std::uint8_t facts = 0;        // FactChannel | FactIdentifier | ...
    bool skipsTimePass = false;    // class 3 lines of 701 files
};

enum : std::uint8_t {
    FactChannel = 1,
    FactIdentifier = 2,
    FactSourceDestinationPriority = 4,
    FactFlex = 8,
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
    Result Walk(std::uint64_t from, std::uint64_t limit, std::vector<ScannedRecord>& out);

private:
    ReadAt m_readAt;
    std::uint64_t m_fileLength;
    std::size_t m_window;
    std::int32_t m_schemaNumber;
    std::unique_ptr<char[]> m_block;
};

// The first line start behind `offset` (two bytes behind the first carriage return at or
// after it, within one window), or `offset` itself when none is found.
std::uint64_t LineStartAfter(const RecordLineWalker::ReadAt& readAt, std::uint64_t offset, std::size_t window);
