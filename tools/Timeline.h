// Timeline - what a replay keeps for the visual report: per player, the
// plotted values, each gesture's segment over time with its finishes and
// resets, the recording's labels, and for every failed check the segment it
// was waiting in, the qualification that decided the failure and how near
// that qualification came to holding. The series are sampled, so their size
// does not grow with the recording; finishes, resets and labels are kept by
// time bucket, and the counts and nearest approaches by qualification.
// Thread-safety: none; filled and read by one thread.
#pragma once

#include <cmath>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "gesture/Qualification.h"
#include "tools/ConfigDocument.h"
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

// How near a qualification came to holding over the checks it failed: the
// two numbers it compared when they were nearest, and when. A failed
// "Greate" or "EGreate" fell short by right - left, a failed "Less" or
// "ELess" by left - right, a failed "Equal" by their distance. A failed
// "NoEqual" compared equal numbers and a check with a NaN compared nothing,
// so neither is an approach.
struct Approach {
    double shortfall = INFINITY;
    double left = 0.0;
    double right = 0.0;
    double timeMs = 0.0;

    bool Seen() const { return std::isfinite(shortfall); }
    // Keeps the earliest of equally near checks.
    void Offer(PelmoraLib::Qualification::QualificationEnum kind, double timeMs, double left, double right);
};

// The "why not" of a gesture: where it waited longest, what held it there
// and how near that came to letting it go on.
struct WhyNot {
    bool waited = false;
    uint32_t segment = 0;
    uint64_t waitingChecks = 0;
    int qualification = -1;  // -1: no single qualification was found failing
    uint64_t decidingChecks = 0;
    std::string description;   // of the qualification as written, when known
    QualificationEntry entry;
    Approach closest;
};

using QualificationKey = std::pair<uint32_t, int>;  // (segment, qualification)

struct GestureLane {
    std::string name;
    uint32_t segmentCount = 0;
    std::vector<std::vector<QualificationEntry>> qualifications;  // as written, by segment
    SampledSeries progress;                                       // segment waited in after each check
    std::vector<LaneMarker> markers;                              // finishes and resets, by bucket
    std::map<uint32_t, uint64_t> waiting;                         // failed checks per segment
    std::map<QualificationKey, uint64_t> deciding;                // failed checks per qualification
    std::map<QualificationKey, Approach> closest;                 // and its nearest approach

    TimeBuckets buckets;

    void Mark(double timeMs, EventKind kind, uint32_t segment);
    uint64_t Count(EventKind kind) const;
    // `left` and `right` are what the failing qualification compared (NaN
    // when unknown).
    void CountFailure(uint32_t segment, int qualification, double timeMs, double left, double right);
    WhyNot Explain() const;

private:
    const QualificationEntry* Entry(const QualificationKey& key) const;
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
