#include "classic/FilterDirectory.h"

#include "app/WellKnownPaths.h"
#include "trace/CFileName.h"
#include "trace/CIniFile.h"

#include <unistd.h>

#include <filesystem>
#include <system_error>

namespace zdt {
namespace {

std::string SettingsFileFor(const std::string& programDir) {
    const std::filesystem::path root = std::filesystem::path(programDir) / ".." / "..";
    return (root / "Config" / "zdt7.ini").lexically_normal().string();
}

// Settings paths may or may not end in a separator; joining must not double it.
std::string WithoutTrailingSlash(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

std::string LastName(const std::string& directory) {
    const std::size_t slash = directory.rfind('/');
    return slash == std::string::npos ? directory : directory.substr(slash + 1);
}

bool Exists(const std::string& path) {
    return access(path.c_str(), F_OK) == 0;
}

bool IsDirectory(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored);
}

void CreateIfMissing(const std::string& directory) {
    std::error_code ignored;
    std::filesystem::create_directories(directory, ignored);
}

} // namespace

std::string CleanSettingsPath(const std::string& raw) {
    std::string cleaned;
    for (char c : raw) {
        if (c != '"' && c != ';')
            cleaned += c;
    }
    std::string result;
    for (std::size_t i = 0; i < cleaned.size(); ++i) {
        if (cleaned[i] == '\\') {
            if (i + 1 < cleaned.size() && cleaned[i + 1] == '\\')
                ++i;
            result += '/';
        } else {
            result += cleaned[i];
        }
    }
    return result;
}

std::string FindFilterDirectory(const std::string& programDir, const std::string& tracePath) {
    CIniFile settings(SettingsFileFor(programDir));
    const std::string projectPath =
        WithoutTrailingSlash(CleanSettingsPath(settings.GetString("ProjectPath", "", "ProjectPath")));
    const std::string commonPath =
        WithoutTrailingSlash(CleanSettingsPath(settings.GetString("TracePath", "", "ECUTrace")));

    const std::string projectName = LastName(CFileName(tracePath).Directory());
    const std::string projectDir = projectPath + "/" + projectName;
    const std::string projectFile = projectDir + "/" + projectName + ".prj";
    if (Exists(projectDir) && Exists(projectFile))
        return projectDir + "/flt/";

    // An existing common folder is used even when read-only: it may be a shared set. A
    // relative trace path (a drive letter from another system) would name a folder
    // wherever the program happens to run.
    const std::string commonDir = commonPath + "/CommonCANFilters/";
    const bool usable = std::filesystem::path(commonPath).is_absolute() &&
                        (IsDirectory(commonDir) || CanWriteOrCreateDirectory(commonDir));
    // Without it a fresh installation would offer a folder where no filter can be made;
    // the program's own folder works wherever it is installed.
    const std::string dir =
        usable ? commonDir : ResolveAnalyzerDataDir(ResolveAnalyzerBinaryDir(programDir), "CommonCANFilters");
    CreateIfMissing(dir);
    return dir;
}

} // namespace zdt
