#pragma once

#include "filter/FilterConditionMap.h"

#include <string>

// The .pvflt file: for each entry of the map the key on one line and the value on the
// next, in the map's order, with no header and nothing escaped.
namespace ZDTAnalyzer::Filter::XPVT_7_01 {

inline constexpr const char* CouldNotOpenInputFileText = "Could not open input file";

// Writes every entry as "key\nvalue\n". False when the file cannot be written completely.
bool writeFilterFile(const std::string& path, const FilterConditionMap& conditions);

// The reader of a filter run: even lines are keys, odd lines values, and a pair counts
// once the line feed after its value arrived (a last value without one is dropped).
// Entries are added to `conditions`. False only when the file cannot be opened.
bool readFilterFileForRun(const std::string& path, FilterConditionMap& conditions);

// The reader of the edit dialog: empties `conditions`, then reads key and value lines
// until a value ends at the end of the file. The end of the file reads as the byte 0xFF,
// so a complete file yields one more pair "\xFF" = "\xFF", which a later save keeps.
// On failure `errorText` is "Could not open input file".
bool readFilterFileForEdit(const std::string& path, FilterConditionMap& conditions, std::string& errorText);

} // namespace ZDTAnalyzer::Filter::XPVT_7_01
