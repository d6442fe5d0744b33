#pragma once

#include "app/UiDocument.h"
#include "common/UserMessage.h"

#include <QPointer>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace ZDTAnalyzer {
class BaseDoc;
}

namespace zdtui {

class XmlListView;

// An XML document in the application (snapshots, process value traces). The core
// document exists from construction and its list is on screen before the file is read;
// the read and the searches run as the document's background operation, while the list
// paints the rows on file (the rows' container serves one call at a time).
class XmlUiDocument : public UiDocument {
    Q_OBJECT
public:
    ~XmlUiDocument() override;

    QWidget* createView(QWidget* parent, StatusSink* status) override;

    ZDTAnalyzer::BaseDoc& baseDoc() const { return *m_doc; }
    // Only the active view's document writes the status bar; a list that grows behind
    // another window keeps quiet.
    void refreshStatus();

    // The row a go-to command (by id) selects; nothing when it stops with a message.
    virtual std::optional<int> goTo(int id, int selectionMark, int itemCount, zdt::MessageSink* messages) = 0;
    // The family's find dialog, then the search it asks for.
    virtual void onFind(QWidget* parent) = 0;
    virtual void onSessionInformation(QWidget* parent) = 0;
    void onBookmarkList(QWidget* parent);

    // Runs an export or a print's conversion as the document's operation: its boxes go on
    // `boxParent` when it ended, then `finish`. False when other work runs.
    bool runConversion(QWidget* boxParent, const QString& label, zdt::OperationJob job, OperationFinish finish = {});

Q_SIGNALS:
    // Rows, marks, the layout or the commands' states changed; views refresh.
    void contentChanged();

protected:
    // `swapDirectory` holds the swap file; empty takes the run's temporary directory.
    XmlUiDocument(std::unique_ptr<ZDTAnalyzer::BaseDoc> doc, QString swapDirectory);

    // The family's parse of the whole file into rows; runs on the operation's thread.
    virtual bool readFile(const std::string& path, const std::string& swapDirectory, zdt::MessageSink* messages,
                          zdt::ProgressSink& progress) = 0;
    virtual XmlListView* makeView(QWidget* parent) = 0;

    zdt::OperationJob openJob(const QString& path) override;
    bool openEnded(const zdt::OperationOutcome& outcome) override;
    void takeRowsReadSoFar() override;
    void closeDocument() override;
    void beforeOperation(BackgroundOperation& operation) override;

    using Search = std::function<void(zdt::MessageSink* messages, zdt::ProgressSink& progress)>;
    // Runs `search` as the document's operation, then shows its boxes (on `parent`) and
    // the marks it made, also after a cancel or a failure.
    void runSearch(QWidget* parent, const Search& search);

private:
    // Every view refreshes at once on a change (a mark, a bookmark, a jump).
    void listenDirectly();
    void workEnded();
    QString swapDirectory() const;

    std::unique_ptr<ZDTAnalyzer::BaseDoc> m_doc;
    QString m_swapDirectory;
    StatusSink* m_status = nullptr;
    QPointer<XmlListView> m_view;
};

} // namespace zdtui
