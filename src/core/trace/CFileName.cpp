#include "trace/CFileName.h"

CFileName::CFileName(const std::string& fullPath) {
    Set(fullPath);
}

void CFileName::Set(const std::string& fullPath) {
    const std::size_t slash = fullPath.rfind('/');
    const std::size_t nameStart = slash == std::string::npos ? 0 : slash + 1;
    const std::string name = fullPath.substr(nameStart);
    const std::size_t dot = name.rfind('.');

    CPath::Set({}, fullPath.substr(0, nameStart));
    m_baseName = name.substr(0, dot == std::string::npos ? name.size() : dot);
    m_extension = dot == std::string::npos ? std::string() : name.substr(dot);
}

std::string CFileName::FullPath() const {
    std::string result = Text();
    if (!m_baseName.empty())
        result += '/';
    return result + m_baseName + m_extension;
}
