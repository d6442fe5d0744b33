#include "trace/CPath.h"

#include <unistd.h>

#include <cerrno>
#include <vector>

namespace {

std::string CurrentDirectory() {
    std::vector<char> buffer(4096);
    while (getcwd(buffer.data(), buffer.size()) == nullptr) {
        if (errno != ERANGE)
            return {};
        buffer.resize(buffer.size() * 2);
    }
    return buffer.data();
}

} // namespace

CPath::CPath() {
    Set({}, {});
}

CPath::CPath(const std::string& drive, const std::string& directory) {
    Set(drive, directory);
}

void CPath::Set(const std::string& drive, const std::string& directory) {
    // Drive letters do not exist here; whatever was given stands for "the current drive".
    (void)drive;
    m_drive.clear();
    m_directory = NormaliseDirectory(directory.empty() ? CurrentDirectory() : directory);
}

std::string CPath::NormaliseDirectory(const std::string& directory) {
    std::string result = directory;
    if (!result.empty() && result.front() != '/' && result.front() != '.')
        result.insert(result.begin(), '/');
    // Only one trailing separator is dropped; callers add exactly one when joining.
    if (!result.empty() && result.back() == '/')
        result.pop_back();
    return result;
}
