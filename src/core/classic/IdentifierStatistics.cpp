#include "classic/IdentifierStatistics.h"

#include "classic/CAnalyzerDoc.h"
#include "classic/ClassicTime.h"
#include "classic/TextFormat.h"
#include "trace/RecordReader.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace {

// Rows between two looks at the progress and the cancel flag; a power of 2.
constexpr zdt::RowCount kBlockRows = 16384;

} // namespace

std::optional<std::uint32_t> AbsoluteFrameTime(const CAnalyzerDoc& doc, zdt::RowIndex row, const CTraceItem& item) {
    if (!item.HasTime())
        return std::nullopt;
    std::uint32_t time = 0;
    item.GetTime(time);
    if (doc.SchemaNumber() == 701)
        return time;
    if (time == 0)
        return std::nullopt;
    if (!doc.IsDeltaFile())
        return time;
    const CTraceFile* file = doc.TraceFile();
    if (file == nullptr || row < 0 || static_cast<std::uint32_t>(row) >= file->AbsoluteTimes().Size())
        return std::nullopt;
    return file->AbsoluteTimes().Get(static_cast<std::uint32_t>(row));
}

CycleTracker::Step CycleTracker::Next(std::optional<std::uint32_t> time, std::uint32_t& cycle) {
    if (!time)
        return Step::Skipped;
    const bool had = m_hasTime;
    const std::uint32_t last = m_lastTime;
    m_hasTime = true;
    m_lastTime = *time;
    if (!had)
        return Step::First;
    if (*time < last)
        return Step::Skipped;
    cycle = *time - last;
    return Step::Cycle;
}

double IdentifierFigures::CycleMeanMillis() const {
    return cycles == 0 ? 0.0 : static_cast<double>(cycleSumMicros) / (static_cast<double>(cycles) * 1000.0);
}

double IdentifierFigures::LengthMean() const {
    return count == 0 ? 0.0 : static_cast<double>(lengthSum) / static_cast<double>(count);
}

const IdentifierFigures* IdentifierStatistics::Find(const IdentifierKey& key) const {
    const auto at = std::lower_bound(figures.begin(), figures.end(), key,
                                     [](const IdentifierFigures& f, const IdentifierKey& k) { return f.key < k; });
    return at != figures.end() && at->key == key ? &*at : nullptr;
}

// ---- the accumulator ------------------------------------------------------------------------

namespace {

struct Entry {
    IdentifierFigures figures;
    CycleTracker tracker;
    // The first frame with a time, for the cycle across the join with earlier rows.
    bool hasFirstTime = false;
    std::uint32_t firstTime = 0;

    void AddCycle(std::uint32_t cycle) {
        figures.cycleMinMicros = figures.cycles == 0 ? cycle : std::min(figures.cycleMinMicros, cycle);
        figures.cycleMaxMicros = figures.cycles == 0 ? cycle : std::max(figures.cycleMaxMicros, cycle);
        figures.cycleSumMicros += cycle;
        ++figures.cycles;
    }
    void AddLength(std::uint8_t length) {
        figures.lengthMin = figures.count == 0 ? length : std::min(figures.lengthMin, length);
        figures.lengthMax = figures.count == 0 ? length : std::max(figures.lengthMax, length);
        figures.lengthSum += length;
    }
    // `later` holds the frames of the rows behind this entry's rows.
    void Join(const Entry& later) {
        IdentifierFigures& f = figures;
        const IdentifierFigures& n = later.figures;
        f.lengthMin = std::min(f.lengthMin, n.lengthMin);
        f.lengthMax = std::max(f.lengthMax, n.lengthMax);
        f.lengthSum += n.lengthSum;
        f.count += n.count;
        f.skippedTimes += n.skippedTimes;
        // The later run's first timed frame had no predecessor there; here it has one.
        if (later.hasFirstTime && tracker.HasTime()) {
            std::uint32_t cycle = 0;
            CycleTracker joint = tracker;
            if (joint.Next(later.firstTime, cycle) == CycleTracker::Step::Cycle)
                AddCycle(cycle);
            else
                ++f.skippedTimes;
        }
        if (n.cycles != 0) {
            f.cycleMinMicros = f.cycles == 0 ? n.cycleMinMicros : std::min(f.cycleMinMicros, n.cycleMinMicros);
            f.cycleMaxMicros = f.cycles == 0 ? n.cycleMaxMicros : std::max(f.cycleMaxMicros, n.cycleMaxMicros);
            f.cycleSumMicros += n.cycleSumMicros;
            f.cycles += n.cycles;
        }
        if (later.tracker.HasTime())
            tracker = later.tracker;
        if (!hasFirstTime) {
            hasFirstTime = later.hasFirstTime;
            firstTime = later.firstTime;
        }
    }
};

// Sorts like IdentifierKey: identifier, then extended, then channel.
std::uint64_t PackedKey(const IdentifierKey& key) {
    return (std::uint64_t{key.identifier} << 16) | (std::uint64_t{key.extended} << 8) | key.channel;
}

} // namespace

