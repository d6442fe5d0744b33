#pragma once

#include "common/RowTypes.h"
#include "trace/ChunkedArray.h"

#include <atomic>
#include <cstdint>
#include <exception>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace ZDTAnalyzer {

class FileContainerTestPeer;

// The rows of one XML document, kept in a private swap file so that millions of rows
// cost about four bytes of memory each. A row is a run of columns, each closed by
// 0x01; on file a space closes the row. Appends are buffered and written in large
// blocks; every read or rewrite first puts the buffer on file, so what is read is
// exactly what a direct write of every row would have left there.
// A list may paint rows while a search marks them on another thread, so every public
// operation holds the container's lock.
class FileContainerBase {
public:
    // Carries a static text; thrown by value, caught by reference.
    class Exception : public std::exception {
    public:
        explicit Exception(const char* message) noexcept : m_message(message) {}
        const char* what() const noexcept override { return m_message; }
        const char* message() const noexcept { return m_message; }

    private:
        const char* m_message;
    };

    static constexpr const char* CouldNotOpenText = "Could not open file.";
    static constexpr const char* ReadOutOfRangeText = "element with index not in this container";
    static constexpr const char* RewriteOutOfRangeText = "Element not inside container.";
    static constexpr const char* SizeDiffersText = "Size of element new differs size of element old.";
    static constexpr const char* IoErrorText = "_tcserror does not exist within VS6";
    // What a column past the last one of a row reads as.
    static constexpr const char* MissingColumnText = "        ";
    static constexpr char ColumnSeparator = '\x01';

    FileContainerBase();
    ~FileContainerBase();
    FileContainerBase(const FileContainerBase&) = delete;
    FileContainerBase& operator=(const FileContainerBase&) = delete;

    // Makes a fresh, empty swap file "temp<seconds>_<rand>.fc" in `directory` (the
    // per-run temporary directory), replacing and deleting any earlier one.
    void createSwapFile(const std::string& directory);

    // Adds a row; nothing happens before createSwapFile. The text ends at its first NUL.
    void appendRow(std::string_view text);

    // The row's text with its closing space. Only the upper bound is checked: a
    // negative index reads as an empty row that is not on file.
    std::string readRow(zdt::RowIndex row);

    // Writes a row back in place; `text` is what readRow gave, with the same size.
    // One space more follows the text, on the first byte of the next row: that byte is
    // the next row's find mark, which then reads as not set (a mark counts only as '1').
    // A negative index is an empty row: only an empty text passes the size test, and
    // nothing is written.
    void rewriteRow(zdt::RowIndex row, std::string_view text);

    // One cell for the list view: the column's text cut to capacity - 1 bytes and
    // terminated; eight spaces for a column past the row's last (terminated only when
    // room is left, like strncpy). A capacity below 1 writes nothing.
    void getColumnText(zdt::RowIndex row, int column, char* buffer, int capacity);
    // The whole cell, uncut, for the command line and tests.
    std::string columnText(zdt::RowIndex row, int column);

    // Puts buffered rows on file; a document calls it at the end of its parse so a
    // full disk is reported by the open.
    void flush();

    zdt::RowCount rowCount() const { return m_rowCount.load(); }
    const std::string& swapFileName() const { return m_swapFileName; }
    // Where the next row will start.
    zdt::FileOffset endOffset() const { return m_endOffset; }

private:
    friend class FileContainerTestPeer;

    void closeAndRemove();
    const std::vector<std::string>& cachedColumnsOf(zdt::RowIndex row);
    void splitIntoCachedColumns(const std::string& row);
    void writeAt(zdt::FileOffset offset, const char* bytes, std::size_t size);
    void appendUnwrittenRow(std::uint64_t size);

    // Locks for a reader, who goes before the appending thread: that thread takes the
    // lock again right after it lets go, so a list painting during a read would wait for
    // many appends in a row.
    class ReaderLock;

    // Recursive: public operations call each other (a read flushes first).
    mutable std::recursive_mutex m_mutex;
    mutable std::atomic<int> m_waitingReaders{0};
    int m_fd = -1;
    std::string m_swapFileName;
    // Entry i is where row i starts; entry m_rowCount is where the next row goes.
    OffsetArray m_rowOffsets;
    std::atomic<zdt::RowCount> m_rowCount{0};
    zdt::RowIndex m_cachedRowIndex = zdt::NoRow;
    std::vector<std::string> m_cachedColumns;

    std::string m_writeBuffer;          // rows appended but not yet on file
    zdt::FileOffset m_bufferOffset = 0; // where the buffer's first byte belongs
    zdt::FileOffset m_endOffset = 0;    // entry m_rowCount of m_rowOffsets, kept at hand
    zdt::RowCount m_rowsOnFile = 0;     // rows whose bytes are all on file
    bool m_writeFailed = false;
};

// One container per document; the document type only keeps the containers apart.
template <typename Document> class FileContainer : public FileContainerBase {};

} // namespace ZDTAnalyzer
