#pragma once

#include "common/RowTypes.h"
#include "common/UserMessage.h"
#include "export/ConversionPaths.h"

#include <optional>
#include <string>

namespace ZDTAnalyzer {

// The number of list rows the document at `path` makes, by the list's own row pass (its
// swap file lives in `swapDirectory` only while counting). Empty when it does not open;
// the opener's box then went to `messages`.
std::optional<zdt::RowCount> CountListRows(const std::string& path, ConversionKind kind,
                                           const std::string& swapDirectory, zdt::MessageSink& messages);

} // namespace ZDTAnalyzer
