#pragma once

#include <QDialog>

#include <string>

class QLineEdit;
class QPlainTextEdit;

namespace zdtui {

// "Bookmark Informations": the name (at most 50 characters, required) and the
// description (at most 500) of a new bookmark.
class BookmarkInfoDlg final : public QDialog {
    Q_OBJECT
public:
    static constexpr int NameLimit = 50;
    static constexpr int DescriptionLimit = 500;

    BookmarkInfoDlg(QWidget* parent, const std::string& name, const std::string& description);

    // The name trimmed on both sides, as accepted; the description as typed.
    std::string name() const;
    std::string description() const;

public Q_SLOTS:
    // OK: refuses an empty name with a warning and stays open.
    void accept() override;

private:
    void limitDescription();

    QLineEdit* m_name = nullptr;
    QPlainTextEdit* m_description = nullptr;
};

} // namespace zdtui
