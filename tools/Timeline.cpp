#include "tools/Timeline.h"

namespace PelmoraTool {

// A bucket holds at most one marker of each kind, so only the last two
// markers can share the bucket of a new one.
void GestureLane::Mark(double timeMs, EventKind kind, uint32_t segment) {
    const size_t bucket = buckets.Of(timeMs);
    for (auto m = markers.rbegin(); m != markers.rend() && buckets.Of(m->timeMs) == bucket; ++m) {
        if (m->kind != kind) continue;
        m->lastMs = timeMs;
        ++m->count;
        return;
    }
    markers.push_back({timeMs, timeMs, kind, segment, 1});
}

uint64_t GestureLane::Count(EventKind kind) const {
    uint64_t count = 0;
    for (const LaneMarker& marker : markers) count += marker.kind == kind ? marker.count : 0;
    return count;
}

void GestureLane::CountFailure(uint32_t segment, int qualification) {
    ++waiting[segment];
    ++deciding[{segment, qualification}];
}

WhyNot GestureLane::Explain() const {
    WhyNot why;
    for (const auto& [segment, checks] : waiting) {
        if (checks <= why.waitingChecks) continue;
        why.waited = true;
        why.segment = segment;
        why.waitingChecks = checks;
    }
    if (!why.waited) return why;
    for (const auto& [key, checks] : deciding) {
        if (key.first != why.segment || checks <= why.decidingChecks) continue;
        why.qualification = key.second;
        why.decidingChecks = checks;
    }
    const bool described = why.qualification >= 0 && why.segment < qualifications.size() &&
                           static_cast<size_t>(why.qualification) < qualifications[why.segment].size();
    if (described) why.description = qualifications[why.segment][static_cast<size_t>(why.qualification)];
    return why;
}

void PlayerTimeline::AddFrame(double timeMs, const std::string& label) {
    if (!openLabel.empty()) labels.back().endMs = timeMs;
    if (label == openLabel) return;
    openLabel = label;
    if (label.empty()) return;
    if (!labels.empty() && buckets.Of(labels.back().startMs) == buckets.Of(timeMs)) {
        ++labels.back().runs;
        return;
    }
    labels.push_back({timeMs, timeMs, label, 1});
}

}  // namespace PelmoraTool
