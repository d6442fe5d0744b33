#pragma once

#include "common/Operation.h"
#include "filter/FilterCondition702.h"

#include <cstdint>
#include <set>
#include <string>
#include <vector>

// The runs of the three filters as long operations: each builds its query over a plain
// stand-in for the document's path, lets the engine write the result beside the chosen
// output name and renames it there only on success, so a failed or cancelled run leaves
// nothing at that name. Failures become the filter's own box.
namespace ZDTAnalyzer::Filter {

inline constexpr const char* Filter701ErrorTitle = "E013_004 [Filter.]";
inline constexpr const char* Filter701ErrorFormat = "Error occured:\n%s !";
inline constexpr const char* Filter702ErrorTitle = "E009_003 [Filter.]";
inline constexpr const char* SnpServiceListErrorTitle = "E009_001 [Filter.]";
inline constexpr const char* SnpFilterErrorTitle = "E009_003 [Filter.]";
inline constexpr const char* FilterErrorFormat = "Filter error : %s !";

struct FilterRunTarget {
    // The document as the user named it.
    std::string documentPath;
    // Where the result document goes; it appears there whole or not at all.
    std::string outputPath;
    // Where the run keeps its private files (the per-run directory); empty: the system's.
    std::string scratchParent;
    // Bytes of the list's children that go through the engine at a time; 0 chooses with
    // filterPieceBytes.
    std::uint64_t pieceBytes = 0;
};

// How much of a document of `documentBytes` goes through the engine at a time on a machine
// of `machineMemoryBytes` (0: unknown): 0 for the whole document when the engine's memory
// for it fits a quarter of the machine, else pieces of 64 to 256 MiB that fit, so that even
// a 2 GB trace filters within about 1.2 GB.
std::uint64_t filterPieceBytes(std::uint64_t documentBytes, std::uint64_t machineMemoryBytes);

// "Could not load filter conditions from file: <path> !"
std::string couldNotLoadFilterText(const std::string& filterPath);

// The 7.01 filter of the .pvflt file `filterPath`, read by the run reader. A file that
// cannot be read, or lacks any of the conditions, fails with couldNotLoadFilterText.
zdt::OperationStatus runFilter701(const FilterRunTarget& target, const std::string& filterPath,
                                  zdt::MessageSink& messages, zdt::OperationControl& control);

// The 7.02 filter of `record`. Parent primitive, response name and response message are
// tested as "any of the values contains the text" (see MultiValueTests).
zdt::OperationStatus runFilter702(const FilterRunTarget& target, const XPVT_7_02::FilterCondition702& record,
                                  zdt::MessageSink& messages, zdt::OperationControl& control);

// The service names of a snapshot file, as its filter dialog lists them.
// `pieceBytes` as in FilterRunTarget.
zdt::OperationStatus listSnapshotServices(const std::string& documentPath, const std::string& scratchParent,
                                          std::set<std::string>& names, zdt::MessageSink& messages,
                                          zdt::OperationControl& control, std::uint64_t pieceBytes = 0);

// The snapshot filter keeping the services `chosenNames`, in the dialog's list order.
zdt::OperationStatus runSnapshotFilter(const FilterRunTarget& target, const std::vector<std::string>& chosenNames,
                                       zdt::MessageSink& messages, zdt::OperationControl& control);

} // namespace ZDTAnalyzer::Filter
