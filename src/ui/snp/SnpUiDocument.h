#pragma once

#include "app/UiDocument.h"
#include "snp/SnpDocInUi.h"

#include <QString>

#include <memory>

class QProgressDialog;

namespace zdtui {

// A snapshot file in the application: one SnpDoc, read on a worker thread under a
// progress dialog with Cancel, and the document's own commands (find, session
// information, bookmark list).
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

    // Null until the document opened.
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

private:
    void listenToDocument(bool listen);

    QString m_swapDirectory;
    std::unique_ptr<ZDTAnalyzer::SnpDoc> m_doc;
    ZDTAnalyzer::SnpFindCriteria m_findCriteria;
    QString m_path;
    StatusSink* m_status = nullptr;
    bool m_closed = false;
};

}  // namespace zdtui
