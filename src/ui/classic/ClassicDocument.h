#pragma once

#include "app/UiDocument.h"
#include "classic/CAnalyzerDoc.h"
#include "classic/ClassicSearch.h"
#include "classic/IdentifierCycleSeries.h"
#include "classic/IdentifierStatistics.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <memory>

namespace zdtui {

class CAnaView;

// A classic trace in the application: one CAnalyzerDoc whose list is on screen before
// the file is indexed and grows with the index pass; its long work (the pass, the
// filter passes) runs as the document's background operation; and the document's own
// commands (session info, time styles, CAN filter).
class ClassicDocument final : public UiDocument {
    Q_OBJECT
public:
    ClassicDocument();
    ~ClassicDocument() override;

    QWidget* createView(QWidget* parent, StatusSink* status) override;
    void afterOpen(QWidget* dialogParent) override;

    // "Diagnostic Channel <path>" or "CAN Onboard Channel  <path>" once the file is read.
    QString title() const;
    CAnalyzerDoc* analyzerDoc() { return m_doc.get(); }
    const CAnalyzerDoc* analyzerDoc() const { return m_doc.get(); }
    // Who answers the CAN filter questions; the filter dialog unless set before the open.
    void setFilterPrompt(std::unique_ptr<CanFilterPrompt> prompt);
    // Path and row count into the status bar.
    void refreshStatus();

    void onSessionInfo(QWidget* parent);
    void onStyleCan(QWidget* parent);
    void onStyleKLine(QWidget* parent);
    void onCanFilter(QWidget* parent);
    // The filter command once its dialog answered; `fltPath` counts when the answer applies a filter.
    void finishCanFilter(const CanFilterPrompt::Answer& answer, const std::string& fltPath, QWidget* parent);
    // Runs the scan of the find dialog in the background; its results replace the
    // document's (and, with `markAll`, its bookmarks) when it ended, also after a cancel.
    void runFind(const ClassicFindCriteria& criteria, bool markAll, QWidget* parent);
    // The identifier statistics of the visible rows, and the cycle times of one identifier
    // for its chart, each as a pass in the background; `done` gets the outcome on this
    // thread unless it was cancelled. False when nothing was started (the document is busy).
    bool runIdentifierStatistics(std::function<void(const IdentifierStatistics&)> done);
    bool runCycleSeries(const IdentifierKey& key, std::function<void(const CycleSeries&)> done);
    // A time style chosen: every view shows the times anew.
    void setTimeMode(TimeMode mode, std::uint32_t byteTime = 1);

Q_SIGNALS:
    // Work that rebuilds the rows begins: views must stop reading them until contentChanged.
    void contentAboutToChange();
    // Rows, times, marks or results changed.
    void contentChanged();
    // The index pass has published rows up to `rows`; views add them to their lists.
    void rowsArrived(int rows);
    // A search's results are in the document.
    void searchEnded(bool markAll);

protected:
    zdt::OperationJob openJob(const QString& path) override;
    bool openEnded(const zdt::OperationOutcome& outcome) override;
    void takeRowsReadSoFar() override;
    void closeDocument() override;

private:
    // Runs a filter pass (or the read that turns the filter off) as the document's operation.
    void runFilterWork(const QString& label, QWidget* parent, zdt::OperationJob job);
    CanFilterPrompt& filterPrompt(QWidget* parent);

    std::unique_ptr<CAnalyzerDoc> m_doc;
    std::unique_ptr<CanFilterPrompt> m_filterPrompt;
    StatusSink* m_status = nullptr;
    bool m_open = false;
};

} // namespace zdtui
