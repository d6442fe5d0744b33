#include "snp/SnpUiDocument.h"

#include "app/Boxes.h"
#include "snp/SnpSessionInfoDialog.h"
#include "snp/SnpView.h"
#include "snp/dialogs/SnpFindDialog.h"

namespace zdtui {

SnpUiDocument::SnpUiDocument(QString swapDirectory)
    : XmlUiDocument(std::make_unique<ZDTAnalyzer::SnpDoc>(), std::move(swapDirectory)) {}

ZDTAnalyzer::SnpDoc* SnpUiDocument::snpDoc() const {
    return static_cast<ZDTAnalyzer::SnpDoc*>(&baseDoc());
}

bool SnpUiDocument::readFile(const std::string& path, const std::string& swapDirectory, zdt::MessageSink* messages,
                             zdt::ProgressSink& progress) {
    return snpDoc()->OnOpenDocument(path, swapDirectory, messages, &progress);
}

XmlListView* SnpUiDocument::makeView(QWidget* parent) {
    return new SnpView(*this, parent);
}

std::optional<int> SnpUiDocument::goTo(int id, int selectionMark, int itemCount, zdt::MessageSink* messages) {
    return snpDoc()->goTo(static_cast<ZDTAnalyzer::SnpDoc::GoToCommand>(id), selectionMark, itemCount, messages);
}

void SnpUiDocument::onFind(QWidget* parent) {
    if (isBusy())
        return;
    if (RunSnpFindDialog(parent, m_findCriteria))
        runFind(parent, m_findCriteria);
}

void SnpUiDocument::runFind(QWidget* parent, const ZDTAnalyzer::SnpFindCriteria& criteria) {
    // By value: the search runs on after the caller returned.
    runSearch(parent, [this, criteria](zdt::MessageSink* messages, zdt::ProgressSink& progress) {
        snpDoc()->find(criteria, messages, &progress);
    });
}

void SnpUiDocument::onSessionInformation(QWidget* parent) {
    BoxMessageSink boxes(parent);
    snpDoc()->showSessionInformation(&boxes,
                                     [parent](const ZDTAnalyzer::SnpDoc::SessionInformationDialog& information) {
                                         SnpSessionInfoDialog dialog(information, parent);
                                         dialog.exec();
                                     });
}

} // namespace zdtui
