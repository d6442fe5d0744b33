#include "xmldoc/FileContainer.h"

#include "common/TemporaryNumber.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <mutex>
#include <new>
#include <thread>
#include <unistd.h>

namespace ZDTAnalyzer {

namespace {

// Appends are collected up to this size before they go to the file in one write.
constexpr std::size_t WriteBufferSize = 256 * 1024;
// Each column is gathered in pieces of this size while a row is split.
constexpr std::size_t SplitPieceSize = 1024;
// A name taken by another file is retried with a new random part.
constexpr int NameAttempts = 100;

std::string makeSwapFileName(const std::string& directory) {
    char name[64];
    std::snprintf(name, sizeof name, "temp%ld_%d.fc", static_cast<long>(std::time(nullptr)), zdt::TemporaryNumber());
    if (!directory.empty() && directory.back() != '/')
        return directory + "/" + name;
    return directory + name;
}

// Reads like fgets over `size` bytes: up to and including the first line feed, and
// the string ends at the first NUL.
std::string cutAsLine(std::string bytes) {
    const std::size_t lineFeed = bytes.find('\n');
    if (lineFeed != std::string::npos)
        bytes.resize(lineFeed + 1);
    const std::size_t nul = bytes.find('\0');
    if (nul != std::string::npos)
        bytes.resize(nul);
    return bytes;
}

} // namespace

FileContainerBase::FileContainerBase() {
    m_rowOffsets.Append(0);
}

FileContainerBase::~FileContainerBase() {
    closeAndRemove();
}

void FileContainerBase::closeAndRemove() {
    if (m_fd >= 0) {
        ::close(m_fd);
        m_fd = -1;
    }
    if (!m_swapFileName.empty()) {
        ::unlink(m_swapFileName.c_str());
        m_swapFileName.clear();
    }
    m_writeBuffer.clear();
    m_writeBuffer.shrink_to_fit();
}

void FileContainerBase::createSwapFile(const std::string& directory) {
    const std::lock_guard<std::recursive_mutex> lock(m_mutex);
    std::error_code ignored;
    if (!directory.empty())
        std::filesystem::create_directories(directory, ignored);

    closeAndRemove();
    m_rowOffsets.Clear();
    m_rowOffsets.Append(0);
    m_rowCount = 0;
    m_rowsOnFile = 0;
    m_endOffset = 0;
    m_bufferOffset = 0;
    m_writeFailed = false;
    m_cachedRowIndex = zdt::NoRow;
    m_cachedColumns.clear();

    // O_EXCL and O_NOFOLLOW: a file or link planted under our name is never used.
    for (int attempt = 0; attempt < NameAttempts && m_fd < 0; ++attempt) {
        const std::string name = makeSwapFileName(directory);
        m_fd = ::open(name.c_str(), O_CREAT | O_EXCL | O_NOFOLLOW | O_RDWR | O_CLOEXEC, 0600);
        if (m_fd >= 0)
            m_swapFileName = name;
        else if (errno != EEXIST)
            break;
    }
    if (m_fd < 0)
        throw Exception(CouldNotOpenText);
    m_writeBuffer.reserve(WriteBufferSize);
}

class FileContainerBase::ReaderLock {
public:
    explicit ReaderLock(const FileContainerBase& container) : m_mutex(container.m_mutex) {
        container.m_waitingReaders.fetch_add(1);
        m_mutex.lock();
        container.m_waitingReaders.fetch_sub(1);
    }
    ~ReaderLock() { m_mutex.unlock(); }
    ReaderLock(const ReaderLock&) = delete;
    ReaderLock& operator=(const ReaderLock&) = delete;

private:
    std::recursive_mutex& m_mutex;
};

void FileContainerBase::appendRow(std::string_view text) {
    while (m_waitingReaders.load() != 0)
        std::this_thread::yield();
    const std::lock_guard<std::recursive_mutex> lock(m_mutex);
    if (m_fd < 0)
        return;
    if (m_writeFailed)
        throw Exception(IoErrorText);
    text = text.substr(0, text.find('\0'));
    const zdt::FileOffset next = m_endOffset + text.size() + 1;
    if (!m_rowOffsets.Append(next))
        throw std::bad_alloc();
    if (m_writeBuffer.empty())
        m_bufferOffset = m_endOffset;
    m_writeBuffer.append(text);
    m_writeBuffer.push_back(' ');
    m_endOffset = next;
    ++m_rowCount;
    if (m_writeBuffer.size() >= WriteBufferSize)
        flush();
}

void FileContainerBase::flush() {
    const std::lock_guard<std::recursive_mutex> lock(m_mutex);
    if (m_writeBuffer.empty() || m_fd < 0)
        return;
    try {
        writeAt(m_bufferOffset, m_writeBuffer.data(), m_writeBuffer.size());
    } catch (const Exception&) {
        // The buffered rows never reached the file: forget them and refuse further
        // appends, as the offsets behind them can no longer be taken back.
        m_rowCount = m_rowsOnFile;
        m_writeFailed = true;
        m_writeBuffer.clear();
        if (m_cachedRowIndex >= m_rowCount)
            m_cachedRowIndex = zdt::NoRow;
        throw;
    }
    m_writeBuffer.clear();
    m_rowsOnFile = m_rowCount;
}

void FileContainerBase::writeAt(zdt::FileOffset offset, const char* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t written = ::pwrite(m_fd, bytes, size, static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            throw Exception(IoErrorText);
        bytes += written;
        size -= static_cast<std::size_t>(written);
        offset += static_cast<zdt::FileOffset>(written);
    }
}

std::string FileContainerBase::readRow(zdt::RowIndex row) {
    const ReaderLock lock(*this);
    if (m_rowCount == 0 || row >= m_rowCount)
        throw Exception(ReadOutOfRangeText);
    if (row < 0)
        return {};
    // Rows before the buffer are on file already; a read there leaves the buffer to grow.
    if (row >= m_rowsOnFile)
        flush();
    const zdt::FileOffset offset = m_rowOffsets.Get(static_cast<std::uint32_t>(row));
    const std::uint64_t size = m_rowOffsets.Get(static_cast<std::uint32_t>(row) + 1) - offset;
    std::string bytes(size, '\0');
    std::size_t filled = 0;
    while (filled < size) {
        const ssize_t got = ::pread(m_fd, bytes.data() + filled, size - filled, static_cast<off_t>(offset + filled));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            throw Exception(IoErrorText);
        if (got == 0)
            break; // end of file: like fgets, keep what was there
        filled += static_cast<std::size_t>(got);
    }
    bytes.resize(filled);
    return cutAsLine(std::move(bytes));
}

void FileContainerBase::rewriteRow(zdt::RowIndex row, std::string_view text) {
    const std::lock_guard<std::recursive_mutex> lock(m_mutex);
    if (row >= m_rowCount)
        throw Exception(RewriteOutOfRangeText);
    zdt::FileOffset offset = 0;
    std::uint64_t size = 0;
    if (row >= 0) {
        offset = m_rowOffsets.Get(static_cast<std::uint32_t>(row));
        size = m_rowOffsets.Get(static_cast<std::uint32_t>(row) + 1) - offset;
    }
    if (text.size() != size)
        throw Exception(SizeDiffersText);
    if (m_fd < 0 || row < 0)
        return;
    flush();
    // The text already ends with the row's closing space, so the extra space lands on
    // the next row's find mark and clears it. Past the last row it lengthens the file by
    // one byte, which the next append writes over.
    std::string bytes(text.substr(0, text.find('\0')));
    bytes.push_back(' ');
    writeAt(offset, bytes.data(), bytes.size());
}

const std::vector<std::string>& FileContainerBase::cachedColumnsOf(zdt::RowIndex row) {
    if (m_cachedRowIndex != row) {
        // Emptied before the read: a failed read leaves the old index with no columns.
        m_cachedColumns.clear();
        splitIntoCachedColumns(readRow(row));
        m_cachedRowIndex = row;
    }
    return m_cachedColumns;
}

void FileContainerBase::splitIntoCachedColumns(const std::string& row) {
    // Gathered in pieces of 1,024 bytes: a piece that fills up becomes (or extends) a
    // column even when no separator follows, so a long unterminated tail still counts.
    std::size_t pieceStart = 0;
    std::size_t pieceLength = 0;
    bool continuing = false;
    auto takePiece = [&] {
        std::string_view piece(row.data() + pieceStart, pieceLength);
        if (continuing)
            m_cachedColumns.back().append(piece);
        else
            m_cachedColumns.emplace_back(piece);
    };
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (row[i] == ColumnSeparator) {
            takePiece();
            continuing = false;
            pieceStart = i + 1;
            pieceLength = 0;
            continue;
        }
        if (pieceLength == SplitPieceSize) {
            takePiece();
            continuing = true;
            pieceStart = i;
            pieceLength = 0;
        }
        ++pieceLength;
    }
}

