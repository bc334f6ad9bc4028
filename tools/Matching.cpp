#include "tools/Matching.h"

#include <algorithm>

namespace PelmoraTool {

void Tally::Add(const Tally& other) {
    performances += other.performances;
    hits += other.hits;
    falseDetections += other.falseDetections;
    latenciesMs.insert(latenciesMs.end(), other.latenciesMs.begin(), other.latenciesMs.end());
}

namespace Matching {

namespace {

bool Within(const LabelledSpan& span, const Detection& event, const MatchWindow& window) {
    return span.player == event.player && event.timeMs >= span.startMs - window.beforeMs &&
           event.timeMs <= span.endMs + window.afterMs;
}

// The unmatched performance of the event's target whose window closes
// first, or spans.size().
size_t ClaimingSpan(const std::vector<LabelledSpan>& spans, const std::vector<bool>& taken, const Detection& event,
                    const MatchWindow& window) {
    size_t best = spans.size();
    for (size_t s = 0; s < spans.size(); ++s) {
        const LabelledSpan& span = spans[s];
        if (taken[s] || span.dontCare || span.target != event.target || !Within(span, event, window)) continue;
        if (best == spans.size() || span.endMs < spans[best].endMs) best = s;
    }
    return best;
}

// Within a don't-care label, or a repetition of a performance already found.
bool CountsNeitherWay(const std::vector<LabelledSpan>& spans, const std::vector<bool>& taken, const Detection& event,
                      const MatchWindow& window) {
    for (size_t s = 0; s < spans.size(); ++s) {
        const LabelledSpan& span = spans[s];
        const bool repetition = taken[s] && span.repeated && span.target == event.target;
        if ((span.dontCare || repetition) && Within(span, event, window)) return true;
    }
    return false;
}

}  // namespace

std::vector<Tally> Score(const std::vector<LabelledSpan>& spans, const std::vector<Detection>& detections,
                         const MatchWindow& window, size_t targets) {
    std::vector<Tally> tallies(targets);
    for (const LabelledSpan& span : spans) {
        if (!span.dontCare) ++tallies[span.target].performances;
    }
    std::vector<Detection> events = detections;
    std::stable_sort(events.begin(), events.end(),
                     [](const Detection& a, const Detection& b) { return a.timeMs < b.timeMs; });
    std::vector<bool> taken(spans.size(), false);
    for (const Detection& event : events) {
        Tally& tally = tallies[event.target];
        const size_t claimed = ClaimingSpan(spans, taken, event, window);
        if (claimed < spans.size()) {
            taken[claimed] = true;
            ++tally.hits;
            tally.latenciesMs.push_back(event.timeMs - spans[claimed].endMs);
        } else if (!CountsNeitherWay(spans, taken, event, window)) {
            ++tally.falseDetections;
        }
    }
    return tallies;
}

}  // namespace Matching
}  // namespace PelmoraTool
