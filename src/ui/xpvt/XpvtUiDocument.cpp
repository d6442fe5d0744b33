#include "xpvt/XpvtUiDocument.h"

#include "app/Boxes.h"
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

void XpvtUiDocument::onFilter(QWidget* parent) {
    if (isBusy())
        return;
    BoxMessageSink boxes(parent);
    xpvtDoc().filter(&boxes);
}

} // namespace zdtui
