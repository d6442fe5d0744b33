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

RecordLineWalker::Result RecordLineWalker::Walk(std::uint64_t from, std::uint64_t limit,
                                                std::vector<ScannedRecord>& out) {
    char* const block = m_block.get();
    std::uint64_t offset = from;
    std::uint64_t blockOffset = from;
    std::size_t blockBytes = 0;
    while (offset < m_fileLength) {
        if (offset >= limit)
            return {offset, Stop::ReachedLimit};
        std::size_t start = static_cast<std::size_t>(offset - blockOffset);
        if (start + m_window > blockBytes) {
            // Refill so that at least one window past the line start is in the block.
            if (start < blockBytes) {
                std::memmove(block, block + start, blockBytes - start);
                blockBytes -= start;
            } else {
                blockBytes = 0;
            }
            blockOffset = offset;
            blockBytes += m_readAt(offset + blockBytes, block + blockBytes, kBlockSize + m_window - blockBytes);
            start = 0;
            if (blockBytes == 0)
                break;
        }
        char* line = block + start;
        const std::size_t scan = std::min<std::size_t>(m_window, blockBytes - start);
        auto* cr = static_cast<char*>(std::memchr(line, '\r', scan));
        if (cr == nullptr)
            break;
        const std::size_t length = static_cast<std::size_t>(cr - line);
        if (length >= 17 && std::memcmp(line, "[AnalyzerHistory]", 17) == 0)
            return {offset, Stop::HistorySection};
        const int lineClass = length > 0 ? LineClass(line[0]) : -1;
        if (lineClass >= 0) {
            ScannedRecord& record = out.emplace_back();
            record.offset = offset;
            record.lineClass = static_cast<std::uint8_t>(lineClass);
            if (lineClass == 3 && m_schemaNumber >= 701) {
                record.skipsTimePass = true;
            } else {
                *cr = '\0';
                IndexLineFacts facts;
                ReadIndexLineFacts(line, length, facts);
                *cr = '\r';
                record.time = facts.time;
                record.channel = facts.channelNumber;
                record.facts = static_cast<std::uint8_t>(
                    (facts.channel ? FactChannel : 0) | (facts.identifier ? FactIdentifier : 0) |
                    (facts.sourceDestinationPriority ? FactSourceDestinationPriority : 0) | (facts.flex ? FactFlex : 0));
            }
        }
        offset += length + 2;
    }
    return {offset, Stop::EndOfLines};
}

std::uint64_t LineStartAfter(const RecordLineWalker::ReadAt& readAt, std::uint64_t offset, std::size_t window) {
    std::vector<char> bytes(window);
    const std::size_t got = readAt(offset, bytes.data(), bytes.size());
    const void* cr = std::memchr(bytes.data(), '\r', got);
    if (cr == nullptr)
        return offset;
    return offset + static_cast<std::uint64_t>(static_cast<const char*>(cr) - bytes.data()) + 2;
}
