#pragma once

#include <QDialog>
#include <QString>

#include <functional>

class QLineEdit;
class QListWidget;
class QPushButton;

namespace zdtui {

// What "&Add..." asks the file dialog for.
struct FilterFileChoice {
    QString title;
    // In the file dialog's own form: "Xpvt Filter Files (*.pvflt)".
    QString nameFilter;
    QString initialName;
    QString defaultSuffix;
    QString directory;
};
// Returns the chosen file, or an empty text when the user gave up.
using FilterFileChooser = std::function<QString(QWidget* parent, const FilterFileChoice& choice)>;

// The "XPVT Filter" list of filter files that both schemas share: the files chosen during
// this opening (the list starts empty each time), the filter folder, and the buttons. The
// schema decides what "&New...", "&Edit...", "Info..." and "&Ok" do with a file.
class FilterListDialog : public QDialog {
    Q_OBJECT
public:
    static constexpr const char* Title = "XPVT Filter";
    static constexpr const char* ListLabel = "Available filter files:";
    static constexpr const char* DirectoryLabel = "XPVT filter directory for selected trace file:";

    enum class Button { New, Add, Remove, Edit, Info, Ok };

    // The file dialog behind "&Add..." for every list; null restores the real one.
    static void setFileChooser(FilterFileChooser chooser);

    QListWidget* fileList() const { return m_list; }
    QLineEdit* directoryEdit() const { return m_directory; }
    QPushButton* button(Button which) const;

protected:
    // `filterDirectory` ends with "/"; it is made when a file is first written into it.
    FilterListDialog(const QString& filterDirectory, FilterFileChoice addChoice, QWidget* parent);

    const QString& filterDirectory() const { return m_filterDirectory; }
    QString pathOf(const QString& name) const { return m_filterDirectory + name; }
    // False, after its box, when the folder cannot be made.
    bool ensureFilterDirectory();
    QString selectedName() const;
    // Appends `name` to the list and selects it, unless the list holds exactly that text.
    bool addListedName(const QString& name);
    void updateButtons();

    // Whether "&Remove" and "&Edit..." may be used now.
    virtual bool fileCommandsEnabled() const = 0;
    virtual void onNew() = 0;
    virtual void onEdit() = 0;
    virtual void onInfo() = 0;
    virtual void onOk() = 0;
    // After addListedName appended `name`, and after "&Remove" took `name` away.
    virtual void nameAdded(const QString& name) { (void)name; }
    virtual void nameRemoved(const QString& name) { (void)name; }

private:
    void onAdd();
    void onRemove();

    QString m_filterDirectory;
    FilterFileChoice m_addChoice;
    QListWidget* m_list;
    QLineEdit* m_directory;
    QPushButton* m_buttons[6] = {};
};

} // namespace zdtui
