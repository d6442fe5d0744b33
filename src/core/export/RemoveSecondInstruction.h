#pragma once

#include <string>

namespace ZDTAnalyzer {

// Copies `input` to `output`, leaving out a processing instruction that follows the XML
// declaration (the tools would take it for a sheet to apply). It counts "<" outside
// double quotes and stops looking at the third: a file without a declaration loses that
// third "<", as it always has. When either file cannot be opened nothing happens.
void removeSecondInstruction(const std::string& input, const std::string& output);

} // namespace ZDTAnalyzer
