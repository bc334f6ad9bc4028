// Timeline - what a replay keeps for the visual report: per player, the
// plotted values, each gesture's segment over time with its finishes and
// resets, the recording's labels, and for every failed check the segment it
// was waiting in and the qualification that decided the failure.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tools/GestureEvent.h"

namespace PelmoraTool {

struct TimePoint {
    double timeMs;
    double value;
};

struct LaneMarker {
    double timeMs;
    EventKind kind;
    uint32_t segment;
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
    std::vector<TimePoint> progress;                       // segment waited in after each check
    std::vector<LaneMarker> markers;                       // finishes and resets
    std::map<uint32_t, uint64_t> waiting;                  // failed checks per segment
    std::map<std::pair<uint32_t, int>, uint64_t> deciding; // failed checks per (segment, qualification)

    void CountFailure(uint32_t segment, int qualification);
    WhyNot Explain() const;
};

struct PlotSeries {
    std::string name;
    std::vector<TimePoint> points;
};

struct LabelSpan {
    double startMs;
    double endMs;
    std::string label;
};

struct PlayerTimeline {
    long long player = 0;
    double startMs = 0.0;
    double endMs = 0.0;
    std::vector<GestureLane> lanes;
    std::vector<PlotSeries> plots;
    std::vector<LabelSpan> labels;
    bool labelOpen = false;  // the last span still grows

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
