#pragma once

#include "common/RowTypes.h"
#include "common/UserMessage.h"
#include "xmldoc/FileContainer.h"
#include "xmldoc/GuardedPass.h"
#include "xmldoc/ProxyBookmarkArray.h"

#include <functional>
#include <list>
#include <optional>
#include <string>
#include <vector>

namespace ZDTAnalyzer {

// The common document of the XML trace kinds: the rows in their swap file, the marks
// in each row's first column (rowFlags: find mark, bookmark mark, colour digit), the
// bookmarks, the results of the last search and a request to jump to a row.
// Bookmarks and marks live only in memory and in the swap file; nothing is saved.
class BaseDoc {
public:
    struct Bookmark {
        zdt::RowIndex row = zdt::NoRow;
        std::string name;
        std::string description;
    };

    // Session facts of a document; each concrete document keeps the fields it knows.
    class Description {
    public:
        virtual ~Description() = default;
        // The base knows no field and ignores both.
        virtual void setField(std::string name, std::string value);
    };

    // Gives the bookmark list a view of an array the caller owns.
    class ProxyBookmarkArrayImpl : public ProxyBookmarkArray {
    public:
        explicit ProxyBookmarkArrayImpl(std::vector<Bookmark>* bookmarks) : m_bookmarks(bookmarks) {}

        int size() const override;
        zdt::RowIndex row(int index) const override;
        std::string name(int index) const override;
        std::string description(int index) const override;
        void setDescription(int index, std::string description) override;

    private:
        std::vector<Bookmark>* m_bookmarks;
    };

    // The go-to commands of the views, by their command ids.
    enum class GoToCommand { PreviousBookmark = 32783, NextBookmark = 32782, FindNext = 32775, FindPrevious = 32703 };

    static constexpr const char* NoRowSelectedText = "No row selected. Please select a row.";
    static constexpr const char* NoPreviousBookmarkText = "No bookmarks are set. Can't go back bookmark.";
    static constexpr const char* NoNextBookmarkText = "No bookmarks are set. Can't go next bookmark.";
    static constexpr const char* NoFindResultsText = "No find results. Can't go next find result.";

    // Positions in rowFlags and the characters a mark is written with.
    static constexpr std::size_t FindMarkPosition = 0;
    static constexpr std::size_t BookmarkMarkPosition = 1;
    static constexpr std::size_t ColourDigitPosition = 2;
    static constexpr char MarkSet = '1';
    static constexpr char MarkClear = '0';

    BaseDoc() = default;
    virtual ~BaseDoc() = default;
    BaseDoc(const BaseDoc&) = delete;
    BaseDoc& operator=(const BaseDoc&) = delete;

    // Null here; a concrete document returns its own description.
    virtual Description* getDescription() { return nullptr; }
    // A format that learns its schema while it is read puts that schema's tables into
    // the running parser here; nothing by default.
    virtual void installSchemaTables() {}

    FileContainer<BaseDoc>& container() { return m_container; }
    const FileContainer<BaseDoc>& container() const { return m_container; }

    // The row views select at their next update; NoRow for none.
    zdt::RowIndex jumpRow() const { return m_jumpRow; }
    void setJumpRow(zdt::RowIndex row) { m_jumpRow = row; }

    // In order of setting.
    const std::list<Bookmark>& bookmarks() const { return m_bookmarks; }
    // Rows marked by the last search, in order of marking.
    const std::vector<zdt::RowIndex>& findResults() const { return m_findResults; }
    // True while findResults() is ascending.
    bool findResultsSorted() const { return m_findResultsSorted; }

    // Called wherever the views must refresh from the document (a new row, a mark, a
    // jump). The desktop connects its views; the core runs fine without a listener.
    void setUpdateListener(std::function<void()> listener) { m_updateListener = std::move(listener); }
    void updateAllViews();

    // Row operations; they read and rewrite the row through the container, so they
    // raise FileContainerBase::Exception as the container does. A row text of 2
    // characters or fewer has no marks to change.
    bool isBookmarked(zdt::RowIndex row);
    void addBookmark(zdt::RowIndex row, std::string name, std::string description);
    void removeBookmark(zdt::RowIndex row);
    void clearBookmarks();
    void markFindResult(zdt::RowIndex row);
    void clearFindResults();

    // Navigation with wrap-around; NoRow when there is nothing to go to. The current row
    // itself comes back only when it is the only candidate.
    zdt::RowIndex previousBookmark(zdt::RowIndex currentRow) const;
    zdt::RowIndex nextBookmark(zdt::RowIndex currentRow) const;
    zdt::RowIndex previousFindResult(zdt::RowIndex currentRow) const;
    zdt::RowIndex nextFindResult(zdt::RowIndex currentRow) const;

    // The row that a go-to command selects from the selected row `selectionMark` (NoRow
    // for none) in a list of `itemCount` rows; nothing when the command stops with a
    // message or finds no row inside the list.
    std::optional<zdt::RowIndex> goTo(GoToCommand command, zdt::RowIndex selectionMark, zdt::RowCount itemCount,
                                      zdt::MessageSink* messages);

    // The bookmark list command is enabled only with bookmarks.
    bool canShowBookmarkList() const { return !m_bookmarks.empty(); }
    // A copy of the bookmarks, in order, for the bookmark list.
    std::vector<Bookmark> bookmarkCopy() const;

protected:
    // The open of every XML document: a fresh swap file in `swapDirectory`, one parse of
    // `path` through `parser` (whose context already points at the document's consumer),
    // then the buffered rows put on file, so that a full disk fails the open. Failures are
    // shown as runGuardedPass shows them, anything unknown as `failedText`.
    template <typename Parser>
    bool parseIntoRows(Parser& parser, typename Parser::Context& context, const std::string& path,
                       const std::string& swapDirectory, const char* failedText, zdt::MessageSink* messages,
                       zdt::ProgressSink* progress) {
        return runGuardedPass<Parser>(
            messages, failedText,
            [&] {
                m_container.createSwapFile(swapDirectory);
                parser.parse(path.c_str(), context, progressOf<Parser>(progress, path));
                m_container.flush();
            },
            [] {});
    }

private:
    // Reads the row, puts `mark` at `position` and writes the row back when it is
    // long enough; returns whether it was.
    bool setRowMark(zdt::RowIndex row, std::size_t position, char mark);
    zdt::RowIndex nextFindResultSorted(zdt::RowIndex currentRow) const;
    zdt::RowIndex previousFindResultSorted(zdt::RowIndex currentRow) const;
    zdt::RowIndex nextFindResultLinear(zdt::RowIndex currentRow) const;
    zdt::RowIndex previousFindResultLinear(zdt::RowIndex currentRow) const;

    FileContainer<BaseDoc> m_container;
    zdt::RowIndex m_jumpRow = zdt::NoRow;
    std::list<Bookmark> m_bookmarks;
    std::vector<zdt::RowIndex> m_findResults;
    bool m_findResultsSorted = true;
    std::function<void()> m_updateListener;
};

} // namespace ZDTAnalyzer
