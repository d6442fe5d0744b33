#include "trace/CTraceFile.h"

#include "trace/NibbleTables.h"
#include "trace/RecordLineWalker.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <strings.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace {

constexpr const char* kNoValidTrace = "No valid ZDT - Trace File";
constexpr const char* kInvalidVersion = "Invalid Version of Trace File";
constexpr int kMaxHeadLines = 200;
// The index pass splits the file into blocks of this size, each walked by two threads;
// smaller files are walked by one.
constexpr std::uint64_t kIndexSuperBlock = 4 * 1024 * 1024;
// Where in a block the second thread starts at first, in percent; the first thread also
// adds the records to the index.
constexpr std::uint64_t kIndexFirstShare = 50;
constexpr std::uint64_t kIndexParallelMinimum = 1024 * 1024;

bool StartsWith(const char* line, const char* prefix) {
    return std::strncmp(line, prefix, std::strlen(prefix)) == 0;
}

void Show(zdt::MessageSink* messages, const char* text) {
    if (messages != nullptr)
        messages->showMessage(zdt::UserMessage{"", text, zdt::MessageIcon::Error});
}

bool IsLegacySchema(const std::string& schema) {
    return schema == "2" || schema == "5" || schema == "501" || schema == "601";
}

std::string NameBehindLastSeparator(const std::string& path) {
    const auto slash = path.find_last_of("\\/");
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

} // namespace

CTraceFile::CTraceFile() : m_reader(*this) {}

CTraceFile::~CTraceFile() {
    CloseTrace();
}

bool CTraceFile::OpenTrace(const std::string& path, zdt::MessageSink* messages, zdt::ProgressSink* progress) {
    return OpenHead(path, messages) && IndexTrace(progress);
}

