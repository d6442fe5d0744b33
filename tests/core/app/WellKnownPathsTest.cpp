#include "app/WellKnownPaths.h"
#include "core/app/EnvironmentOverride.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <optional>

namespace fs = std::filesystem;
using namespace zdt;

namespace {

class ScratchDirectory {
public:
    ScratchDirectory() {
        std::string pattern = (fs::temp_directory_path() / "zdt-paths-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr)
            throw std::runtime_error("mkdtemp failed");
        m_path = pattern;
    }
    ~ScratchDirectory() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

void WriteFile(const std::string& path, const std::string& text = "x") {
    std::ofstream(path) << text;
}

} // namespace

TEST(WellKnownPaths, BinaryDirIsAnalyzerBesideTheRunningExecutable) {
    const std::string& dir = AnalyzerBinaryDir();
    ASSERT_GE(dir.size(), 10u);
    EXPECT_EQ(dir.substr(dir.size() - 10), "/Analyzer/");
    const fs::path programDir = fs::path(dir.substr(0, dir.size() - 10));
    EXPECT_TRUE(fs::equivalent(programDir / fs::read_symlink("/proc/self/exe").filename(), "/proc/self/exe"));
    EXPECT_EQ(&AnalyzerBinaryDir(), &dir);
}

TEST(WellKnownPaths, InstallationFilesAreBesideTheProgramElseUnderItsPrefix) {
    ScratchDirectory scratch;
    const std::string prefix = scratch.path() + "/usr";
    fs::create_directories(prefix + "/bin");
    // Nothing installed yet: the build-tree place, so a missing folder is named where it is expected.
    EXPECT_EQ(ResolveAnalyzerBinaryDir(prefix + "/bin"), prefix + "/bin/Analyzer/");

    fs::create_directories(prefix + "/share/zdt-analyzer/Analyzer");
    EXPECT_EQ(ResolveAnalyzerBinaryDir(prefix + "/bin"), prefix + "/share/zdt-analyzer/Analyzer/");
    EXPECT_EQ(ResolveAnalyzerBinaryDir(prefix + "/bin/"), prefix + "/share/zdt-analyzer/Analyzer/");

    // A build tree inside a prefix keeps its own copy.
    fs::create_directories(prefix + "/bin/Analyzer");
    EXPECT_EQ(ResolveAnalyzerBinaryDir(prefix + "/bin"), prefix + "/bin/Analyzer/");

    // A plain file named Analyzer is no installation.
    fs::create_directories(scratch.path() + "/opt/bin");
    fs::create_directories(scratch.path() + "/opt/share/zdt-analyzer/Analyzer");
    WriteFile(scratch.path() + "/opt/bin/Analyzer");
    EXPECT_EQ(ResolveAnalyzerBinaryDir(scratch.path() + "/opt/bin"),
              scratch.path() + "/opt/share/zdt-analyzer/Analyzer/");
}

TEST(WellKnownPaths, InstalledFilesAreNeverWrittenEvenWhenWritable) {
    ScratchDirectory scratch;
    const std::string installed = scratch.path() + "/usr/share/zdt-analyzer/Analyzer/";
    fs::create_directories(installed);
    EnvironmentOverride noHome("ZDT_ANALYZER_HOME", nullptr);
    EnvironmentOverride xdg("XDG_DATA_HOME", (scratch.path() + "/data").c_str());

    EXPECT_TRUE(IsInstalledAnalyzerDir(installed));
    EXPECT_TRUE(IsInstalledAnalyzerDir("/usr/share/zdt-analyzer/Analyzer"));
    EXPECT_FALSE(IsInstalledAnalyzerDir("/srv/checkout/build/Analyzer/"));
    EXPECT_FALSE(IsInstalledAnalyzerDir("/usr/share/other-zdt-analyzer/Analyzer/"));
    // The folder is writable here (as all of /usr is for the super-user), and still skipped.
    ASSERT_TRUE(CanWriteOrCreateDirectory(installed + "Temp/"));
    EXPECT_EQ(ResolveAnalyzerTempRoot(installed), scratch.path() + "/data/ZDT-Analyzer/Temp/");
    EXPECT_EQ(ResolveAnalyzerDataDir(installed, "CommonCANFilters"),
              scratch.path() + "/data/ZDT-Analyzer/CommonCANFilters/");
    EXPECT_FALSE(fs::exists(installed + "Temp"));
}

TEST(WellKnownPaths, UserDataDirIsSeededOnceWithTheInstalledFiles) {
    ScratchDirectory scratch;
    const std::string installed = scratch.path() + "/usr/share/zdt-analyzer/Analyzer/";
    fs::create_directories(installed + "FilterDefaultDir/nested");
    WriteFile(installed + "FilterDefaultDir/speed.pvflt", "shipped");
    WriteFile(installed + "FilterDefaultDir/nested/ignored.pvflt");
    const std::string user = scratch.path() + "/data/ZDT-Analyzer/FilterDefaultDir/";

    SeedDataDirFromInstallation(installed, "FilterDefaultDir", user);
    std::string text;
    std::ifstream(user + "speed.pvflt") >> text;
    EXPECT_EQ(text, "shipped");
    EXPECT_FALSE(fs::exists(user + "nested"));

    // A user's own changes survive the next start.
    fs::remove(user + "speed.pvflt");
    WriteFile(user + "mine.pvflt");
    SeedDataDirFromInstallation(installed, "FilterDefaultDir", user);
    EXPECT_FALSE(fs::exists(user + "speed.pvflt"));
    EXPECT_TRUE(fs::exists(user + "mine.pvflt"));

    // The installation's own folder, or one that ships nothing, is left as it is.
    SeedDataDirFromInstallation(installed, "FilterDefaultDir", installed + "FilterDefaultDir/");
    EXPECT_FALSE(fs::exists(installed + "FilterDefaultDir/mine.pvflt"));
    SeedDataDirFromInstallation(installed, "Missing", scratch.path() + "/data/ZDT-Analyzer/Missing/");
    EXPECT_FALSE(fs::exists(scratch.path() + "/data/ZDT-Analyzer/Missing"));
}

TEST(WellKnownPaths, TempRootPrefersOverrideThenProgramThenUserDataHome) {
    ScratchDirectory scratch;
    const std::string writableBinaryDir = scratch.path() + "/install/bin/Analyzer/";
    WriteFile(scratch.path() + "/blocker");
    const std::string blockedBinaryDir = scratch.path() + "/blocker/Analyzer/";

    {
        EnvironmentOverride home("ZDT_ANALYZER_HOME", (scratch.path() + "/home/").c_str());
        EXPECT_EQ(ResolveAnalyzerTempRoot(writableBinaryDir), scratch.path() + "/home/Temp/");
    }
    EnvironmentOverride noHome("ZDT_ANALYZER_HOME", "");
    // Creatable even though neither "install" nor "bin" exist yet.
    EXPECT_EQ(ResolveAnalyzerTempRoot(writableBinaryDir), writableBinaryDir + "Temp/");
    EXPECT_FALSE(fs::exists(scratch.path() + "/install"));
    {
        EnvironmentOverride xdg("XDG_DATA_HOME", (scratch.path() + "/data").c_str());
        EXPECT_EQ(ResolveAnalyzerTempRoot(blockedBinaryDir), scratch.path() + "/data/ZDT-Analyzer/Temp/");
    }
    {
        EnvironmentOverride xdg("XDG_DATA_HOME", "relative/ignored");
        EnvironmentOverride userHome("HOME", (scratch.path() + "/user").c_str());
        EXPECT_EQ(ResolveAnalyzerTempRoot(blockedBinaryDir), scratch.path() + "/user/.local/share/ZDT-Analyzer/Temp/");
    }
}

TEST(WellKnownPaths, DataDirsOfOneInstallationFallBackTogether) {
    ScratchDirectory scratch;
    const std::string writableBinaryDir = scratch.path() + "/install/bin/Analyzer/";
    WriteFile(scratch.path() + "/blocker");
    const std::string blockedBinaryDir = scratch.path() + "/blocker/Analyzer";
    EnvironmentOverride noHome("ZDT_ANALYZER_HOME", nullptr);
    EnvironmentOverride xdg("XDG_DATA_HOME", (scratch.path() + "/data/").c_str());

    EXPECT_EQ(ResolveAnalyzerDataDir(writableBinaryDir, "FilterDefaultDir"), writableBinaryDir + "FilterDefaultDir/");
    EXPECT_EQ(ResolveAnalyzerDataDir(blockedBinaryDir, "FilterDefaultDir"),
              scratch.path() + "/data/ZDT-Analyzer/FilterDefaultDir/");
    EXPECT_EQ(ResolveAnalyzerDataDir(blockedBinaryDir, "CommonCANFilters"),
              scratch.path() + "/data/ZDT-Analyzer/CommonCANFilters/");
    EnvironmentOverride home("ZDT_ANALYZER_HOME", (scratch.path() + "/home").c_str());
    EXPECT_EQ(ResolveAnalyzerDataDir(writableBinaryDir, "FilterDefaultDir"),
              scratch.path() + "/home/FilterDefaultDir/");
}

TEST(WellKnownPaths, ReadOnlyInstallationIsNotWritable) {
    if (geteuid() == 0)
        GTEST_SKIP() << "permissions do not bind the super-user";
    ScratchDirectory scratch;
    const std::string installation = scratch.path() + "/inst";
    fs::create_directories(installation + "/bin/Analyzer");
    fs::permissions(installation, fs::perms::owner_read | fs::perms::owner_exec);
    fs::permissions(installation + "/bin", fs::perms::owner_read | fs::perms::owner_exec);
    fs::permissions(installation + "/bin/Analyzer", fs::perms::owner_read | fs::perms::owner_exec);
    EnvironmentOverride noHome("ZDT_ANALYZER_HOME", nullptr);
    EnvironmentOverride xdg("XDG_DATA_HOME", (scratch.path() + "/data").c_str());

    EXPECT_FALSE(CanWriteOrCreateDirectory(installation + "/bin/Analyzer/Temp/"));
    EXPECT_EQ(ResolveAnalyzerTempRoot(installation + "/bin/Analyzer/"), scratch.path() + "/data/ZDT-Analyzer/Temp/");
    for (const char* dir : {"", "/bin", "/bin/Analyzer"})
        fs::permissions(installation + dir, fs::perms::owner_all);
}

TEST(WellKnownPaths, WritableOrCreatableNeedsAnAbsoluteDirectoryAncestor) {
    ScratchDirectory scratch;
    WriteFile(scratch.path() + "/file");
    EXPECT_TRUE(CanWriteOrCreateDirectory(scratch.path()));
    EXPECT_TRUE(CanWriteOrCreateDirectory(scratch.path() + "/a/b/c/"));
    EXPECT_FALSE(CanWriteOrCreateDirectory(scratch.path() + "/file"));
    EXPECT_FALSE(CanWriteOrCreateDirectory(scratch.path() + "/file/below"));
    EXPECT_FALSE(CanWriteOrCreateDirectory("C:/Traces/CommonCANFilters"));
    EXPECT_FALSE(CanWriteOrCreateDirectory("relative"));
    EXPECT_FALSE(CanWriteOrCreateDirectory(""));
}

TEST(WellKnownPaths, SessionDirNameCarriesTimeAndRandomValue) {
    const long before = static_cast<long>(std::time(nullptr));
    const std::string name = MakeSessionTempDirName("/root/Temp/");
    const long after = static_cast<long>(std::time(nullptr));

    long seconds = -1;
    int random = -1;
    int consumed = 0;
    ASSERT_EQ(std::sscanf(name.c_str(), "/root/Temp/temp%ld_%d/%n", &seconds, &random, &consumed), 2) << name;
    EXPECT_EQ(static_cast<std::size_t>(consumed), name.size()) << name;
    EXPECT_GE(random, 0);
    EXPECT_GE(seconds, before);
    EXPECT_LE(seconds, after);
}

TEST(WellKnownPaths, EnsureCreatesMissingParentsAndAcceptsExistingDirectories) {
    ScratchDirectory scratch;
    const std::string root = scratch.path() + "/a/b/Temp/";

    EXPECT_TRUE(EnsureTempDirectory(root, TempRootFailureTitle).ok());
    EXPECT_TRUE(fs::is_directory(root));
    EXPECT_TRUE(EnsureTempDirectory(root, TempRootFailureTitle).ok());
    EXPECT_TRUE(EnsureTempDirectory(scratch.path() + "/a", TempRootFailureTitle).ok());
}

TEST(WellKnownPaths, PlainFileBlockingTheNameGivesTheCallersBox) {
    ScratchDirectory scratch;
    WriteFile(scratch.path() + "/Temp");

    const TempDirectoryResult result = EnsureTempDirectory(scratch.path() + "/Temp/", TempRootFailureTitle);
    ASSERT_FALSE(result.ok());
    EXPECT_EQ(result.failure->title, "E001_001 [Initialization failed.]");
    EXPECT_EQ(result.failure->text, "Temporary directory problem.");
    EXPECT_EQ(result.failure->icon, MessageIcon::Error);
    EXPECT_TRUE(fs::is_regular_file(scratch.path() + "/Temp"));
}

TEST(WellKnownPaths, CreationFailureOtherThanABlockingFileIsNotReported) {
    ScratchDirectory scratch;
    WriteFile(scratch.path() + "/file");
    // The parent is a file, so nothing can be made; only a blocked name itself stops start-up.
    EXPECT_TRUE(EnsureTempDirectory(scratch.path() + "/file/Temp/", TempRootFailureTitle).ok());
}

TEST(WellKnownPaths, RemovalDeletesFilesButLeavesSubdirectories) {
    ScratchDirectory scratch;
    const std::string session = scratch.path() + "/temp1_2/";
    fs::create_directories(session + "sub");
    WriteFile(session + "a.fc");
    WriteFile(session + ".hidden");
    WriteFile(session + "sub/kept.txt");
    fs::create_symlink(scratch.path(), session + "link");

    RemoveSessionTempDir(session);
    EXPECT_TRUE(fs::exists(session + "sub/kept.txt"));
    EXPECT_FALSE(fs::exists(session + "a.fc"));
    EXPECT_FALSE(fs::exists(session + ".hidden"));
    EXPECT_FALSE(fs::is_symlink(session + "link"));
    EXPECT_TRUE(fs::is_directory(scratch.path()));

    fs::remove_all(session + "sub");
    WriteFile(session + "b.fc");
    RemoveSessionTempDir(scratch.path() + "/temp1_2");
    EXPECT_FALSE(fs::exists(session));
}

TEST(WellKnownPaths, RemovalLeavesAnythingButADirectoryAlone) {
    ScratchDirectory scratch;
    WriteFile(scratch.path() + "/plain");
    RemoveSessionTempDir(scratch.path() + "/plain");
    RemoveSessionTempDir(scratch.path() + "/missing/");
    RemoveSessionTempDir("");
    EXPECT_TRUE(fs::is_regular_file(scratch.path() + "/plain"));
}

TEST(SessionTempDirectory, MakesRootAndSessionAndRemovesSessionOnDestruction) {
    ScratchDirectory scratch;
    const std::string root = scratch.path() + "/Analyzer/Temp/";
    std::string sessionPath;
    {
        SessionTempDirectory session;
        EXPECT_FALSE(session.Create(root).has_value());
        sessionPath = session.Path();
        EXPECT_EQ(sessionPath.rfind(root + "temp", 0), 0u);
        EXPECT_EQ(sessionPath.back(), '/');
        EXPECT_TRUE(fs::is_directory(sessionPath));
        WriteFile(sessionPath + "swap.fc");
    }
    EXPECT_FALSE(fs::exists(sessionPath));
    EXPECT_TRUE(fs::is_directory(root));
}

TEST(SessionTempDirectory, BlockedRootStopsBeforeTheSessionIsKept) {
    ScratchDirectory scratch;
    WriteFile(scratch.path() + "/Temp");
    SessionTempDirectory session;

    const std::optional<UserMessage> failure = session.Create(scratch.path() + "/Temp/");
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->title, "E001_001 [Initialization failed.]");
    EXPECT_TRUE(session.Path().empty());
}

TEST(SessionTempDirectory, BlockedSessionNameGivesTheSecondBoxAndKeepsTheFile) {
    ScratchDirectory scratch;
    const std::string root = scratch.path() + "/Temp/";
    fs::create_directories(root);
    WriteFile(root + "temp5_6");
    {
        SessionTempDirectory session;
        const std::optional<UserMessage> failure = session.Create(root, root + "temp5_6/");
        ASSERT_TRUE(failure.has_value());
        EXPECT_EQ(failure->title, "E001_002 [Initialization failed.]");
        EXPECT_EQ(failure->text, "Temporary directory problem.");
        EXPECT_EQ(session.Path(), root + "temp5_6/");
    }
    EXPECT_TRUE(fs::is_regular_file(root + "temp5_6"));
}
