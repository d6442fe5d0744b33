#pragma once

#include <string>

namespace ZDTAnalyzer::Xpvt {

// Cuts the next piece of a PDU text for one list row: at most eight bytes as hex
// digits joined by blanks. `remaining` loses as many leading characters as the piece
// has (not as were walked), so skipped characters make the next cut start early; the
// rows depend on that. Returns whether a piece was cut; call it until it returns false.
bool PduChunker(std::string& remaining, std::string& piece);

} // namespace ZDTAnalyzer::Xpvt
