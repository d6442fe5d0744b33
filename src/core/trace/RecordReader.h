#pragma once

#include "common/RowTypes.h"

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
    bool ReadLine(zdt::FileOffset offset, char* line);
    // The record of visible row `index` into `item`, which the read resets; false for a row
    // at or beyond the rows read so far, which is all a reader on another thread may ask.
    bool ReadItem(zdt::RowIndex index, CTraceItemI& item);
    const CTraceFile& File() const { return *m_file; }
    // Forgets the block, for a file that was reopened.
    void Reset() { m_blockBytes = 0; }

private:
    const CTraceFile* m_file;
    std::unique_ptr<char[]> m_block;
    std::uint64_t m_blockOffset = 0;
    std::size_t m_blockBytes = 0;
    std::uint64_t m_blockSerial = 0; // the file's open serial when the block was read
};
