#include "xmldoc/BookmarkListLogic.h"

namespace ZDTAnalyzer::BookmarkListLogic {

namespace {

void showItem(BookmarkListState& state, const ProxyBookmarkArray& bookmarks) {
    const int item = state.items[static_cast<std::size_t>(state.selected)];
    state.description = bookmarks.description(item);
    state.lineText = std::to_string(static_cast<long>(bookmarks.row(item)) + 1);
}

int selectedItem(const BookmarkListState& state) {
    return state.items[static_cast<std::size_t>(state.selected)];
}

bool hasSelection(const BookmarkListState& state) {
    return state.selected >= 0 && static_cast<std::size_t>(state.selected) < state.items.size();
}

} // namespace

BookmarkListState start(const ProxyBookmarkArray& bookmarks, std::string fileName) {
    BookmarkListState state;
    state.fileName = std::move(fileName);
    for (int index = 0; index < bookmarks.size(); ++index)
        state.items.push_back(index);
    if (!state.items.empty()) {
        state.selected = 0;
        showItem(state, bookmarks);
        state.deleteEnabled = true;
        state.goToEnabled = true;
    }
    return state;
}

void changeSelection(BookmarkListState& state, ProxyBookmarkArray& bookmarks, int position, const AskYesNo& ask) {
    if (state.saveEnabled && ask(DescriptionChangedCaption, DescriptionChangedText) && hasSelection(state))
        bookmarks.setDescription(selectedItem(state), state.description);
    state.saveEnabled = false;
    if (position < 0 || static_cast<std::size_t>(position) >= state.items.size())
        return;
    state.selected = position;
    showItem(state, bookmarks);
}

void editDescription(BookmarkListState& state, std::string description) {
    state.description = std::move(description);
    if (!state.items.empty())
        state.saveEnabled = true;
}

void save(BookmarkListState& state, ProxyBookmarkArray& bookmarks) {
    if (hasSelection(state))
        bookmarks.setDescription(selectedItem(state), state.description);
    state.saveEnabled = false;
}

void deleteSelected(BookmarkListState& state, const ProxyBookmarkArray& bookmarks) {
    if (!hasSelection(state))
        return;
    state.deletedItems.push_back(selectedItem(state));
    state.items.erase(state.items.begin() + state.selected);
    if (state.items.empty()) {
        state.selected = -1;
        state.description.clear();
        state.lineText.clear();
        state.saveEnabled = false;
        state.deleteEnabled = false;
        state.goToEnabled = false;
        state.descriptionEnabled = false;
        return;
    }
    if (static_cast<std::size_t>(state.selected) >= state.items.size())
        state.selected = static_cast<int>(state.items.size()) - 1;
    showItem(state, bookmarks);
}

void goTo(BookmarkListState& state) {
    state.goToIndex = state.items.empty() ? -1 : state.selected;
}

void applyResult(BaseDoc& document, const std::vector<BaseDoc::Bookmark>& copy, const BookmarkListState& result) {
    for (int item : result.deletedItems)
        document.removeBookmark(copy.at(static_cast<std::size_t>(item)).row);
    if (result.goToIndex == -1)
        return;
    document.setJumpRow(copy.at(static_cast<std::size_t>(result.goToIndex)).row);
    document.updateAllViews();
    document.setJumpRow(zdt::NoRow);
}

void showBookmarkList(BaseDoc& document, const std::string& fileName, const RunDialog& runDialog) {
    std::vector<BaseDoc::Bookmark> copy = document.bookmarkCopy();
    BaseDoc::ProxyBookmarkArrayImpl proxy(&copy);
    const BookmarkListState result = runDialog(proxy, fileName);
    applyResult(document, copy, result);
}

} // namespace ZDTAnalyzer::BookmarkListLogic
