#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace ZDTAnalyzer::Xpvt {

// A message of bytes read from its hexadecimal text, written back as list lines.
class BitFieldImpl {
public:
    // Bytes a list line shows, and where its second group starts.
    static constexpr unsigned BytesPerLine = 16;
    static constexpr unsigned BytesPerGroup = 8;
    static constexpr std::size_t SecondGroupColumn = 26;

    BitFieldImpl() = default;
    virtual ~BitFieldImpl() = default;

    // Pairs of hex digits form bytes; anything else is skipped, so "12, 3 4" reads
    // as 12 34 (and in "0x12" the 0 counts as a digit). A lone last digit is a byte
    // of its own value.
    void init(const char* text);

    unsigned getLength() const { return static_cast<unsigned>(m_bytes.size()); }

    // Writes the bytes [start, start + count) that exist as upper-case two-digit hex
    // joined by `separator`, closed by a NUL. `destination` must hold 3 * count + 1
    // characters. Returns the number of characters written before the NUL.
    virtual std::size_t formatBytes(char* destination, unsigned start, unsigned count, char separator) const;

    // The list line of the 16 bytes from `start`: the first eight, then, when there
    // are more, blanks up to column 26 and the next eight. No trailing blanks.
    void formatLine(std::string& line, unsigned start) const;

    // Number of 16-byte lines the message fills: 0 for an empty message.
    unsigned lineCount() const { return (getLength() + BytesPerLine - 1) / BytesPerLine; }

private:
    std::vector<unsigned char> m_bytes;
};

} // namespace ZDTAnalyzer::Xpvt
