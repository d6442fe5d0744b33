#include "trace/ChunkedArray.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>

namespace {

constexpr std::size_t kChunkBytes = ChunkedArray::ChunkEntries * sizeof(std::uint32_t);
constexpr std::size_t kSlabBytes = 2 * 1024 * 1024;
constexpr std::uint32_t kChunksPerSlab = static_cast<std::uint32_t>(kSlabBytes / kChunkBytes);
// Small arrays stay in single chunks, so that a small trace does not hold 2 MB pages.
constexpr std::uint32_t kMallocChunks = 64;

} // namespace

ChunkedArray::~ChunkedArray() {
    Clear();
}

std::uint32_t* ChunkedArray::AllocateChunk() {
    if (m_mallocChunks < kMallocChunks) {
        auto* chunk = static_cast<std::uint32_t*>(std::malloc(kChunkBytes));
        if (chunk != nullptr)
            ++m_mallocChunks;
        return chunk;
    }
    if (m_slabChunksLeft == 0) {
        void* slab = std::aligned_alloc(kSlabBytes, kSlabBytes);
        if (slab == nullptr)
            return nullptr;
#ifdef MADV_HUGEPAGE
        ::madvise(slab, kSlabBytes, MADV_HUGEPAGE);
#endif
        m_slabs.push_back(static_cast<char*>(slab));
        m_slabChunksLeft = kChunksPerSlab;
    }
    char* chunk = m_slabs.back() + (kChunksPerSlab - m_slabChunksLeft) * kChunkBytes;
    --m_slabChunksLeft;
    return reinterpret_cast<std::uint32_t*>(chunk);
}

bool ChunkedArray::StartNewChunk() {
    std::uint32_t** table = m_table.load(std::memory_order_relaxed);
    if (m_chunkCount == m_tableCapacity) {
        // A reader may hold the old table: copy it, publish the copy, keep the old one.
        const std::uint32_t capacity = m_tableCapacity + TableGrowth;
        auto* grown = static_cast<std::uint32_t**>(std::malloc(capacity * sizeof(std::uint32_t*)));
        if (grown == nullptr)
            return false;
        if (table != nullptr) {
            std::memcpy(grown, table, m_chunkCount * sizeof(std::uint32_t*));
            m_retiredTables.push_back(table);
            m_retiredBytes += m_tableCapacity * sizeof(std::uint32_t*);
        }
        m_table.store(grown, std::memory_order_release);
        table = grown;
        m_tableCapacity = capacity;
    }
    std::uint32_t* chunk = AllocateChunk();
    if (chunk == nullptr)
        return false;
    table[m_chunkCount++] = chunk;
    m_currentChunk = chunk;
    m_nextFree = 0;
    return true;
}

