#include "trace/CBufFile.h"

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

CBufFile::CBufFile(std::uint32_t windowSize) : m_bufferSize(windowSize) {}

CBufFile::~CBufFile() {
    Close();
    std::free(m_buffer);
    std::free(m_scratch);
}

bool CBufFile::Open(const std::string& path) {
    Close();
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    struct stat info {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(fd);
        return false;
    }
    if (m_buffer == nullptr) {
        m_buffer = static_cast<char*>(std::malloc(m_bufferSize + 1));
        if (m_buffer == nullptr) {
            ::close(fd);
            return false;
        }
    }
    m_fd.store(fd, std::memory_order_relaxed);
    m_fileLength = static_cast<std::uint64_t>(info.st_size);
    m_open.store(1, std::memory_order_relaxed);
    m_bufferBytes = 0;
    m_bufferOffset = 0;
    m_lineEnd = nullptr;
    m_lineOffset = 0;
    LoadWindowAt(0);
    return true;
}

void CBufFile::Close() {
    const int fd = m_fd.exchange(-1, std::memory_order_relaxed);
    m_open.store(0, std::memory_order_relaxed);
    if (fd >= 0)
        ::close(fd);
    m_lineEnd = nullptr;
    m_bufferBytes = 0;
    m_bufferOffset = 0;
    m_fileLength = 0;
}

std::size_t CBufFile::ReadAt(std::uint64_t offset, char* into, std::size_t count) const {
    const int fd = m_fd.load(std::memory_order_relaxed);
    std::size_t done = 0;
    while (done < count) {
        const ssize_t got = ::pread(fd, into + done, count - done, static_cast<off_t>(offset + done));
        if (got <= 0)
            break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

char* CBufFile::EnsureScratch(std::uint32_t size) {
    if (m_scratchSize < size) {
        char* scratch = static_cast<char*>(std::realloc(m_scratch, size));
        if (scratch == nullptr)
            return nullptr;
        m_scratch = scratch;
        m_scratchSize = size;
    }
    return m_scratch;
}

bool CBufFile::LoadWindowAt(std::uint64_t loadPoint) {
    // Keep what the window already holds of the new range and read only the rest.
    const std::uint64_t windowEnd = m_bufferOffset + m_bufferBytes;
    std::size_t kept = 0;
    if (m_bufferBytes > 0 && loadPoint > m_bufferOffset && loadPoint < windowEnd) {
        kept = static_cast<std::size_t>(windowEnd - loadPoint);
        std::memmove(m_buffer, m_buffer + (loadPoint - m_bufferOffset), kept);
    }
    const std::size_t got = ReadAt(loadPoint + kept, m_buffer + kept, m_bufferSize - kept);
    m_bufferOffset = loadPoint;
    m_bufferBytes = static_cast<std::uint32_t>(kept + got);
    if (m_bufferBytes == 0 && loadPoint < m_fileLength) {
        m_bufferOffset = 0;
        return false;
    }
    return true;
}

std::uint64_t CBufFile::LineEndOffset() const {
    return m_lineEnd == nullptr ? m_lineOffset : m_bufferOffset + static_cast<std::uint64_t>(m_lineEnd - m_buffer);
}

char* CBufFile::ScanLine(std::uint64_t offset) {
    if (offset < m_bufferOffset || offset >= m_bufferOffset + m_bufferBytes)
        return nullptr;
    char* start = m_buffer + (offset - m_bufferOffset);
    const std::size_t available = m_bufferBytes - static_cast<std::size_t>(offset - m_bufferOffset);
    auto* cr = static_cast<char*>(std::memchr(start, '\r', available));
    if (cr == nullptr)
        return nullptr;
    *cr = '\0';
    m_lineEnd = cr;
    m_lineOffset = offset;
    return start;
}

char* CBufFile::GetLine(std::uint64_t offset) {
    if (!IsOpen())
        return nullptr;
    if (m_lineEnd != nullptr) {
        *m_lineEnd = '\r';
        m_lineEnd = nullptr;
    }
    m_lineOffset = 0;
    const bool inWindow = offset >= m_bufferOffset && offset < m_bufferOffset + m_bufferBytes;
    if (!inWindow) {
        if (offset >= m_fileLength)
            return nullptr;
        // Reading backwards keeps half a window of history in front of the line.
        std::uint64_t loadPoint = offset;
        if (offset < m_bufferOffset)
            loadPoint = offset > m_bufferSize / 2 ? offset - m_bufferSize / 2 : 0;
        if (!LoadWindowAt(loadPoint))
            return nullptr;
    }
    if (char* line = ScanLine(offset))
        return line;
    // The line runs past the window: begin the window at the line and try once more.
    if (m_bufferOffset != offset && !LoadWindowAt(offset))
        return nullptr;
    return ScanLine(offset);
}
