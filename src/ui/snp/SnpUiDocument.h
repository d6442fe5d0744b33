#pragma once

#include "app/UiDocument.h"
#include "snp/SnpDocInUi.h"

#include <QPointer>
#include <QString>

#include <memory>

class QProgressDialog;

namespace zdtui {

class IncrementalOpen;
class SnpView;

// A snapshot file in the application: one SnpDoc, read on the user-interface thread into
// a list that is already on screen (a progress dialog with Cancel shows how far), and the
// document's own commands (find, session information, bookmark list).
class SnpUiDocument final : public UiDocument {
    Q_OBJECT
public:
    // `swapDirectory` holds the swap file; empty takes the run's temporary directory.
    explicit SnpUiDocument(QString swapDirectory = QString());
    ~SnpUiDocument() override;

    bool open(const QString& path, QWidget* dialogParent) override;
    QWidget* createView(QWidget* parent, StatusSink* status) override;
    void close() override;
    QString pathName() const override { return m_path; }
    bool opensInItsWindow() const override { return true; }
    bool isOpening() const override { return m_opening != nullptr; }
    void cancelOpening() override;

    // Exists from construction; its rows grow while open() runs.
    ZDTAnalyzer::SnpDoc* snpDoc() { return m_doc.get(); }
    void refreshStatus();

    void onFind(QWidget* parent);
    // The search behind the find dialog, with its progress and boxes.
    void runFind(QWidget* parent, const ZDTAnalyzer::SnpFindCriteria& criteria);
    void onSessionInformation(QWidget* parent);
    void onBookmarkList(QWidget* parent);

signals:
    // Rows or marks changed; views refresh from the document.
    void contentChanged();
    void progressStarted(QProgressDialog* dialog);
    // Once per pass of the event loop while the file is read, after the views took the
    // rows read so far.
    void openingRefreshed();

private:
    void listenToDocument(bool listen);
    // Every change only marks the document; the views hear of it once per event pass.
    void markChanged();
    void deliverChange();

    QString m_swapDirectory;
    std::unique_ptr<ZDTAnalyzer::SnpDoc> m_doc;
    ZDTAnalyzer::SnpFindCriteria m_findCriteria;
    QString m_path;
    StatusSink* m_status = nullptr;
    QPointer<SnpView> m_view;
    IncrementalOpen* m_opening = nullptr;
    bool m_changed = false;
    bool m_changeQueued = false;
    bool m_closed = false;
};

}  // namespace zdtui
