#pragma once

#include <cstddef>
#include <cstdint>

// What the index pass learns from one record line without building the record:
// its time, its channel, and which columns it fills.
struct IndexLineFacts {
    std::uint32_t time = 0;
    int channelNumber = 0;
    bool channel = false;
    bool identifier = false;
    bool sourceDestinationPriority = false;
    bool flex = false;
};

// `line` is zero-terminated at `length`. `facts` must come in default-constructed.
void ReadIndexLineFacts(const char* line, std::size_t length, IndexLineFacts& facts);

// The channel (token 1) and time (token 3) of blank-separated tokens from `text` to `end`.
IndexLineFacts ReadTokenFields(const char* text, const char* end);

// The 16-bit type of a line, rebuilt from its first four characters by the nibble tables.
std::uint16_t IndexLineType(const char* line, std::size_t length);

// The channel token's reader: digits and A-F give their value, a-f their code minus 0x6B,
// and any other character repeats the digit before it.
int ParseChannelToken(const char* token, std::size_t length);

// sscanf "%Nx" at `text`: 0 when nothing converts.
std::uint32_t ScanHexField(const char* text, int width);
// atol, saturating as strtol does, truncated to 32 bits.
std::uint32_t AtolTruncated(const char* text, std::size_t length);
