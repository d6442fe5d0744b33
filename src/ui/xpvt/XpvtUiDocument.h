#pragma once

#include "app/UiDocument.h"
#include "xpvt/XpvtDocInUi.h"

#include <QPointer>
#include <QString>

#include <memory>

class QProgressDialog;

namespace zdtui {

class IncrementalOpen;

// A process value trace in the application. Its window comes first: the XpvtDoc exists
// from construction, so the view can be made before open(), and the list grows on the
// user-interface thread while the file is read. Also the document's own commands: find,
// session information, filter and the bookmark list.
class XpvtUiDocument final : public UiDocument {
    Q_OBJECT
public:
    // `swapDirectory` holds the swap file; empty takes the run's temporary directory.
    explicit XpvtUiDocument(QString swapDirectory = QString());
    ~XpvtUiDocument() override;

    bool open(const QString& path, QWidget* dialogParent) override;
    QWidget* createView(QWidget* parent, StatusSink* status) override;
    void close() override;
    QString pathName() const override { return m_path; }

    bool opensInItsWindow() const override { return true; }
    bool isOpening() const override { return m_opening; }
    void cancelOpening() override;

    ZDTAnalyzer::XpvtDoc& xpvtDoc() { return *m_doc; }
    // True while a search writes its marks on the worker thread: the rows must not be
    // read from the windows' thread meanwhile.
    bool isSearching() const { return m_searching; }
    void refreshStatus();

    // The find sheet of the document's schema, then the search it asks for.
    void onFind(QWidget* parent);
    // The search with the stored criteria, on a worker thread under its progress.
    void runFind(QWidget* parent);
    void onSessionInformation(QWidget* parent);
    void onFilter(QWidget* parent);
    void onBookmarkList(QWidget* parent);

signals:
    // Rows, marks or the schema changed; views refresh from the document.
    void contentChanged();
    // The open's or the search's progress dialog exists.
    void progressStarted(QProgressDialog* dialog);

private:
    void listenToDocument(bool listen);
    void takeRowsReadSoFar();

    QString m_swapDirectory;
    std::unique_ptr<ZDTAnalyzer::XpvtDoc> m_doc;
    QString m_path;
    StatusSink* m_status = nullptr;
    QPointer<IncrementalOpen> m_opener;
    bool m_opening = false;
    bool m_searching = false;
    // Set by the document for every row while the file is read; the views take the new
    // rows once per pass of the event loop rather than once per row.
    bool m_dirty = false;
    bool m_closed = false;
};

}  // namespace zdtui