bool CTraceFile::OpenHead(const std::string& path, zdt::MessageSink* messages) {
    static std::atomic<std::uint64_t> serials{0};
    // No row is readable before the pass publishes some, so the rest may be reset freely.
    m_visibleCount.store(0, std::memory_order_release);
    m_openSerial.store(serials.fetch_add(1, std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    m_fileName = path;
    m_hasHistory = 0;
    m_cancelled = false;
    m_reader.Reset();
    ResetIndex();
    if (!Open(path))
        return false;
    std::uint64_t offset = 0;
    const char* line = GetLine(offset);
    if (line == nullptr) {
        Show(messages, kNoValidTrace);
        return false;
    }
    for (;;) {
        if (StartsWith(line, "[TraceData]"))
            break;
        if (StartsWith(line, "[Description]")) {
            offset = LineEndOffset() + 2;
            if (!ReadHead(offset, messages))
                return false;
        } else {
            offset = LineEndOffset() + 2;
        }
        line = GetLine(offset);
        if (line == nullptr) {
            Show(messages, kNoValidTrace);
            return false;
        }
    }
    m_legacyReader = IsLegacySchema(m_schema);
    m_traceDataOffset = LineEndOffset() + 2;
    return true;
}

bool CTraceFile::IndexTrace(zdt::ProgressSink* progress) {
    bool indexed = false;
    try {
        indexed = IndexRecords(m_traceDataOffset, progress);
    } catch (...) {
        m_visibleCount.store(0, std::memory_order_release);
        throw;
    }
    if (!indexed) {
        // A reader may still be inside a row it took before: the index and the descriptor
        // stay until the next open or the destructor.
        m_visibleCount.store(0, std::memory_order_release);
        CloseLater();
        return false;
    }
    m_totalCount = m_absorbedCount;
    m_visibleCount.store(m_absorbedCount, std::memory_order_release);
    return true;
}

bool CTraceFile::ReadHead(std::uint64_t& offset, zdt::MessageSink* messages) {
    m_productVersion = "Unknown";
    m_interfaceBoard = "Unknown";
    int lines = 0;
    for (const char* line = GetLine(offset); line != nullptr && std::strchr(line, '[') == nullptr;
         line = GetLine(offset)) {
        if (++lines > kMaxHeadLines)
            return false;
        if (const char* equals = std::strchr(line, '=')) {
            bool schemaOk = true;
            StoreHeadValue(std::string(line, equals), std::string(equals + 1), schemaOk);
            if (!schemaOk) {
                Show(messages, kInvalidVersion);
                return false;
            }
        }
        offset = LineEndOffset() + 2;
    }
    if (m_title == "ZDT Trace File")
        m_isZdtTrace = 1;
    else
        m_isOtherTrace = 1;
    if (m_isZdtTrace && (m_schema == "2" || m_schema == "501" || m_schema == "5"))
        m_deltaTimes = 1;
    return true;
}

void CTraceFile::StoreHeadValue(const std::string& key, const std::string& value, bool& schemaOk) {
    const char* k = key.c_str();
    if (strcasecmp(k, "Title") == 0) {
        m_title = value;
    } else if (strcasecmp(k, "Schema") == 0) {
        if (!IsLegacySchema(value) && value != "701") {
            schemaOk = false;
            return;
        }
        m_schema = value;
        m_schemaNumber = static_cast<std::int32_t>(std::strtol(value.c_str(), nullptr, 10));
    } else if (strcasecmp(k, "Creator") == 0) {
        m_creator = value;
    } else if (strcasecmp(k, "ProductVersion") == 0) {
        m_productVersion = value;
    } else if (strcasecmp(k, "InterfaceBoard") == 0) {
        m_interfaceBoard = value;
    } else if (strcasecmp(k, "Date") == 0) {
        m_date = value;
    } else if (strcasecmp(k, "Time") == 0) {
        m_time = value;
    }
}

bool CTraceFile::ReadHistory(std::uint64_t& offset) {
    int lines = 0;
    for (const char* line = GetLine(offset); line != nullptr; line = GetLine(offset)) {
        if (*line == '\0')
            return true;
        if (++lines > kMaxHeadLines)
            return false;
        offset = LineEndOffset() + 2;
        const char* equals = std::strchr(line, '=');
        if (equals == nullptr || strncasecmp(line, "CANFilter", 9) != 0 || equals != line + 9)
            continue;
        const char* value = equals + 1;
        if (value[0] != '\0' && value[1] == ':') {
            m_filterActive = value[0] == '1' ? 1 : 0;
            value += 2;
        }
        m_lastFilterPath = value;
        m_lastFilterName = NameBehindLastSeparator(m_lastFilterPath);
    }
    return true;
}

void CTraceFile::ResetIndex() {
    m_visibleCount.store(0, std::memory_order_release);
    m_absorbedCount = 0;
    m_totalCount = 0;
    m_previousTime = 0;
    m_absoluteTime = 0;
    m_deltaTime = 0;
    m_seenChannel = m_seenIdentifier = m_seenSource = m_seenDestination = m_seenPriority = 0;
    m_seenFlexIdentifier = m_seenFlexChannel = m_seenFlexSlot = 0;
    m_seenClass0 = m_seenClass8 = m_seenClass4 = 0;
    m_channelTimes.Clear();
    m_allOffsets.Clear();
    // Every record is visible after the pass: the visible list is the full one until a
    // filter pass writes its own.
    m_visibleOffsets.ShareWith(m_allOffsets);
    // Likewise each record's time step is its absolute time minus the one before it.
    m_absoluteTimes.Clear();
    m_deltaTimesArray.ShareStepsOf(m_absoluteTimes);
    m_channelDeltas.Clear();
}

namespace {

// The second walker of the index pass on a thread of its own, kept for the whole pass.
class WalkWorker {
public:
    explicit WalkWorker(RecordLineWalker& walker) : m_walker(walker), m_thread([this] { Run(); }) {}
    ~WalkWorker() {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_quit = true;
        }
        m_wake.notify_all();
        m_thread.join();
    }
    WalkWorker(const WalkWorker&) = delete;
    WalkWorker& operator=(const WalkWorker&) = delete;

    void Start(std::uint64_t from, std::uint64_t limit, IndexBatch& batch) {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_from = from;
            m_limit = limit;
            m_batch = &batch;
            m_busy = true;
        }
        m_wake.notify_all();
    }
    // Waits for the walk; false when it failed (the first walker then goes on alone).
    bool Wait(RecordLineWalker::Result& result, std::chrono::steady_clock::duration& took) {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_wake.wait(lock, [this] { return !m_busy; });
        result = m_result;
        took = m_took;
        return !m_failed;
    }

private:
    void Run() {
        std::unique_lock<std::mutex> lock(m_mutex);
        for (;;) {
            m_wake.wait(lock, [this] { return m_quit || m_busy; });
            if (m_quit)
                return;
            const std::uint64_t from = m_from, limit = m_limit;
            IndexBatch& batch = *m_batch;
            lock.unlock();
            const auto started = std::chrono::steady_clock::now();
            RecordLineWalker::Result result;
            bool failed = false;
            try {
                batch.Clear();
                result = m_walker.Walk(from, limit, batch);
            } catch (...) {
                failed = true;
            }
            const auto took = std::chrono::steady_clock::now() - started;
            lock.lock();
            m_result = result;
            m_failed = failed;
            m_took = took;
            m_busy = false;
            m_wake.notify_all();
        }
    }

    RecordLineWalker& m_walker;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::uint64_t m_from = 0;
    std::uint64_t m_limit = 0;
    IndexBatch* m_batch = nullptr;
    RecordLineWalker::Result m_result;
    std::chrono::steady_clock::duration m_took{};
    bool m_busy = false;
    bool m_failed = false;
    bool m_quit = false;
    std::thread m_thread; // last: it starts running in the constructor
};

} // namespace

