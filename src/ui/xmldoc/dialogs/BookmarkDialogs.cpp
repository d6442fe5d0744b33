#include "xmldoc/dialogs/BookmarkDialogs.h"

#include "xmldoc/BookmarkListLogic.h"
#include "xmldoc/dialogs/BookmarkInfoDlg.h"
#include "xmldoc/dialogs/BookmarkListDlg.h"

namespace zdtui {

void RunBookmarkList(QWidget* parent, ZDTAnalyzer::BaseDoc& doc, const QString& pathName) {
    ZDTAnalyzer::BookmarkListLogic::showBookmarkList(
        doc, pathName.toStdString(), [parent](ZDTAnalyzer::ProxyBookmarkArray& proxy, const std::string& fileName) {
            BookmarkListDlg dialog(parent, proxy, fileName);
            dialog.exec();
            return dialog.state();
        });
}

bool RunBookmarkInfo(QWidget* parent, std::string& name, std::string& description) {
    BookmarkInfoDlg dialog(parent, name, description);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    name = dialog.name();
    description = dialog.description();
    return true;
}

} // namespace zdtui
