#include "trace/RecordLineWalker.h"

#include "trace/IndexLineKinds.h"
#include "trace/NibbleTables.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

// Small enough to stay in the cache between the copy from the kernel and the scan.
constexpr std::size_t kBlockSize = 256 * 1024;
// Carriage returns are looked for 64 bytes at a time, from 64-byte places of the block.
constexpr std::size_t kStride = 64;

// Line class by the first character: 0 for 'F', 1 for '0' or a blank, 2 for '8', 3 for
// '4' to '7'; -1 for anything else, which is no record.
constexpr std::int8_t LineClass(unsigned char first) {
    const std::uint8_t leading = nibble::detail::ValueTable[first];
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

constexpr std::array<std::int8_t, 256> MakeLineClasses() {
    std::array<std::int8_t, 256> classes{};
    for (unsigned c = 0; c < 256; ++c)
        classes[c] = LineClass(static_cast<unsigned char>(c));
    return classes;
}

constexpr std::array<std::int8_t, 256> kLineClasses = MakeLineClasses();

// Bit i is set when byte i of the 64 at `p` (aligned to 16) is a carriage return.
std::uint64_t CarriageReturns(const char* p) {
#if defined(__SSE2__)
    const __m128i cr = _mm_set1_epi8('\r');
    auto bits = [&](int part) {
        const __m128i bytes = _mm_load_si128(reinterpret_cast<const __m128i*>(p + 16 * part));
        return static_cast<std::uint64_t>(static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, cr))));
    };
    return bits(0) | (bits(1) << 16) | (bits(2) << 32) | (bits(3) << 48);
#else
    std::uint64_t mask = 0;
    for (std::size_t i = 0; i < kStride; ++i)
        mask |= static_cast<std::uint64_t>(p[i] == '\r') << i;
    return mask;
#endif
}

} // namespace

RecordLineWalker::RecordLineWalker(ReadAt readAt, std::uint64_t fileLength, std::size_t window,
                                   std::int32_t schemaNumber)
    : m_readAt(std::move(readAt)), m_fileLength(fileLength), m_window(window), m_schemaNumber(schemaNumber),
      // Zeroed, as the search for carriage returns reads whole strides past the bytes read.
      m_storage(new char[kBlockSize + window + 3 * kStride]()) {
    const auto address = reinterpret_cast<std::uintptr_t>(m_storage.get());
    m_block = m_storage.get() + ((kStride - address % kStride) % kStride);
}

