#pragma once

#include "classic/CAnalyzerDoc.h"

#include <cstdint>

class QWidget;

namespace zdtui {

// Runs "Style CAN Link" preset with `mode`; true on OK with the choice in `mode`.
bool RunStyleCan(QWidget* parent, TimeMode& mode, bool relativeChannelDisabled);

// Runs "Style KLine Link" preset with `mode`; true on OK with the choice in `mode` and,
// for the inter-byte mode, the whole microseconds of one byte in `byteTime` (left as
// it was otherwise). The line settings are kept for the next run of the program's life.
bool RunStyleDiagnostic(QWidget* parent, TimeMode& mode, std::uint32_t& byteTime);

} // namespace zdtui
