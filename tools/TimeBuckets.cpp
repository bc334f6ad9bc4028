#include "tools/TimeBuckets.h"

#include <algorithm>

namespace PelmoraTool {

TimeBuckets::TimeBuckets(double startMs, double endMs)
    : m_StartMs(startMs), m_BucketMs(std::max(endMs - startMs, 1.0) / kCount) {}

size_t TimeBuckets::Of(double timeMs) const {
    const double position = (timeMs - m_StartMs) / m_BucketMs;
    if (!(position > 0.0)) return 0;
    return static_cast<size_t>(std::min(position, static_cast<double>(kCount - 1)));
}

}  // namespace PelmoraTool
