#pragma once

#include "classic/CanFilterDialogLogic.h"

#include <QDialog>
#include <QString>

class QCheckBox;
class QLabel;
class QListWidget;
class QPushButton;

namespace zdtui {

// The CAN filter files of one trace (dialog resource 140): add, create, edit and delete
// them, choose one and switch filtering on or off. The decisions are made on the
// caller's CanFilterDialogState; this class only mirrors it in its controls.
class CCanFilter final : public QDialog {
    Q_OBJECT
public:
    // `state` must outlive the dialog. `programDir` is where the settings file is looked
    // for (two levels above it), normally the running program's directory.
    CCanFilter(QWidget* parent, CanFilterDialogState& state, const QString& tracePath, const QString& programDir);

    QString filterDirectory() const { return m_filterDir; }

    // What the buttons do once their file has been picked; tests drive them directly.
    void addFile(const QString& sourcePath);
    void removeSelected();
    void editSelected();
    void createNew();

    void accept() override;

private:
    void buildControls();
    void refill();
    void showState();
    void chooseFileToAdd();
    void activateClicked();
    std::string filterPath(const std::string& name) const;

    CanFilterDialogState& m_state;
    QString m_tracePath;
    QString m_programDir;
    QString m_filterDir;

    QListWidget* m_list = nullptr;
    QLabel* m_directoryText = nullptr;
    QCheckBox* m_activateBox = nullptr;
    QPushButton* m_okButton = nullptr;
    QPushButton* m_newButton = nullptr;
    QPushButton* m_addButton = nullptr;
    QPushButton* m_removeButton = nullptr;
    QPushButton* m_editButton = nullptr;
};

} // namespace zdtui
