#pragma once

#include "classic/IdentifierStatistics.h"

#include <QDialog>

#include <optional>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSortFilterProxyModel;
class QSpinBox;
class QTableView;

namespace zdtui {

class ClassicDocument;
class CycleTimeChart;
class IdentifierStatisticsModel;

// "Identifier statistics": the figures of one identifier and channel (total count, cycle
// time and data length as min, mid and max), the table of every identifier and channel of
// the visible rows, and the chart of the chosen one's cycle times. The figures come from one
// pass of the document in the background; "Reload" runs it again after a filter or a
// change of the time style. The chart's points come from a second pass for the chosen key.
class IdentifierStatisticsDialog final : public QDialog {
    Q_OBJECT
public:
    IdentifierStatisticsDialog(ClassicDocument& document, QWidget* parent);
    ~IdentifierStatisticsDialog() override;

    // Shows the figures of `key` (the selected row's identifier, if it has one); the first
    // call runs the pass.
    void showFor(std::optional<IdentifierKey> key);
    void reload();
    // The table as CSV in the order it is shown, header first; also onto the clipboard.
    QString csvText() const;
    void copyAsCsv();

    std::optional<IdentifierKey> chosenKey() const { return m_key; }
    bool hasFigures() const { return m_loaded; }
    IdentifierStatisticsModel* model() const { return m_model; }
    QSortFilterProxyModel* sortedModel() const { return m_sorted; }
    QTableView* table() const { return m_table; }
    CycleTimeChart* chart() const { return m_chart; }

Q_SIGNALS:
    // A pass ended and its figures are shown.
    void figuresShown();
    // The chosen key's cycle times are on the chart.
    void chartShown();

private:
    void buildControls();
    void takeStatistics(const IdentifierStatistics& statistics);
    void choose(std::optional<IdentifierKey> key);
    void keyEdited();
    void tableRowChosen();
    void showChosenFigures();
    void requestChart();
    void startPendingWork();
    void updateWidgets();

    ClassicDocument& m_document;
    IdentifierStatisticsModel* m_model;
    QSortFilterProxyModel* m_sorted;
    QLineEdit* m_identifier = nullptr;
    QCheckBox* m_extended = nullptr;
    QSpinBox* m_channel = nullptr;
    QLineEdit* m_count = nullptr;
    QLineEdit* m_cycle[3] = {};
    QLineEdit* m_length[3] = {};
    QLabel* m_note = nullptr;
    QLabel* m_tableNote = nullptr;
    QPushButton* m_reload = nullptr;
    QPushButton* m_copy = nullptr;
    QTableView* m_table = nullptr;
    CycleTimeChart* m_chart = nullptr;

    std::optional<IdentifierKey> m_key;
    bool m_loaded = false;
    bool m_stale = false;
    bool m_reloadPending = false;
    // The chart's pass runs for this key; another key waits until it is cancelled.
    std::optional<IdentifierKey> m_chartRunning;
    std::optional<IdentifierKey> m_chartWanted;
    bool m_choosing = false;
};

} // namespace zdtui
