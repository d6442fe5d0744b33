#pragma once

#include "snp/SnpDoc.h"
#include "xmldoc/XmlUiDocument.h"

#include <set>
#include <string>
#include <vector>

namespace zdtui {

// A snapshot file in the application: one SnpDoc read into a list that is already on
// screen, and the document's own commands (find, session information, filter).
class SnpUiDocument final : public XmlUiDocument {
    Q_OBJECT
public:
    // `swapDirectory` holds the swap file; empty takes the run's temporary directory.
    explicit SnpUiDocument(QString swapDirectory = QString());

    // Exists from construction; its rows grow while open() runs.
    ZDTAnalyzer::SnpDoc* snpDoc() const;

    std::optional<int> goTo(int id, int selectionMark, int itemCount, zdt::MessageSink* messages) override;
    void onFind(QWidget* parent) override;
    // The search behind the find dialog, with its progress and boxes.
    void runFind(QWidget* parent, const ZDTAnalyzer::SnpFindCriteria& criteria);
    void onSessionInformation(QWidget* parent) override;
    // Lists the file's services on a worker thread, then shows "Snp Filter" over them;
    // "&Apply" runs the filter the same way, and its result opens as a new document.
    // Returns whether the listing started.
    bool onFilter(QWidget* parent);

protected:
    bool readFile(const std::string& path, const std::string& swapDirectory, zdt::MessageSink* messages,
                  zdt::ProgressSink& progress) override;
    XmlListView* makeView(QWidget* parent) override;
    void beforeOperation(BackgroundOperation& operation) override;

private:
    void showFilterDialog(QWidget* parent, const std::set<std::string>& names);
    void runFilter(QWidget* parent, const std::vector<std::string>& chosenNames);
    // Runs filter work that reads the file by its path and leaves the rows alone.
    bool runFilterOperation(const QString& label, zdt::OperationJob job, OperationFinish finish);

    ZDTAnalyzer::SnpFindCriteria m_findCriteria;
    // While a filter operation starts: the document keeps telling its views directly.
    bool m_filterStarting = false;
};

} // namespace zdtui
