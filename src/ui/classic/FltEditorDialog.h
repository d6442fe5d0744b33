#pragma once

#include "classic/FltFile.h"

#include <QDialog>
#include <QString>

class QCheckBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;

namespace zdtui {

// Creates or edits one ".flt" file: the filter's type and its identifiers. On OK the
// file is written; the dialog stays open while the input cannot be saved.
class FltEditorDialog final : public QDialog {
    Q_OBJECT
public:
    // A new filter: the user names the file, which is created in `directory`.
    FltEditorDialog(QWidget* parent, const QString& directory);
    // The existing file `fileName` in `directory`.
    FltEditorDialog(QWidget* parent, const QString& directory, const QString& fileName);

    bool isNewFilter() const { return m_isNew; }
    // The file written by the last OK; empty before.
    QString savedPath() const { return m_savedPath; }
    const FltFilter& filter() const { return m_filter; }

    // The steps behind the controls, for tests as for the buttons.
    void setFileName(const QString& name);
    void setStopFilter(bool stop);
    bool addIdentifier(const QString& text, bool extended);
    void removeSelectedIdentifier();

    void accept() override;

private:
    void buildControls();
    void showIdentifiers(int select);
    void addTypedIdentifier();
    bool saveTo(const QString& path);

    QString m_directory;
    QString m_fileName;
    bool m_isNew;
    FltFilter m_filter;
    QString m_savedPath;

    QLineEdit* m_nameEdit = nullptr;
    QRadioButton* m_stopButton = nullptr;
    QRadioButton* m_passButton = nullptr;
    QListWidget* m_identifierList = nullptr;
    QLineEdit* m_identifierEdit = nullptr;
    QCheckBox* m_extendedBox = nullptr;
    QPushButton* m_addButton = nullptr;
    QPushButton* m_removeButton = nullptr;
    QLabel* m_countText = nullptr;
};

} // namespace zdtui
