#include "trace/ChunkedArray.h"

#include <cstdlib>

ChunkedArray::~ChunkedArray() { Clear(); }

bool ChunkedArray::AppendToNewChunk(std::uint32_t value) {
    if (m_chunkCount == m_tableCapacity) {
        const std::uint32_t capacity = m_tableCapacity + TableGrowth;
        auto* table = static_cast<std::uint32_t**>(std::realloc(m_table, capacity * sizeof(std::uint32_t*)));
        if (table == nullptr)
            return false;
        m_table = table;
        m_tableCapacity = capacity;
    }
    auto* chunk = static_cast<std::uint32_t*>(std::malloc(ChunkEntries * sizeof(std::uint32_t)));
    if (chunk == nullptr)
        return false;
    m_table[m_chunkCount++] = chunk;
    m_currentChunk = chunk;
    m_nextFree = 0;
    m_currentChunk[m_nextFree++] = value;
    ++m_total;
    return true;
}

void ChunkedArray::Clear() {
    for (std::uint32_t i = 0; i < m_chunkCount; ++i)
        std::free(m_table[i]);
    std::free(m_table);
    m_table = nullptr;
    m_currentChunk = nullptr;
    m_chunkCount = 0;
    m_tableCapacity = 0;
    m_nextFree = ChunkEntries;
    m_total = 0;
}

std::size_t ChunkedArray::BytesAllocated() const {
    return std::size_t(m_chunkCount) * ChunkEntries * sizeof(std::uint32_t) +
           std::size_t(m_tableCapacity) * sizeof(std::uint32_t*);
}

OffsetArray::~OffsetArray() { Clear(); }

bool OffsetArray::AppendWithNewHigh(std::uint64_t offset) {
    if (m_stepCount == m_stepCapacity) {
        const std::uint32_t capacity = m_stepCapacity + 16;
        auto* steps = static_cast<HighStep*>(std::realloc(m_steps, capacity * sizeof(HighStep)));
        if (steps == nullptr)
            return false;
        m_steps = steps;
        m_stepCapacity = capacity;
    }
    if (!m_low.Append(static_cast<std::uint32_t>(offset)))
        return false;
    const auto high = static_cast<std::uint32_t>(offset >> 32);
    m_steps[m_stepCount++] = HighStep{m_low.Size() - 1, high};
    m_currentHigh = high;
    return true;
}

std::uint64_t OffsetArray::Get(std::uint32_t index) const {
    // The last step at or before the index gives the high word; steps are few.
    std::uint32_t high = 0;
    std::uint32_t lo = 0, hi = m_stepCount;
    while (lo < hi) {
        const std::uint32_t mid = (lo + hi) / 2;
        if (m_steps[mid].firstIndex <= index) {
            high = m_steps[mid].high;
            lo = mid + 1;
        } else {
            hi = mid;
        }
    }
    return (std::uint64_t(high) << 32) | m_low.Get(index);
}

void OffsetArray::Clear() {
    m_low.Clear();
    std::free(m_steps);
    m_steps = nullptr;
    m_stepCount = 0;
    m_stepCapacity = 0;
    m_currentHigh = 0;
}

std::size_t OffsetArray::BytesAllocated() const {
    return m_low.BytesAllocated() + std::size_t(m_stepCapacity) * sizeof(HighStep);
}
