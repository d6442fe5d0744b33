#include "app/WellKnownPaths.h"

#include "common/TemporaryNumber.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <system_error>

namespace zdt {
namespace {

namespace fs = std::filesystem;

// Below the installation prefix, where `cmake --install` and the package put Analyzer/.
constexpr const char* InstalledDataFolder = "share/zdt-analyzer/Analyzer/";

std::string EnvironmentValue(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : std::string();
}

std::string WithoutTrailingSlash(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

std::string ExecutableDirectory() {
    std::error_code error;
    const fs::path executable = fs::read_symlink("/proc/self/exe", error);
    if (error)
        return WithoutTrailingSlash(fs::current_path(error).string());
    return executable.parent_path().string();
}

std::string UserHome() {
    std::string home = EnvironmentValue("HOME");
    if (home.empty()) {
        if (const passwd* entry = getpwuid(getuid()); entry != nullptr && entry->pw_dir != nullptr)
            home = entry->pw_dir;
    }
    return home;
}

std::string UserDataHome() {
    // Relative values are invalid for XDG variables and are ignored.
    const std::string xdg = EnvironmentValue("XDG_DATA_HOME");
    if (!xdg.empty() && xdg.front() == '/')
        return WithoutTrailingSlash(xdg);
    return WithoutTrailingSlash(UserHome()) + "/.local/share";
}

bool IsDirectory(const std::string& path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

} // namespace

const std::string& AnalyzerBinaryDir() {
    static const std::string dir = ResolveAnalyzerBinaryDir(ExecutableDirectory());
    return dir;
}

std::string ResolveAnalyzerBinaryDir(const std::string& programDir) {
    const std::string program = WithoutTrailingSlash(programDir);
    const std::string besideProgram = program + "/Analyzer/";
    if (IsDirectory(besideProgram))
        return besideProgram;
    const fs::path prefix = fs::path(program).parent_path();
    const std::string installed = WithoutTrailingSlash((prefix / InstalledDataFolder).string()) + "/";
    if (IsDirectory(installed))
        return installed;
    return besideProgram;
}

bool IsInstalledAnalyzerDir(const std::string& binaryDir) {
    const std::string suffix = "/" + WithoutTrailingSlash(InstalledDataFolder);
    const std::string dir = WithoutTrailingSlash(binaryDir);
    return dir.size() >= suffix.size() && dir.compare(dir.size() - suffix.size(), suffix.size(), suffix) == 0;
}

const std::string& AnalyzerTempRoot() {
    static const std::string root = ResolveAnalyzerTempRoot(AnalyzerBinaryDir());
    return root;
}

const std::string& AnalyzerFilterDefaultDir() {
    static const std::string dir = [] {
        std::string resolved = ResolveAnalyzerDataDir(AnalyzerBinaryDir(), "FilterDefaultDir");
        SeedDataDirFromInstallation(AnalyzerBinaryDir(), "FilterDefaultDir", resolved);
        return resolved;
    }();
    return dir;
}

void SeedDataDirFromInstallation(const std::string& binaryDir, const std::string& name, const std::string& dataDir) {
    const std::string shipped = WithoutTrailingSlash(binaryDir) + "/" + name;
    const std::string target = WithoutTrailingSlash(dataDir);
    std::error_code error;
    if (!IsDirectory(shipped) || fs::exists(target, error))
        return;
    if (!fs::create_directories(target, error))
        return;
    for (fs::directory_iterator entry(shipped, error), end; !error && entry != end; entry.increment(error)) {
        std::error_code ignored;
        if (entry->is_regular_file(ignored))
            fs::copy_file(entry->path(), fs::path(target) / entry->path().filename(), ignored);
    }
}

std::string ResolveAnalyzerDataDir(const std::string& binaryDir, const std::string& name) {
    const std::string home = EnvironmentValue("ZDT_ANALYZER_HOME");
    if (!home.empty())
        return WithoutTrailingSlash(home) + "/" + name + "/";
    const std::string besideProgram = WithoutTrailingSlash(binaryDir) + "/" + name + "/";
    if (!IsInstalledAnalyzerDir(binaryDir) && CanWriteOrCreateDirectory(besideProgram))
        return besideProgram;
    return UserDataHome() + "/ZDT-Analyzer/" + name + "/";
}

std::string ResolveAnalyzerTempRoot(const std::string& binaryDir) {
    return ResolveAnalyzerDataDir(binaryDir, "Temp");
}

bool CanWriteOrCreateDirectory(const std::string& directory) {
    fs::path path = fs::path(WithoutTrailingSlash(directory));
    if (!path.is_absolute())
        return false;
    while (true) {
        struct stat info {};
        if (stat(path.c_str(), &info) == 0)
            return S_ISDIR(info.st_mode) && access(path.c_str(), W_OK | X_OK) == 0;
        if (!path.has_relative_path())
            return false;
        path = path.parent_path();
    }
}

std::string MakeSessionTempDirName(const std::string& root) {
    char name[64];
    std::snprintf(name, sizeof name, "temp%ld_%d/", static_cast<long>(std::time(nullptr)), zdt::TemporaryNumber());
    return root + name;
}

TempDirectoryResult EnsureTempDirectory(const std::string& path, const std::string& failureTitle) {
    const std::string name = WithoutTrailingSlash(path);
    if (IsDirectory(name))
        return {};
    struct stat info {};
    if (stat(name.c_str(), &info) == 0)
        return {UserMessage{failureTitle, TempDirFailureText, MessageIcon::Error}};
    std::error_code ignored;
    fs::create_directories(name, ignored);
    return {};
}

void RemoveSessionTempDir(const std::string& path) {
    if (path.empty() || !IsDirectory(path))
        return;
    std::error_code error;
    for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error)) {
        std::error_code ignored;
        if (!entry->is_directory(ignored) || entry->is_symlink(ignored))
            fs::remove(entry->path(), ignored);
    }
    // Fails, as intended, when a sub-directory was left behind.
    rmdir(WithoutTrailingSlash(path).c_str());
}

SessionTempDirectory::~SessionTempDirectory() {
    RemoveSessionTempDir(m_path);
}

std::optional<UserMessage> SessionTempDirectory::Create() {
    return Create(AnalyzerTempRoot());
}

std::optional<UserMessage> SessionTempDirectory::Create(const std::string& root) {
    return Create(root, MakeSessionTempDirName(root));
}

std::optional<UserMessage> SessionTempDirectory::Create(const std::string& root, const std::string& sessionDir) {
    RemoveSessionTempDir(m_path);
    m_path.clear();
    if (TempDirectoryResult rootResult = EnsureTempDirectory(root, TempRootFailureTitle); !rootResult.ok())
        return rootResult.failure;
    m_path = sessionDir;
    return EnsureTempDirectory(sessionDir, SessionTempDirFailureTitle).failure;
}

} // namespace zdt
