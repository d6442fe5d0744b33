#pragma once

#include "classic/IdentifierCycleSeries.h"

#include <QChartView>

class QLineSeries;
class QValueAxis;

namespace zdtui {

// The cycle time of one identifier over the trace's time. The series may hold millions of
// points; the line gets only the lowest and highest of each pixel column of the range on
// screen, so that jitter and gaps still show and drawing stays quick. Drag across the
// chart to zoom into a time range; a double click shows the whole trace again.
class CycleTimeChart final : public QChartView {
    Q_OBJECT
public:
    explicit CycleTimeChart(QWidget* parent = nullptr);

    void showSeries(CycleSeries series);
    // No series: the chart says `text` instead.
    void showText(const QString& text);
    void resetZoom();

    const CycleSeries& series() const { return m_series; }
    // Points on the line now.
    int drawnPoints() const;
    QLineSeries* line() const { return m_line; }
    QValueAxis* timeAxis() const { return m_timeAxis; }
    QValueAxis* cycleAxis() const { return m_cycleAxis; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    void drawRange(double fromSeconds, double toSeconds);
    int columns() const;

    CycleSeries m_series;
    QLineSeries* m_line;
    QValueAxis* m_timeAxis;
    QValueAxis* m_cycleAxis;
    double m_firstSeconds = 0;
    double m_lastSeconds = 0;
    // The time range on screen, without the margin a single instant gets.
    double m_shownFrom = 0;
    double m_shownTo = 0;
    bool m_drawing = false;
};

} // namespace zdtui
