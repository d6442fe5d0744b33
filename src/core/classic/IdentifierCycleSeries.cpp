#include "classic/IdentifierCycleSeries.h"

#include "classic/CAnalyzerDoc.h"
#include "classic/ClassicTime.h"
#include "trace/RecordReader.h"

#include <algorithm>
#include <cmath>
#include <limits>

bool CollectCycleSeries(CAnalyzerDoc& doc, const IdentifierKey& key, CycleSeries& series, zdt::ProgressSink* progress) {
    series.key = key;
    series.points.clear();
    DocumentRecordReader readers(doc);
    RecordReader* reader = readers.Get();
    if (reader == nullptr)
        return true;
    CycleTracker tracker;
    const zdt::RowCount rows = doc.GetVisibleCount();
    for (zdt::RowIndex row = 0; row < rows; ++row) {
        if (progress != nullptr && (row & 0x3FFF) == 0 &&
            !progress->onProgress(static_cast<unsigned long long>(row), static_cast<unsigned long long>(rows))) {
            series.points.clear();
            return false;
        }
        CTraceItemI item;
        if (!reader->ReadItem(row, item))
            continue;
        const std::optional<IdentifierKey> frameKey = IdentifierKeyOf(item);
        if (!frameKey || *frameKey != key)
            continue;
        const std::optional<std::uint32_t> time = AbsoluteFrameTime(doc, row, item);
        std::uint32_t cycle = 0;
        if (tracker.Next(time, cycle) == CycleTracker::Step::Cycle)
            series.points.push_back({*time, cycle});
    }
    return true;
}

zdt::OperationJob CycleSeriesJob(CAnalyzerDoc& doc, const IdentifierKey& key, std::shared_ptr<CycleSeries> series) {
    return [&doc, key, series](zdt::MessageSink&, zdt::OperationControl& control) {
        return zdt::StatusOf(CollectCycleSeries(doc, key, *series, &control), control);
    };
}

std::vector<CyclePoint> DecimateCycleSeries(const std::vector<CyclePoint>& points, double fromMicros, double toMicros,
                                            std::size_t buckets) {
    std::vector<CyclePoint> shown;
    if (buckets == 0 || !(fromMicros <= toMicros))
        return shown;
    constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();
    // Per column the index of its lowest and its highest point; the indexes keep time order
    // within a column, and columns follow each other in time.
    std::vector<std::size_t> lowest(buckets, kNone);
    std::vector<std::size_t> highest(buckets, kNone);
    const double width = toMicros - fromMicros;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double time = points[i].timeMicros;
        if (time < fromMicros || time > toMicros)
            continue;
        std::size_t column = 0;
        if (width > 0)
            column = std::min(buckets - 1,
                              static_cast<std::size_t>((time - fromMicros) / width * static_cast<double>(buckets)));
        if (lowest[column] == kNone || points[i].cycleMicros < points[lowest[column]].cycleMicros)
            lowest[column] = i;
        if (highest[column] == kNone || points[i].cycleMicros > points[highest[column]].cycleMicros)
            highest[column] = i;
    }
    for (std::size_t column = 0; column < buckets; ++column) {
        if (lowest[column] == kNone)
            continue;
        const std::size_t first = std::min(lowest[column], highest[column]);
        const std::size_t second = std::max(lowest[column], highest[column]);
        shown.push_back(points[first]);
        if (second != first)
            shown.push_back(points[second]);
    }
    return shown;
}
