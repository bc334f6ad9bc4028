#include "tools/SampledSeries.h"

#include <algorithm>

namespace PelmoraTool {

namespace {

bool Same(const TimePoint& a, const TimePoint& b) { return a.timeMs == b.timeMs && a.value == b.value; }

}  // namespace

SampledSeries::SampledSeries(const TimeBuckets& buckets) : m_Buckets(buckets) { m_Points.reserve(4 * TimeBuckets::kCount); }

void SampledSeries::Add(double timeMs, double value) {
    const TimePoint point{timeMs, value};
    // A late point (none should be) joins the open bucket.
    const size_t bucket = std::max(m_Bucket, m_Buckets.Of(timeMs));
    if (m_Points.empty() || bucket > m_Bucket) {
        m_Bucket = bucket;
        m_BucketBegin = m_Points.size();
        m_First = m_Low = m_High = point;
    }
    if (value < m_Low.value) m_Low = point;
    if (value > m_High.value) m_High = point;
    m_Last = point;
    Rewrite();
}

// The open bucket's points, each once, in time order.
void SampledSeries::Rewrite() {
    m_Points.resize(m_BucketBegin);
    const bool lowFirst = m_Low.timeMs <= m_High.timeMs;
    for (const TimePoint& point : {m_First, lowFirst ? m_Low : m_High, lowFirst ? m_High : m_Low, m_Last}) {
        if (m_Points.size() == m_BucketBegin || !Same(m_Points.back(), point)) m_Points.push_back(point);
    }
}

}  // namespace PelmoraTool
