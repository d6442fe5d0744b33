#pragma once

#include <string>

namespace ZDTAnalyzer {

// Extensions of the temporary files the conversions and their callers make.
inline constexpr const char* TmpTxtExtension = ".tmp.txt";
inline constexpr const char* TmpSnpExtension = ".tmp.snp";
inline constexpr const char* TmpXpvtExtension = ".tmp.xpvt";
inline constexpr const char* HtmlExtension = ".html";
inline constexpr const char* SwapExtension = ".fc";

// `directory` (with its trailing "/"), "temp", the seconds since the epoch, "_", a rand()
// value and `extension`. The generator is seeded once from the time, on first use. Nothing
// is created: the name is only very probably free.
std::string temporaryName(const std::string& directory, const std::string& extension);

} // namespace ZDTAnalyzer
