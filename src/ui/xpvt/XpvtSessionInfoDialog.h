#pragma once

#include "xpvt/XpvtDoc.h"

#include <QDialog>

#include <array>

class QLabel;
class QLineEdit;

namespace zdtui {

// The session header of a process value trace, read-only, with an OK button only.
class XpvtSessionInfoDialog final : public QDialog {
    Q_OBJECT
public:
    // The boxes of the dialog, in the order they stand.
    enum class Field {
        Title,
        Schema,
        ProductVersion,
        Date,
        Time,
        Author,
        Comment,
        Project,
        VehicleInformationTable,
        LogicalLink,
        Count
    };

    explicit XpvtSessionInfoDialog(const ZDTAnalyzer::XpvtDoc::Description& description, QWidget* parent = nullptr);

    QString fieldText(Field field) const;
    // The label that stands in front of the box.
    QString fieldLabel(Field field) const;
    // The heading above the box, empty for the boxes without one.
    QString fieldHeading(Field field) const;

private:
    static constexpr std::size_t FieldCount = static_cast<std::size_t>(Field::Count);
    std::array<QLineEdit*, FieldCount> m_boxes{};
    std::array<QLabel*, FieldCount> m_labels{};
    std::array<QLabel*, FieldCount> m_headings{};
};

} // namespace zdtui
