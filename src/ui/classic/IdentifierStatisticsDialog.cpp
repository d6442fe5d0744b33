#include "classic/IdentifierStatisticsDialog.h"

#include "classic/ClassicDocument.h"
#include "classic/CycleTimeChart.h"
#include "classic/IdentifierStatisticsModel.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QSortFilterProxyModel>
#include <QSpinBox>
#include <QSplitter>
#include <QTableView>
#include <QVBoxLayout>

namespace zdtui {
namespace {

QLineEdit* ValueField(QWidget* parent, const QString& name) {
    auto* field = new QLineEdit(parent);
    field->setObjectName(name);
    field->setReadOnly(true);
    field->setAlignment(Qt::AlignRight);
    field->setMinimumWidth(90);
    return field;
}

QString Text(const std::string& text) {
    return QString::fromStdString(text);
}

} // namespace

IdentifierStatisticsDialog::IdentifierStatisticsDialog(ClassicDocument& document, QWidget* parent)
    : QDialog(parent), m_document(document), m_model(new IdentifierStatisticsModel(this)),
      m_sorted(new QSortFilterProxyModel(this)) {
    setWindowTitle(QStringLiteral("Identifier statistics"));
    m_sorted->setSourceModel(m_model);
    m_sorted->setSortRole(IdentifierStatisticsModel::SortRole);
    buildControls();
    connect(&m_document, &UiDocument::busyChanged, this, [this](bool busy) {
        if (!busy) {
            m_chartRunning.reset();
            startPendingWork();
        }
        updateWidgets();
    });
    // Figures of rows that a filter or a time style has since changed are marked as such.
    connect(&m_document, &ClassicDocument::contentChanged, this, [this] {
        if (m_loaded) {
            m_stale = true;
            showChosenFigures();
        }
    });
    resize(820, 720);
    updateWidgets();
}

IdentifierStatisticsDialog::~IdentifierStatisticsDialog() = default;

void IdentifierStatisticsDialog::buildControls() {
    auto* figures = new QGridLayout;
    m_identifier = new QLineEdit(this);
    m_identifier->setObjectName(QStringLiteral("identifier"));
    m_identifier->setMaxLength(8);
    m_identifier->setMaximumWidth(120);
    m_identifier->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9A-Fa-f]{0,8}")), m_identifier));
    m_extended = new QCheckBox(QStringLiteral("Extended"), this);
    m_extended->setObjectName(QStringLiteral("extended"));
    m_channel = new QSpinBox(this);
    m_channel->setObjectName(QStringLiteral("channel"));
    m_channel->setRange(0, 255);
    // 0 stands for frames that show no channel.
    m_channel->setSpecialValueText(QStringLiteral("-"));
    auto* keyRow = new QHBoxLayout;
    keyRow->addWidget(m_identifier);
    keyRow->addWidget(m_extended);
    keyRow->addSpacing(16);
    keyRow->addWidget(new QLabel(QStringLiteral("Channel:"), this));
    keyRow->addWidget(m_channel);
    keyRow->addStretch();
    figures->addWidget(new QLabel(QStringLiteral("Identifier:"), this), 0, 0);
    figures->addLayout(keyRow, 0, 1, 1, 3);

    const char* const columns[3] = {"min", "mid", "max"};
    for (int i = 0; i < 3; ++i)
        figures->addWidget(new QLabel(QString::fromLatin1(columns[i]), this), 1, i + 1, Qt::AlignCenter);
    figures->addWidget(new QLabel(QStringLiteral("Total count:"), this), 2, 0);
    m_count = ValueField(this, QStringLiteral("totalCount"));
    figures->addWidget(m_count, 2, 1);
    figures->addWidget(new QLabel(QStringLiteral("Cycle time (ms):"), this), 3, 0);
    figures->addWidget(new QLabel(QStringLiteral("Data length:"), this), 4, 0);
    for (int i = 0; i < 3; ++i) {
        m_cycle[i] = ValueField(this, QStringLiteral("cycle") + QString::fromLatin1(columns[i]));
        m_length[i] = ValueField(this, QStringLiteral("length") + QString::fromLatin1(columns[i]));
        figures->addWidget(m_cycle[i], 3, i + 1);
        figures->addWidget(m_length[i], 4, i + 1);
    }
    m_note = new QLabel(this);
    m_note->setObjectName(QStringLiteral("note"));
    m_note->setWordWrap(true);

