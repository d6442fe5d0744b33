#pragma once

#include "xpvt/XpvtFindCriteria.h"

#include <QDialog>

#include <array>
#include <string>
#include <vector>

class QCheckBox;
class QFormLayout;
class QLineEdit;
class QRadioButton;
class QTabWidget;

namespace zdtui {

// "Find..." for 7.02 traces: six pages working on the sections of the document's
// criteria, so what was typed comes back next time, on the page whose "Find" was
// pressed last. "Find" and "Close" both store the page's controls; only "Find" marks
// the page as pressed.
class FindSheet702 final : public QDialog {
    Q_OBJECT
public:
    // Clears the pressed marks of the last run and opens on the stored page.
    FindSheet702(QWidget* parent, ZDTAnalyzer::XpvtFindCriteria702& criteria);

    QTabWidget* tabs() const { return m_tabs; }
    // Controls are named by page index and role: "page<i>All", "page<i>Find",
    // "page<i>Close", "page<i>Parameter", "page<i>Edit<n>" (the edits in the order of
    // the page) and "page<i>Radio<n>".
    static QString objectNameOf(int page, const QString& role);

public Q_SLOTS:
    // Whatever way the sheet closes, the next run's page is settled here.
    void done(int result) override;

private:
    struct TextBinding {
        QLineEdit* edit;
        std::string* text;
    };
    struct RadioBinding {
        QRadioButton* radio;
        bool* value;
    };
    // One page's controls and the section fields they stand for.
    struct Page {
        QWidget* widget = nullptr;
        QCheckBox* all = nullptr;
        bool* allValue = nullptr;
        bool* findPressed = nullptr;
        std::vector<TextBinding> texts;
        std::vector<RadioBinding> radios;
        QCheckBox* parameter = nullptr;
        bool* parameterValue = nullptr;
        std::vector<QLineEdit*> parameterEdits;
    };

    using TextRows = std::initializer_list<std::pair<const char*, std::string*>>;
    using RadioRows = std::initializer_list<std::pair<const char*, bool*>>;

    void buildPages();
    // One page over `section`: "All", the text rows, the parameter part where the section
    // has one, the radio row, then "Find" and "Close".
    template <typename Section>
    void addPage(int index, const char* title, Section& section, TextRows texts, RadioRows radios = {});
    Page& beginPage(int index, const char* title, bool* all, bool* findPressed);
    QLineEdit* addText(Page& page, const char* label, std::string* text);
    void addRadios(Page& page, RadioRows radios);
    void addParameterPart(Page& page, bool* enabled, std::string* name, std::string* dataType, std::string* value,
                          std::string* range);
    void finishPage(int index);

    void load(int index);
    void store(int index);
    void updateEnabling(int index);
    void pagePressed(int index, bool find);

    ZDTAnalyzer::XpvtFindCriteria702& m_criteria;
    QTabWidget* m_tabs = nullptr;
    QFormLayout* m_form = nullptr;
    std::array<Page, 6> m_pages;
    // The Parameter page's four edits: its collect does not follow the plain bindings.
    std::array<QLineEdit*, 4> m_parameterPageEdits{};
};

// Shows the sheet over `criteria`; true unless an exception passed through it, so a
// search follows "Close" too.
bool runFindSheet702(QWidget* parent, ZDTAnalyzer::XpvtFindCriteria702& criteria);

} // namespace zdtui
