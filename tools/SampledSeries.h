// SampledSeries - a value over time, kept for drawing: each of the player's
// time buckets keeps at most its first, lowest, highest and last point, in
// time order. A line drawn at the report's width looks the same, and a
// series costs the same for a minute as for a day of frames. Points arrive
// in time order. Not thread-safe.
#pragma once

#include <vector>

#include "tools/TimeBuckets.h"

namespace PelmoraTool {

struct TimePoint {
    double timeMs;
    double value;
};

class SampledSeries {
public:
    SampledSeries() = default;
    explicit SampledSeries(const TimeBuckets& buckets);

    void Add(double timeMs, double value);
    const std::vector<TimePoint>& Points() const { return m_Points; }

private:
    void Rewrite();

    TimeBuckets m_Buckets;
    std::vector<TimePoint> m_Points;
    size_t m_Bucket = 0;
    size_t m_BucketBegin = 0;  // where the open bucket's points start in m_Points
    TimePoint m_First{}, m_Low{}, m_High{}, m_Last{};
};

}  // namespace PelmoraTool
