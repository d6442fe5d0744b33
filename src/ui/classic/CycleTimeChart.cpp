#include "classic/CycleTimeChart.h"

#include <QChart>
#include <QLineSeries>
#include <QList>
#include <QMouseEvent>
#include <QPointF>
#include <QValueAxis>

#include <algorithm>
#include <utility>

namespace zdtui {
namespace {

constexpr double kMicrosPerSecond = 1e6;
constexpr double kMicrosPerMilli = 1e3;
constexpr int kFewestColumns = 100;

} // namespace

CycleTimeChart::CycleTimeChart(QWidget* parent)
    : QChartView(parent), m_line(new QLineSeries), m_timeAxis(new QValueAxis), m_cycleAxis(new QValueAxis) {
    auto* chart = new QChart;
    chart->legend()->hide();
    chart->addSeries(m_line);
    m_timeAxis->setTitleText(tr("Trace time (s)"));
    m_timeAxis->setLabelFormat(QStringLiteral("%.3f"));
    m_cycleAxis->setTitleText(tr("Cycle time (ms)"));
    m_cycleAxis->setLabelFormat(QStringLiteral("%.3f"));
    chart->addAxis(m_timeAxis, Qt::AlignBottom);
    chart->addAxis(m_cycleAxis, Qt::AlignLeft);
    m_line->attachAxis(m_timeAxis);
    m_line->attachAxis(m_cycleAxis);
    // The view made a chart of its own, which setChart() lets go of without deleting it.
    QChart* madeByTheView = this->chart();
    setChart(chart);
    delete madeByTheView;
    setRenderHint(QPainter::Antialiasing, false);
    setRubberBand(QChartView::HorizontalRubberBand);
    setMinimumHeight(260);
    // A zoom by the rubber band sets the axis' range: draw the points of that range anew.
    connect(m_timeAxis, &QValueAxis::rangeChanged, this, [this](qreal from, qreal to) {
        if (!m_drawing)
            drawRange(from, to);
    });
    showText(tr("No identifier chosen"));
}

int CycleTimeChart::columns() const {
    return std::max(kFewestColumns, static_cast<int>(chart()->plotArea().width()));
}

int CycleTimeChart::drawnPoints() const {
    return static_cast<int>(m_line->count());
}

void CycleTimeChart::showText(const QString& text) {
    m_series = CycleSeries{};
    m_line->clear();
    chart()->setTitle(text);
}

void CycleTimeChart::showSeries(CycleSeries series) {
    m_series = std::move(series);
    const QString name = QString::fromStdString(IdentifierText(m_series.key));
    const QString channel = m_series.key.channel == 0
                                ? QString()
                                : tr(" on channel %1").arg(QString::fromStdString(ChannelText(m_series.key)));
    if (m_series.points.empty()) {
        m_line->clear();
        chart()->setTitle(tr("%1%2 has no cycle time").arg(name, channel));
        return;
    }
    chart()->setTitle(tr("Cycle time of %1%2: %3 cycles").arg(name, channel).arg(m_series.points.size()));
    // After a clock that jumped back, times need not rise from point to point.
    const auto [earliest, latest] =
        std::minmax_element(m_series.points.begin(), m_series.points.end(),
                            [](const CyclePoint& a, const CyclePoint& b) { return a.timeMicros < b.timeMicros; });
    m_firstSeconds = earliest->timeMicros / kMicrosPerSecond;
    m_lastSeconds = latest->timeMicros / kMicrosPerSecond;
    const auto longest =
        std::max_element(m_series.points.begin(), m_series.points.end(),
                         [](const CyclePoint& a, const CyclePoint& b) { return a.cycleMicros < b.cycleMicros; });
    m_drawing = true;
    m_cycleAxis->setRange(0, std::max(0.001, longest->cycleMicros / kMicrosPerMilli * 1.05));
    m_drawing = false;
    resetZoom();
}

void CycleTimeChart::resetZoom() {
    if (m_series.points.empty())
        return;
    chart()->zoomReset();
    drawRange(m_firstSeconds, m_lastSeconds);
}

void CycleTimeChart::drawRange(double fromSeconds, double toSeconds) {
    if (m_series.points.empty())
        return;
    const std::vector<CyclePoint> shown =
        DecimateCycleSeries(m_series.points, fromSeconds * kMicrosPerSecond, toSeconds * kMicrosPerSecond,
                            static_cast<std::size_t>(columns()));
    QList<QPointF> points;
    points.reserve(static_cast<qsizetype>(shown.size()));
    for (const CyclePoint& point : shown)
        points.append(QPointF(point.timeMicros / kMicrosPerSecond, point.cycleMicros / kMicrosPerMilli));
    m_shownFrom = fromSeconds;
    m_shownTo = toSeconds;
    m_drawing = true;
    m_line->replace(points);
    // A single instant still needs a range to draw in.
    const double margin = fromSeconds < toSeconds ? 0.0 : 0.001;
    m_timeAxis->setRange(fromSeconds - margin, toSeconds + margin);
    m_drawing = false;
}

void CycleTimeChart::resizeEvent(QResizeEvent* event) {
    QChartView::resizeEvent(event);
    if (!m_series.points.empty())
        drawRange(m_shownFrom, m_shownTo);
}

void CycleTimeChart::mouseDoubleClickEvent(QMouseEvent* event) {
    resetZoom();
    event->accept();
}

} // namespace zdtui