// Open addressing over entries in chunks that never move: a growing table copies no
// figures, and chunks are given back one by one as their figures move on. A slot holds
// 32 bits of the key's hash and the entry's number, 8 bytes for each of at least two slots
// an entry.
struct IdentifierStatisticsAccumulator::Table {
    static constexpr std::size_t ChunkEntries = 4096;
    struct Slot {
        std::uint32_t tag = 0;
        std::uint32_t entry = 0; // entry number plus 1; 0 is a free slot
    };
    std::vector<Slot> slots = std::vector<Slot>(64);
    std::vector<std::unique_ptr<Entry[]>> chunks;
    std::size_t count = 0;

    Entry& At(std::size_t index) { return chunks[index / ChunkEntries][index % ChunkEntries]; }
    static std::uint64_t Hash(std::uint64_t key) {
        // The finaliser of SplitMix64: every key bit reaches the bits the mask keeps.
        key = (key ^ (key >> 30)) * 0xBF58476D1CE4E5B9ull;
        key = (key ^ (key >> 27)) * 0x94D049BB133111EBull;
        return key ^ (key >> 31);
    }
    // The slot that holds `key`, or the free slot where it belongs.
    Slot& Find(std::uint64_t key, std::uint64_t hash) {
        const auto tag = static_cast<std::uint32_t>(hash >> 32);
        const std::size_t mask = slots.size() - 1;
        for (std::size_t at = static_cast<std::size_t>(hash) & mask;; at = (at + 1) & mask) {
            Slot& slot = slots[at];
            if (slot.entry == 0 || (slot.tag == tag && PackedKey(At(slot.entry - 1).figures.key) == key))
                return slot;
        }
    }
    Entry& EntryFor(const IdentifierKey& key) {
        const std::uint64_t packed = PackedKey(key);
        const std::uint64_t hash = Hash(packed);
        Slot* slot = &Find(packed, hash);
        if (slot->entry != 0)
            return At(slot->entry - 1);
        if ((count + 1) * 2 > slots.size()) {
            Grow();
            slot = &Find(packed, hash);
        }
        if (count % ChunkEntries == 0)
            chunks.push_back(std::make_unique<Entry[]>(ChunkEntries));
        Entry& entry = At(count++);
        entry.figures.key = key;
        slot->tag = static_cast<std::uint32_t>(hash >> 32);
        slot->entry = static_cast<std::uint32_t>(count);
        return entry;
    }
    void Grow() {
        slots.assign(slots.size() * 2, Slot{});
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint64_t packed = PackedKey(At(i).figures.key);
            const std::uint64_t hash = Hash(packed);
            Slot& slot = Find(packed, hash);
            slot.tag = static_cast<std::uint32_t>(hash >> 32);
            slot.entry = static_cast<std::uint32_t>(i + 1);
        }
    }
    // Hands every entry to `take` in entry order, giving each chunk back once it is done;
    // the table is empty afterwards.
    template <typename Take> void Drain(Take take) {
        slots = std::vector<Slot>(64);
        for (std::size_t i = 0; i < count; ++i) {
            take(At(i));
            if ((i + 1) % ChunkEntries == 0)
                chunks[i / ChunkEntries].reset();
        }
        chunks.clear();
        count = 0;
    }
};

