#include "tools/Timeline.h"

namespace PelmoraTool {

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

PlayerTimeline PlayerTimeline::FromRecording(const Recording& recording, long long player) {
    PlayerTimeline timeline;
    timeline.player = player;
    bool first = true;
    LabelSpan* open = nullptr;
    for (const RecordedFrame& frame : recording.frames) {
        if (frame.player != player) continue;
        if (first) timeline.startMs = frame.timeMs;
        first = false;
        timeline.endMs = frame.timeMs;
        if (open) open->endMs = frame.timeMs;
        if (open && open->label == frame.label) continue;
        open = nullptr;
        if (frame.label.empty()) continue;
        timeline.labels.push_back({frame.timeMs, frame.timeMs, frame.label});
        open = &timeline.labels.back();
    }
    return timeline;
}

}  // namespace PelmoraTool
