#include "snp/SnpUiDocument.h"

#include "app/Boxes.h"
#include "export/TemporaryName.h"
#include "filter/FilterRun.h"
#include "filter/FilterRunner.h"
#include "filter/snp/SnpFilterDlg.h"
#include "snp/SnpSessionInfoDialog.h"
#include "snp/SnpView.h"
#include "snp/dialogs/SnpFindDialog.h"

#include <QPointer>
#include <QTimer>

#include <memory>

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

bool SnpUiDocument::onFilter(QWidget* parent) {
    if (isBusy())
        return false;
    const std::string document = LocalFilePath(pathName());
    const std::string scratch = LocalFilePath(FilterRunDirectory());
    // Filled on the worker thread, read once the listing has ended.
    auto names = std::make_shared<std::set<std::string>>();
    const QPointer<QWidget> boxParent = parent;
    return runFilterOperation(
        tr("Listing the services of %1").arg(pathName()),
        [document, scratch, names](zdt::MessageSink& messages, zdt::OperationControl& control) {
            return ZDTAnalyzer::Filter::listSnapshotServices(document, scratch, *names, messages, control);
        },
        [this, boxParent, names](const zdt::OperationOutcome& outcome) {
            if (outcome.status != zdt::OperationStatus::Done) {
                BoxMessageSink boxes(boxParent);
                for (const zdt::UserMessage& message : outcome.messages)
                    boxes.showMessage(message);
                return;
            }
            // The dialog comes once the listing has wound up, outside its end signal.
            QTimer::singleShot(0, this, [this, boxParent, names] {
                if (!isClosed())
                    showFilterDialog(boxParent, *names);
            });
        });
}

void SnpUiDocument::showFilterDialog(QWidget* parent, const std::set<std::string>& names) {
    auto* dialog = new SNP::SnpFilterDlg(names, parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    const QPointer<QWidget> boxParent = parent;
    connect(dialog, &QDialog::accepted, this,
            [this, dialog, boxParent] { runFilter(boxParent, dialog->chosenNames()); });
    dialog->open();
}

void SnpUiDocument::runFilter(QWidget* parent, const std::vector<std::string>& chosenNames) {
    const QString resultPath = FilterResultName(ZDTAnalyzer::TmpSnpExtension);
    const ZDTAnalyzer::Filter::FilterRunTarget target{LocalFilePath(pathName()), LocalFilePath(resultPath),
                                                      LocalFilePath(FilterRunDirectory())};
    runFilterOperation(
        tr("Filtering %1").arg(pathName()),
        [target, chosenNames](zdt::MessageSink& messages, zdt::OperationControl& control) {
            return ZDTAnalyzer::Filter::runSnapshotFilter(target, chosenNames, messages, control);
        },
        FilterRunFinish(parent, resultPath, pathName()));
}

bool SnpUiDocument::runFilterOperation(const QString& label, zdt::OperationJob job, OperationFinish finish) {
    m_filterStarting = true;
    const bool started = runOperation(label, std::move(job), std::move(finish));
    m_filterStarting = false;
    return started;
}

void SnpUiDocument::beforeOperation(BackgroundOperation& operation) {
    if (!m_filterStarting)
        XmlUiDocument::beforeOperation(operation);
}

} // namespace zdtui