bool ChunkedArray::AppendToNewChunk(std::uint32_t value) {
    if (m_stepsOf.load(std::memory_order_relaxed) != nullptr) {
        Unshare();
        return Append(value);
    }
    if (!StartNewChunk())
        return false;
    m_currentChunk[m_nextFree++] = value;
    m_total.store(m_total.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    return true;
}

bool ChunkedArray::AppendRange(const std::uint32_t* values, std::size_t count) {
    return AppendGenerated(count, [values](std::uint32_t* into, std::size_t first, std::uint32_t n) {
        std::memcpy(into, values + first, n * sizeof(std::uint32_t));
    });
}

void ChunkedArray::ShareStepsOf(const ChunkedArray& other) {
    Clear();
    m_stepsOf.store(&other, std::memory_order_release);
}

void ChunkedArray::Unshare() {
    const ChunkedArray* of = m_stepsOf.load(std::memory_order_relaxed);
    Clear();
    const std::uint32_t count = of->Size();
    std::uint32_t previous = 0;
    AppendGenerated(count, [&](std::uint32_t* into, std::size_t first, std::uint32_t n) {
        for (std::uint32_t i = 0; i < n; ++i) {
            const std::uint32_t value = of->Get(static_cast<std::uint32_t>(first + i));
            into[i] = value - previous;
            previous = value;
        }
    });
}

void ChunkedArray::Clear() {
    m_stepsOf.store(nullptr, std::memory_order_release);
    std::uint32_t** table = m_table.load(std::memory_order_relaxed);
    for (std::uint32_t i = 0; i < std::min(m_chunkCount, m_mallocChunks); ++i)
        std::free(table[i]);
    for (char* slab : m_slabs)
        std::free(slab);
    for (std::uint32_t** retired : m_retiredTables)
        std::free(retired);
    std::free(table);
    m_slabs.clear();
    m_retiredTables.clear();
    m_retiredBytes = 0;
    m_slabChunksLeft = 0;
    m_mallocChunks = 0;
    m_table.store(nullptr, std::memory_order_relaxed);
    m_currentChunk = nullptr;
    m_chunkCount = 0;
    m_tableCapacity = 0;
    m_nextFree = ChunkEntries;
    m_total.store(0, std::memory_order_relaxed);
}

std::size_t ChunkedArray::BytesAllocated() const {
    return std::size_t(m_mallocChunks) * kChunkBytes + m_slabs.size() * kSlabBytes +
           std::size_t(m_tableCapacity) * sizeof(std::uint32_t*) + m_retiredBytes;
}

OffsetArray::~OffsetArray() {
    Clear();
}

bool OffsetArray::AppendWithNewHigh(std::uint64_t offset) {
    HighStep* steps = m_steps.load(std::memory_order_relaxed);
    const std::uint32_t stepCount = m_stepCount.load(std::memory_order_relaxed);
    if (stepCount == m_stepCapacity) {
        const std::uint32_t capacity = m_stepCapacity + 16;
        auto* grown = static_cast<HighStep*>(std::malloc(capacity * sizeof(HighStep)));
        if (grown == nullptr)
            return false;
        if (steps != nullptr) {
            std::memcpy(grown, steps, stepCount * sizeof(HighStep));
            m_retiredSteps.push_back(steps);
        }
        m_steps.store(grown, std::memory_order_release);
        steps = grown;
        m_stepCapacity = capacity;
    }
    if (!m_low.Append(static_cast<std::uint32_t>(offset)))
        return false;
    const auto high = static_cast<std::uint32_t>(offset >> 32);
    steps[stepCount] = HighStep{m_low.Size() - 1, high};
    m_stepCount.store(stepCount + 1, std::memory_order_release);
    m_currentHigh = high;
    return true;
}

bool OffsetArray::AppendRange(const std::uint64_t* offsets, std::size_t count) {
    if (m_shared.load(std::memory_order_relaxed) != nullptr)
        Unshare();
    while (count > 0) {
        // The offsets rise, so those that share the current high word come first, and they
        // go in as low words at once.
        const std::uint64_t* const runEnd = std::partition_point(
            offsets, offsets + count, [this](std::uint64_t offset) { return (offset >> 32) == m_currentHigh; });
        const auto run = static_cast<std::size_t>(runEnd - offsets);
        const bool appended =
            m_low.AppendGenerated(run, [offsets](std::uint32_t* into, std::size_t first, std::uint32_t n) {
                for (std::uint32_t i = 0; i < n; ++i)
                    into[i] = static_cast<std::uint32_t>(offsets[first + i]);
            });
        if (!appended)
            return false;
        offsets += run;
        count -= run;
        if (count > 0) {
            if (!AppendWithNewHigh(*offsets))
                return false;
            ++offsets;
            --count;
        }
    }
    return true;
}

std::uint64_t OffsetArray::Get(std::uint32_t index) const {
    if (const OffsetArray* shared = m_shared.load(std::memory_order_acquire))
        return shared->Get(index);
    // The last step at or before the index gives the high word; steps are few.
    std::uint32_t high = 0;
    std::uint32_t lo = 0, hi = m_stepCount.load(std::memory_order_acquire);
    const HighStep* steps = m_steps.load(std::memory_order_acquire);
    while (lo < hi) {
        const std::uint32_t mid = (lo + hi) / 2;
        if (steps[mid].firstIndex <= index) {
            high = steps[mid].high;
            lo = mid + 1;
        } else {
            hi = mid;
        }
    }
    return (std::uint64_t(high) << 32) | m_low.Get(index);
}

void OffsetArray::ShareWith(const OffsetArray& other) {
    Clear();
    m_shared.store(&other, std::memory_order_release);
}

void OffsetArray::Unshare() {
    const OffsetArray* shared = m_shared.load(std::memory_order_relaxed);
    Clear();
    const std::uint32_t count = shared->Size();
    for (std::uint32_t i = 0; i < count; ++i)
        Append(shared->Get(i));
}

void OffsetArray::Clear() {
    m_shared.store(nullptr, std::memory_order_release);
    m_low.Clear();
    std::free(m_steps.load(std::memory_order_relaxed));
    for (HighStep* retired : m_retiredSteps)
        std::free(retired);
    m_retiredSteps.clear();
    m_steps.store(nullptr, std::memory_order_relaxed);
    m_stepCount.store(0, std::memory_order_relaxed);
    m_stepCapacity = 0;
    m_currentHigh = 0;
}

std::size_t OffsetArray::BytesAllocated() const {
    return m_low.BytesAllocated() + std::size_t(m_stepCapacity) * sizeof(HighStep);
}
