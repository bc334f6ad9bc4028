// TimeBuckets - a player's time range cut into kCount equal buckets, about
// one per pixel column of the report. What the report keeps of a recording
// is bounded by the buckets, not by the frames. Immutable; safe to share.
#pragma once

#include <cstddef>

namespace PelmoraTool {

class TimeBuckets {
public:
    static constexpr size_t kCount = 1000;

    TimeBuckets() : TimeBuckets(0.0, 0.0) {}
    TimeBuckets(double startMs, double endMs);

    // Times outside the range fall into the first or the last bucket.
    size_t Of(double timeMs) const;

private:
    double m_StartMs;
    double m_BucketMs;
};

}  // namespace PelmoraTool
