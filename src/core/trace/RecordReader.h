#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

class CTraceFile;
class CTraceItemI;

// Reads the record lines of a trace through a block of its own, so that rows read in
// order cost one read per block, and several readers can read one file from several
// threads at once.
class RecordReader {
public:
    explicit RecordReader(const CTraceFile& file);

    // The record line at `offset` into `line` (257 bytes), cut at its carriage return or at
    // 256 characters and zero-terminated. False when nothing is read.
    bool ReadLine(std::uint64_t offset, char* line);
    // The record of visible row `index` into a freshly constructed record.
    bool ReadItem(std::uint32_t index, CTraceItemI& item);
    const CTraceFile& File() const { return *m_file; }
    // Forgets the block, for a file that was reopened.
    void Reset() { m_blockBytes = 0; }

private:
    const CTraceFile* m_file;
    std::unique_ptr<char[]> m_block;
    std::uint64_t m_blockOffset = 0;
    std::size_t m_blockBytes = 0;
};