IdentifierStatisticsAccumulator::IdentifierStatisticsAccumulator() : m_table(std::make_unique<Table>()) {}
IdentifierStatisticsAccumulator::~IdentifierStatisticsAccumulator() = default;
IdentifierStatisticsAccumulator::IdentifierStatisticsAccumulator(IdentifierStatisticsAccumulator&&) noexcept = default;
IdentifierStatisticsAccumulator&
IdentifierStatisticsAccumulator::operator=(IdentifierStatisticsAccumulator&&) noexcept = default;

void IdentifierStatisticsAccumulator::Add(const IdentifierKey& key, std::optional<std::uint32_t> time,
                                          std::uint8_t length) {
    Entry& entry = m_table->EntryFor(key);
    entry.AddLength(length);
    ++entry.figures.count;
    std::uint32_t cycle = 0;
    switch (entry.tracker.Next(time, cycle)) {
    case CycleTracker::Step::First:
        entry.hasFirstTime = true;
        entry.firstTime = *time;
        break;
    case CycleTracker::Step::Cycle:
        entry.AddCycle(cycle);
        break;
    case CycleTracker::Step::Skipped:
        ++entry.figures.skippedTimes;
        break;
    }
}

void IdentifierStatisticsAccumulator::Append(IdentifierStatisticsAccumulator&& later) {
    later.m_table->Drain([this](const Entry& next) {
        Entry& entry = m_table->EntryFor(next.figures.key);
        if (entry.figures.count == 0)
            entry = next;
        else
            entry.Join(next);
    });
}

std::vector<IdentifierFigures> IdentifierStatisticsAccumulator::TakeSorted() {
    std::vector<IdentifierFigures> figures;
    figures.reserve(m_table->count);
    m_table->Drain([&figures](const Entry& entry) { figures.push_back(entry.figures); });
    std::sort(figures.begin(), figures.end(), [](const IdentifierFigures& a, const IdentifierFigures& b) {
        return PackedKey(a.key) < PackedKey(b.key);
    });
    return figures;
}

std::size_t IdentifierStatisticsAccumulator::Size() const {
    return m_table->count;
}

// ---- the pass -------------------------------------------------------------------------------

std::optional<IdentifierKey> IdentifierKeyOf(const CTraceItem& item) {
    if (!item.HasIdentifier())
        return std::nullopt;
    IdentifierKey key;
    std::uint8_t extended = 0;
    item.GetIdentifier(key.identifier);
    item.GetExtendedFlag(extended);
    key.extended = extended != 0;
    if (item.HasChannel())
        item.GetChannel(key.channel);
    return key;
}

