#include "xpvt/PduChunker.h"

namespace ZDTAnalyzer::Xpvt {

namespace {

// A piece is full from this length on: eight bytes of two digits and seven blanks.
constexpr std::size_t FullPiece = 23;

bool isHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

} // namespace

bool PduChunker(std::string& remaining, std::string& piece) {
    piece.clear();
    for (std::size_t i = 0; i < remaining.size() && piece.size() < FullPiece; ++i) {
        const char c = remaining[i];
        if (isHexDigit(c))
            piece += c;
        else if (!piece.empty() && isHexDigit(piece.back()))
            piece += ' ';
    }
    // The piece never holds more characters than were walked, so this stays in range.
    remaining.erase(0, piece.size());
    return !piece.empty();
}

} // namespace ZDTAnalyzer::Xpvt
