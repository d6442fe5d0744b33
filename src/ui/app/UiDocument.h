#pragma once

#include <QObject>
#include <QString>

#include <memory>

class QAction;
class QMenu;
class QWidget;

namespace zdtui {

// The status operations of the main frame that views and documents call.
class StatusSink {
public:
    virtual ~StatusSink() = default;
    // Pane 1 gets `text`, pane 2 "No of Items %d" of `count`.
    virtual void SetStatusDocument(const QString& text, int count) = 0;
    // Pane 1 gets `text`, pane 2 is emptied.
    virtual void SetStatusText(const QString& text) = 0;
};

// Commands a document's view may serve; the main frame puts them into its menus and
// tool bars while the view's child window is active.
enum class ViewCommand {
    Print,
    PrintPreview,
    SaveAsAscii,
    SessionInfo,
    Find,
    FindNext,
    FindPrevious,
    ToggleBookmark,
    NextBookmark,
    PreviousBookmark,
    ClearBookmarks,
    CanFilter,
    StyleKLine,
    StyleCan,
    // The XML document families (snapshots, process value traces).
    SaveAs,
    ToggleNamedBookmark,
    BookmarkList,
    Filter,
};

// Implemented by the widget a document shows in its child window.
class CommandView {
public:
    virtual ~CommandView() = default;
    // The view's action for a command (text, shortcut, enabled state are the view's),
    // or null when the view has no such command.
    virtual QAction* commandAction(ViewCommand command) = 0;
    // The menu resource the frame shows while this view is active (142 or 143 for classic
    // traces by edition; 0 for the frame's own menu).
    virtual int menuResource() const = 0;
    // The view's child window became active: refresh the status bar.
    virtual void activateView() = 0;
    // The frame rebuilds the "&Columns" popup of its "&View" menu for the view that has
    // the focus: the view empties `columns` and fills it with its own items.
    virtual void fillColumnsMenu(QMenu* columns) { (void)columns; }
};

// What the application needs of an open document of any family.
class UiDocument : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    // Opens the file: shows the family's own boxes (parented to `dialogParent`) and, for
    // long work, a progress dialog with Cancel. False leaves no document behind.
    virtual bool open(const QString& path, QWidget* dialogParent) = 0;
    // The widget of the child window; it must also implement CommandView.
    virtual QWidget* createView(QWidget* parent, StatusSink* status) = 0;
    // The document's own close step, once, before it is destroyed.
    virtual void close() = 0;
    virtual QString pathName() const = 0;

    // A family whose list grows while its file is read returns true: its window (and
    // view) is made first, createView() runs before open(), and a failed open closes
    // the window again.
    virtual bool opensInItsWindow() const { return false; }
    // True while open() is still reading; the window then must not go away.
    virtual bool isOpening() const { return false; }
    // Asks a running open() to stop as soon as it can; it then returns false.
    virtual void cancelOpening() {}

signals:
    // The document's title (the child window's caption) changed.
    void titleChanged(const QString& title);
};

// A document family: the extension it names and how its documents are made.
class DocumentTemplate {
public:
    virtual ~DocumentTemplate() = default;
    // The extension of the template's document string (".XPVT"), empty for none.
    virtual QString extension() const = 0;
    virtual std::unique_ptr<UiDocument> createDocument() = 0;
};

} // namespace zdtui
