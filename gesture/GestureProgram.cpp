#include "gesture/GestureProgram.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <utility>

#include "gesture/Gesture.h"
#include "values/ValuesTable.h"

namespace PelmoraLib {

namespace GestureEpoch {

namespace {
std::atomic<uint64_t> g_Epoch{1};
}  // namespace

void Advance() { g_Epoch.fetch_add(1, std::memory_order_relaxed); }

uint64_t Current() { return g_Epoch.load(std::memory_order_relaxed); }

}  // namespace GestureEpoch

// Whether a resolved qualification reads its left (or right) number as an int.
bool GestureProgram::ReadsInt(const Qualification& qualification, bool left) {
    const Qualification::Operands form = qualification.m_Operands;
    return form == Qualification::kIntInt || form == (left ? Qualification::kIntFloat : Qualification::kFloatInt);
}

GestureProgram::WideStep GestureProgram::StepOf(Qualification& qualification) {
    WideStep step{};
    if (qualification.m_Operands == Qualification::kGeneral) {
        step.operation = kGeneral;
        step.left = &qualification;
        return step;
    }
    const void* left = qualification.m_LeftStorage;
    const void* right = qualification.m_RightStorage;
    bool leftInt = ReadsInt(qualification, true);
    bool rightInt = ReadsInt(qualification, false);
    // From the outcomes the kind holds for: one that holds for unordered
    // operands is the negation of one that does not (NoEqual), and one that
    // holds below is one that holds above with the operands swapped.
    unsigned holds = qualification.m_Holds;
    const bool negate = (holds & Qualification::kUnordered) != 0;
    if (negate) holds = ~holds & (Qualification::kBelow | Qualification::kAbove | Qualification::kEqual);
    if (holds & Qualification::kBelow) {
        std::swap(left, right);
        std::swap(leftInt, rightInt);
    }
    // 0 above, 1 above or equal, 2 equal.
    const int test = holds == Qualification::kEqual ? 2 : (holds & Qualification::kEqual ? 1 : 0);
    const int form = leftInt ? (rightInt ? 1 : 2) : (rightInt ? 3 : 0);  // float-float, int-int, int-float, float-int
    step.operation = static_cast<uint8_t>(kFloatAbove + form * 3 + test);
    step.left = left;
    step.right = right;
    step.onTrue = static_cast<uint8_t>(qualification.ResultOf(!negate));
    step.onFalse = static_cast<uint8_t>(qualification.ResultOf(negate));
    return step;
}

bool GestureProgram::IsComplete(const Gesture* gesture) {
    if (!gesture) return false;
    for (uint64_t s = 0; s < gesture->GetSegmentSize(); ++s) {
        const Segment* segment = gesture->GetSegment(static_cast<size_t>(s));
        if (!segment) return false;
        for (size_t q = 0; q < segment->GetQualificationNum(); ++q)
            if (!segment->GetQualification(q)) return false;
    }
    return true;
}

void GestureProgram::CollectOperands(const std::vector<Gesture*>& gestures, const ValuesTable* literals) {
    m_Operands.clear();
    m_LiteralStorage.clear();
    auto noteLiteral = [&](const BaseValue* value, const void* storage, bool isInt) {
        if (literals && literals->IsConstant(value)) m_LiteralStorage.emplace_back(storage, isInt);
    };
    for (const Gesture* gesture : gestures) {
        if (!IsComplete(gesture)) continue;
        for (uint64_t s = 0; s < gesture->GetSegmentSize(); ++s) {
            const Segment* segment = gesture->GetSegment(static_cast<size_t>(s));
            for (size_t q = 0; q < segment->GetQualificationNum(); ++q) {
                Qualification& qualification = *segment->GetQualification(q);
                const WideStep step = StepOf(qualification);
                m_Operands.push_back(step.left);
                m_Operands.push_back(step.right);
                if (step.operation == kGeneral) continue;
                noteLiteral(qualification.m_Value1, qualification.m_LeftStorage, ReadsInt(qualification, true));
                noteLiteral(qualification.m_Value2, qualification.m_RightStorage, ReadsInt(qualification, false));
            }
        }
    }
    std::sort(m_Operands.begin(), m_Operands.end(), std::less<const void*>());
    m_Operands.erase(std::unique(m_Operands.begin(), m_Operands.end()), m_Operands.end());
    std::sort(m_LiteralStorage.begin(), m_LiteralStorage.end(),
              [](const std::pair<const void*, bool>& a, const std::pair<const void*, bool>& b) {
                  return std::less<const void*>()(a.first, b.first);
              });
    m_LiteralStorage.erase(std::unique(m_LiteralStorage.begin(), m_LiteralStorage.end()), m_LiteralStorage.end());
}

// Both lists are sorted by address: one walk pairs them. The copies are made
// in full before any place points at them, so none moves afterwards.
void GestureProgram::CopyLiterals() {
    m_Reads.assign(m_Operands.begin(), m_Operands.end());
    m_Literals.resize(m_LiteralStorage.size());
    size_t literal = 0;
    for (size_t place = 0; place < m_Operands.size() && literal < m_LiteralStorage.size(); ++place) {
        const auto& storage = m_LiteralStorage[literal];
        if (storage.first != m_Operands[place]) continue;
        Literal& copy = m_Literals[literal++];
        if (storage.second) {
            copy.i = *static_cast<const int32_t*>(storage.first);
            m_Reads[place] = &copy.i;
        } else {
            copy.f = *static_cast<const float*>(storage.first);
            m_Reads[place] = &copy.f;
        }
    }
}

uint32_t GestureProgram::PlaceOf(const void* operand) const {
    const auto found = std::lower_bound(m_Operands.begin(), m_Operands.end(), operand, std::less<const void*>());
    return static_cast<uint32_t>(found - m_Operands.begin());
}

bool GestureProgram::Fits(const Gesture& gesture) const {
    for (uint64_t s = 0; s < gesture.GetSegmentSize(); ++s) {
        const Segment* segment = gesture.GetSegment(static_cast<size_t>(s));
        if (segment->GetQualificationNum() > kMaxCount) return false;
        for (size_t q = 0; q < segment->GetQualificationNum(); ++q) {
            const WideStep wide = StepOf(*segment->GetQualification(q));
            if (PlaceOf(wide.left) >= kMaxOperands || PlaceOf(wide.right) >= kMaxOperands) return false;
        }
    }
    return true;
}

bool GestureProgram::LayOutSegments(const std::vector<Gesture*>& gestures, uint64_t depth) {
    for (size_t g = 0; g < gestures.size(); ++g) {
        const Entry& entry = m_Gestures[g];
        if (depth >= entry.laidOut) continue;
        const Segment* segment = gestures[g]->GetSegment(static_cast<size_t>(depth));
        const size_t count = segment->GetQualificationNum();
        if (m_Steps.size() + count >= kMaxSteps) return false;
        m_Segments[entry.firstSegment + depth] = static_cast<uint32_t>(m_Steps.size() << kCountBits | count);
        for (size_t q = 0; q < count; ++q) {
            const WideStep wide = StepOf(*segment->GetQualification(q));
            m_Steps.push_back(Step{static_cast<uint16_t>(PlaceOf(wide.left)), static_cast<uint16_t>(PlaceOf(wide.right)),
                                   wide.operation, wide.onTrue, wide.onFalse});
        }
    }
    return true;
}

// Rebuilt into the same arrays: once they have grown to a table's size,
// rebuilding allocates nothing. Should the steps not fit one word's places
// (millions of them), every gesture is left to its objects.
void GestureProgram::Build(const std::vector<Gesture*>& gestures, const ValuesTable* literals) {
    CollectOperands(gestures, literals);
    CopyLiterals();
    m_Gestures.clear();
    m_Objects.clear();
    m_Segments.clear();
    m_Steps.clear();
    uint64_t deepest = 0;
    for (Gesture* gesture : gestures) {
        m_Objects.push_back(gesture);
        const uint64_t segments = gesture ? gesture->GetSegmentSize() : 0;
        Entry entry{kIndirect, static_cast<uint32_t>(segments), 0};
        if (IsComplete(gesture) && Fits(*gesture)) {
            entry.firstSegment = static_cast<uint32_t>(m_Segments.size());
            entry.laidOut = entry.segmentCount;
            m_Segments.resize(m_Segments.size() + segments);
            deepest = std::max(deepest, segments);
        }
        m_Gestures.push_back(entry);
    }
    for (uint64_t depth = 0; depth < deepest; ++depth) {
        if (LayOutSegments(gestures, depth)) continue;
        for (Entry& entry : m_Gestures) entry = Entry{kIndirect, entry.segmentCount, 0};
        m_Segments.clear();
        m_Steps.clear();
        return;
    }
}

Qualification::Result GestureProgram::Fallback(const Gesture* gesture, size_t segmentIndex) {
    return gesture->Evaluate(segmentIndex);
}

}  // namespace PelmoraLib
