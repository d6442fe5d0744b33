#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

// Growable array of 32-bit values in chunks of 16,384 entries, so that it grows
// without copying its data. The chunk table grows by 32 entries at a time.
//
// One thread may append while others Get entries below a count the appending thread
// published with release order after appending them: chunks never move, and a chunk
// table that is outgrown stays allocated until Clear(). Clear() needs all readers gone.
//
// An array may show the steps between neighbouring entries of another instead of entries of
// its own (ShareStepsOf): a list of differences then costs no memory until it is written anew.
class ChunkedArray {
public:
    static constexpr std::uint32_t ChunkEntries = 16384;
    static constexpr std::uint32_t TableGrowth = 32;

    ChunkedArray() = default;
    ~ChunkedArray();
    ChunkedArray(const ChunkedArray&) = delete;
    ChunkedArray& operator=(const ChunkedArray&) = delete;

    // False when a chunk or the table could not be allocated: the value is dropped.
    bool Append(std::uint32_t value) {
        if (m_nextFree == ChunkEntries || m_stepsOf.load(std::memory_order_relaxed) != nullptr)
            return AppendToNewChunk(value);
        m_currentChunk[m_nextFree++] = value;
        m_total.store(m_total.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
        return true;
    }
    // Appends `count` values in a row; false when memory ran out part-way.
    bool AppendRange(const std::uint32_t* values, std::size_t count);
    // Appends `count` values that `write(into, first, n)` writes straight into the chunks, n at
    // a time: values first to first + n - 1 of the run. False when memory ran out part-way.
    template <typename Write> bool AppendGenerated(std::size_t count, Write&& write) {
        if (m_stepsOf.load(std::memory_order_relaxed) != nullptr)
            Unshare();
        for (std::size_t done = 0; done < count;) {
            if (m_nextFree == ChunkEntries && !StartNewChunk())
                return false;
            const auto part =
                static_cast<std::uint32_t>(std::min<std::size_t>(count - done, ChunkEntries - m_nextFree));
            write(m_currentChunk + m_nextFree, done, part);
            m_nextFree += part;
            m_total.store(m_total.load(std::memory_order_relaxed) + part, std::memory_order_relaxed);
            done += part;
        }
        return true;
    }
    std::uint32_t Get(std::uint32_t index) const {
        if (const ChunkedArray* of = m_stepsOf.load(std::memory_order_acquire))
            return of->Get(index) - (index > 0 ? of->Get(index - 1) : 0);
        return m_table.load(std::memory_order_acquire)[index / ChunkEntries][index % ChunkEntries];
    }
    std::uint32_t Size() const {
        const ChunkedArray* of = m_stepsOf.load(std::memory_order_acquire);
        return of != nullptr ? of->Size() : m_total.load(std::memory_order_relaxed);
    }
    // Empties this array and lets it show, at each index, the entry of `other` there minus the
    // one before it (0 before the first), also for entries appended later, until this array
    // is cleared or appended to (which writes the steps out first). `other` must outlive the
    // share and share nothing itself.
    void ShareStepsOf(const ChunkedArray& other);
    bool IsShared() const { return m_stepsOf.load(std::memory_order_acquire) != nullptr; }
    void Clear();
    std::size_t BytesAllocated() const;

private:
    bool AppendToNewChunk(std::uint32_t value);
    void Unshare();
    bool StartNewChunk();
    std::uint32_t* AllocateChunk();

    std::uint32_t m_nextFree = ChunkEntries; // next free place in the current chunk
    std::uint32_t m_chunkCount = 0;
    std::uint32_t m_tableCapacity = 0;
    std::uint32_t* m_currentChunk = nullptr;
    std::atomic<std::uint32_t**> m_table{nullptr};
    std::atomic<std::uint32_t> m_total{0};
    // Outgrown tables, kept for readers that still hold them.
    std::vector<std::uint32_t**> m_retiredTables;
    std::size_t m_retiredBytes = 0;
    // Big arrays take their chunks from huge-page slabs: one page fault per 32 chunks.
    std::vector<char*> m_slabs;
    std::uint32_t m_slabChunksLeft = 0;
    std::uint32_t m_mallocChunks = 0;
    std::atomic<const ChunkedArray*> m_stepsOf{nullptr};
};

// File offsets of records in file order, four bytes each: the low words live in a
// ChunkedArray and the rare steps of the high word are kept aside, so files beyond
// 4 GiB index correctly without doubling the memory per record. Readers may Get
// published entries while one thread appends, as for ChunkedArray.
//
// An array may show another's entries instead of its own (ShareWith), so that a list that
// starts equal to another costs no memory until it is cleared and written anew.
class OffsetArray {
public:
    OffsetArray() = default;
    ~OffsetArray();
    OffsetArray(const OffsetArray&) = delete;
    OffsetArray& operator=(const OffsetArray&) = delete;

    // Offsets must be appended in non-decreasing order.
    bool Append(std::uint64_t offset) {
        if (m_shared.load(std::memory_order_relaxed) != nullptr)
            Unshare();
        if (static_cast<std::uint32_t>(offset >> 32) != m_currentHigh)
            return AppendWithNewHigh(offset);
        return m_low.Append(static_cast<std::uint32_t>(offset));
    }
    // Appends `count` offsets in a row, non-decreasing as for Append.
    bool AppendRange(const std::uint64_t* offsets, std::size_t count);
    std::uint64_t Get(std::uint32_t index) const;
    std::uint32_t Size() const {
        const OffsetArray* shared = m_shared.load(std::memory_order_acquire);
        return shared != nullptr ? shared->Size() : m_low.Size();
    }
    // Empties this array and lets it show `other`'s entries, also those appended later, until
    // it is cleared or appended to (which copies them first). `other` must outlive the share
    // and share nothing itself.
    void ShareWith(const OffsetArray& other);
    bool IsShared() const { return m_shared.load(std::memory_order_acquire) != nullptr; }
    void Clear();
    std::size_t BytesAllocated() const;

private:
    bool AppendWithNewHigh(std::uint64_t offset);
    // Takes a copy of the shared entries and stops sharing.
    void Unshare();

    struct HighStep {
        std::uint32_t firstIndex;
        std::uint32_t high;
    };
    ChunkedArray m_low;
    std::atomic<HighStep*> m_steps{nullptr};
    std::atomic<std::uint32_t> m_stepCount{0};
    std::uint32_t m_stepCapacity = 0;
    std::uint32_t m_currentHigh = 0;
    std::vector<HighStep*> m_retiredSteps;
    std::atomic<const OffsetArray*> m_shared{nullptr};
};
