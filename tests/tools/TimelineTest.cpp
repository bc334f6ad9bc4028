// What the report keeps of a long replay stays within the time buckets,
// while every event and labelled run is still counted.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tools/Timeline.h"

using namespace PelmoraTool;

namespace {

const double kFrames = 100000.0;
const TimeBuckets kBuckets(0.0, kFrames);

}  // namespace

TEST(TimelineTest, SeriesKeepTheirEndsAndExtremesWithinTheBuckets) {
    SampledSeries series(kBuckets);
    for (double t = 0; t < kFrames; ++t) series.Add(t, t == 54321 ? 9.0 : t == 12345 ? -9.0 : std::sin(t));
    const std::vector<TimePoint>& points = series.Points();
    EXPECT_LE(points.size(), 4 * TimeBuckets::kCount);
    EXPECT_EQ(points.front().timeMs, 0.0);
    EXPECT_EQ(points.back().timeMs, kFrames - 1);
    const auto timeOf = [&](double value) {
        return std::find_if(points.begin(), points.end(), [&](const TimePoint& p) { return p.value == value; })->timeMs;
    };
    EXPECT_EQ(timeOf(9.0), 54321.0);
    EXPECT_EQ(timeOf(-9.0), 12345.0);
    EXPECT_TRUE(std::is_sorted(points.begin(), points.end(),
                               [](const TimePoint& a, const TimePoint& b) { return a.timeMs < b.timeMs; }));
}

TEST(TimelineTest, MarkersAndLabelsAreCountedByBucket) {
    GestureLane lane;
    lane.buckets = kBuckets;
    PlayerTimeline player;
    player.buckets = kBuckets;
    for (double t = 0; t < kFrames; ++t) {
        lane.Mark(t, std::fmod(t, 3) == 0 ? EventKind::Finished : EventKind::Reset, 1);
        player.AddFrame(t, std::fmod(t, 4) < 2 ? "" : std::fmod(t, 8) < 4 ? "a" : "b");
    }
    EXPECT_LE(lane.markers.size(), 2 * TimeBuckets::kCount);
    EXPECT_EQ(lane.Count(EventKind::Finished), 33334u);
    EXPECT_EQ(lane.Count(EventKind::Reset), 66666u);
    EXPECT_LE(player.labels.size(), TimeBuckets::kCount);
    uint64_t runs = 0;
    for (const LabelSpan& span : player.labels) runs += span.runs;
    EXPECT_EQ(runs, 25000u);
    EXPECT_EQ(player.labels.back().endMs, kFrames - 1);
}
