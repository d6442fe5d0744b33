#include "xmldoc/BaseDoc.h"

#include <algorithm>
#include <limits>

namespace ZDTAnalyzer {

namespace {

// Start values of the wrap-around walks: no row lies beyond them.
constexpr zdt::RowIndex AboveEveryRow = std::numeric_limits<zdt::RowIndex>::max();
constexpr zdt::RowIndex BelowEveryRow = std::numeric_limits<zdt::RowIndex>::min();

} // namespace

void BaseDoc::Description::setField(std::string /*name*/, std::string /*value*/) {}

int BaseDoc::ProxyBookmarkArrayImpl::size() const {
    return static_cast<int>(m_bookmarks->size());
}

zdt::RowIndex BaseDoc::ProxyBookmarkArrayImpl::row(int index) const {
    return m_bookmarks->at(static_cast<std::size_t>(index)).row;
}

std::string BaseDoc::ProxyBookmarkArrayImpl::name(int index) const {
    return m_bookmarks->at(static_cast<std::size_t>(index)).name;
}

std::string BaseDoc::ProxyBookmarkArrayImpl::description(int index) const {
    return m_bookmarks->at(static_cast<std::size_t>(index)).description;
}

void BaseDoc::ProxyBookmarkArrayImpl::setDescription(int index, std::string description) {
    m_bookmarks->at(static_cast<std::size_t>(index)).description = std::move(description);
}

void BaseDoc::updateAllViews() {
    if (m_updateListener)
        m_updateListener();
}

bool BaseDoc::setRowMark(zdt::RowIndex row, std::size_t position, char mark) {
    std::string text = m_container.readRow(row);
    if (text.size() <= 2)
        return false;
    text[position] = mark;
    m_container.rewriteRow(row, text);
    return true;
}

bool BaseDoc::isBookmarked(zdt::RowIndex row) {
    const std::string text = m_container.readRow(row);
    return text.size() > 2 && text[BookmarkMarkPosition] != MarkClear;
}

void BaseDoc::addBookmark(zdt::RowIndex row, std::string name, std::string description) {
    if (!setRowMark(row, BookmarkMarkPosition, MarkSet))
        return;
    m_bookmarks.push_back(Bookmark{row, std::move(name), std::move(description)});
    updateAllViews();
}

void BaseDoc::removeBookmark(zdt::RowIndex row) {
    if (!setRowMark(row, BookmarkMarkPosition, MarkClear))
        return;
    const auto found =
        std::find_if(m_bookmarks.begin(), m_bookmarks.end(), [row](const Bookmark& b) { return b.row == row; });
    if (found != m_bookmarks.end())
        m_bookmarks.erase(found);
    updateAllViews();
}

void BaseDoc::clearBookmarks() {
    for (const Bookmark& bookmark : m_bookmarks)
        setRowMark(bookmark.row, BookmarkMarkPosition, MarkClear);
    m_bookmarks.clear();
    updateAllViews();
}

void BaseDoc::markFindResult(zdt::RowIndex row) {
    if (!m_findResults.empty() && row < m_findResults.back())
        m_findResultsSorted = false;
    // The result counts even when the row has no room for a mark.
    m_findResults.push_back(row);
    setRowMark(row, FindMarkPosition, MarkSet);
}

void BaseDoc::clearFindResults() {
    for (zdt::RowIndex row : m_findResults)
        setRowMark(row, FindMarkPosition, MarkClear);
    m_findResults.clear();
    m_findResultsSorted = true;
}

std::vector<BaseDoc::Bookmark> BaseDoc::bookmarkCopy() const {
    return std::vector<Bookmark>(m_bookmarks.begin(), m_bookmarks.end());
}

// Bookmarks are kept in order of setting, so both walks visit all of them.
zdt::RowIndex BaseDoc::nextBookmark(zdt::RowIndex currentRow) const {
    if (m_bookmarks.empty())
        return zdt::NoRow;
    zdt::RowIndex above = AboveEveryRow;
    zdt::RowIndex smallest = AboveEveryRow;
    for (const Bookmark& bookmark : m_bookmarks) {
        if (bookmark.row > currentRow && bookmark.row < above)
            above = bookmark.row;
        smallest = std::min(smallest, bookmark.row);
    }
    return above != AboveEveryRow ? above : smallest;
}

zdt::RowIndex BaseDoc::previousBookmark(zdt::RowIndex currentRow) const {
    if (m_bookmarks.empty())
        return zdt::NoRow;
    zdt::RowIndex below = BelowEveryRow;
    zdt::RowIndex largest = BelowEveryRow;
    for (const Bookmark& bookmark : m_bookmarks) {
        if (bookmark.row < currentRow && bookmark.row > below)
            below = bookmark.row;
        largest = std::max(largest, bookmark.row);
    }
    return below != BelowEveryRow ? below : largest;
}

zdt::RowIndex BaseDoc::nextFindResult(zdt::RowIndex currentRow) const {
    if (m_findResults.empty())
        return zdt::NoRow;
    return m_findResultsSorted ? nextFindResultSorted(currentRow) : nextFindResultLinear(currentRow);
}

zdt::RowIndex BaseDoc::previousFindResult(zdt::RowIndex currentRow) const {
    if (m_findResults.empty())
        return zdt::NoRow;
    return m_findResultsSorted ? previousFindResultSorted(currentRow) : previousFindResultLinear(currentRow);
}

// A search may mark very many rows, so ascending results are bisected.
zdt::RowIndex BaseDoc::nextFindResultSorted(zdt::RowIndex currentRow) const {
    const std::vector<zdt::RowIndex>& results = m_findResults;
    if (results.back() <= currentRow)
        return results.front();
    std::size_t low = 0;
    std::size_t high = results.size() - 1;
    while (low + 1 < high) {
        if (results[low] > currentRow)
            return results[low];
        const std::size_t middle = (low + high) / 2;
        if (results[middle] > currentRow)
            high = middle;
        else
            low = middle;
    }
    return results[low] > currentRow ? results[low] : results[high];
}

zdt::RowIndex BaseDoc::previousFindResultSorted(zdt::RowIndex currentRow) const {
    const std::vector<zdt::RowIndex>& results = m_findResults;
    if (results.front() >= currentRow)
        return results.back();
    std::size_t low = 0;
    std::size_t high = results.size() - 1;
    while (low + 1 < high) {
        if (results[high] < currentRow)
            return results[high];
        const std::size_t middle = (low + high) / 2;
        if (results[middle] < currentRow)
            low = middle;
        else
            high = middle;
    }
    return results[high] < currentRow ? results[high] : results[low];
}

zdt::RowIndex BaseDoc::nextFindResultLinear(zdt::RowIndex currentRow) const {
    zdt::RowIndex above = AboveEveryRow;
    zdt::RowIndex smallest = AboveEveryRow;
    for (zdt::RowIndex row : m_findResults) {
        if (row > currentRow && row < above)
            above = row;
        smallest = std::min(smallest, row);
    }
    return above != AboveEveryRow ? above : smallest;
}

zdt::RowIndex BaseDoc::previousFindResultLinear(zdt::RowIndex currentRow) const {
    zdt::RowIndex below = BelowEveryRow;
    zdt::RowIndex largest = BelowEveryRow;
    for (zdt::RowIndex row : m_findResults) {
        if (row < currentRow && row > below)
            below = row;
        largest = std::max(largest, row);
    }
    return below != BelowEveryRow ? below : largest;
}

std::optional<zdt::RowIndex> BaseDoc::goTo(GoToCommand command, zdt::RowIndex selectionMark, zdt::RowCount itemCount,
                                           zdt::MessageSink* messages) {
    if (selectionMark == zdt::NoRow) {
        showDocumentError(messages, NoRowSelectedText);
        return std::nullopt;
    }
    const bool isBookmarkCommand = command == GoToCommand::PreviousBookmark || command == GoToCommand::NextBookmark;
    if (isBookmarkCommand && bookmarks().empty()) {
        showDocumentError(messages,
                          command == GoToCommand::PreviousBookmark ? NoPreviousBookmarkText : NoNextBookmarkText);
        return std::nullopt;
    }
    if (!isBookmarkCommand && findResults().empty()) {
        showDocumentError(messages, NoFindResultsText);
        return std::nullopt;
    }
    zdt::RowIndex row = zdt::NoRow;
    switch (command) {
    case GoToCommand::PreviousBookmark:
        row = previousBookmark(selectionMark);
        break;
    case GoToCommand::NextBookmark:
        row = nextBookmark(selectionMark);
        break;
    case GoToCommand::FindNext:
        row = nextFindResult(selectionMark);
        break;
    case GoToCommand::FindPrevious:
        row = previousFindResult(selectionMark);
        break;
    }
    if (row < 0 || row >= itemCount)
        return std::nullopt;
    return row;
}

} // namespace ZDTAnalyzer
