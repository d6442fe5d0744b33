#pragma once

#include "classic/CAnalyzerDoc.h"
#include "classic/ClassicSearch.h"

#include <optional>
#include <string>
#include <vector>

// Thrown for arguments that do not fit: the command prints usage and exits with 2.
struct UsageError {
    std::string text;
};

// What every classic command may be told: the time mode and what the style dialogs set.
struct ClassicViewOptions {
    TimeMode timeMode = TimeMode::Relative;
    std::uint32_t baudrate = 10400;
    std::uint32_t dataBits = 8;
    std::uint32_t stopBits = 1;
    std::string canFilter;
};

struct CliArguments {
    std::string command;
    std::vector<std::string> files;
    ClassicViewOptions view;
    ClassicFindCriteria criteria;
    bool markAll = false;
};

// The value of a numeric option, 0 to 2^32-1; throws UsageError naming `option`.
std::uint32_t ParseNumber(const std::string& option, const std::string& text);
// The value of --time; throws UsageError.
TimeMode ParseTimeMode(const std::string& text);

// Options may stand before or after the files. Throws UsageError.
CliArguments ParseCliArguments(int argc, char** argv);
const char* UsageText();
