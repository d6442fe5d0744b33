#pragma once

#include <cstdio>
#include <string>

// A document too big for the engine's memory is filtered piece by piece (see ChunkPlan):
// each piece holds the document's head, some whole children of its list's container, and
// its tail. The filters decide child by child, so the results of the pieces differ only
// inside the container, and joining those parts gives what one run over the whole
// document writes.
namespace ZDTAnalyzer::Filter {

class PieceResultJoiner {
public:
    // `containerDepth`: 1 when the container is the result's root, 2 when it is a child of
    // the root; `containerName`: its name, empty for any. `skipMarker`: the target of the processing instruction that
    // the pieces' query leaves where the filter as written leaves an empty string; empty when the filter leaves nothing
    // for a child it drops. Writes to `output`, which stays open.
    PieceResultJoiner(int containerDepth, std::string containerName, std::string skipMarker, std::FILE* output);

    // Adds the result of the next piece, in document order. False when it cannot be read,
    // is not well-formed, or has no container at the depth given.
    bool addPiece(const std::string& resultPath);
    // Writes the end. False when no piece was added or writing failed.
    bool finish();

private:
    friend class PieceScan;

    void takePrefix(std::string prefix, std::string startTag, std::string name);
    void countSkip() { ++m_pendingSkips; }
    // Opens the container when needed, and puts down the blanks of the skips so far.
    bool beginContent();
    bool write(const char* bytes, std::size_t size);

    int m_containerDepth;
    std::string m_containerName;
    std::string m_skipMarker;
    std::FILE* m_output;
    int m_pieces = 0;
    std::string m_prefix;   // what comes before the container's start tag
    std::string m_startTag; // as the first piece wrote it
    std::string m_name;
    std::string m_suffix; // what follows the container, from the latest piece
    bool m_opened = false;
    bool m_failed = false;
    unsigned long long m_pendingSkips = 0;
};

} // namespace ZDTAnalyzer::Filter
