// Timeline - what a replay keeps for the visual report: per player, the
// plotted values, each gesture's segment over time with its finishes and
// resets, the recording's labels, and for every failed check the segment it
// was waiting in and the qualification that decided the failure. The series
// are sampled, so their size does not grow with the recording; finishes,
// resets and labels are kept whole.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tools/GestureEvent.h"
#include "tools/SampledSeries.h"

namespace PelmoraTool {

// Finishes or resets of one bucket, counted as one marker.
struct LaneMarker {
    double timeMs;  // the first
    double lastMs;
    EventKind kind;
    uint32_t segment;  // of the first
    uint64_t count;
};

// The "why not" of a gesture: where it waited longest and what held it there.
struct WhyNot {
    bool waited = false;
    uint32_t segment = 0;
    uint64_t waitingChecks = 0;
    int qualification = -1;  // -1: no single qualification was found failing
    uint64_t decidingChecks = 0;
    std::string description;
};

struct GestureLane {
    std::string name;
    uint32_t segmentCount = 0;
    std::vector<std::vector<std::string>> qualifications;  // descriptions, by segment
    SampledSeries progress;                                // segment waited in after each check
    std::vector<LaneMarker> markers;                       // finishes and resets, by bucket
    std::map<uint32_t, uint64_t> waiting;                  // failed checks per segment
    std::map<std::pair<uint32_t, int>, uint64_t> deciding; // failed checks per (segment, qualification)

    TimeBuckets buckets;

    void Mark(double timeMs, EventKind kind, uint32_t segment);
    uint64_t Count(EventKind kind) const;
    void CountFailure(uint32_t segment, int qualification);
    WhyNot Explain() const;
};

struct PlotSeries {
    std::string name;
    SampledSeries points;
};

// A labelled run of frames, or several that start in one bucket.
struct LabelSpan {
    double startMs;
    double endMs;
    std::string label;  // of the first run
    uint64_t runs;
};

struct PlayerTimeline {
    long long player = 0;
    double startMs = 0.0;
    double endMs = 0.0;
    std::vector<GestureLane> lanes;
    std::vector<PlotSeries> plots;
    std::vector<LabelSpan> labels;
    std::string openLabel;  // the label of the last frame; its span still grows
    TimeBuckets buckets;

    // Extends the label spans by the player's next frame: a span runs from
    // its first frame to the player's next frame after it.
    void AddFrame(double timeMs, const std::string& label);
};

struct Timeline {
    std::string config;
    std::string recording;
    std::vector<PlayerTimeline> players;
};

}  // namespace PelmoraTool
