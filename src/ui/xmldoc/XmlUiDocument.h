#pragma once

#include "app/UiDocument.h"
#include "common/UserMessage.h"

#include <QPointer>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <string>

class QProgressDialog;

namespace ZDTAnalyzer {
class BaseDoc;
}

namespace zdtui {

class IncrementalOpen;
class XmlListView;

// An XML document in the application (snapshots, process value traces). Its window
// comes first: the core document exists from construction, the view is made before
// open(), and the list grows on the user-interface thread while the file is read.
// Searches run on a worker thread under their progress; the list keeps painting, as the
// rows' container serves one operation at a time.
class XmlUiDocument : public UiDocument {
    Q_OBJECT
public:
    ~XmlUiDocument() override;

    bool open(const QString& path, QWidget* dialogParent) override;
    QWidget* createView(QWidget* parent, StatusSink* status) override;
    void close() override;
    QString pathName() const override { return m_path; }
    bool opensInItsWindow() const override { return true; }
    bool isOpening() const override { return m_opening != nullptr; }
    void cancelOpening() override;

    ZDTAnalyzer::BaseDoc& baseDoc() const { return *m_doc; }
    bool isSearching() const { return m_searching; }
    // Only the active view's document writes the status bar; a list that grows behind
    // another window keeps quiet.
    void refreshStatus();

    // The row a go-to command (by id) selects; nothing when it stops with a message.
    virtual std::optional<int> goTo(int id, int selectionMark, int itemCount, zdt::MessageSink* messages) = 0;
    // The family's find dialog, then the search it asks for.
    virtual void onFind(QWidget* parent) = 0;
    virtual void onSessionInformation(QWidget* parent) = 0;
    void onBookmarkList(QWidget* parent);

signals:
    // Rows, marks or the layout changed; views refresh from the document.
    void contentChanged();
    // The open's or the search's progress dialog exists.
    void progressStarted(QProgressDialog* dialog);
    // Once per pass of the event loop while the file is read, after the views took the
    // rows read so far.
    void openingRefreshed();

protected:
    // `swapDirectory` holds the swap file; empty takes the run's temporary directory.
    XmlUiDocument(std::unique_ptr<ZDTAnalyzer::BaseDoc> doc, QString swapDirectory);

    // The family's parse of the whole file into rows.
    virtual bool readFile(const std::string& path, const std::string& swapDirectory, zdt::MessageSink* messages,
                          zdt::ProgressSink& progress) = 0;
    virtual XmlListView* makeView(QWidget* parent) = 0;

    using Search = std::function<void(zdt::MessageSink* messages, zdt::ProgressSink& progress)>;
    // Runs `search` on a worker thread under its progress, then shows its messages and
    // the marks it made, also after a cancel or a failure.
    void runSearch(QWidget* parent, const Search& search);

private:
    void listenToDocument(bool listen);
    void documentUpdated();
    void takeRowsReadSoFar();
    QString swapDirectory() const;

    std::unique_ptr<ZDTAnalyzer::BaseDoc> m_doc;
    QString m_swapDirectory;
    QString m_path;
    StatusSink* m_status = nullptr;
    QPointer<XmlListView> m_view;
    IncrementalOpen* m_opening = nullptr;
    bool m_searching = false;
    // Set for every row appended while the file is read; taken once per event pass.
    bool m_rowsWaiting = false;
    bool m_closed = false;
};

}  // namespace zdtui
