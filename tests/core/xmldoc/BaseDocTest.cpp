#include "xmldoc/BaseDoc.h"
#include "xmldoc/PrintableOnly.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace ZDTAnalyzer;
namespace fs = std::filesystem;

// A document over a fresh swap file with `rowCount` rows "00<colour>|a|b|c|d|e|".
class BaseDocTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_directory = fs::temp_directory_path() / ("basedoc_test_" + std::to_string(::getpid()) + "_" +
                                                   ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::create_directories(m_directory);
        doc.container().createSwapFile(m_directory.string() + "/");
        doc.setUpdateListener([this] { ++updates; });
    }
    void TearDown() override {
        doc.container().createSwapFile(m_directory.string() + "/"); // drops the old file
        std::error_code ignored;
        fs::remove_all(m_directory, ignored);
    }

    void appendRows(int count) {
        for (int i = 0; i < count; ++i)
            doc.container().appendRow(std::string("00") + char('0' + i % 4) + "\x01" + "name" + std::to_string(i) +
                                      "\x01b\x01c\x01d\x01e\x01");
    }
    std::string flagsOf(int row) { return doc.container().readRow(row).substr(0, 3); }

    BaseDoc doc;
    int updates = 0;

private:
    fs::path m_directory;
};

TEST_F(BaseDocTest, BookmarkMarksAreWrittenToTheRowAndKeptWithTheList) {
    appendRows(6);
    const std::string untouchedTail = doc.container().readRow(3).substr(3);

    doc.addBookmark(3, "third", "desc");
    EXPECT_EQ(flagsOf(3), "013");
    EXPECT_EQ(doc.container().readRow(3).substr(3), untouchedTail);
    EXPECT_TRUE(doc.isBookmarked(3));
    EXPECT_FALSE(doc.isBookmarked(2));
    ASSERT_EQ(doc.bookmarks().size(), 1u);
    EXPECT_EQ(doc.bookmarks().front().row, 3);
    EXPECT_EQ(doc.bookmarks().front().name, "third");
    EXPECT_EQ(doc.bookmarks().front().description, "desc");
    EXPECT_EQ(updates, 1);

    doc.addBookmark(0, "first", "");
    doc.addBookmark(5, "last", "");
    EXPECT_EQ(flagsOf(0), "010");
    EXPECT_EQ(flagsOf(5), "011");
    EXPECT_TRUE(doc.canShowBookmarkList());

    doc.removeBookmark(3);
    EXPECT_EQ(flagsOf(3)[1], '0');
    EXPECT_FALSE(doc.isBookmarked(3));
    ASSERT_EQ(doc.bookmarks().size(), 2u);
    EXPECT_EQ(doc.bookmarks().front().row, 0);
    EXPECT_EQ(doc.bookmarks().back().row, 5);
    EXPECT_EQ(updates, 4);

    doc.clearBookmarks();
    EXPECT_TRUE(doc.bookmarks().empty());
    EXPECT_FALSE(doc.canShowBookmarkList());
    for (int row = 0; row < 6; ++row)
        EXPECT_FALSE(doc.isBookmarked(row)) << row;
    EXPECT_EQ(flagsOf(0)[1], '0');
    EXPECT_EQ(flagsOf(5)[1], '0');
    EXPECT_EQ(updates, 5);
}

TEST_F(BaseDocTest, RemovingARowBookmarkedTwiceTakesTheFirstEntryOnly) {
    appendRows(3);
    doc.addBookmark(1, "a", "");
    doc.addBookmark(2, "b", "");
    doc.addBookmark(1, "c", "");
    doc.removeBookmark(1);
    ASSERT_EQ(doc.bookmarks().size(), 2u);
    EXPECT_EQ(doc.bookmarks().front().name, "b");
    EXPECT_EQ(doc.bookmarks().back().name, "c");
    // The mark on file is gone although "c" still names the row.
    EXPECT_FALSE(doc.isBookmarked(1));
}