namespace {

// Adds rows [first, end); after each block `goOn(rowsDone)` says whether to go on.
template <typename GoOn>
bool AddRows(const CAnalyzerDoc& doc, RecordReader& reader, zdt::RowIndex first, zdt::RowIndex end,
             IdentifierStatisticsAccumulator& into, GoOn goOn) {
    for (zdt::RowIndex row = first; row < end; ++row) {
        if (((row - first) & (kBlockRows - 1)) == 0 && !goOn(row - first))
            return false;
        CTraceItemI item;
        if (!reader.ReadItem(row, item))
            continue;
        const std::optional<IdentifierKey> key = IdentifierKeyOf(item);
        if (!key)
            continue;
        std::uint8_t length = 0;
        item.GetDataLength(length);
        into.Add(*key, AbsoluteFrameTime(doc, row, item), length);
    }
    return goOn(end - first);
}

std::string EmptyReason(const CAnalyzerDoc& doc) {
    if (doc.HasIdentifierColumn() && doc.IsFilterActive())
        return "No row the list shows carries an identifier: the CAN filter hides every frame.";
    if (doc.GetVisibleCount() == 0)
        return "The list shows no rows.";
    return "No record of this trace carries an identifier: it holds no CAN or Flex frames.";
}

// The second half of the rows on a thread of its own. Only the caller's thread reports
// progress; this one publishes how far it is and stops when told.
class SecondHalf {
public:
    SecondHalf(const CAnalyzerDoc& doc, RecordReader& reader, zdt::RowIndex first, zdt::RowIndex end)
        : m_thread([this, &doc, &reader, first, end] {
              AddRows(doc, reader, first, end, m_figures, [this](zdt::RowCount done) {
                  m_done.store(done, std::memory_order_relaxed);
                  return !m_stop.load(std::memory_order_relaxed);
              });
              const std::lock_guard lock(m_mutex);
              m_finished = true;
              m_ended.notify_all();
          }) {}
    ~SecondHalf() {
        Stop();
        if (m_thread.joinable())
            m_thread.join();
    }
    zdt::RowCount Done() const { return m_done.load(std::memory_order_relaxed); }
    void Stop() { m_stop.store(true, std::memory_order_relaxed); }
    bool Stopped() const { return m_stop.load(std::memory_order_relaxed); }
    // Waits a while for the end; true once it ended.
    bool WaitForEnd() {
        std::unique_lock lock(m_mutex);
        return m_ended.wait_for(lock, std::chrono::milliseconds(50), [this] { return m_finished; });
    }
    IdentifierStatisticsAccumulator Take() {
        m_thread.join();
        return std::move(m_figures);
    }

private:
    IdentifierStatisticsAccumulator m_figures;
    std::atomic<zdt::RowCount> m_done{0};
    std::atomic<bool> m_stop{false};
    std::mutex m_mutex;
    std::condition_variable m_ended;
    bool m_finished = false;
    std::thread m_thread; // last: it starts once the members it uses exist
};

} // namespace

bool CollectIdentifierStatistics(CAnalyzerDoc& doc, IdentifierStatistics& result, zdt::ProgressSink* progress) {
    result = IdentifierStatistics{};
    DocumentRecordReader readers[2] = {DocumentRecordReader(doc), DocumentRecordReader(doc)};
    if (readers[0].Get() == nullptr || readers[1].Get() == nullptr) {
        result.emptyReason = "No trace is open.";
        return true;
    }
    const zdt::RowCount rows = doc.GetVisibleCount();
    const auto report = [progress, rows](zdt::RowCount done) {
        return progress == nullptr ||
               progress->onProgress(static_cast<unsigned long long>(done), static_cast<unsigned long long>(rows));
    };
    // Two threads read a half each, as `rows` formats on two; the halves join once at the end.
    const zdt::RowIndex middle = rows >= 4 * kBlockRows ? rows / 2 : rows;
    IdentifierStatisticsAccumulator figures;
    bool finished = true;
    if (middle == rows) {
        finished = AddRows(doc, *readers[0].Get(), 0, rows, figures, report);
    } else {
        SecondHalf second(doc, *readers[1].Get(), middle, rows);
        finished = AddRows(doc, *readers[0].Get(), 0, middle, figures,
                           [&](zdt::RowCount done) { return report(done + second.Done()) && !second.Stopped(); });
        if (!finished)
            second.Stop();
        while (finished && !second.WaitForEnd()) {
            if (!report(middle + second.Done())) {
                second.Stop();
                finished = false;
            }
        }
        IdentifierStatisticsAccumulator later = second.Take();
        if (finished)
            figures.Append(std::move(later));
    }
    if (!finished)
        return false;
    result.figures = figures.TakeSorted();
    result.rowsPassed = rows;
    if (result.figures.empty())
        result.emptyReason = EmptyReason(doc);
    return true;
}

zdt::OperationJob IdentifierStatisticsJob(CAnalyzerDoc& doc, std::shared_ptr<IdentifierStatistics> result) {
    return [&doc, result](zdt::MessageSink&, zdt::OperationControl& control) {
        return zdt::StatusOf(CollectIdentifierStatistics(doc, *result, &control), control);
    };
}

// ---- the table as text ----------------------------------------------------------------------

