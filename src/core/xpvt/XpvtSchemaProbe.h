#pragma once

#include "common/UserMessage.h"

#include <optional>
#include <string>

namespace ZDTAnalyzer {

enum class XpvtSchema { V701, V702 };

// The schema of a process value trace as its document decides it: 7.02 exactly when the
// header's Schema reads "7,02". Reads the file only up to the end of its header (a file
// without one to its end). Empty when the file does not open as a document, with the
// document's box in `messages`. `swapDirectory` takes the reader's short-lived swap file.
std::optional<XpvtSchema> probeXpvtSchema(const std::string& path, const std::string& swapDirectory,
                                          zdt::MessageSink& messages);

// The same, for callers that only choose between the schemas: a file that does not open
// counts as 7.01.
bool ProbeXpvtIs702(const std::string& path, const std::string& swapDirectory);

} // namespace ZDTAnalyzer
