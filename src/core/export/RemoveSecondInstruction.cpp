#include "export/RemoveSecondInstruction.h"
#include "common/OwnedFile.h"

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace ZDTAnalyzer {
namespace {

using File = zdt::OwnedFile;

// The bytes kept from the head of the file; reading stops where the rest can be copied as it is.
std::string keptHead(std::FILE* in) {
    std::string kept;
    int lessThanCount = 0;
    int mark = 0;
    bool copy = true;
    bool inQuotes = false;
    for (;;) {
        const int read = std::fgetc(in);
        // A 0xFF byte ends the head as the end of the file does.
        if (read == EOF || read == 0xFF)
            break;
        const char byte = static_cast<char>(read);
        const int countBefore = lessThanCount;
        const int markBefore = mark;
        if (byte == '"')
            inQuotes = !inQuotes;
        else if (!inQuotes && byte == '<')
            ++lessThanCount;
        else if (!inQuotes && byte == '?')
            mark = lessThanCount;

        if (lessThanCount != countBefore) {
            if (lessThanCount == 3)
                break;
            kept += byte;
        } else if (mark != markBefore) {
            if (mark == 2)
                copy = false;
            else
                kept += byte;
        } else {
            if (copy)
                kept += byte;
            if (lessThanCount == 2 && mark == 1)
                break;
        }
    }
    return kept;
}

} // namespace

void removeSecondInstruction(const std::string& input, const std::string& output) {
    const File in(std::fopen(input.c_str(), "rb"));
    if (!in)
        return;
    const File out(std::fopen(output.c_str(), "wb"));
    if (!out)
        return;
    const std::string head = keptHead(in.get());
    std::fwrite(head.data(), 1, head.size(), out.get());
    std::vector<char> buffer(1u << 20);
    for (std::size_t got; (got = std::fread(buffer.data(), 1, buffer.size(), in.get())) > 0;)
        std::fwrite(buffer.data(), 1, got, out.get());
}

} // namespace ZDTAnalyzer