    m_reload = new QPushButton(QStringLiteral("Reload"), this);
    m_reload->setObjectName(QStringLiteral("reload"));
    auto* close = new QPushButton(QStringLiteral("Close"), this);
    close->setObjectName(QStringLiteral("close"));
    auto* buttons = new QVBoxLayout;
    buttons->addWidget(m_reload);
    buttons->addWidget(close);
    buttons->addStretch();
    auto* top = new QHBoxLayout;
    top->addLayout(figures, 1);
    top->addLayout(buttons);

    m_table = new QTableView(this);
    m_table->setObjectName(QStringLiteral("table"));
    m_table->setModel(m_sorted);
    m_table->setSortingEnabled(true);
    m_table->sortByColumn(0, Qt::AscendingOrder);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_tableNote = new QLabel(this);
    m_tableNote->setObjectName(QStringLiteral("tableNote"));
    m_tableNote->setWordWrap(true);
    m_copy = new QPushButton(QStringLiteral("Copy as CSV"), this);
    m_copy->setObjectName(QStringLiteral("copyCsv"));
    auto* tableFoot = new QHBoxLayout;
    tableFoot->addWidget(m_tableNote, 1);
    tableFoot->addWidget(m_copy);
    auto* tablePart = new QWidget(this);
    auto* tableLayout = new QVBoxLayout(tablePart);
    tableLayout->setContentsMargins(0, 0, 0, 0);
    tableLayout->addWidget(m_table);
    tableLayout->addLayout(tableFoot);

    m_chart = new CycleTimeChart(this);
    m_chart->setObjectName(QStringLiteral("chart"));
    auto* splitter = new QSplitter(Qt::Vertical, this);
    splitter->addWidget(tablePart);
    splitter->addWidget(m_chart);
    // The chart is what shows jitter and gaps at a glance: it gets the larger share.
    splitter->setStretchFactor(0, 2);
    splitter->setStretchFactor(1, 3);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(m_note);
    layout->addWidget(splitter, 1);

    connect(m_reload, &QPushButton::clicked, this, &IdentifierStatisticsDialog::reload);
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    connect(m_copy, &QPushButton::clicked, this, &IdentifierStatisticsDialog::copyAsCsv);
    connect(m_identifier, &QLineEdit::textEdited, this, &IdentifierStatisticsDialog::keyEdited);
    connect(m_extended, &QCheckBox::toggled, this, &IdentifierStatisticsDialog::keyEdited);
    connect(m_channel, &QSpinBox::valueChanged, this, &IdentifierStatisticsDialog::keyEdited);
    connect(m_table->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &IdentifierStatisticsDialog::tableRowChosen);
}

void IdentifierStatisticsDialog::showFor(std::optional<IdentifierKey> key) {
    if (key)
        choose(key);
    show();
    raise();
    activateWindow();
    if (!m_loaded)
        reload();
}

void IdentifierStatisticsDialog::reload() {
    if (m_document.isBusy()) {
        // A chart pass of ours gives way; any other work is waited for.
        m_reloadPending = true;
        if (m_chartRunning)
            m_document.cancelOperation();
        return;
    }
    m_reloadPending = false;
    const QPointer<IdentifierStatisticsDialog> self(this);
    const bool started = m_document.runIdentifierStatistics([self](const IdentifierStatistics& statistics) {
        if (self != nullptr)
            self->takeStatistics(statistics);
    });
    if (started)
        m_note->setText(tr("Counting the identifiers of the rows the list shows..."));
    updateWidgets();
}

void IdentifierStatisticsDialog::takeStatistics(const IdentifierStatistics& statistics) {
    m_loaded = true;
    m_stale = false;
    m_model->setStatistics(statistics);
    m_table->resizeColumnsToContents();
    m_tableNote->setText(
        statistics.figures.empty()
            ? Text(statistics.emptyReason)
            : tr("%1 identifiers and channels in %2 rows").arg(statistics.figures.size()).arg(statistics.rowsPassed));
    // The series on the chart may stem from rows that have changed since.
    m_chart->showText(tr("No identifier chosen"));
    if (!m_key && !statistics.figures.empty())
        m_key = statistics.figures.front().key;
    choose(m_key);
    updateWidgets();
    Q_EMIT figuresShown();
}

void IdentifierStatisticsDialog::choose(std::optional<IdentifierKey> key) {
    m_key = key;
    m_choosing = true;
    if (key) {
        m_identifier->setText(Text(IdentifierText({key->identifier, false, 0})));
        m_extended->setChecked(key->extended);
        m_channel->setValue(key->channel);
    }
    const int row = key ? m_model->rowOf(*key) : -1;
    if (row >= 0) {
        const QModelIndex shown = m_sorted->mapFromSource(m_model->index(row, 0));
        m_table->setCurrentIndex(shown);
        m_table->scrollTo(shown);
    } else {
        m_table->clearSelection();
    }
    m_choosing = false;
    showChosenFigures();
    requestChart();
}

