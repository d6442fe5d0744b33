#include "xmldoc/PrintableOnly.h"

#include <algorithm>

namespace ZDTAnalyzer {

void PrintableOnly(std::string& text) {
    text.erase(std::remove_if(text.begin(), text.end(),
                              [](char byte) { return !isPrintableByte(static_cast<unsigned char>(byte)); }),
               text.end());
}

std::string printableOnlyCopy(std::string_view text) {
    std::string copy(text);
    PrintableOnly(copy);
    return copy;
}

} // namespace ZDTAnalyzer
