// Timeline - what a replay keeps for the visual report: per player, the
// plotted values, each gesture's segment over time with its finishes and
// resets, the recording's labels, and for every failed check the segment it
// was waiting in, the qualification that decided the failure and how near
// that qualification came to holding, over the recording and within each
// labelled run of the gesture's own name that it missed. The series are
// sampled, so their size does not grow with the recording; finishes, resets
// and labels are kept by time bucket, the counts and nearest approaches by
// qualification, and the first few missed runs.
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
    std::string description;  // of the qualification as written, when known
    QualificationEntry entry;
    Approach closest;
};

using QualificationKey = std::pair<uint32_t, int>;                        // (segment, qualification)
using QualificationTable = std::vector<std::vector<QualificationEntry>>;  // as written, by segment

// The failed checks of a gesture over some time: how many per segment and
// per deciding qualification, and how near each qualification came.
struct FailureCounts {
    std::map<uint32_t, uint64_t> waiting;
    std::map<QualificationKey, uint64_t> deciding;
    std::map<QualificationKey, Approach> closest;

    // `left` and `right` are what the failing qualification compared (NaN
    // when unknown).
    void Count(const QualificationTable& qualifications, uint32_t segment, int qualification, double timeMs,
               double left, double right);
    WhyNot Explain(const QualificationTable& qualifications) const;
};

// A labelled run of the gesture's own name in which it did not finish.
struct MissedRun {
    double startMs;
    WhyNot why;
};

struct GestureLane {
    static const size_t kListedMisses = 5;

    std::string name;
    uint32_t segmentCount = 0;
    QualificationTable qualifications;
    SampledSeries progress;           // segment waited in after each check
    std::vector<LaneMarker> markers;  // finishes and resets, by bucket
    FailureCounts failures;           // over the whole recording
    uint64_t labelledRuns = 0;        // runs labelled with the gesture's name
    uint64_t missedRuns = 0;
    std::vector<MissedRun> misses;  // the first kListedMisses

    TimeBuckets buckets;

    void Mark(double timeMs, EventKind kind, uint32_t segment);
    uint64_t Count(EventKind kind) const;
    void CountFailure(uint32_t segment, int qualification, double timeMs, double left, double right);
    WhyNot Explain() const { return failures.Explain(qualifications); }
    // Follows the runs labelled with the gesture's name, frame by frame;
    // CloseRun closes the open one after the last frame.
    void AddFrame(double timeMs, const std::string& label);
    void CloseRun();

private:
    bool m_InRun = false;
    bool m_FinishedInRun = false;
    double m_RunStartMs = 0.0;
    FailureCounts m_Run;  // since the last run began
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
    // Closes the lanes' labelled runs after the player's last frame.
    void EndRecording();
};

struct Timeline {
    std::string config;
    std::string recording;
    std::vector<PlayerTimeline> players;
};

}  // namespace PelmoraTool
