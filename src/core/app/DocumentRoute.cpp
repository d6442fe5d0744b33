#include "app/DocumentRoute.h"

#include <array>
#include <string_view>

namespace zdt {
namespace {

constexpr std::array<std::string_view, 8> RoutableExtensions{
    "xpvt", "trc", "trc1", "trc2", "tr0", "crc", "trx", "snp",
};

std::string ToLower(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    }
    return text;
}

// The extension of the file name only, "." included, as document templates match it.
std::string FileNameExtension(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::size_t dot = path.rfind('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash))
        return {};
    return path.substr(dot);
}

DocumentSelection Select(const std::vector<std::string>& paths, const char* warningTitle) {
    DocumentSelection selection;
    for (const std::string& path : paths)
        (IsRoutablePath(path) ? selection.accepted : selection.rejected).push_back(path);

    selection.cascade = !selection.accepted.empty();
    if (!selection.rejected.empty()) {
        std::string names;
        for (std::size_t i = 0; i < selection.rejected.size(); ++i)
            names += (i == 0 ? "" : "\n") + selection.rejected[i];
        selection.warning = UserMessage{warningTitle, "Can't open:\n" + names, MessageIcon::Warning};
    }
    return selection;
}

} // namespace

bool IsRoutablePath(const std::string& path) {
    const std::size_t dot = path.rfind('.');
    if (dot != std::string::npos && dot + 1 == path.size())
        return false;
    const std::string extension = ToLower(dot == std::string::npos ? path : path.substr(dot + 1));
    for (std::string_view known : RoutableExtensions) {
        if (extension == known)
            return true;
    }
    return false;
}

DocumentFamily FamilyForPath(const std::string& path) {
    const std::string extension = ToLower(FileNameExtension(path));
    if (extension == ".xpvt")
        return DocumentFamily::Xpvt;
    if (extension == ".snp")
        return DocumentFamily::Snp;
    return DocumentFamily::Classic;
}

DocumentSelection SelectFromFileDialog(const std::vector<std::string>& paths) {
    return Select(paths, "E001_003 [Wrong file type.]");
}

DocumentSelection SelectDroppedFiles(const std::vector<std::string>& paths) {
    DocumentSelection selection = Select(paths, "E005_001 [Wrong file type.]");
    selection.warnBeforeCascade = true;
    selection.warningOnMainFrame = true;
    return selection;
}

} // namespace zdt
