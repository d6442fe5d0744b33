#pragma once

// What the commands of zdt-gen share: usage errors, numbers and lists of the command line,
// the walk over one command's arguments and the output file.

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace zdtgen::tool {

struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

inline std::uint64_t ParseCount(const std::string& text) {
    char* end = nullptr;
    const unsigned long long value = std::strtoull(text.c_str(), &end, 10);
    std::uint64_t scale = 1;
    if (end != nullptr && *end != '\0') {
        switch (*end) {
        case 'K':
        case 'k':
            scale = 1ull << 10;
            break;
        case 'M':
        case 'm':
            scale = 1ull << 20;
            break;
        case 'G':
        case 'g':
            scale = 1ull << 30;
            break;
        default:
            throw UsageError("not a number: " + text);
        }
        if (end[1] != '\0')
            throw UsageError("not a number: " + text);
    }
    if (end == text.c_str())
        throw UsageError("not a number: " + text);
    return value * scale;
}

inline std::vector<std::string> SplitCommas(const std::string& text) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (;;) {
        const std::size_t comma = text.find(',', start);
        parts.push_back(text.substr(start, comma - start));
        if (comma == std::string::npos)
            return parts;
        start = comma + 1;
    }
}

// Walks the arguments of one command.
class Arguments {
public:
    Arguments(int argc, char** argv, int first) : m_args(argv + first, argv + argc) {}
    bool Done() const { return m_next >= m_args.size(); }
    std::string Next() { return m_args[m_next++]; }
    std::string Value(const std::string& option) {
        if (Done())
            throw UsageError(option + " needs a value");
        return Next();
    }

private:
    std::vector<std::string> m_args;
    std::size_t m_next = 0;
};

// Writes through `write` to OUT, or to standard output for "-".
template <typename Writer> void WriteOutput(const std::string& path, Writer write) {
    if (path == "-") {
        write(std::cout);
        std::cout.flush();
        if (!std::cout)
            throw std::runtime_error("cannot write to standard output");
        return;
    }
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out)
        throw std::runtime_error("cannot create " + path);
    write(out);
    out.close();
    if (!out)
        throw std::runtime_error("cannot write " + path);
}

// The commands; each returns the exit status and throws UsageError on bad arguments.
int RunClassic(Arguments args);
int RunFilter(Arguments args);
int RunSnapshot(Arguments args);
int RunXpvt(Arguments args);

} // namespace zdtgen::tool
