#include "snp/SnpView.h"

#include "app/Boxes.h"
#include "snp/SnpDocInUi.h"
#include "snp/SnpUiDocument.h"
#include "xmldoc/AdornedListModel.h"
#include "xmldoc/dialogs/BookmarkDialogs.h"

#include <QAction>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>

namespace zdtui {
namespace {

using ZDTAnalyzer::SnpDoc;

bool HasBookmarks(const ZDTAnalyzer::BaseDoc& doc) {
    return !doc.bookmarks().empty();
}

}  // namespace

SnpView::SnpView(SnpUiDocument& document, QWidget* parent)
    : AdornedListView(*document.snpDoc(), parent), m_uiDocument(document) {}

SnpDoc& SnpView::doc() const {
    return *m_uiDocument.snpDoc();
}

void SnpView::initialUpdate() {
    try {
        AdornedListView::initialUpdate();
        enterCommands();
        listModel()->setRowCountTo(doc().container().rowCount());
        m_initialised = true;
        updateCommands();
    } catch (...) {
        showFailure(InitialUpdateFailedText);
    }
}

void SnpView::enterCommands() {
    // Entered first so that it runs last: while the file is read, nothing that reads the
    // whole file (search, export, print, filter) may start.
    for (int id : {FindId, FindNextId, FindPreviousId, SaveAsId, PrintId, PrintPreviewId, FilterId}) {
        addUpdateCommand(id, [this](QAction& action) {
            if (m_uiDocument.isOpening())
                action.setEnabled(false);
        });
    }
    const auto whenBookmarks = [this](QAction& action) { action.setEnabled(HasBookmarks(doc())); };
    const auto whenFindResults = [this](QAction& action) { action.setEnabled(!doc().findResults().empty()); };
    addCommand(PreviousBookmarkId, [this] { goTo(PreviousBookmarkId); });
    addUpdateCommand(PreviousBookmarkId, whenBookmarks);
    addCommand(ToggleBookmarkId, [this] { toggleBookmark(); });
    addCommand(ToggleBookmarkDialogId, [this] { toggleBookmarkWithDialog(); });
    addCommand(NextBookmarkId, [this] { goTo(NextBookmarkId); });
    addUpdateCommand(NextBookmarkId, whenBookmarks);
    addCommand(ClearBookmarksId, [this] { doc().clearBookmarks(); });
    addUpdateCommand(ClearBookmarksId, whenBookmarks);
    addCommand(FindNextId, [this] { goTo(FindNextId); });
    addUpdateCommand(FindNextId, whenFindResults);
    addCommand(FindPreviousId, [this] { goTo(FindPreviousId); });
    addUpdateCommand(FindPreviousId, whenFindResults);
    for (int id = FirstColumnToggleId; id <= LastColumnToggleId; ++id) {
        addCommand(id, [this, id] { executeContextMenuCommand(id); });
        addUpdateCommand(id, [this, id](QAction& action) {
            action.setCheckable(true);
            action.setChecked(listColumnWidth(ColumnOfMenuId(id)) != 0);
            action.setEnabled(true);
        });
    }
    // The document's own commands.
    addCommand(FindId, [this] { m_uiDocument.onFind(this); });
    addCommand(SessionInformationId, [this] { m_uiDocument.onSessionInformation(this); });
    addCommand(BookmarkListId, [this] { m_uiDocument.onBookmarkList(this); });
    addUpdateCommand(BookmarkListId, [this](QAction& action) { action.setEnabled(doc().canShowBookmarkList()); });
}

std::vector<std::pair<QString, int>> SnpView::insertColumns() {
    return {{QString(), 40},          {QStringLiteral("Line"), 40},  {QStringLiteral("Event"), 80},
            {QStringLiteral("Description"), 160}, {QStringLiteral("Name"), 160}, {QStringLiteral("Value"), 160},
            {QStringLiteral("Unit"), 160}};
}

void SnpView::getTextColors(std::vector<QColor>& colors) {
    colors = {QColor(0, 0, 0), QColor(0, 0xAA, 0), QColor(0, 0, 0xAA), QColor(0xAA, 0, 0)};
}

void SnpView::getListFont(QFont& font) {
    font = QFont(QStringLiteral("MS Sans Serif"));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(12);
    font.setWeight(QFont::Medium);
}

void SnpView::getColumnAlignments(std::vector<TextAlignment>& alignments) {
    alignments.assign(7, TextAlignment::Left);
    alignments[1] = TextAlignment::Right;
}

void SnpView::loadImages(std::array<QPixmap, 2>& images) {
    images = DefaultMarkImages();
}

void SnpView::loadContextMenu(QMenu& menu) {
    static const char* const labels[] = {"EVENT", "DESCRIPTION", "NAME", "UNIT", "VALUE"};
    QMenu* events = menu.addMenu(QStringLiteral("EVENTS"));
    for (int id = FirstColumnToggleId; id <= LastColumnToggleId; ++id) {
        QAction* item = events->addAction(QString::fromUtf8(labels[id - FirstColumnToggleId]));
        item->setData(id);
        item->setCheckable(true);
    }
}

// No export or printing of snapshots exists yet: the proxies keep no target and refuse.
void SnpView::bindConversion(ConversionProxy& proxy) {
    proxy.setTarget(nullptr);
}

void SnpView::bindPrint(PrintPrintPreviewProxy& proxy) {
    proxy.setTarget(nullptr);
}

void SnpView::updateContextMenu(QMenu& menu) {
    for (QAction* item : menu.actions()) {
        const int column = ColumnOfMenuId(item->data().toInt());
        if (column >= 0)
            item->setChecked(listColumnWidth(column) != 0);
    }
}

int SnpView::ColumnOfMenuId(int id) {
    if (id < FirstColumnToggleId || id > LastColumnToggleId)
        return -1;
    return 2 + (id - FirstColumnToggleId);
}

void SnpView::executeContextMenuCommand(int id) {
    const int column = ColumnOfMenuId(id);
    if (column < 0)
        return;
    const int width = listColumnWidth(column);
    if (width != 0) {
        // Remember the width the user had, unless a drawn text already set the entry.
        if (columnWidthEntry(column) == 0)
            setColumnWidthEntry(column, width);
        setListColumnWidth(column, 0);
    } else {
        applyColumnWidthEntry(column);
    }
}

QString SnpView::getDisplayText(int row, int field) {
    return QString::fromStdString(doc().container().columnText(row, field));
}

QString SnpView::documentPathName() const {
    return m_uiDocument.pathName();
}

void SnpView::goTo(int id) {
    BoxMessageSink boxes(this);
    const std::optional<int> row =
        doc().goTo(static_cast<SnpDoc::GoToCommand>(id), selectionMark(), itemCount(), &boxes);
    if (row)
        selectListRow(*row);
}

void SnpView::toggleBookmarkAt(int row, const std::string& name, const std::string& description) {
    if (doc().isBookmarked(row))
        doc().removeBookmark(row);
    else
        doc().addBookmark(row, name, description);
}

void SnpView::toggleBookmark() {
    const int row = selectionMark();
    if (row == -1) {
        Boxes::instance().show(this, QString(), QString::fromUtf8(SnpDoc::NoRowSelectedText), QMessageBox::Critical);
        return;
    }
    toggleBookmarkAt(row, AutobookmarkText, AutobookmarkText);
}

void SnpView::toggleBookmarkWithDialog() {
    const int row = selectionMark();
    if (row == -1) {
        Boxes::instance().show(this, QString(), QString::fromUtf8(SnpDoc::NoRowSelectedText), QMessageBox::Critical);
        return;
    }
    if (doc().isBookmarked(row)) {
        doc().removeBookmark(row);
        return;
    }
    std::string name;
    std::string description;
    if (RunBookmarkInfo(this, name, description))
        doc().addBookmark(row, name, description);
}

QAction* SnpView::commandAction(ViewCommand command) {
    switch (command) {
    case ViewCommand::Print: return commandActionById(PrintId);
    case ViewCommand::PrintPreview: return commandActionById(PrintPreviewId);
    case ViewCommand::SessionInfo: return commandActionById(SessionInformationId);
    case ViewCommand::Find: return commandActionById(FindId);
    case ViewCommand::FindNext: return commandActionById(FindNextId);
    case ViewCommand::FindPrevious: return commandActionById(FindPreviousId);
    case ViewCommand::ToggleBookmark: return commandActionById(ToggleBookmarkId);
    case ViewCommand::NextBookmark: return commandActionById(NextBookmarkId);
    case ViewCommand::PreviousBookmark: return commandActionById(PreviousBookmarkId);
    case ViewCommand::ClearBookmarks: return commandActionById(ClearBookmarksId);
    case ViewCommand::SaveAs: return commandActionById(SaveAsId);
    case ViewCommand::ToggleNamedBookmark: return commandActionById(ToggleBookmarkDialogId);
    case ViewCommand::BookmarkList: return commandActionById(BookmarkListId);
    // No routine is entered for the snapshot filter yet, so its action stays disabled.
    case ViewCommand::Filter: return commandActionById(FilterId);
    default: return nullptr;
    }
}

int SnpView::menuResource() const {
    return MenuResourceId;
}

bool SnpView::isActiveView() const {
    for (QWidget* widget = parentWidget(); widget != nullptr; widget = widget->parentWidget()) {
        if (auto* window = qobject_cast<QMdiSubWindow*>(widget))
            return window->mdiArea() == nullptr || window->mdiArea()->currentSubWindow() == window;
    }
    return true;
}

void SnpView::activateView() {
    m_uiDocument.refreshStatus();
}

}  // namespace zdtui