TEST_F(BaseDocTest, RowsTooShortForMarksAreLeftAloneButStillCountAsFindResults) {
    doc.container().appendRow("0");  // reads back as "0 ": two characters
    doc.container().appendRow("");   // reads back as " "
    doc.container().appendRow("01"); // "01 ": three characters, long enough
    EXPECT_FALSE(doc.isBookmarked(0));
    doc.addBookmark(0, "x", "");
    doc.addBookmark(1, "y", "");
    EXPECT_TRUE(doc.bookmarks().empty());
    EXPECT_EQ(updates, 0);
    EXPECT_EQ(doc.container().readRow(0), "0 ");

    // Anything but the character 0 in the bookmark position reads as bookmarked.
    EXPECT_TRUE(doc.isBookmarked(2));

    doc.markFindResult(1);
    EXPECT_EQ(doc.findResults(), std::vector<int>{1});
    EXPECT_EQ(doc.container().readRow(1), " ");
    doc.clearFindResults();
    EXPECT_TRUE(doc.findResults().empty());
}

TEST_F(BaseDocTest, ARewriteBlanksTheNextRowsFindMarkButNotItsResult) {
    appendRows(5);
    doc.markFindResult(2);
    EXPECT_EQ(flagsOf(2), "102");
    EXPECT_EQ(updates, 0); // marking tells no view

    doc.addBookmark(1, "before", "");
    EXPECT_EQ(flagsOf(1), "011");
    EXPECT_EQ(flagsOf(2), " 02");
    EXPECT_EQ(doc.findResults(), std::vector<int>{2});
    EXPECT_EQ(doc.nextFindResult(0), 2);
    EXPECT_EQ(doc.previousFindResult(4), 2);
    EXPECT_FALSE(doc.isBookmarked(2));

    // Clearing the results writes 0 over the blank and blanks row 3 in turn.
    doc.clearFindResults();
    EXPECT_EQ(flagsOf(2), "002");
    EXPECT_EQ(flagsOf(3)[0], ' ');

    // Rewriting the last row spills one byte past the end; the next append covers it.
    doc.addBookmark(4, "last", "");
    doc.container().appendRow("000\x01tail\x01");
    EXPECT_EQ(doc.container().readRow(5), "000\x01tail\x01 ");
}

TEST_F(BaseDocTest, RowOperationsPastTheEndRaiseTheContainersMessage) {
    appendRows(2);
    try {
        doc.addBookmark(2, "x", "");
        FAIL() << "no exception";
    } catch (const FileContainerBase::Exception& e) {
        EXPECT_STREQ(e.what(), "element with index not in this container");
    }
    EXPECT_TRUE(doc.bookmarks().empty());
    // The result is recorded before the row is read, so it stays after the failure.
    EXPECT_THROW(doc.markFindResult(7), FileContainerBase::Exception);
    EXPECT_EQ(doc.findResults(), std::vector<int>{7});
}

TEST_F(BaseDocTest, BookmarkNavigationWrapsAroundAndSkipsTheCurrentRow) {
    appendRows(20);
    EXPECT_EQ(doc.nextBookmark(3), -1);
    EXPECT_EQ(doc.previousBookmark(3), -1);

    doc.addBookmark(7, "", "");
    EXPECT_EQ(doc.nextBookmark(7), 7); // the only one comes back
    EXPECT_EQ(doc.previousBookmark(7), 7);
    EXPECT_EQ(doc.nextBookmark(12), 7);
    EXPECT_EQ(doc.previousBookmark(2), 7);

    // Order of setting is not row order.
    doc.addBookmark(15, "", "");
    doc.addBookmark(2, "", "");
    doc.addBookmark(10, "", "");
    EXPECT_EQ(doc.nextBookmark(7), 10);
    EXPECT_EQ(doc.nextBookmark(2), 7);
    EXPECT_EQ(doc.nextBookmark(-1), 2);
    EXPECT_EQ(doc.nextBookmark(15), 2);
    EXPECT_EQ(doc.nextBookmark(19), 2);
    EXPECT_EQ(doc.previousBookmark(10), 7);
    EXPECT_EQ(doc.previousBookmark(11), 10);
    EXPECT_EQ(doc.previousBookmark(2), 15);
    EXPECT_EQ(doc.previousBookmark(0), 15);
    EXPECT_EQ(doc.previousBookmark(INT_MAX), 15);
}

