#pragma once

#include "classic/IdentifierStatistics.h"
#include "common/Operation.h"

#include <cstdint>
#include <memory>
#include <vector>

class CAnalyzerDoc;

// One cycle time of an identifier: when its frame came, on the trace's time line, and
// how long after the frame before it.
struct CyclePoint {
    std::uint32_t timeMicros = 0;
    std::uint32_t cycleMicros = 0;

    bool operator==(const CyclePoint&) const = default;
};

// The cycle times of one identifier and channel, in row order, by the same rule as the
// statistics: exactly the cycle times its figures sum up.
struct CycleSeries {
    IdentifierKey key;
    std::vector<CyclePoint> points;
};

// A second pass over the visible rows for one key; false (and no points) when `progress` stopped it.
bool CollectCycleSeries(CAnalyzerDoc& doc, const IdentifierKey& key, CycleSeries& series,
                        zdt::ProgressSink* progress = nullptr);
zdt::OperationJob CycleSeriesJob(CAnalyzerDoc& doc, const IdentifierKey& key, std::shared_ptr<CycleSeries> series);

// The points a display of `buckets` columns needs to look like all of them: of the points
// whose time lies in [fromMicros, toMicros], the lowest and the highest cycle time of each
// column, in time order. At most two points a column, whatever the number of points.
std::vector<CyclePoint> DecimateCycleSeries(const std::vector<CyclePoint>& points, double fromMicros, double toMicros,
                                            std::size_t buckets);
