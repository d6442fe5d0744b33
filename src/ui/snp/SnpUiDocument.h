#pragma once

#include "snp/SnpDoc.h"
#include "xmldoc/XmlUiDocument.h"

namespace zdtui {

// A snapshot file in the application: one SnpDoc read into a list that is already on
// screen, and the document's own commands (find, session information).
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

protected:
    bool readFile(const std::string& path, const std::string& swapDirectory, zdt::MessageSink* messages,
                  zdt::ProgressSink& progress) override;
    XmlListView* makeView(QWidget* parent) override;

private:
    ZDTAnalyzer::SnpFindCriteria m_findCriteria;
};

} // namespace zdtui