void FileContainerBase::getColumnText(zdt::RowIndex row, int column, char* buffer, int capacity) {
    const ReaderLock lock(*this);
    const std::vector<std::string>& columns = cachedColumnsOf(row);
    if (buffer == nullptr || capacity < 1)
        return;
    const std::size_t limit = static_cast<std::size_t>(capacity) - 1;
    if (column < 0 || static_cast<std::size_t>(column) >= columns.size()) {
        std::strncpy(buffer, MissingColumnText, limit);
        return;
    }
    const std::string& text = columns[static_cast<std::size_t>(column)];
    const std::size_t length = text.size() < limit ? text.size() : limit;
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
}

std::string FileContainerBase::columnText(zdt::RowIndex row, int column) {
    const ReaderLock lock(*this);
    const std::vector<std::string>& columns = cachedColumnsOf(row);
    if (column < 0 || static_cast<std::size_t>(column) >= columns.size())
        return MissingColumnText;
    return columns[static_cast<std::size_t>(column)];
}

// Test seam: a row whose bytes are never written, leaving a hole in a sparse file, so
// offsets beyond 4 GiB can be reached without writing gigabytes.
void FileContainerBase::appendUnwrittenRow(std::uint64_t size) {
    const std::lock_guard<std::recursive_mutex> lock(m_mutex);
    flush();
    const zdt::FileOffset next = m_endOffset + size;
    if (!m_rowOffsets.Append(next))
        throw std::bad_alloc();
    m_endOffset = next;
    ++m_rowCount;
    m_rowsOnFile = m_rowCount;
}

} // namespace ZDTAnalyzer
