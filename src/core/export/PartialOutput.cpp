#include "export/PartialOutput.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <random>
#include <utility>

namespace ZDTAnalyzer {
namespace {

std::string partialName(const std::string& finalPath) {
    const std::size_t slash = finalPath.rfind('/');
    const std::string folder = slash == std::string::npos ? std::string() : finalPath.substr(0, slash + 1);
    const std::string name = slash == std::string::npos ? finalPath : finalPath.substr(slash + 1);
    static thread_local std::mt19937 random{std::random_device{}()};
    return folder + "." + name + "." + std::to_string(getpid()) + "_" + std::to_string(random() % 1000000u) + ".part";
}

} // namespace

PartialOutput::PartialOutput(std::string finalPath)
    : m_finalPath(std::move(finalPath)), m_path(partialName(m_finalPath)) {}

PartialOutput::~PartialOutput() {
    if (!m_committed)
        std::remove(m_path.c_str());
}

bool PartialOutput::create(std::string& error) {
    std::FILE* file = std::fopen(m_path.c_str(), "wbx");
    if (file == nullptr) {
        error = std::strerror(errno);
        return false;
    }
    std::fclose(file);
    return true;
}

bool PartialOutput::commit(std::string& error) {
    if (std::rename(m_path.c_str(), m_finalPath.c_str()) != 0) {
        error = std::strerror(errno);
        return false;
    }
    m_committed = true;
    return true;
}

} // namespace ZDTAnalyzer
