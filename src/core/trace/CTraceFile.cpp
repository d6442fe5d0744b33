#include "trace/CTraceFile.h"

#include "trace/IndexTimeReader.h"
#include "trace/NibbleTables.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <strings.h>
#include <unistd.h>

namespace {

constexpr const char* kNoValidTrace = "No valid ZDT - Trace File";
constexpr const char* kInvalidVersion = "Invalid Version of Trace File";
constexpr int kMaxHeadLines = 200;
constexpr std::size_t kRecordBlockSize = 64 * 1024;
// Small enough to stay in the cache between the copy from the kernel and the scan.
constexpr std::size_t kIndexBlockSize = 256 * 1024;
constexpr std::uint64_t kProgressStep = 16 * 1024 * 1024;

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

CTraceFile::CTraceFile() = default;

CTraceFile::~CTraceFile() {
    CloseTrace();
    std::free(m_recordBlock);
}

bool CTraceFile::OpenTrace(const std::string& path, zdt::MessageSink* messages, zdt::ProgressSink* progress) {
    m_fileName = path;
    m_hasHistory = 0;
    m_cancelled = false;
    m_recordBlockBytes = 0;
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

// The record walk reads big blocks instead of the line window, but keeps its rules:
// a line is found only when its carriage return lies within one window of its start,
// and the walk ends at the first line that is not found.
bool CTraceFile::IndexRecords(std::uint64_t offset, zdt::ProgressSink* progress) {
    const std::uint64_t fileLength = FileLength();
    const std::size_t window = WindowSize();
    std::unique_ptr<char[]> block(new char[kIndexBlockSize + window + 1]);
    std::uint64_t blockOffset = offset;
    std::size_t blockBytes = 0;
    std::uint64_t nextProgress = offset + kProgressStep;

    while (offset < fileLength) {
        std::size_t start = static_cast<std::size_t>(offset - blockOffset);
        if (offset < blockOffset || start + window > blockBytes) {
            // Refill so that at least one window past the line start is in the block.
            if (offset >= blockOffset && start < blockBytes) {
                std::memmove(block.get(), block.get() + start, blockBytes - start);
                blockBytes -= start;
            } else {
                blockBytes = 0;
            }
            blockOffset = offset;
            blockBytes += ReadAt(offset + blockBytes, block.get() + blockBytes, kIndexBlockSize + window - blockBytes);
            start = 0;
            if (blockBytes == 0)
                break;
        }
        const std::size_t scan = std::min<std::size_t>(window, blockBytes - start);
        char* line = block.get() + start;
        auto* cr = static_cast<char*>(std::memchr(line, '\r', scan));
        if (cr == nullptr)
            break;
        const std::size_t length = static_cast<std::size_t>(cr - line);
        if (length >= 17 && std::memcmp(line, "[AnalyzerHistory]", 17) == 0) {
            offset += length + 2;
            m_hasHistory = ReadHistory(offset) ? 1 : 0;
            blockBytes = 0; // the history reader moved the window; start the block anew
            blockOffset = offset;
            continue;
        }
        *cr = '\0';
        IndexRecord(offset, line, length);
        *cr = '\r';
        offset += length + 2;
        if (progress != nullptr && offset >= nextProgress) {
            nextProgress = offset + kProgressStep;
            if (!progress->onProgress(offset, fileLength)) {
                m_cancelled = true;
                return false;
            }
        }
    }
    if (progress != nullptr)
        progress->onProgress(fileLength, fileLength);
    return true;
}

void CTraceFile::IndexRecord(std::uint64_t offset, const char* line, std::size_t length) {
    const std::uint8_t leading = nibble::Value(static_cast<unsigned char>(line[0]));
    int lineClass;
    if (leading == 0)
        lineClass = 1;
    else if (leading >= 4 && leading <= 7)
        lineClass = 3;
    else if (leading == 8)
        lineClass = 2;
    else if (leading == 15)
        lineClass = 0;
    else
        return;
    m_visibleOffsets.Append(offset);
    m_allOffsets.Append(offset);
    if (lineClass == 1)
        m_seenClass0 = 1;
    else if (lineClass == 2)
        m_seenClass8 = 1;
    else if (lineClass == 3)
        m_seenClass4 = 1;
    if (lineClass == 3 && m_schemaNumber >= 701) {
        m_seenChannel = 1;
        m_seenIdentifier = 1;
    } else {
        TimePass(line, length);
    }
    ++m_visibleCount;
}

void CTraceFile::TimePass(const char* line, std::size_t length) {
    IndexLineFacts facts;
    ReadIndexLineFacts(line, length, facts);
    if (facts.channel)
        m_seenChannel = 1;
    if (facts.identifier)
        m_seenIdentifier = 1;
    if (facts.sourceDestinationPriority)
        m_seenSource = m_seenDestination = m_seenPriority = 1;
    if (facts.flex)
        m_seenFlexIdentifier = m_seenFlexChannel = m_seenFlexSlot = 1;

    const std::uint32_t time = facts.time;
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
        m_channelDeltas.Append(m_channelTimes.Exchange(facts.channelNumber, m_absoluteTime));
}

bool CTraceFile::ReadRecordLine(std::uint64_t offset, char* line) {
    if (!IsOpen())
        return false;
    if (m_recordBlock == nullptr) {
        m_recordBlock = static_cast<char*>(std::malloc(kRecordBlockSize));
        if (m_recordBlock == nullptr)
            return false;
    }
    const std::uint64_t blockEnd = m_recordBlockOffset + m_recordBlockBytes;
    const bool cached = offset >= m_recordBlockOffset && offset < blockEnd &&
                        (offset + MaxRecordLine <= blockEnd || m_recordBlockBytes < kRecordBlockSize);
    if (!cached) {
        m_recordBlockOffset = offset;
        m_recordBlockBytes = ReadAt(offset, m_recordBlock, kRecordBlockSize);
        if (m_recordBlockBytes == 0)
            return false;
    }
    const char* source = m_recordBlock + (offset - m_recordBlockOffset);
    const std::size_t available =
        std::min<std::size_t>(MaxRecordLine, m_recordBlockBytes - static_cast<std::size_t>(offset - m_recordBlockOffset));
    const auto* cr = static_cast<const char*>(std::memchr(source, '\r', available));
    const std::size_t length = cr != nullptr ? static_cast<std::size_t>(cr - source) : available;
    std::memcpy(line, source, length);
    line[length] = '\0';
    return true;
}

bool CTraceFile::ReadItem(std::uint32_t index, CTraceItemI& item) {
    if (index >= m_visibleCount || index >= m_visibleOffsets.Size())
        return false;
    char line[MaxRecordLine + 1];
    if (!ReadRecordLine(m_visibleOffsets.Get(index), line))
        return false;
    if (m_legacyReader)
        item.ParseLine(line, 1);
    else
        item.ParseLineV701(line, 1);
    return true;
}

CTraceItemI* CTraceFile::GetItem(std::uint32_t index) {
    auto item = std::make_unique<CTraceItemI>();
    return ReadItem(index, *item) ? item.release() : nullptr;
}

void CTraceFile::ReleaseItem(CTraceItem* item) { delete item; }

void CTraceFile::CloseTrace() {
    Close();
    m_recordBlockBytes = 0;
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
