#pragma once

#include "xmldoc/BaseDoc.h"
#include "xmldoc/ProxyBookmarkArray.h"

#include <functional>
#include <string>
#include <vector>

namespace ZDTAnalyzer {

// What the bookmark list dialog shows and remembers; the dialog only moves these values
// to and from its controls.
struct BookmarkListState {
    // The list box: per position, the item data, i.e. the bookmark's index behind the proxy.
    std::vector<int> items;
    int selected = -1; // position in the list box
    std::string description;
    std::string lineText;
    std::string fileName;
    bool saveEnabled = false;
    bool deleteEnabled = false;
    bool goToEnabled = false;
    bool descriptionEnabled = true;
    // Position in the list box when "&Go to" closed the dialog; -1 otherwise.
    int goToIndex = -1;
    // Item data of deleted entries, in order of deletion.
    std::vector<int> deletedItems;
};

// The decisions of the bookmark list dialog and of the command that runs it, as plain
// functions so that they are tested without a window.
namespace BookmarkListLogic {

inline constexpr const char* DescriptionChangedCaption = "Description changed.";
inline constexpr const char* DescriptionChangedText = "Do you want to save the description?";

// Asks a yes/no question (caption, text); true for yes.
using AskYesNo = std::function<bool(const std::string& caption, const std::string& text)>;
// Runs the dialog over the proxy and returns its state at closing.
using RunDialog = std::function<BookmarkListState(ProxyBookmarkArray& proxy, const std::string& fileName)>;

BookmarkListState start(const ProxyBookmarkArray& bookmarks, std::string fileName);
// The user picked another position; unsaved description changes are offered first.
void changeSelection(BookmarkListState& state, ProxyBookmarkArray& bookmarks, int position, const AskYesNo& ask);
// The user typed in the description edit.
void editDescription(BookmarkListState& state, std::string description);
void save(BookmarkListState& state, ProxyBookmarkArray& bookmarks);
void deleteSelected(BookmarkListState& state, const ProxyBookmarkArray& bookmarks);
// "&Go to" closes the dialog with the list box position, not the bookmark's index.
void goTo(BookmarkListState& state);

// Deletions take effect in order of deletion; then the go-to index, read as an index of
// the copy, names the row to jump to. Descriptions edited in the copy are not written
// back to the document.
void applyResult(BaseDoc& document, const std::vector<BaseDoc::Bookmark>& copy, const BookmarkListState& result);

// The whole command: copy, run the dialog over the copy, apply its result.
void showBookmarkList(BaseDoc& document, const std::string& fileName, const RunDialog& runDialog);

} // namespace BookmarkListLogic

} // namespace ZDTAnalyzer
