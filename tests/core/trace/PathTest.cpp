#include "trace/CFileName.h"
#include "trace/CPath.h"

#include <gtest/gtest.h>

#include <filesystem>

TEST(CPath, NormalisesLeadingAndTrailingSeparators) {
    EXPECT_EQ(CPath("", "/data/traces/").Directory(), "/data/traces");
    EXPECT_EQ(CPath("", "/data/traces").Directory(), "/data/traces");
    // A bare directory is anchored at the root; only a dot keeps a path relative.
    EXPECT_EQ(CPath("", "data/traces/").Directory(), "/data/traces");
    EXPECT_EQ(CPath("", "./data/").Directory(), "./data");
    EXPECT_EQ(CPath("", "../up").Directory(), "../up");
    // The root loses its only separator; joining adds it back.
    EXPECT_EQ(CPath("", "/").Directory(), "");
    // No drives on this platform, whatever is passed.
    EXPECT_EQ(CPath("C:", "/x").Drive(), "");
    EXPECT_EQ(CPath("C:", "/x").Text(), "/x");
}

TEST(CPath, EmptyDirectoryMeansTheWorkingDirectory) {
    const std::string cwd = std::filesystem::current_path().string();
    EXPECT_EQ(CPath("", "").Directory(), CPath::NormaliseDirectory(cwd));
    EXPECT_EQ(CPath().Directory(), CPath::NormaliseDirectory(cwd));
}

TEST(CFileName, SplitsAtTheLastSeparatorAndTheLastDot) {
    const CFileName name("/data/run.1/trace.tar.gz");
    EXPECT_EQ(name.Directory(), "/data/run.1");
    EXPECT_EQ(name.BaseName(), "trace.tar");
    EXPECT_EQ(name.Extension(), ".gz");
    EXPECT_EQ(name.FullPath(), "/data/run.1/trace.tar.gz");

    const CFileName noExtension("/data.d/trace");
    EXPECT_EQ(noExtension.BaseName(), "trace");
    EXPECT_EQ(noExtension.Extension(), "");
    EXPECT_EQ(noExtension.FullPath(), "/data.d/trace");

    const CFileName trailingDot("/data/trace.");
    EXPECT_EQ(trailingDot.BaseName(), "trace");
    EXPECT_EQ(trailingDot.Extension(), ".");
}

TEST(CFileName, RebuildsFromNormalisedParts) {
    EXPECT_EQ(CFileName("/data//trace.trc").FullPath(), "/data//trace.trc");
    EXPECT_EQ(CFileName("/data/sub/").FullPath(), "/data/sub");
    EXPECT_EQ(CFileName("/trace.trc").FullPath(), "/trace.trc");
    EXPECT_EQ(CFileName("data/trace.trc").FullPath(), "/data/trace.trc");
    // With no base name no separator is put in front of the extension.
    const CFileName dotFile("/data/.flt");
    EXPECT_EQ(dotFile.BaseName(), "");
    EXPECT_EQ(dotFile.Extension(), ".flt");
    EXPECT_EQ(dotFile.FullPath(), "/data.flt");
}

TEST(CFileName, NameWithoutDirectoryLiesInTheWorkingDirectory) {
    const std::string cwd = CPath::NormaliseDirectory(std::filesystem::current_path().string());
    const CFileName name("settings.ini");
    EXPECT_EQ(name.Directory(), cwd);
    EXPECT_EQ(name.FullPath(), cwd + "/settings.ini");
}