bool RecordLineWalker::Fill(std::uint64_t offset) {
    std::size_t start = static_cast<std::size_t>(offset - m_blockOffset);
    if (offset >= m_blockOffset && start + m_window <= m_blockBytes)
        return true;
    // Keep the rest of the block in front and read behind it.
    char* const block = m_block;
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

RecordLineWalker::Result RecordLineWalker::Walk(std::uint64_t from, std::uint64_t limit, IndexBatch& out) {
    m_blockOffset = from;
    m_blockBytes = 0;
    std::uint64_t offset = from;
    while (offset < m_fileLength) {
        if (offset >= limit)
            return {offset, Stop::ReachedLimit};
        if (!Fill(offset))
            break;
        const auto start = static_cast<std::size_t>(offset - m_blockOffset);
        // The lines whose window lies in the block; all of them when the block holds the rest
        // of the file or a read fell short. The others wait for the next fill.
        const bool whole = m_blockOffset + m_blockBytes < m_fileLength && start + m_window <= m_blockBytes;
        std::size_t end = whole ? m_blockBytes - m_window + 1 : m_blockBytes;
        if (limit - m_blockOffset < end)
            end = static_cast<std::size_t>(limit - m_blockOffset);
        const BlockStop stop = ScanBlock(start, end, out);
        offset = m_blockOffset + stop.next;
        if (stop.history)
            return {offset, Stop::HistorySection};
        if (stop.lineNotFound)
            break;
    }
    return {offset, Stop::EndOfLines};
}

RecordLineWalker::BlockStop RecordLineWalker::ScanBlock(std::size_t start, std::size_t end, IndexBatch& out) {
    // Every line takes two bytes at least.
    const std::size_t most = (end - start) / 2 + 1;
    std::uint64_t* const offsetsBegin = out.offsets.Reserve(most);
    std::uint32_t* const timesBegin = out.times.Reserve(most);
    std::int32_t* const channelsBegin = out.channels.Reserve(most);
    std::uint64_t* offsets = offsetsBegin;
    std::uint32_t* times = timesBegin;
    std::int32_t* channels = channelsBegin;
    unsigned classes = 0;
    unsigned facts = 0;
    bool skipped = false;
    const bool class3SkipsTimes = m_schemaNumber >= 701;
    char* const block = m_block;
    const std::uint64_t blockOffset = m_blockOffset;
    const std::size_t blockBytes = m_blockBytes;
    const std::size_t window = m_window;

    BlockStop stop{start, false, false};
    std::size_t pos = start;
    std::size_t base = start - start % kStride;
    // The carriage returns of the stride at `base` not yet taken, as bits.
    std::uint64_t returns = CarriageReturns(block + base) & (~std::uint64_t(0) << (start - base));
    while (pos < end) {
        if (returns == 0) {
            base += kStride;
            if (base >= std::min(pos + window, blockBytes)) {
                stop.lineNotFound = true;
                break;
            }
            returns = CarriageReturns(block + base);
            continue;
        }
        const std::size_t cr = base + static_cast<std::size_t>(__builtin_ctzll(returns));
        returns &= returns - 1;
        if (cr < pos)
            continue; // the second of two in a row, inside the line that follows
        // Beyond the window, or in stale bytes behind those read.
        if (cr - pos >= window || cr >= blockBytes) {
            stop.lineNotFound = true;
            break;
        }
        char* const line = block + pos;
        const std::size_t length = cr - pos;
        const int lineClass = kLineClasses[static_cast<unsigned char>(line[0])]; // the CR itself when empty
        if (lineClass < 0) {
            if (length >= 17 && std::memcmp(line, "[AnalyzerHistory]", 17) == 0) {
                stop.history = true;
                break;
            }
            pos = cr + 2;
            continue;
        }
        *offsets++ = blockOffset + pos;
        classes |= 1u << lineClass;
        pos = cr + 2;
        if (lineClass == 3 && class3SkipsTimes) {
            skipped = true;
            continue;
        }
        // The block has room behind every line for the quick reader's loads.
        IndexLineFacts lineFacts;
        if (!indexline::ReadFactsQuick(line, length, lineFacts)) [[unlikely]]
            lineFacts = ScanUnusualLine(line, length);
        *times++ = lineFacts.time;
        *channels++ = lineFacts.channelNumber;
        facts |= (lineFacts.channel ? unsigned{FactChannel} : 0u) |
                 (lineFacts.identifier ? unsigned{FactIdentifier} : 0u) |
                 (lineFacts.sourceDestinationPriority ? unsigned{FactSourceDestinationPriority} : 0u) |
                 (lineFacts.flex ? unsigned{FactFlex} : 0u);
    }
    stop.next = pos;
    out.offsets.Grow(static_cast<std::size_t>(offsets - offsetsBegin));
    out.times.Grow(static_cast<std::size_t>(times - timesBegin));
    out.channels.Grow(static_cast<std::size_t>(channels - channelsBegin));
    out.lineClasses = static_cast<std::uint8_t>(out.lineClasses | classes);
    out.facts = static_cast<std::uint8_t>(out.facts | facts);
    out.skippedTimePass = out.skippedTimePass || skipped;
    return stop;
}

IndexLineFacts RecordLineWalker::ScanUnusualLine(char* line, std::size_t length) const {
    // The general reader wants the line zero-terminated: the zero stands in for the carriage
    // return for a moment.
    const char lineEnd = line[length];
    line[length] = '\0';
    IndexLineFacts facts;
    ReadIndexLineFacts(line, length, facts);
    line[length] = lineEnd;
    return facts;
}

std::uint64_t LineStartAfter(const RecordLineWalker::ReadAt& readAt, std::uint64_t offset, std::size_t window) {
    std::vector<char> bytes(window);
    const std::size_t got = readAt(offset, bytes.data(), bytes.size());
    const void* cr = std::memchr(bytes.data(), '\r', got);
    if (cr == nullptr)
        return offset;
    return offset + static_cast<std::uint64_t>(static_cast<const char*>(cr) - bytes.data()) + 2;
}
