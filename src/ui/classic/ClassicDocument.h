#pragma once

#include "app/UiDocument.h"
#include "classic/CAnalyzerDoc.h"

#include <QPointer>
#include <QString>

#include <cstdint>
#include <functional>
#include <memory>

class QProgressDialog;

namespace zdtui {

class CAnaView;

// A classic trace in the application: one CAnalyzerDoc, its long work kept off the
// thread of the windows, and the document's own commands (session info, time styles,
// CAN filter).
class ClassicDocument final : public UiDocument {
    Q_OBJECT
public:
    ClassicDocument();
    ~ClassicDocument() override;

    bool open(const QString& path, QWidget* dialogParent) override;
    QWidget* createView(QWidget* parent, StatusSink* status) override;
    void close() override;
    QString pathName() const override { return m_path; }

    // "Diagnostic Channel <path>" or "CAN Onboard Channel  <path>".
    QString title() const;
    // Null until the document opened.
    CAnalyzerDoc* analyzerDoc() { return m_doc.get(); }
    const CAnalyzerDoc* analyzerDoc() const { return m_doc.get(); }
    // Who answers the CAN filter questions; the filter dialog unless set before open().
    void setFilterPrompt(std::unique_ptr<CanFilterPrompt> prompt);
    // Path and row count into the status bar.
    void refreshStatus();

    void onSessionInfo(QWidget* parent);
    void onStyleCan(QWidget* parent);
    void onStyleKLine(QWidget* parent);
    void onCanFilter(QWidget* parent);
    // The filter command once its dialog answered; `fltPath` counts when the answer applies a filter.
    void finishCanFilter(const CanFilterPrompt::Answer& answer, const std::string& fltPath, QWidget* parent);
    // A time style chosen: every view shows the times anew.
    void setTimeMode(TimeMode mode, std::uint32_t byteTime = 1);

signals:
    // Long work on the document begins: views must stop reading it until contentChanged.
    void contentAboutToChange();
    // Rows, times, marks or results changed.
    void contentChanged();
    // Long work shows its progress here; the dialog lives until the work ends.
    void progressStarted(QProgressDialog* dialog);

private:
    // Runs `job` away from the windows under a progress dialog; false when cancelled.
    bool runLongWork(QWidget* parent, const QString& label, bool cancellable,
                     const std::function<void(zdt::ProgressSink&)>& job);
    void offerHistoryFilter(QWidget* parent);
    CanFilterPrompt& filterPrompt(QWidget* parent);

    std::unique_ptr<CAnalyzerDoc> m_doc;
    std::unique_ptr<CanFilterPrompt> m_filterPrompt;
    QString m_path;
    StatusSink* m_status = nullptr;
    bool m_closed = false;
};

} // namespace zdtui
