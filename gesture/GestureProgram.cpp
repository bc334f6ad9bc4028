#include "gesture/GestureProgram.h"

#include <atomic>
#include <utility>

#include "gesture/Gesture.h"

namespace PelmoraLib {

namespace GestureEpoch {

namespace {
std::atomic<uint64_t> g_Epoch{1};
}  // namespace

void Advance() { g_Epoch.fetch_add(1, std::memory_order_relaxed); }

uint64_t Current() { return g_Epoch.load(std::memory_order_relaxed); }

}  // namespace GestureEpoch

GestureProgram::Step GestureProgram::StepOf(Qualification& qualification) {
    Step step{};
    if (qualification.m_Operands == Qualification::kGeneral) {
        step.operation = kGeneral;
        step.left = &qualification;
        return step;
    }
    const void* left = qualification.m_LeftStorage;
    const void* right = qualification.m_RightStorage;
    bool leftInt = qualification.m_Operands == Qualification::kIntInt || qualification.m_Operands == Qualification::kIntFloat;
    bool rightInt = qualification.m_Operands == Qualification::kIntInt || qualification.m_Operands == Qualification::kFloatInt;
    int test = 0;  // 0 above, 1 above or equal, 2 equal
    bool negate = false;
    switch (qualification.m_QualificationEnum) {
        case Qualification::Equal: test = 2; break;
        case Qualification::NoEqual: test = 2; negate = true; break;
        case Qualification::Greate: test = 0; break;
        case Qualification::EGreate: test = 1; break;
        case Qualification::Less: test = 0; std::swap(left, right); std::swap(leftInt, rightInt); break;
        default: test = 1; std::swap(left, right); std::swap(leftInt, rightInt); break;  // ELess
    }
    const int form = leftInt ? (rightInt ? 1 : 2) : (rightInt ? 3 : 0);  // float-float, int-int, int-float, float-int
    step.operation = static_cast<uint8_t>(kFloatAbove + form * 3 + test);
    step.left = left;
    step.right = right;
    // Qualification::Check: holding gives Succeed, failing Failed or Reset,
    // and a qualification that finishes gives Succeed_Finish either way.
    const Qualification::Result holds = Qualification::Succeed;
    const Qualification::Result fails = qualification.m_IsResetOnFailed ? Qualification::Reset : Qualification::Failed;
    step.onTrue = static_cast<uint8_t>(negate ? fails : holds);
    step.onFalse = static_cast<uint8_t>(negate ? holds : fails);
    if (qualification.m_IsFinishOnSucceed) step.onTrue = step.onFalse = Qualification::Succeed_Finish;
    return step;
}

// Rebuilt into the same arrays: once they have grown to a table's size,
// rebuilding allocates nothing.
void GestureProgram::Build(const std::vector<Gesture*>& gestures) {
    m_Gestures.clear();
    m_Objects.clear();
    m_SegmentStart.clear();
    m_Steps.clear();
    for (Gesture* gesture : gestures) {
        m_Objects.push_back(gesture);
        const uint64_t segments = gesture ? gesture->GetSegmentSize() : 0;
        bool complete = gesture != nullptr;
        for (uint64_t s = 0; complete && s < segments; ++s) {
            const Segment* segment = gesture->GetSegment(static_cast<size_t>(s));
            complete = segment != nullptr;
            for (size_t q = 0; complete && q < segment->GetQualificationNum(); ++q)
                complete = segment->GetQualification(q) != nullptr;
        }
        Entry entry{kIndirect, static_cast<uint32_t>(segments), 0};
        if (complete) {
            entry.firstSegment = static_cast<uint32_t>(m_SegmentStart.size());
            entry.laidOut = entry.segmentCount;
            for (uint64_t s = 0; s < segments; ++s) {
                const Segment* segment = gesture->GetSegment(static_cast<size_t>(s));
                m_SegmentStart.push_back(static_cast<uint32_t>(m_Steps.size()));
                for (size_t q = 0; q < segment->GetQualificationNum(); ++q)
                    m_Steps.push_back(StepOf(*segment->GetQualification(q)));
            }
        }
        m_Gestures.push_back(entry);
    }
    m_SegmentStart.push_back(static_cast<uint32_t>(m_Steps.size()));
}

Qualification::Result GestureProgram::Fallback(const Gesture* gesture, size_t segmentIndex) {
    return gesture->Evaluate(segmentIndex);
}

}  // namespace PelmoraLib
