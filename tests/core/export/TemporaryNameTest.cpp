#include "export/TemporaryName.h"
#include "support/TempDir.h"
#include "xmldoc/FileContainer.h"

#include <gtest/gtest.h>

#include <set>

namespace {

// Exports, swap files and the run's directory all draw temporary names in the same second;
// none may hand out a name another already holds, whoever asked first.
TEST(TemporaryName, NamesStayDistinctAcrossEveryMakerOfTemporaryFiles) {
    TempDir dir;
    std::set<std::string> numbers;
    const auto draw = [&] {
        const std::string name = ZDTAnalyzer::temporaryName(dir.File("") + "/", ".tmp.txt");
        const std::size_t start = name.rfind('_') + 1;
        EXPECT_TRUE(numbers.insert(name.substr(start, name.size() - start - 8)).second) << name;
    };
    for (int i = 0; i < 3; ++i)
        draw();
    ZDTAnalyzer::FileContainerBase swap;
    swap.createSwapFile(dir.File(""));
    const std::string swapName = swap.swapFileName();
    const std::size_t start = swapName.rfind('_') + 1;
    EXPECT_TRUE(numbers.insert(swapName.substr(start, swapName.size() - start - 3)).second) << swapName;
    for (int i = 0; i < 3; ++i)
        draw();
    EXPECT_EQ(numbers.size(), 7u);
}

} // namespace
