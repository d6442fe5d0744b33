#pragma once

#include "xmldoc/BookmarkListLogic.h"

#include <QDialog>

class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;

namespace zdtui {

// "Bookmark": the names of the bookmarks behind a proxy, with the selected one's
// description, file and line. All decisions are BookmarkListLogic's; this class moves
// its state to and from the controls.
class BookmarkListDlg final : public QDialog {
    Q_OBJECT
public:
    BookmarkListDlg(QWidget* parent, ZDTAnalyzer::ProxyBookmarkArray& bookmarks, const std::string& fileName);

    // What the command reads after the dialog closed: deletions and the go-to index.
    const ZDTAnalyzer::BookmarkListState& state() const { return m_state; }

private:
    void buildControls();
    // Shows the state; control signals raised while doing so are not user actions.
    void showState();
    void selectionChanged(int position);
    void descriptionEdited();
    void saveClicked();
    void deleteClicked();
    void goToClicked();

    ZDTAnalyzer::ProxyBookmarkArray& m_bookmarks;
    ZDTAnalyzer::BookmarkListState m_state;
    bool m_showing = false;
    QListWidget* m_names = nullptr;
    QPlainTextEdit* m_description = nullptr;
    QLineEdit* m_fileName = nullptr;
    QLineEdit* m_line = nullptr;
    QPushButton* m_save = nullptr;
    QPushButton* m_delete = nullptr;
    QPushButton* m_goTo = nullptr;
    QPushButton* m_close = nullptr;
};

} // namespace zdtui