namespace {

// Appenders, as a table of a million identifiers is printed line by line.
void AppendIdentifier(std::string& text, const IdentifierKey& key) {
    textformat::AppendHex(text, key.identifier, 1, ' ');
    if (key.extended)
        text += "(x)";
}

void AppendChannel(std::string& text, const IdentifierKey& key) {
    if (key.channel == 0)
        text += NoCycleTimeText;
    else
        textformat::AppendUnsigned(text, key.channel);
}

void AppendMillis(std::string& text, std::uint32_t micros) {
    textformat::AppendUnsigned(text, micros / 1000u);
    text += '.';
    const std::uint32_t fraction = micros % 1000u;
    text += static_cast<char>('0' + fraction / 100);
    text += static_cast<char>('0' + fraction / 10 % 10);
    text += static_cast<char>('0' + fraction % 10);
}

// "%.3f": rounded from the exact value of the double, as printf rounds.
void AppendMean(std::string& text, double value) {
    char digits[64];
    const std::to_chars_result written =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, 3);
    text.append(digits, written.ptr);
}

// The cells of one entry, each behind `separator` but the first.
void AppendCells(std::string& text, const IdentifierFigures& f, char separator) {
    const bool cycles = f.HasCycleTime();
    AppendIdentifier(text, f.key);
    text += separator;
    AppendChannel(text, f.key);
    text += separator;
    textformat::AppendUnsigned(text, f.count);
    text += separator;
    if (cycles)
        AppendMillis(text, f.cycleMinMicros);
    else
        text += NoCycleTimeText;
    text += separator;
    if (cycles)
        AppendMean(text, f.CycleMeanMillis());
    else
        text += NoCycleTimeText;
    text += separator;
    if (cycles)
        AppendMillis(text, f.cycleMaxMicros);
    else
        text += NoCycleTimeText;
    text += separator;
    textformat::AppendUnsigned(text, f.lengthMin);
    text += separator;
    AppendMean(text, f.LengthMean());
    text += separator;
    textformat::AppendUnsigned(text, f.lengthMax);
    text += separator;
    textformat::AppendUnsigned(text, f.skippedTimes);
}

} // namespace

std::string IdentifierText(const IdentifierKey& key) {
    std::string text;
    AppendIdentifier(text, key);
    return text;
}

std::string ChannelText(const IdentifierKey& key) {
    std::string text;
    AppendChannel(text, key);
    return text;
}

std::string MillisText(std::uint32_t micros) {
    std::string text;
    AppendMillis(text, micros);
    return text;
}

std::string MeanText(double value) {
    std::string text;
    AppendMean(text, value);
    return text;
}

const std::vector<std::string>& StatisticsColumnNames() {
    static const std::vector<std::string> names = {"IDENTIFIER",   "CHANNEL",      "COUNT",      "CYCLE_MIN_MS",
                                                   "CYCLE_MID_MS", "CYCLE_MAX_MS", "LENGTH_MIN", "LENGTH_MID",
                                                   "LENGTH_MAX",   "SKIPPED_TIMES"};
    return names;
}

std::vector<std::string> StatisticsCells(const IdentifierFigures& figures) {
    std::string line;
    AppendCells(line, figures, '\t');
    std::vector<std::string> cells;
    for (std::size_t from = 0;;) {
        const std::size_t tab = line.find('\t', from);
        cells.push_back(line.substr(from, tab - from));
        if (tab == std::string::npos)
            return cells;
        from = tab + 1;
    }
}

void AppendStatisticsLine(std::string& text, const std::vector<std::string>& cells, char separator) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (i > 0)
            text += separator;
        text += cells[i];
    }
    text += '\n';
}

void AppendStatisticsLine(std::string& text, const IdentifierFigures& figures, char separator) {
    AppendCells(text, figures, separator);
    text += '\n';
}

std::string StatisticsTableText(const IdentifierStatistics& statistics, char separator) {
    std::string text;
    AppendStatisticsLine(text, StatisticsColumnNames(), separator);
    for (const IdentifierFigures& figures : statistics.figures)
        AppendStatisticsLine(text, figures, separator);
    return text;
}
