#pragma once

#include "app/BackgroundOperation.h"
#include "common/Operation.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

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
    // Classic traces again: the per-identifier figures, table and chart.
    IdentifierStatistics,
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

// What the application needs of a document of any family. A document reads its file
// while its window already stands, and runs every long piece of work (the read, a
// search, a filter pass) as its one BackgroundOperation at a time.
class UiDocument : public QObject {
    Q_OBJECT
public:
    using OperationFinish = std::function<void(const zdt::OperationOutcome& outcome)>;

    UiDocument();
    ~UiDocument() override;

    // Starts reading `path` in the background; the document's view exists already and
    // grows as rows come. openFinished() follows once, also after a cancel.
    void startOpen(const QString& path);
    // The widget of the child window; it must also implement CommandView. Made before
    // the file is read.
    virtual QWidget* createView(QWidget* parent, StatusSink* status) = 0;
    // Cancels running work and waits for it to unwind, then the family's close step;
    // once, before the document is destroyed.
    void close();
    QString pathName() const { return m_path; }

    // True from startOpen() until the read ended.
    bool isOpening() const { return m_opening; }
    // True while a long operation runs; commands that need the whole document wait.
    bool isBusy() const { return m_operation != nullptr; }
    BackgroundOperation* operation() const { return m_operation.get(); }
    // Asks the running operation, if any, to stop.
    void cancelOperation();
    // What follows a successful read once its window is kept and its boxes were shown;
    // it may ask the user (a filter named in the file's history) and start more work.
    virtual void afterOpen(QWidget* dialogParent) { (void)dialogParent; }
    // The boxes the read raised, for the caller to show once it has dealt with the window.
    std::vector<zdt::UserMessage> takeOpenMessages() { return std::move(m_openMessages); }

Q_SIGNALS:
    // The document's title (the child window's caption) changed.
    void titleChanged(const QString& title);
    // A long operation began; its window shows the progress.
    void operationStarted(BackgroundOperation* operation);
    // A long operation began or ended: the commands that wait for it refresh.
    void busyChanged(bool busy);
    // The read ended: true when the document is open, false when it failed or was
    // cancelled (its window must go). The boxes wait in takeOpenMessages().
    void openFinished(bool opened);

protected:
    // The family's read of the file; runs on the operation's thread.
    virtual zdt::OperationJob openJob(const QString& path) = 0;
    // Once the read ended, on the thread of the windows: whether the document is open.
    virtual bool openEnded(const zdt::OperationOutcome& outcome) {
        return outcome.status == zdt::OperationStatus::Done;
    }
    // While the read runs, once per pass of the event loop with news: take the rows so far.
    virtual void takeRowsReadSoFar() {}
    // The family's own close step, after any work has unwound.
    virtual void closeDocument() {}
    // An operation is about to start its thread: what it reports must now go through it.
    virtual void beforeOperation(BackgroundOperation& operation) { (void)operation; }

    // Runs `job` as the document's operation and `finish` on the thread of the windows
    // when it ended; `update` once per pass of the event loop with news. Work that must
    // not stop half-way is not `cancellable`: no Cancel is offered, and a close waits for
    // its end. False (and nothing runs) while another operation runs or after close().
    bool runOperation(const QString& label, zdt::OperationJob job, OperationFinish finish,
                      std::function<void()> update = {}, bool cancellable = true);
    bool isClosed() const { return m_closed; }

private:
    void operationFinished();

    QString m_path;
    std::unique_ptr<BackgroundOperation> m_operation;
    OperationFinish m_finish;
    std::function<void()> m_update;
    std::vector<zdt::UserMessage> m_openMessages;
    bool m_opening = false;
    bool m_closed = false;
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
