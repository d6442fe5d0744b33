#include "xmldoc/BookmarkListLogic.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

using namespace ZDTAnalyzer;
namespace fs = std::filesystem;
using Bookmarks = std::vector<BaseDoc::Bookmark>;

Bookmarks threeBookmarks() {
    return {{41, "alpha", "first"}, {6, "beta", "second"}, {99, "gamma", "third"}};
}

// Counts the questions and answers them as told.
struct Asker {
    bool answer = true;
    int asked = 0;
    BookmarkListLogic::AskYesNo function() {
        return [this](const std::string& caption, const std::string& text) {
            EXPECT_EQ(caption, "Description changed.");
            EXPECT_EQ(text, "Do you want to save the description?");
            ++asked;
            return answer;
        };
    }
};

TEST(BookmarkListLogic, StartSelectsTheFirstBookmarkOrNothing) {
    Bookmarks bookmarks = threeBookmarks();
    BaseDoc::ProxyBookmarkArrayImpl proxy(&bookmarks);
    const BookmarkListState state = BookmarkListLogic::start(proxy, "/traces/a.snp");
    EXPECT_EQ(state.items, (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(state.selected, 0);
    EXPECT_EQ(state.description, "first");
    EXPECT_EQ(state.lineText, "42");
    EXPECT_EQ(state.fileName, "/traces/a.snp");
    EXPECT_TRUE(state.deleteEnabled);
    EXPECT_TRUE(state.goToEnabled);
    EXPECT_FALSE(state.saveEnabled);
    EXPECT_EQ(state.goToIndex, -1);

    Bookmarks none;
    BaseDoc::ProxyBookmarkArrayImpl emptyProxy(&none);
    BookmarkListState empty = BookmarkListLogic::start(emptyProxy, "x");
    EXPECT_EQ(empty.selected, -1);
    EXPECT_FALSE(empty.deleteEnabled);
    EXPECT_FALSE(empty.goToEnabled);
    BookmarkListLogic::editDescription(empty, "typed");
    EXPECT_FALSE(empty.saveEnabled); // nothing to save into
    BookmarkListLogic::goTo(empty);
    EXPECT_EQ(empty.goToIndex, -1);
}

TEST(BookmarkListLogic, ChangingSelectionOffersToSaveOnlyAnEditedDescription) {
    Bookmarks bookmarks = threeBookmarks();
    BaseDoc::ProxyBookmarkArrayImpl proxy(&bookmarks);
    BookmarkListState state = BookmarkListLogic::start(proxy, "f");
    Asker asker;

    BookmarkListLogic::changeSelection(state, proxy, 1, asker.function());
    EXPECT_EQ(asker.asked, 0);
    EXPECT_EQ(state.description, "second");
    EXPECT_EQ(state.lineText, "7");

    BookmarkListLogic::editDescription(state, "second, edited");
    EXPECT_TRUE(state.saveEnabled);
    BookmarkListLogic::changeSelection(state, proxy, 2, asker.function());
    EXPECT_EQ(asker.asked, 1);
    EXPECT_EQ(bookmarks[1].description, "second, edited"); // stored at the old item
    EXPECT_EQ(bookmarks[2].description, "third");
    EXPECT_FALSE(state.saveEnabled);
    EXPECT_EQ(state.description, "third");

    asker.answer = false;
    BookmarkListLogic::editDescription(state, "discarded");
    BookmarkListLogic::changeSelection(state, proxy, 0, asker.function());
    EXPECT_EQ(asker.asked, 2);
    EXPECT_EQ(bookmarks[2].description, "third");
    EXPECT_FALSE(state.saveEnabled);
    EXPECT_EQ(state.description, "first");

    BookmarkListLogic::editDescription(state, "saved directly");
    BookmarkListLogic::save(state, proxy);
    EXPECT_EQ(bookmarks[0].description, "saved directly");
    EXPECT_FALSE(state.saveEnabled);
    BookmarkListLogic::changeSelection(state, proxy, 1, asker.function());
    EXPECT_EQ(asker.asked, 2); // saved, so no question
}

TEST(BookmarkListLogic, DeleteSelectsTheSamePositionOrTheOneBeforeAndEmptiesTheDialog) {
    Bookmarks bookmarks = threeBookmarks();
    BaseDoc::ProxyBookmarkArrayImpl proxy(&bookmarks);
    BookmarkListState state = BookmarkListLogic::start(proxy, "f");
    Asker asker;

    BookmarkListLogic::changeSelection(state, proxy, 1, asker.function());
    BookmarkListLogic::deleteSelected(state, proxy); // beta goes, gamma moves up
    EXPECT_EQ(state.items, (std::vector<int>{0, 2}));
    EXPECT_EQ(state.selected, 1);
    EXPECT_EQ(state.description, "third");
    EXPECT_EQ(state.lineText, "100");

    BookmarkListLogic::deleteSelected(state, proxy); // the last entry: select the one before
    EXPECT_EQ(state.items, (std::vector<int>{0}));
    EXPECT_EQ(state.selected, 0);
    EXPECT_EQ(state.description, "first");
    EXPECT_TRUE(state.deleteEnabled);

    BookmarkListLogic::editDescription(state, "pending");
    BookmarkListLogic::deleteSelected(state, proxy);
    EXPECT_TRUE(state.items.empty());
    EXPECT_EQ(state.description, "");
    EXPECT_EQ(state.lineText, "");
    EXPECT_FALSE(state.saveEnabled);
    EXPECT_FALSE(state.deleteEnabled);
    EXPECT_FALSE(state.goToEnabled);
    EXPECT_FALSE(state.descriptionEnabled);
    EXPECT_EQ(state.deletedItems, (std::vector<int>{1, 2, 0}));
    BookmarkListLogic::goTo(state);
    EXPECT_EQ(state.goToIndex, -1);
}

// A document with rows 0..119 and bookmarks alpha (41), beta (6), gamma (99).
class BookmarkListCommand : public ::testing::Test {
protected:
    void SetUp() override {
        m_directory = fs::temp_directory_path() / ("bookmarklist_test_" + std::to_string(::getpid()) + "_" +
                                                   ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::create_directories(m_directory);
        doc.container().createSwapFile(m_directory.string() + "/");
        for (int i = 0; i < 120; ++i)
            doc.container().appendRow("002\x01row\x01");
        for (const BaseDoc::Bookmark& b : threeBookmarks())
            doc.addBookmark(b.row, b.name, b.description);
        doc.setUpdateListener([this] {
            ++updates;
            if (doc.jumpRow() != -1)
                jumps.push_back(doc.jumpRow());
        });
    }
    void TearDown() override {
        doc.container().createSwapFile(m_directory.string() + "/");
        std::error_code ignored;
        fs::remove_all(m_directory, ignored);
    }
    std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (const BaseDoc::Bookmark& b : doc.bookmarks())
            result.push_back(b.name);
        return result;
    }

    BaseDoc doc;
    int updates = 0;
    std::vector<int> jumps;

private:
    fs::path m_directory;
};

TEST_F(BookmarkListCommand, GoToAfterADeletionJumpsToTheCopysEntryAtTheListPosition) {
    std::string seenFileName;
    BookmarkListLogic::showBookmarkList(doc, "/t/trace.xpvt", [&](ProxyBookmarkArray& proxy, const std::string& file) {
        seenFileName = file;
        EXPECT_EQ(proxy.size(), 3);
        BookmarkListState state = BookmarkListLogic::start(proxy, file);
        BookmarkListLogic::deleteSelected(state, proxy); // alpha; beta now shows at position 0
        EXPECT_EQ(state.description, "second");
        BookmarkListLogic::goTo(state);
        return state;
    });
    EXPECT_EQ(seenFileName, "/t/trace.xpvt");
    EXPECT_EQ(names(), (std::vector<std::string>{"beta", "gamma"}));
    EXPECT_FALSE(doc.isBookmarked(41));
    // Position 0 of the list was beta, but entry 0 of the copy is the deleted alpha.
    EXPECT_EQ(jumps, std::vector<int>{41});
    EXPECT_EQ(doc.jumpRow(), -1);
    EXPECT_EQ(updates, 2); // one removal, one jump
}

TEST_F(BookmarkListCommand, DeletionsApplyInOrderAndEditedDescriptionsAreLost) {
    BookmarkListLogic::showBookmarkList(doc, "f", [](ProxyBookmarkArray& proxy, const std::string& file) {
        Asker asker;
        BookmarkListState state = BookmarkListLogic::start(proxy, file);
        BookmarkListLogic::editDescription(state, "new words");
        BookmarkListLogic::save(state, proxy);
        EXPECT_EQ(proxy.description(0), "new words"); // the copy took it
        BookmarkListLogic::changeSelection(state, proxy, 2, asker.function());
        BookmarkListLogic::deleteSelected(state, proxy); // gamma
        BookmarkListLogic::deleteSelected(state, proxy); // beta, now the last entry
        return state;                                    // closed: no go-to
    });
    EXPECT_EQ(names(), std::vector<std::string>{"alpha"});
    EXPECT_EQ(doc.bookmarks().front().description, "first");
    EXPECT_FALSE(doc.isBookmarked(99));
    EXPECT_FALSE(doc.isBookmarked(6));
    EXPECT_TRUE(doc.isBookmarked(41));
    EXPECT_TRUE(jumps.empty());
    EXPECT_EQ(updates, 2);
}

TEST_F(BookmarkListCommand, GoToWithoutDeletionJumpsToTheSelectedBookmark) {
    BookmarkListLogic::showBookmarkList(doc, "f", [](ProxyBookmarkArray& proxy, const std::string& file) {
        Asker asker;
        BookmarkListState state = BookmarkListLogic::start(proxy, file);
        BookmarkListLogic::changeSelection(state, proxy, 2, asker.function());
        BookmarkListLogic::goTo(state);
        return state;
    });
    EXPECT_EQ(jumps, std::vector<int>{99});
    EXPECT_EQ(names().size(), 3u);
}

} // namespace
