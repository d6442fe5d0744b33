#pragma once

#include "common/RowTypes.h"
#include "export/ConversionPaths.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zdt {
class OperationControl;
}

namespace ZDTAnalyzer {

// A document cut into pieces that the tools can take one at a time. The sheets build
// their rows element by element under the list's container (the trace's "Trace", the
// snapshot list's root), so each piece is a document of its own: the bytes up to the
// container's start tag, some whole children, and the bytes from the container's end tag on.
struct ChunkPlan {
    zdt::FileOffset headerEnd = 0; // just past the container's start tag
    // Piece i holds the bytes [cuts[i], cuts[i + 1]); the first cut is headerEnd and the
    // last the start of the container's end tag, so the pieces hold every byte between.
    std::vector<zdt::FileOffset> cuts;
    zdt::FileOffset fileSize = 0;

    std::size_t chunkCount() const { return cuts.empty() ? 0 : cuts.size() - 1; }
    zdt::FileOffset tailStart() const { return cuts.back(); }
};

// Plans pieces of about `targetBytes` of children each. Empty when the file is not a
// well-formed document of `kind`'s shape, when its container has fewer than two children
// worth cutting, or when a cancel came: the caller then runs the file whole, and the tool
// says what is wrong with it.
std::optional<ChunkPlan> PlanChunks(const std::string& path, ConversionKind kind, std::uint64_t targetBytes,
                                    const zdt::OperationControl* control);

// Writes piece `index` of `plan` from `source` as a document of its own. False when
// reading or writing failed.
bool WriteChunk(const ChunkPlan& plan, std::size_t index, const std::string& source, const std::string& target);

} // namespace ZDTAnalyzer