void IdentifierStatisticsDialog::keyEdited() {
    if (m_choosing)
        return;
    bool ok = false;
    const unsigned identifier = m_identifier->text().toUInt(&ok, 16);
    if (!ok) {
        m_key.reset();
        showChosenFigures();
        return;
    }
    choose(IdentifierKey{identifier, m_extended->isChecked(), static_cast<std::uint8_t>(m_channel->value())});
}

void IdentifierStatisticsDialog::tableRowChosen() {
    if (m_choosing)
        return;
    const QModelIndex current = m_sorted->mapToSource(m_table->currentIndex());
    if (current.isValid())
        choose(m_model->figuresAt(current.row()).key);
}

void IdentifierStatisticsDialog::showChosenFigures() {
    const IdentifierFigures* figures = m_key && m_loaded ? m_model->statistics().Find(*m_key) : nullptr;
    std::vector<std::string> cells(StatisticsColumnCount, std::string());
    if (figures != nullptr)
        cells = StatisticsCells(*figures);
    // The cells of the table: count, cycle min, mid, max, length min, mid, max.
    m_count->setText(Text(cells[2]));
    for (std::size_t i = 0; i < 3; ++i) {
        m_cycle[i]->setText(Text(cells[3 + i]));
        m_length[i]->setText(Text(cells[6 + i]));
    }
    QString note;
    if (!m_loaded)
        note = m_note->text();
    else if (!m_key)
        note = tr("Choose an identifier in the table, or type one.");
    else if (figures == nullptr)
        note = tr("No frame of this identifier on this channel among the rows the list shows.");
    else if (figures->count == 1)
        note = tr("Seen once: no cycle time.");
    else if (figures->skippedTimes != 0)
        note = tr("%1 frames without a time, or with a time before the frame before them, are left out of the "
                  "cycle times.")
                   .arg(figures->skippedTimes);
    if (m_stale)
        note += (note.isEmpty() ? QString() : QStringLiteral(" ")) +
                tr("The list has changed since these figures were counted: Reload counts them anew.");
    m_note->setText(note);
}

void IdentifierStatisticsDialog::requestChart() {
    const IdentifierFigures* figures = m_key && m_loaded ? m_model->statistics().Find(*m_key) : nullptr;
    m_chartWanted.reset();
    if (figures == nullptr) {
        m_chart->showText(tr("No identifier chosen"));
        return;
    }
    if (!figures->HasCycleTime()) {
        // Nothing to count: the chart needs no pass.
        CycleSeries none;
        none.key = *m_key;
        m_chart->showSeries(std::move(none));
        Q_EMIT chartShown();
        return;
    }
    if (m_chartRunning == m_key || (m_chart->series().key == *m_key && !m_chart->series().points.empty()))
        return;
    m_chartWanted = m_key;
    m_chart->showText(tr("Reading the cycle times of %1...").arg(Text(IdentifierText(*m_key))));
    startPendingWork();
}

void IdentifierStatisticsDialog::startPendingWork() {
    if (m_reloadPending) {
        reload();
        return;
    }
    if (!m_chartWanted)
        return;
    if (m_document.isBusy()) {
        // A pass for another key is no longer wanted.
        if (m_chartRunning && *m_chartRunning != *m_chartWanted)
            m_document.cancelOperation();
        return;
    }
    const IdentifierKey key = *m_chartWanted;
    const QPointer<IdentifierStatisticsDialog> self(this);
    if (!m_document.runCycleSeries(key, [self](const CycleSeries& series) {
            if (self == nullptr)
                return;
            self->m_chartRunning.reset();
            if (self->m_key != series.key)
                return;
            self->m_chart->showSeries(series);
            Q_EMIT self->chartShown();
        }))
        return;
    m_chartWanted.reset();
    m_chartRunning = key;
}

void IdentifierStatisticsDialog::updateWidgets() {
    m_reload->setEnabled(!m_document.isBusy() || m_chartRunning.has_value());
    m_copy->setEnabled(m_model->rowCount() > 0);
}

QString IdentifierStatisticsDialog::csvText() const {
    std::string text;
    AppendStatisticsLine(text, StatisticsColumnNames(), ',');
    for (int row = 0; row < m_sorted->rowCount(); ++row) {
        const QModelIndex source = m_sorted->mapToSource(m_sorted->index(row, 0));
        AppendStatisticsLine(text, m_model->figuresAt(source.row()), ',');
    }
    return Text(text);
}

void IdentifierStatisticsDialog::copyAsCsv() {
    QApplication::clipboard()->setText(csvText());
}

} // namespace zdtui
