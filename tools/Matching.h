// Matching - scores the finished events of one recording against its
// labelled performances. A performance of target T spans [start, end] (a
// single instant for action points). An event of a gesture of T matches it
// when it falls within [start - before, end + after], and each performance
// takes at most one event: events are taken in time order, each by the
// unmatched performance whose window closes first. Every other event of T is
// a false detection, except one inside the window of a don't-care label or
// of a found repeated performance of T (a recording labelled as a whole that
// holds the move several times), which counts neither way. Latency runs from
// the performance's end to its event. Pure functions; safe from any thread.
#pragma once

#include <cstddef>
#include <vector>

namespace PelmoraTool {

struct MatchWindow {
    double beforeMs = 1000.0;
    double afterMs = 1000.0;
};

struct LabelledSpan {
    long long player = 0;
    double startMs = 0.0;
    double endMs = 0.0;
    bool dontCare = false;  // true: target is unused
    size_t target = 0;
    bool repeated = false;  // may hold several performances of target
};

struct Detection {
    long long player = 0;
    double timeMs = 0.0;
    size_t target = 0;
};

struct Tally {
    size_t performances = 0;
    size_t hits = 0;
    size_t falseDetections = 0;
    std::vector<double> latenciesMs;  // one per hit

    size_t Events() const { return hits + falseDetections; }
    size_t Misses() const { return performances - hits; }
    void Add(const Tally& other);
};

namespace Matching {

// One tally per target (targets = the number of targets).
std::vector<Tally> Score(const std::vector<LabelledSpan>& spans, const std::vector<Detection>& detections,
                         const MatchWindow& window, size_t targets);

}  // namespace Matching
}  // namespace PelmoraTool
