#pragma once

#include "common/UserMessage.h"

#include <optional>
#include <string>
#include <vector>

namespace zdt {

// Whether the file dialog and dropped files may hand `path` on: the text behind the
// last "." of the whole path (or the whole path when there is none), lower-cased,
// must be one of the trace extensions. The command line and the recent-file list do
// not ask; the classic document then judges the file by its content.
bool IsRoutablePath(const std::string& path);

enum class DocumentFamily { Classic, Xpvt, Snp };

// The document family that opens `path`: ".xpvt" and ".snp" file name extensions,
// in any case, have their own documents; everything else is tried as a classic trace.
DocumentFamily FamilyForPath(const std::string& path);

// What to do with a set of paths chosen in the file dialog or dropped on the frame.
struct DocumentSelection {
    std::vector<std::string> accepted; // to open, in the given order
    std::vector<std::string> rejected;
    bool cascade = false;               // arrange the child windows afterwards
    std::optional<UserMessage> warning; // one box naming every rejected path
    // Dropped files warn on the main frame before cascading; the file dialog cascades
    // first and warns with no parent window.
    bool warnBeforeCascade = false;
    bool warningOnMainFrame = false;
};

DocumentSelection SelectFromFileDialog(const std::vector<std::string>& paths);
DocumentSelection SelectDroppedFiles(const std::vector<std::string>& paths);

// The pattern pair the file dialog offers.
inline constexpr const char* TraceFilesFilterName = "Trace Files (.trc;.trc1;.trc2;.crc;.tr0;.trX;.xpvt;.snp)";
inline constexpr const char* TraceFilesFilterPattern = "*.trc;*.trc1;*.trc2;*.crc;*.tr0;*.trX;*.xpvt;*.snp";

} // namespace zdt
