#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// A CAN filter file (".flt"): a profile file whose section "CAN" holds `Type`
// ("StopFilter" or "PassFilter"), `NoOfEntries` in hex and the identifiers under the
// keys "1" up to "NoOfEntries", each key written in upper-case hex.
struct FltFilter {
    bool stopFilter = false;
    // As the document compares them: an extended (29 bit) frame carries the top bit.
    std::vector<std::uint32_t> identifiers;
};

inline constexpr std::uint32_t FltExtendedFlag = 0x80000000u;
inline constexpr std::uint32_t FltStandardMax = 0x7FFu;
inline constexpr std::uint32_t FltExtendedMax = 0x1FFFFFFFu;
// The document's identifier table has 200 slots and keeps its first one free.
inline constexpr std::size_t FltMaxEntries = 199;

// Reads the filter the way the document applies it: a missing file or key gives a
// pass filter, at most FltMaxEntries entries are read, and missing entries (the
// document's free-slot value 0xFFFFFFFF) are no identifiers.
FltFilter ReadFltFile(const std::string& path);

// The file's text after storing `filter` into `existingText`: the filter's keys of
// section "CAN" are replaced, every other line stays as it was. The line end of the
// existing text is kept; a new text uses CR LF like the other tools that share
// the filter folders.
std::string FormatFlt(const FltFilter& filter, const std::string& existingText);

// Stores `filter` into the file at `path`, created when missing. False when the file
// cannot be written.
bool WriteFltFile(const std::string& path, const FltFilter& filter);

// A hexadecimal identifier as a person types it ("7df", "0x18DA00F1"); nullopt when it
// is no hex number or out of range for the frame kind. Extended ones get the top bit.
std::optional<std::uint32_t> ParseIdentifierText(const std::string& text, bool extended);

// "0x7DF", or "0x18DA00F1 (extended)" for an identifier with the top bit.
std::string FormatIdentifierText(std::uint32_t identifier);
