#include "trace/CTraceFile.h"

#include "trace/RecordLineWalker.h"
#include "trace/NibbleTables.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <system_error>
#include <thread>
#include <strings.h>
#include <unistd.h>

namespace {

constexpr const char* kNoValidTrace = "No valid ZDT - Trace File";
constexpr const char* kInvalidVersion = "Invalid Version of Trace File";
constexpr int kMaxHeadLines = 200;
// The index pass splits the file into blocks of this size, each walked by two threads;
// smaller files are walked by one.
constexpr std::uint64_t kIndexSuperBlock = 4 * 1024 * 1024;
// Where in a block the second thread starts, in percent; the first thread also adds the
// records to the index as it goes.
constexpr std::uint64_t kIndexFirstShare = 50;
constexpr std::uint64_t kIndexParallelMinimum = 1024 * 1024;

bool StartsWith(const char* line, const char* prefix) { return std::strncmp(line, prefix, std::strlen(prefix)) == 0; }

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

CTraceFile::~CTraceFile() { CloseTrace(); }

bool CTraceFile::OpenTrace(const std::string& path, zdt::MessageSink* messages, zdt::ProgressSink* progress) {
    m_fileName = path;
    m_hasHistory = 0;
    m_cancelled = false;
    m_reader.Reset();
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
    ResetIndex();
    if (!IndexRecords(LineEndOffset() + 2, progress)) {
        CloseTrace();
        return false;
    }
    m_totalCount = m_visibleCount;
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
    m_visibleCount = 0;
    m_totalCount = 0;
    m_previousTime = 0;
    m_absoluteTime = 0;
    m_deltaTime = 0;
    m_seenChannel = m_seenIdentifier = m_seenSource = m_seenDestination = m_seenPriority = 0;
    m_seenFlexIdentifier = m_seenFlexChannel = m_seenFlexSlot = 0;
    m_seenClass0 = m_seenClass8 = m_seenClass4 = 0;
    m_channelTimes.Clear();
    m_visibleOffsets.Clear();
    m_allOffsets.Clear();
    m_absoluteTimes.Clear();
    m_deltaTimesArray.Clear();
    m_channelDeltas.Clear();
}

// The walk after [TraceData] runs in blocks of the file on two threads: the second
// starts at a guessed line start in the middle of a block, and its lines count only when
// the first walk arrives exactly there. Running times are then added in file order.
bool CTraceFile::IndexRecords(std::uint64_t offset, zdt::ProgressSink* progress) {
    const std::uint64_t fileLength = FileLength();
    const std::size_t window = WindowSize();
    const RecordLineWalker::ReadAt readAt = [this](std::uint64_t at, char* into, std::size_t count) {
        return ReadAt(at, into, count);
    };
    RecordLineWalker firstWalker(readAt, fileLength, window, m_schemaNumber);
    RecordLineWalker secondWalker(readAt, fileLength, window, m_schemaNumber);
    // Each walker appends to its own batch; on separate cache lines, the two threads do
    // not fight over the vectors' end pointers.
    struct alignas(64) Batch {
        std::vector<ScannedRecord> records;
    };
    Batch secondBatch;
    std::vector<ScannedRecord>& second = secondBatch.records;

    while (offset < fileLength) {
        const std::uint64_t end = std::min(fileLength, offset + kIndexSuperBlock);
        std::uint64_t split = end;
        if (end - offset >= kIndexParallelMinimum)
            split = LineStartAfter(readAt, offset + (end - offset) * kIndexFirstShare / 100, window);
        second.clear();
        RecordLineWalker::Result secondResult;
        bool secondFailed = false;
        std::thread worker;
        if (split > offset && split < end) {
            try {
                worker = std::thread([&] {
                    try {
                        secondResult = secondWalker.Walk(split, end, second);
                    } catch (...) {
                        secondFailed = true; // the first walk goes on alone
                    }
                });
            } catch (const std::system_error&) {
                split = end;
            }
        } else {
            split = end;
        }
        RecordLineWalker::Result firstResult;
        try {
            // The first part goes straight into the index; the second waits for its check.
            firstResult =
                firstWalker.Walk(offset, split, [this](const ScannedRecord& record) { AbsorbRecord(record); });
        } catch (...) {
            if (worker.joinable())
                worker.join();
            throw;
        }
        if (worker.joinable())
            worker.join();

        RecordLineWalker::Result result = firstResult;
        const bool secondCounts = split < end && !secondFailed &&
                                  firstResult.stop == RecordLineWalker::Stop::ReachedLimit && firstResult.next == split;
        if (secondCounts) {
            AbsorbRecords(second);
            result = secondResult;
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
    if (progress != nullptr)
        progress->onProgress(fileLength, fileLength);
    return true;
}

void CTraceFile::AbsorbRecords(const std::vector<ScannedRecord>& records) {
    for (const ScannedRecord& record : records)
        AbsorbRecord(record);
}

void CTraceFile::AbsorbRecord(const ScannedRecord& record) {
    m_visibleOffsets.Append(record.offset);
    m_allOffsets.Append(record.offset);
    if (record.lineClass == 1)
        m_seenClass0 = 1;
    else if (record.lineClass == 2)
        m_seenClass8 = 1;
    else if (record.lineClass == 3)
        m_seenClass4 = 1;
    if (record.skipsTimePass) {
        m_seenChannel = 1;
        m_seenIdentifier = 1;
    } else {
        TimePass(record);
    }
    ++m_visibleCount;
}

void CTraceFile::TimePass(const ScannedRecord& record) {
    if (record.facts & FactChannel)
        m_seenChannel = 1;
    if (record.facts & FactIdentifier)
        m_seenIdentifier = 1;
    if (record.facts & FactSourceDestinationPriority)
        m_seenSource = m_seenDestination = m_seenPriority = 1;
    if (record.facts & FactFlex)
        m_seenFlexIdentifier = m_seenFlexChannel = m_seenFlexSlot = 1;

    const std::uint32_t time = record.time;
    if (time != 0) {
        if (!m_deltaTimes) {
            m_absoluteTime = time;
            m_deltaTime = time - m_previousTime;
            m_previousTime = time;
        } else {
            m_deltaTime = time;
            m_absoluteTime += time;
        }
    }
    m_absoluteTimes.Append(m_absoluteTime);
    m_deltaTimesArray.Append(m_deltaTime);
    m_deltaTime = 0;
    if (m_isOtherTrace)
        m_channelDeltas.Append(m_channelTimes.Exchange(record.channel, m_absoluteTime));
}

bool CTraceFile::ReadRecordLine(std::uint64_t offset, char* line) { return m_reader.ReadLine(offset, line); }

bool CTraceFile::ReadItem(std::uint32_t index, CTraceItemI& item) { return m_reader.ReadItem(index, item); }

CTraceItemI* CTraceFile::GetItem(std::uint32_t index) {
    auto item = std::make_unique<CTraceItemI>();
    return ReadItem(index, *item) ? item.release() : nullptr;
}

void CTraceFile::ReleaseItem(CTraceItem* item) { delete item; }

void CTraceFile::CloseTrace() {
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
