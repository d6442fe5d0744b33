#include "xmldoc/XmlListView.h"

#include "app/Boxes.h"
#include "xmldoc/AdornedListModel.h"
#include "xmldoc/BaseDoc.h"
#include "xmldoc/SaveAsName.h"
#include "xmldoc/XmlUiDocument.h"
#include "xmldoc/dialogs/BookmarkDialogs.h"

#include <QAction>
#include <QFile>
#include <QMdiArea>
#include <QMdiSubWindow>

namespace zdtui {

XmlListView::XmlListView(XmlUiDocument& document, const Family& family, QWidget* parent)
    : AdornedListView(document.baseDoc(), parent), m_uiDocument(document), m_family(family) {
    setSaveAsChooser(RunSaveAsDialog);
}

void XmlListView::initialUpdate() {
    try {
        layOut();
        enterCommands();
        listModel()->setRowCountTo(document().container().rowCount());
        m_initialised = true;
        updateCommands();
    } catch (...) {
        showFailure(InitialUpdateFailedText);
    }
}

void XmlListView::layOut() {
    AdornedListView::initialUpdate();
}

void XmlListView::onDocumentChanged() {
    OnUpdate();
}

void XmlListView::enterCommands() {
    // Entered first so that they run last: while the document's work runs, nothing that
    // reads the whole file (search, export, print, filter) may start, nor the session
    // information the read is still writing; while a search marks rows, no mark changes.
    for (int id : {FindId, FindNextId, FindPreviousId, SaveAsId, PrintId, PrintPreviewId, m_family.filterId,
                   m_family.sessionInformationId}) {
        addUpdateCommand(id, [this](QAction& action) {
            if (m_uiDocument.isBusy())
                action.setEnabled(false);
        });
    }
    for (int id : {ToggleBookmarkId, ToggleBookmarkDialogId, ClearBookmarksId, NextBookmarkId, PreviousBookmarkId,
                   BookmarkListId}) {
        addUpdateCommand(id, [this](QAction& action) {
            if (m_uiDocument.isBusy() && !m_uiDocument.isOpening())
                action.setEnabled(false);
        });
    }
    enterFamilyCommands();
    enterMarkCommands();
    addCommand(FindId, [this] { m_uiDocument.onFind(this); });
    addCommand(m_family.sessionInformationId, [this] { m_uiDocument.onSessionInformation(this); });
    addCommand(BookmarkListId, [this] { m_uiDocument.onBookmarkList(this); });
    addUpdateCommand(BookmarkListId, [this](QAction& action) { action.setEnabled(document().canShowBookmarkList()); });
}

void XmlListView::enterMarkCommands() {
    const auto whenBookmarks = [this](QAction& action) { action.setEnabled(!document().bookmarks().empty()); };
    // A running search is still filling the results: they are not read before it ended.
    const auto whenFindResults = [this](QAction& action) {
        action.setEnabled(!m_uiDocument.isBusy() && !document().findResults().empty());
    };
    for (int id : {PreviousBookmarkId, NextBookmarkId}) {
        addCommand(id, [this, id] { goTo(id); });
        addUpdateCommand(id, whenBookmarks);
    }
    for (int id : {FindNextId, FindPreviousId}) {
        addCommand(id, [this, id] { goTo(id); });
        addUpdateCommand(id, whenFindResults);
    }
    addCommand(ToggleBookmarkId, [this] { toggleBookmark(); });
    addCommand(ToggleBookmarkDialogId, [this] { toggleBookmarkWithDialog(); });
    addCommand(ClearBookmarksId, [this] { document().clearBookmarks(); });
    addUpdateCommand(ClearBookmarksId, whenBookmarks);
}

void XmlListView::getListFont(QFont& font) {
    font = QFont(QStringLiteral("MS Sans Serif"));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(12);
    font.setWeight(QFont::Medium);
}

void XmlListView::loadImages(std::array<QPixmap, 2>& images) {
    images = DefaultMarkImages();
}

// A family without conversions keeps the proxies empty: they refuse with their messages.
void XmlListView::bindConversion(ConversionProxy& proxy) {
    proxy.setTarget(nullptr);
}

void XmlListView::bindPrint(PrintPrintPreviewProxy& proxy) {
    proxy.setTarget(nullptr);
}

// Also while a search marks rows on its thread: the container reads one row at a time
// under its lock, so the list shows the rows as they are.
QString XmlListView::getDisplayText(int row, int field) {
    return QString::fromStdString(document().container().columnText(row, field));
}

QString XmlListView::documentPathName() const {
    return m_uiDocument.pathName();
}

void XmlListView::startExport(Conversion& conversion, ZDTAnalyzer::ExportFormat format, const std::string& input,
                              const std::string& output) {
    m_uiDocument.runConversion(this, tr("Exporting %1").arg(QFile::decodeName(output.c_str())),
                               ZDTAnalyzer::ConversionJob(conversion, format, input, output));
}

PrintPrintPreviewImpl::OperationRunner XmlListView::printOperationRunner() {
    return [this](const QString& label, zdt::OperationJob job, PrintPrintPreviewImpl::Finish finish) {
        return m_uiDocument.runConversion(this, label, std::move(job), std::move(finish));
    };
}

void XmlListView::goTo(int id) {
    BoxMessageSink boxes(this);
    const std::optional<int> row = m_uiDocument.goTo(id, selectionMark(), itemCount(), &boxes);
    if (row)
        selectListRow(*row);
}

bool XmlListView::noRowSelected() {
    if (selectionMark() != -1)
        return false;
    Boxes::instance().show(this, QString(), QString::fromUtf8(m_family.noRowSelectedText), QMessageBox::Critical);
    return true;
}

void XmlListView::toggleBookmark() {
    if (noRowSelected())
        return;
    const int row = selectionMark();
    if (document().isBookmarked(row))
        document().removeBookmark(row);
    else
        document().addBookmark(row, AutobookmarkText, AutobookmarkText);
}

void XmlListView::toggleBookmarkWithDialog() {
    if (noRowSelected())
        return;
    const int row = selectionMark();
    if (document().isBookmarked(row)) {
        document().removeBookmark(row);
        return;
    }
    std::string name;
    std::string description;
    if (RunBookmarkInfo(this, name, description))
        document().addBookmark(row, name, description);
}

QAction* XmlListView::commandAction(ViewCommand command) {
    switch (command) {
    case ViewCommand::Print:
        return commandActionById(PrintId);
    case ViewCommand::PrintPreview:
        return commandActionById(PrintPreviewId);
    case ViewCommand::SaveAs:
        return commandActionById(SaveAsId);
    case ViewCommand::SessionInfo:
        return commandActionById(m_family.sessionInformationId);
    case ViewCommand::Find:
        return commandActionById(FindId);
    case ViewCommand::FindNext:
        return commandActionById(FindNextId);
    case ViewCommand::FindPrevious:
        return commandActionById(FindPreviousId);
    case ViewCommand::ToggleBookmark:
        return commandActionById(ToggleBookmarkId);
    case ViewCommand::ToggleNamedBookmark:
        return commandActionById(ToggleBookmarkDialogId);
    case ViewCommand::NextBookmark:
        return commandActionById(NextBookmarkId);
    case ViewCommand::PreviousBookmark:
        return commandActionById(PreviousBookmarkId);
    case ViewCommand::ClearBookmarks:
        return commandActionById(ClearBookmarksId);
    case ViewCommand::BookmarkList:
        return commandActionById(BookmarkListId);
    // A family without a filter routine leaves this action disabled. The tool bar's filter
    // button carries the classic command; it runs the family's filter, so that button and
    // menu item are one action and cannot disagree about being enabled.
    case ViewCommand::CanFilter:
    case ViewCommand::Filter:
        return commandActionById(m_family.filterId);
    default:
        return nullptr;
    }
}

bool XmlListView::isActiveView() const {
    for (QWidget* widget = parentWidget(); widget != nullptr; widget = widget->parentWidget()) {
        if (auto* window = qobject_cast<QMdiSubWindow*>(widget))
            return window->mdiArea() == nullptr || window->mdiArea()->currentSubWindow() == window;
    }
    return true;
}

void XmlListView::activateView() {
    m_uiDocument.refreshStatus();
}

} // namespace zdtui
