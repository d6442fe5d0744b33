#include "trace/RecordLineWalker.h"

#include "trace/NibbleTables.h"

#include <algorithm>
#include <cstring>

namespace {

// Small enough to stay in the cache between the copy from the kernel and the scan.
constexpr std::size_t kBlockSize = 256 * 1024;

// Line class by the first character: 0 for 'F', 1 for '0' or a blank, 2 for '8', 3 for
// '4' to '7'; -1 for anything else, which is no record.
int LineClass(char first) {
    const std::uint8_t leading = nibble::Value(static_cast<unsigned char>(first));
    if (leading == 0)
        return 1;
    if (leading >= 4 && leading <= 7)
        return 3;
    if (leading == 8)
        return 2;
    if (leading == 15)
        return 0;
    return -1;
}

} // namespace

RecordLineWalker::RecordLineWalker(ReadAt readAt, std::uint64_t fileLength, std::size_t window,
                                   std::int32_t schemaNumber)
    : m_readAt(std::move(readAt)), m_fileLength(fileLength), m_window(window), m_schemaNumber(schemaNumber),
      m_block(new char[kBlockSize + window + 1]) {}

bool RecordLineWalker::Fill(std::uint64_t offset) {
    std::size_t start = static_cast<std::size_t>(offset - m_blockOffset);
    if (offset >= m_blockOffset && start + m_window <= m_blockBytes)
        return true;
    // Keep the rest of the block in front and read behind it.
    char* const block = m_block.get();
    if (offset >= m_blockOffset && start < m_blockBytes) {
        std::memmove(block, block + start, m_blockBytes - start);
        m_blockBytes -= start;
    } else {
        m_blockBytes = 0;
    }
    m_blockOffset = offset;
    m_blockBytes += m_readAt(offset + m_blockBytes, block + m_blockBytes, kBlockSize + m_window - m_blockBytes);
    return m_blockBytes > 0;
}

bool RecordLineWalker::ScanRecord(std::uint64_t offset, char* line, std::size_t length, ScannedRecord& record) const {
    const int lineClass = length > 0 ? LineClass(line[0]) : -1;
    if (lineClass < 0)
        return false;
    record.offset = offset;
    record.lineClass = static_cast<std::uint8_t>(lineClass);
    if (lineClass == 3 && m_schemaNumber >= 701) {
        record.skipsTimePass = true;
        return true;
    }
    IndexLineFacts facts;
    ReadIndexLineFacts(line, length, facts);
    record.time = facts.time;
    record.channel = facts.channelNumber;
    record.facts = static_cast<std::uint8_t>((facts.channel ? FactChannel : 0) | (facts.identifier ? FactIdentifier : 0) |
                                             (facts.sourceDestinationPriority ? FactSourceDestinationPriority : 0) |
                                             (facts.flex ? FactFlex : 0));
    return true;
}

std::uint64_t LineStartAfter(const RecordLineWalker::ReadAt& readAt, std::uint64_t offset, std::size_t window) {
    std::vector<char> bytes(window);
    const std::size_t got = readAt(offset, bytes.data(), bytes.size());
    const void* cr = std::memchr(bytes.data(), '\r', got);
    if (cr == nullptr)
        return offset;
    return offset + static_cast<std::uint64_t>(static_cast<const char*>(cr) - bytes.data()) + 2;
}
