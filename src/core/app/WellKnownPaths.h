#pragma once

#include "common/UserMessage.h"

#include <optional>
#include <string>

namespace zdt {

// Titles of the boxes shown when a plain file blocks a temporary directory's name.
inline constexpr const char* TempRootFailureTitle = "E001_001 [Initialization failed.]";
inline constexpr const char* SessionTempDirFailureTitle = "E001_002 [Initialization failed.]";
inline constexpr const char* TempDirFailureText = "Temporary directory problem.";

// ResolveAnalyzerBinaryDir(<directory of the running executable>); resolved once per run.
const std::string& AnalyzerBinaryDir();

// The installation files of a program in `programDir`, with a trailing "/":
// "<programDir>/Analyzer/" where that folder exists (a build tree), else
// "<prefix>/share/zdt-analyzer/Analyzer/" for a program installed as "<prefix>/bin/...",
// when that exists; "<programDir>/Analyzer/" when neither does.
std::string ResolveAnalyzerBinaryDir(const std::string& programDir);

// True for the installation files of an installed program ("<prefix>/share/zdt-analyzer/
// Analyzer/"): they belong to the package manager, so nothing is ever written there, not
// even by the super-user.
bool IsInstalledAnalyzerDir(const std::string& binaryDir);

// The root of all temporary directories, with a trailing "/"; resolved once per run
// by ResolveAnalyzerTempRoot(AnalyzerBinaryDir()).
const std::string& AnalyzerTempRoot();

// Where the program keeps the folder `name`, with a trailing "/": $ZDT_ANALYZER_HOME/<name>/
// when that variable is set. Otherwise <binaryDir><name>/ when it is writable or can be
// created and `binaryDir` is not an installed one, so a build tree keeps its files beside
// the program; an installed or read-only program falls back to the user's data home
// ($XDG_DATA_HOME, else ~/.local/share) + "/ZDT-Analyzer/<name>/".
std::string ResolveAnalyzerDataDir(const std::string& binaryDir, const std::string& name);

// ResolveAnalyzerDataDir(binaryDir, "Temp").
std::string ResolveAnalyzerTempRoot(const std::string& binaryDir);

// The folder of the process value trace filter files, resolved once per run by
// ResolveAnalyzerDataDir(AnalyzerBinaryDir(), "FilterDefaultDir"); made by whoever writes
// into it first, or seeded with the installation's filters (SeedDataDirFromInstallation).
const std::string& AnalyzerFilterDefaultDir();

// When `dataDir` is not the installation's own `binaryDir` + `name` folder and does not
// exist yet, makes it with a copy of the plain files of the installation's folder, so that
// a user of an installed program starts with the filters it ships. Anything else is left
// alone: a user's folder is never filled twice.
void SeedDataDirFromInstallation(const std::string& binaryDir, const std::string& name, const std::string& dataDir);

// True when `directory` is a writable directory, or does not exist yet and its nearest
// existing ancestor is one. Relative paths are never writable: they would land wherever
// the program happens to run.
bool CanWriteOrCreateDirectory(const std::string& directory);

// A fresh per-run directory name below `root`: "temp<seconds>_<rand>/".
std::string MakeSessionTempDirName(const std::string& root);

struct TempDirectoryResult {
    // The box to show; set only when a plain file blocks the name.
    std::optional<UserMessage> failure;
    bool ok() const { return !failure; }
};

// Makes sure `path` is a directory, creating missing parents. A failure to create is
// not reported: only a file standing in the way stops the program.
TempDirectoryResult EnsureTempDirectory(const std::string& path, const std::string& failureTitle);

// Deletes the files directly inside `path` and then the directory if it became empty.
// Sub-directories and their contents stay. Anything but an existing directory is left alone.
void RemoveSessionTempDir(const std::string& path);

// The per-run temporary directory, owned by the application or the command-line tool:
// made at start-up below the temporary root, emptied and removed at the end.
class SessionTempDirectory {
public:
    SessionTempDirectory() = default;
    ~SessionTempDirectory();
    SessionTempDirectory(const SessionTempDirectory&) = delete;
    SessionTempDirectory& operator=(const SessionTempDirectory&) = delete;

    // Ensures AnalyzerTempRoot() and a fresh directory below it.
    std::optional<UserMessage> Create();
    // Ensures `root`, then `root` + a fresh name. Returns the box when a file blocks either.
    std::optional<UserMessage> Create(const std::string& root);
    // Ensures `root`, then `sessionDir`, which is kept only once the root stands.
    // A directory made by an earlier call is removed first.
    std::optional<UserMessage> Create(const std::string& root, const std::string& sessionDir);

    // With a trailing "/"; empty until the root stands.
    const std::string& Path() const { return m_path; }

private:
    std::string m_path;
};

} // namespace zdt
