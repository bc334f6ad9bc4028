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

void PlayerTimeline::AddFrame(double timeMs, const std::string& label) {
    if (labelOpen) labels.back().endMs = timeMs;
    if (labelOpen && labels.back().label == label) return;
    labelOpen = !label.empty();
    if (labelOpen) labels.push_back({timeMs, timeMs, label});
}

}  // namespace PelmoraTool
