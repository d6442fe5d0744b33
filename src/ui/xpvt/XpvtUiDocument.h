#pragma once

#include "filter/FilterRun.h"
#include "xmldoc/XmlUiDocument.h"
#include "xpvt/XpvtDoc.h"

namespace zdtui {

// A process value trace in the application: one XpvtDoc read into a list that is already
// on screen, whose schema is learnt while the file is read, and the document's own
// commands: find, session information and filter.
class XpvtUiDocument final : public XmlUiDocument {
    Q_OBJECT
public:
    // `swapDirectory` holds the swap file; empty takes the run's temporary directory.
    explicit XpvtUiDocument(QString swapDirectory = QString());

    ZDTAnalyzer::XpvtDoc& xpvtDoc() const;

    std::optional<int> goTo(int id, int selectionMark, int itemCount, zdt::MessageSink* messages) override;
    // The find sheet of the document's schema, then the search it asks for.
    void onFind(QWidget* parent) override;
    // The search with the stored criteria, on a worker thread under its progress.
    void runFind(QWidget* parent);
    void onSessionInformation(QWidget* parent) override;
    // The filter dialogs of the document's schema, then the run of the chosen filter on a
    // worker thread; its result opens as a new document. Returns whether a run started.
    bool onFilter(QWidget* parent);

protected:
    bool readFile(const std::string& path, const std::string& swapDirectory, zdt::MessageSink* messages,
                  zdt::ProgressSink& progress) override;
    XmlListView* makeView(QWidget* parent) override;
    void beforeOperation(BackgroundOperation& operation) override;

private:
    using FilterJob = std::function<zdt::OperationStatus(const ZDTAnalyzer::Filter::FilterRunTarget& target,
                                                         zdt::MessageSink& messages, zdt::OperationControl& control)>;
    bool filter701(QWidget* parent);
    bool filter702(QWidget* parent);
    bool runFilter(QWidget* parent, const FilterJob& run);

    // A filter run reads the file by its path and leaves the rows alone, so the document
    // keeps telling its views directly.
    bool m_filterStarting = false;
};

} // namespace zdtui
