#pragma once

#include <atomic>
#include <cstdint>
#include <string>

// Reads a file by lines through a sliding window. A line ends at a carriage return,
// which GetLine replaces by a zero until the next call; a line must fit into the window.
class CBufFile {
public:
    static constexpr std::uint32_t DefaultWindow = 8192;

    explicit CBufFile(std::uint32_t windowSize = DefaultWindow);
    virtual ~CBufFile();
    CBufFile(const CBufFile&) = delete;
    CBufFile& operator=(const CBufFile&) = delete;

    bool Open(const std::string& path);
    // The zero-terminated line at `offset`, or null past the end, for a line without a
    // carriage return within one window, and when the file is not open.
    char* GetLine(std::uint64_t offset);
    void Close();
    // Closes the file for this object's users but keeps the descriptor until Close or the
    // next Open: another thread may be reading at it, and closing under a read is a race.
    void CloseLater() { m_open.store(0, std::memory_order_relaxed); }

    bool IsOpen() const { return m_open.load(std::memory_order_relaxed) != 0; }
    std::uint64_t FileLength() const { return m_fileLength; }
    // Offset of the line GetLine returned last.
    std::uint64_t LineOffset() const { return m_lineOffset; }
    // Offset of the carriage return that ended that line.
    std::uint64_t LineEndOffset() const;
    std::uint32_t WindowSize() const { return m_bufferSize; }

    // Positioned raw read, past the window: the number of bytes read, 0 on failure.
    // It moves no file position, so several threads may read at once, and one may read
    // while another closes the file (the read then fails).
    std::size_t ReadAt(std::uint64_t offset, char* into, std::size_t count) const;

protected:
    int Descriptor() const { return m_fd.load(std::memory_order_relaxed); }
    char* EnsureScratch(std::uint32_t size);

private:
    bool LoadWindowAt(std::uint64_t loadPoint);
    char* ScanLine(std::uint64_t offset);

    char* m_lineEnd = nullptr;
    std::uint64_t m_lineOffset = 0;
    std::uint32_t m_bufferBytes = 0;
    std::uint64_t m_bufferOffset = 0;
    char* m_buffer = nullptr;
    char* m_scratch = nullptr;
    std::uint32_t m_scratchSize = 0;
    std::uint32_t m_bufferSize;
    std::atomic<std::uint8_t> m_open{0};
    std::uint64_t m_fileLength = 0;
    std::atomic<int> m_fd{-1};
};