TEST_F(BaseDocTest, FindResultsStaySortedUntilARowBelowTheLastIsMarked) {
    appendRows(10);
    EXPECT_TRUE(doc.findResultsSorted());
    doc.markFindResult(2);
    doc.markFindResult(5);
    doc.markFindResult(5); // equal keeps the order
    EXPECT_TRUE(doc.findResultsSorted());
    doc.markFindResult(8);
    doc.markFindResult(4);
    EXPECT_FALSE(doc.findResultsSorted());
    EXPECT_EQ(doc.findResults(), (std::vector<int>{2, 5, 5, 8, 4}));
    EXPECT_EQ(doc.nextFindResult(2), 4);
    EXPECT_EQ(doc.previousFindResult(5), 4);
    EXPECT_EQ(doc.nextFindResult(8), 2);
    EXPECT_EQ(doc.previousFindResult(2), 8);
    doc.markFindResult(9);
    EXPECT_FALSE(doc.findResultsSorted()); // stays unsorted until cleared

    doc.clearFindResults();
    EXPECT_TRUE(doc.findResultsSorted());
    EXPECT_TRUE(doc.findResults().empty());
    for (int row = 0; row < 10; ++row)
        EXPECT_NE(flagsOf(row)[0], '1') << row;
    EXPECT_EQ(doc.nextFindResult(0), -1);
    EXPECT_EQ(doc.previousFindResult(0), -1);
}

// The walks as the user sees them: nearest beyond the current row, else wrap.
int expectedNext(const std::vector<int>& results, int current) {
    int best = INT_MAX;
    for (int r : results)
        if (r > current)
            best = std::min(best, r);
    return best != INT_MAX ? best : *std::min_element(results.begin(), results.end());
}
int expectedPrevious(const std::vector<int>& results, int current) {
    int best = INT_MIN;
    for (int r : results)
        if (r < current)
            best = std::max(best, r);
    return best != INT_MIN ? best : *std::max_element(results.begin(), results.end());
}

TEST_F(BaseDocTest, FindResultNavigationMatchesTheNearestRowOnRandomResults) {
    constexpr int Rows = 120;
    appendRows(Rows);
    std::mt19937 random(20240611);
    for (int round = 0; round < 60; ++round) {
        doc.clearFindResults();
        const bool ascending = round % 3 != 2;
        const int count = 1 + static_cast<int>(random() % (round < 20 ? 4 : 40));
        std::vector<int> rows;
        for (int i = 0; i < count; ++i)
            rows.push_back(static_cast<int>(random() % Rows));
        if (ascending)
            std::sort(rows.begin(), rows.end()); // duplicates included
        for (int row : rows)
            doc.markFindResult(row);
        ASSERT_EQ(doc.findResults(), rows);
        ASSERT_EQ(doc.findResultsSorted(), std::is_sorted(rows.begin(), rows.end()));
        for (int current = -1; current <= Rows; ++current) {
            ASSERT_EQ(doc.nextFindResult(current), expectedNext(rows, current))
                << "round " << round << " current " << current;
            ASSERT_EQ(doc.previousFindResult(current), expectedPrevious(rows, current))
                << "round " << round << " current " << current;
        }
    }
}

TEST(BaseDocDescription, TheBaseKeepsNoDescription) {
    BaseDoc doc;
    EXPECT_EQ(doc.getDescription(), nullptr);
    EXPECT_EQ(doc.jumpRow(), -1);
}

TEST(PrintableOnlyTest, EveryByteValueIsKeptOrDroppedByItsClass) {
    std::string all;
    std::string expected;
    for (int value = 0; value < 256; ++value) {
        const char byte = static_cast<char>(value);
        all += byte;
        const bool keep = (value >= 0x20 && value <= 0x7E) || value >= 0x80;
        if (keep)
            expected += byte;
        std::string single(1, byte);
        PrintableOnly(single);
        EXPECT_EQ(single.size(), keep ? 1u : 0u) << "byte " << value;
        EXPECT_EQ(isPrintableByte(static_cast<unsigned char>(value)), keep) << "byte " << value;
    }
    std::string inPlace = all;
    PrintableOnly(inPlace);
    EXPECT_EQ(inPlace, expected);
    EXPECT_EQ(printableOnlyCopy(all), expected);
    EXPECT_EQ(expected.size(), 95u + 128u);
}

TEST(PrintableOnlyTest, SeparatorsAndLineBreaksVanishWhileUtf8Survives) {
    std::string text = "M\xC3\xBCller\x01\tline\r\nnext\x7F end";
    PrintableOnly(text);
    EXPECT_EQ(text, "M\xC3\xBCllerlinenext end");
    EXPECT_EQ(printableOnlyCopy(std::string_view("a\0b", 3)), "ab");
}

} // namespace
