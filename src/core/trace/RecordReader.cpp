#include "trace/RecordReader.h"

#include "trace/CTraceFile.h"

#include <algorithm>
#include <cstring>

namespace {
constexpr std::size_t kBlockSize = 64 * 1024;
}

RecordReader::RecordReader(const CTraceFile& file) : m_file(&file) {}

bool RecordReader::ReadLine(zdt::FileOffset offset, char* line) {
    if (!m_file->IsOpen())
        return false;
    if (!m_block)
        m_block.reset(new char[kBlockSize]);
    if (m_blockSerial != m_file->OpenSerial()) {
        m_blockSerial = m_file->OpenSerial();
        m_blockBytes = 0;
    }
    const std::uint64_t blockEnd = m_blockOffset + m_blockBytes;
    // A short block ends at the end of the file, so every line in it is whole.
    const bool cached = offset >= m_blockOffset && offset < blockEnd &&
                        (offset + CTraceFile::MaxRecordLine <= blockEnd || m_blockBytes < kBlockSize);
    if (!cached) {
        m_blockOffset = offset;
        m_blockBytes = m_file->ReadAt(offset, m_block.get(), kBlockSize);
        if (m_blockBytes == 0)
            return false;
    }
    const char* source = m_block.get() + (offset - m_blockOffset);
    const std::size_t available = std::min<std::size_t>(
        CTraceFile::MaxRecordLine, m_blockBytes - static_cast<std::size_t>(offset - m_blockOffset));
    const auto* cr = static_cast<const char*>(std::memchr(source, '\r', available));
    const std::size_t length = cr != nullptr ? static_cast<std::size_t>(cr - source) : available;
    std::memcpy(line, source, length);
    line[length] = '\0';
    return true;
}

bool RecordReader::ReadItem(zdt::RowIndex index, CTraceItemI& item) {
    const CTraceFile& file = *m_file;
    // The published count first: it makes the rows below it and the file safe to read.
    if (index < 0 || index >= file.RowsReadSoFar() || static_cast<std::uint32_t>(index) >= file.VisibleOffsets().Size())
        return false;
    char line[CTraceFile::MaxRecordLine + 1];
    if (!ReadLine(file.VisibleOffsets().Get(static_cast<std::uint32_t>(index)), line))
        return false;
    if (file.UsesLegacyReader())
        item.ParseLine(line, 1);
    else
        item.ParseLineV701(line, 1);
    return true;
}