// The walk after [TraceData] runs in blocks of the file on two threads: the second
// starts at a guessed line start inside a block, and its lines count only when the first
// walk arrives exactly there. The second part of a block is added to the index while
// the next block is walked; where the block is split follows which thread waits.
bool CTraceFile::IndexRecords(std::uint64_t offset, zdt::ProgressSink* progress) {
    const std::uint64_t fileLength = FileLength();
    const std::size_t window = WindowSize();
    const RecordLineWalker::ReadAt readAt = [this](std::uint64_t at, char* into, std::size_t count) {
        return ReadAt(at, into, count);
    };
    RecordLineWalker firstWalker(readAt, fileLength, window, m_schemaNumber);
    RecordLineWalker secondWalker(readAt, fileLength, window, m_schemaNumber);
    // The batches outlive the worker, which may still be writing one when an exception leaves.
    IndexBatch firstBatch;
    IndexBatch secondBatches[2];
    std::unique_ptr<WalkWorker> worker;
    if (fileLength - std::min(offset, fileLength) >= kIndexParallelMinimum) {
        try {
            worker = std::make_unique<WalkWorker>(secondWalker);
        } catch (const std::system_error&) {
            worker.reset(); // one thread does it all
        }
    }
    const IndexBatch* pending = nullptr; // a checked second part not yet in the index
    std::uint64_t share = kIndexFirstShare;
    unsigned block = 0;

    while (offset < fileLength) {
        const std::uint64_t end = std::min(fileLength, offset + kIndexSuperBlock);
        std::uint64_t split = end;
        if (worker && end - offset >= kIndexParallelMinimum)
            split = LineStartAfter(readAt, offset + (end - offset) * share / 100, window);
        if (split <= offset || split >= end)
            split = end;
        IndexBatch& second = secondBatches[block++ & 1];
        if (split < end)
            worker->Start(split, end, second);

        const auto started = std::chrono::steady_clock::now();
        RecordLineWalker::Result firstResult;
        try {
            firstBatch.Clear();
            firstResult = firstWalker.Walk(offset, split, firstBatch);
        } catch (...) {
            if (split < end) {
                RecordLineWalker::Result ignored;
                std::chrono::steady_clock::duration took;
                worker->Wait(ignored, took);
            }
            throw;
        }
        if (pending != nullptr) {
            AbsorbBatch(*pending);
            pending = nullptr;
        }
        AbsorbBatch(firstBatch);
        const auto firstTook = std::chrono::steady_clock::now() - started;

        RecordLineWalker::Result result = firstResult;
        if (split < end) {
            RecordLineWalker::Result secondResult;
            std::chrono::steady_clock::duration secondTook{};
            const bool secondDone = worker->Wait(secondResult, secondTook);
            if (secondDone && firstResult.stop == RecordLineWalker::Stop::ReachedLimit && firstResult.next == split) {
                pending = &second;
                result = secondResult;
            }
            // Move the split towards the thread that waited.
            if (firstTook > secondTook + secondTook / 16 && share > 15)
                share -= 2;
            else if (secondTook > firstTook + firstTook / 16 && share < 85)
                share += 2;
        }
        offset = result.next;
        if (result.stop == RecordLineWalker::Stop::EndOfLines)
            break;
        if (result.stop == RecordLineWalker::Stop::HistorySection) {
            if (GetLine(offset) == nullptr)
                break;
            offset = LineEndOffset() + 2;
            m_hasHistory = ReadHistory(offset) ? 1 : 0;
        }
        if (progress != nullptr && !progress->onProgress(offset, fileLength)) {
            m_cancelled = true;
            return false;
        }
    }
    if (pending != nullptr)
        AbsorbBatch(*pending);
    if (progress != nullptr)
        progress->onProgress(fileLength, fileLength);
    return true;
}

