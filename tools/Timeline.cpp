#include "tools/Timeline.h"

namespace PelmoraTool {

namespace {

using PelmoraLib::Qualification;

double Shortfall(Qualification::QualificationEnum kind, double left, double right) {
    switch (kind) {
        case Qualification::Greate:
        case Qualification::EGreate: return right - left;
        case Qualification::Less:
        case Qualification::ELess: return left - right;
        case Qualification::Equal: return std::fabs(left - right);
        default: return std::nan("");
    }
}

const QualificationEntry* EntryOf(const QualificationTable& qualifications, const QualificationKey& key) {
    const auto [segment, qualification] = key;
    if (qualification < 0 || segment >= qualifications.size()) return nullptr;
    if (static_cast<size_t>(qualification) >= qualifications[segment].size()) return nullptr;
    return &qualifications[segment][static_cast<size_t>(qualification)];
}

}  // namespace

void Approach::Offer(Qualification::QualificationEnum kind, double at, double leftValue, double rightValue) {
    const double by = Shortfall(kind, leftValue, rightValue);
    if (!(by < shortfall)) return;
    shortfall = by;
    left = leftValue;
    right = rightValue;
    timeMs = at;
}

// A bucket holds at most one marker of each kind, so only the last two
// markers can share the bucket of a new one.
void GestureLane::Mark(double timeMs, EventKind kind, uint32_t segment) {
    if (kind == EventKind::Finished && m_InRun) m_FinishedInRun = true;
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

void GestureLane::CountFailure(uint32_t segment, int qualification, double timeMs, double left, double right) {
    failures.Count(qualifications, segment, qualification, timeMs, left, right);
    m_Run.Count(qualifications, segment, qualification, timeMs, left, right);
}

void GestureLane::AddFrame(double timeMs, const std::string& label) {
    const bool inRun = label == name;
    if (inRun == m_InRun) return;
    if (!inRun) {
        CloseRun();
        return;
    }
    m_InRun = true;
    m_FinishedInRun = false;
    m_RunStartMs = timeMs;
    m_Run = FailureCounts();
    ++labelledRuns;
}

void GestureLane::CloseRun() {
    if (!m_InRun) return;
    m_InRun = false;
    if (m_FinishedInRun) return;
    ++missedRuns;
    if (misses.size() < kListedMisses) misses.push_back({m_RunStartMs, m_Run.Explain(qualifications)});
}

void FailureCounts::Count(const QualificationTable& qualifications, uint32_t segment, int qualification, double timeMs,
                          double left, double right) {
    const QualificationKey key{segment, qualification};
    ++waiting[segment];
    ++deciding[key];
    if (const QualificationEntry* entry = EntryOf(qualifications, key))
        closest[key].Offer(Qualification::GetQualificationEnum(entry->kind.c_str()), timeMs, left, right);
}

WhyNot FailureCounts::Explain(const QualificationTable& qualifications) const {
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
    const QualificationKey key{why.segment, why.qualification};
    if (const QualificationEntry* entry = EntryOf(qualifications, key)) {
        why.entry = *entry;
        why.description = entry->Describe();
    }
    const auto approach = closest.find(key);
    if (approach != closest.end()) why.closest = approach->second;
    return why;
}

void PlayerTimeline::AddFrame(double timeMs, const std::string& label) {
    for (GestureLane& lane : lanes) lane.AddFrame(timeMs, label);
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

void PlayerTimeline::EndRecording() {
    for (GestureLane& lane : lanes) lane.CloseRun();
}

}  // namespace PelmoraTool
