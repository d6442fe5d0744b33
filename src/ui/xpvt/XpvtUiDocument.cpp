#include "xpvt/XpvtUiDocument.h"

#include "app/Boxes.h"
#include "app/WellKnownPaths.h"
#include "export/TemporaryName.h"
#include "filter/FilterRunner.h"
#include "filter/xpvt_7_01/CXpvtFilterListDialog.h"
#include "filter/xpvt_7_02/CXpvtFilterListDialog.h"
#include "find/FindSheet701.h"
#include "find/FindSheet702.h"
#include "xpvt/XpvtSessionInfoDialog.h"
#include "xpvt/XpvtView.h"

namespace zdtui {

XpvtUiDocument::XpvtUiDocument(QString swapDirectory)
    : XmlUiDocument(std::make_unique<ZDTAnalyzer::XpvtDoc>(), std::move(swapDirectory)) {}

ZDTAnalyzer::XpvtDoc& XpvtUiDocument::xpvtDoc() const {
    return static_cast<ZDTAnalyzer::XpvtDoc&>(baseDoc());
}

bool XpvtUiDocument::readFile(const std::string& path, const std::string& swapDirectory, zdt::MessageSink* messages,
                              zdt::ProgressSink& progress) {
    return xpvtDoc().OnOpenDocument(path, swapDirectory, messages, &progress);
}

XmlListView* XpvtUiDocument::makeView(QWidget* parent) {
    return new XpvtView(*this, parent);
}

std::optional<int> XpvtUiDocument::goTo(int id, int selectionMark, int itemCount, zdt::MessageSink* messages) {
    return xpvtDoc().goTo(static_cast<ZDTAnalyzer::XpvtDoc::GoToCommand>(id), selectionMark, itemCount, messages);
}

void XpvtUiDocument::onFind(QWidget* parent) {
    if (isBusy())
        return;
    ZDTAnalyzer::XpvtDoc& doc = xpvtDoc();
    const bool search =
        doc.is702() ? runFindSheet702(parent, doc.findCriteria702()) : runFindSheet701(parent, doc.findCriteria701());
    if (search)
        runFind(parent);
}

void XpvtUiDocument::runFind(QWidget* parent) {
    runSearch(parent,
              [this](zdt::MessageSink* messages, zdt::ProgressSink& progress) { xpvtDoc().find(messages, &progress); });
}

void XpvtUiDocument::onSessionInformation(QWidget* parent) {
    XpvtSessionInfoDialog dialog(xpvtDoc().description(), parent);
    dialog.exec();
}

namespace {

QString FilterDirectory() {
    return QString::fromStdString(zdt::AnalyzerFilterDefaultDir());
}

} // namespace

bool XpvtUiDocument::onFilter(QWidget* parent) {
    if (isBusy())
        return false;
    try {
        return xpvtDoc().is702() ? filter702(parent) : filter701(parent);
    } catch (...) {
        BoxMessageSink(parent).showMessage(
            {std::string(), ZDTAnalyzer::XpvtDoc::FilterFailedText, zdt::MessageIcon::Error});
        return false;
    }
}

bool XpvtUiDocument::filter701(QWidget* parent) {
    namespace Logic = ZDTAnalyzer::Filter::XPVT_7_01;
    Logic::FilterFileList files{LocalFilePath(pathName()), {}, {}};
    XPVT_7_01::CXpvtFilterListDialog dialog(files, FilterDirectory(), parent);
    if (dialog.exec() != QDialog::Accepted || !dialog.chosenFilter())
        return false;
    const std::string filterPath = LocalFilePath(FilterDirectory()) + *dialog.chosenFilter();
    return runFilter(parent, [filterPath](const ZDTAnalyzer::Filter::FilterRunTarget& target,
                                          zdt::MessageSink& messages, zdt::OperationControl& control) {
        return ZDTAnalyzer::Filter::runFilter701(target, filterPath, messages, control);
    });
}

bool XpvtUiDocument::filter702(QWidget* parent) {
    ZDTAnalyzer::Filter::XPVT_7_02::FilterCondition702 record;
    XPVT_7_02::CXpvtFilterListDialog dialog(record, FilterDirectory(), parent);
    if (dialog.exec() != QDialog::Accepted || !dialog.filterChosen())
        return false;
    return runFilter(parent, [record](const ZDTAnalyzer::Filter::FilterRunTarget& target, zdt::MessageSink& messages,
                                      zdt::OperationControl& control) {
        return ZDTAnalyzer::Filter::runFilter702(target, record, messages, control);
    });
}

bool XpvtUiDocument::runFilter(QWidget* parent, const FilterJob& run) {
    const QString resultPath = FilterResultName(ZDTAnalyzer::TmpXpvtExtension);
    const ZDTAnalyzer::Filter::FilterRunTarget target{LocalFilePath(pathName()), LocalFilePath(resultPath),
                                                      LocalFilePath(FilterRunDirectory())};
    m_filterStarting = true;
    const bool started = runOperation(
        tr("Filtering %1").arg(pathName()),
        [run, target](zdt::MessageSink& messages, zdt::OperationControl& control) {
            return run(target, messages, control);
        },
        FilterRunFinish(parent, resultPath, pathName()));
    m_filterStarting = false;
    return started;
}

void XpvtUiDocument::beforeOperation(BackgroundOperation& operation) {
    if (!m_filterStarting)
        XmlUiDocument::beforeOperation(operation);
}

} // namespace zdtui