void CTraceFile::AbsorbBatch(const IndexBatch& batch) {
    m_allOffsets.AppendRange(batch.offsets.data(), batch.offsets.size());
    if (batch.lineClasses & (1u << 1))
        m_seenClass0 = 1;
    if (batch.lineClasses & (1u << 2))
        m_seenClass8 = 1;
    if (batch.lineClasses & (1u << 3))
        m_seenClass4 = 1;
    if (batch.skippedTimePass)
        m_seenChannel = m_seenIdentifier = 1;
    TimePass(batch);
    m_absorbedCount += static_cast<zdt::RowCount>(batch.offsets.size());
    // Every array holds these rows now: a reader may have them.
    m_visibleCount.store(m_absorbedCount, std::memory_order_release);
}

void CTraceFile::TimePass(const IndexBatch& batch) {
    if (batch.facts & FactChannel)
        m_seenChannel = 1;
    if (batch.facts & FactIdentifier)
        m_seenIdentifier = 1;
    if (batch.facts & FactSourceDestinationPriority)
        m_seenSource = m_seenDestination = m_seenPriority = 1;
    if (batch.facts & FactFlex)
        m_seenFlexIdentifier = m_seenFlexChannel = m_seenFlexSlot = 1;

    // Straight into the chunks; the time steps follow from these (see ResetIndex).
    const std::size_t count = batch.times.size();
    const std::uint32_t* times = batch.times.data();
    const bool deltaTimes = m_deltaTimes != 0;
    std::uint32_t absoluteTime = m_absoluteTime;
    m_absoluteTimes.AppendGenerated(count, [&](std::uint32_t* into, std::size_t first, std::uint32_t n) {
        const std::uint32_t* from = times + first;
        if (deltaTimes) {
            for (std::uint32_t i = 0; i < n; ++i)
                into[i] = absoluteTime += from[i];
        } else {
            for (std::uint32_t i = 0; i < n; ++i)
                into[i] = absoluteTime = from[i] != 0 ? from[i] : absoluteTime;
        }
    });
    if (m_isOtherTrace) {
        const std::int32_t* channels = batch.channels.data();
        std::uint32_t running = m_absoluteTime;
        for (std::size_t i = 0; i < count; ++i) {
            running = deltaTimes ? running + times[i] : (times[i] != 0 ? times[i] : running);
            m_channelDeltas.Append(m_channelTimes.Exchange(channels[i], running));
        }
    }
    m_absoluteTime = absoluteTime;
    // The last time that was not 0, in files of absolute times.
    if (!deltaTimes)
        m_previousTime = absoluteTime;
    m_deltaTime = 0;
}

bool CTraceFile::ReadRecordLine(zdt::FileOffset offset, char* line) {
    return m_reader.ReadLine(offset, line);
}

bool CTraceFile::ReadItem(zdt::RowIndex index, CTraceItemI& item) {
    return m_reader.ReadItem(index, item);
}

CTraceItemI* CTraceFile::GetItem(zdt::RowIndex index) {
    auto item = std::make_unique<CTraceItemI>();
    return ReadItem(index, *item) ? item.release() : nullptr;
}

void CTraceFile::ReleaseItem(CTraceItem* item) {
    delete item;
}

void CTraceFile::CloseTrace() {
    m_visibleCount.store(0, std::memory_order_release);
    m_absorbedCount = 0;
    Close();
    m_reader.Reset();
    m_visibleOffsets.Clear();
    m_allOffsets.Clear();
    m_absoluteTimes.Clear();
    m_deltaTimesArray.Clear();
    m_channelDeltas.Clear();
}

bool CTraceFile::AppendFilterHistory(const std::string& name, bool active) {
    const int fd = ::open(m_fileName.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    if (fd < 0)
        return false;
    std::string text;
    if (!m_hasHistory)
        text = "\r\n\r\n[AnalyzerHistory]\r\n";
    text += active ? "CANFilter=1:" : "CANFilter=0:";
    text += name;
    text += "\r\n";
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t wrote = ::write(fd, text.data() + done, text.size() - done);
        if (wrote <= 0) {
            ::close(fd);
            return false;
        }
        done += static_cast<std::size_t>(wrote);
    }
    const bool closed = ::close(fd) == 0;
    m_hasHistory = 1;
    return closed;
}

std::size_t CTraceFile::IndexBytes() const {
    return m_visibleOffsets.BytesAllocated() + m_allOffsets.BytesAllocated() + m_absoluteTimes.BytesAllocated() +
           m_deltaTimesArray.BytesAllocated() + m_channelDeltas.BytesAllocated();
}
