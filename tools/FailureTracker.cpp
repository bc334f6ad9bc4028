#include "tools/FailureTracker.h"

#include "engine/Pelmora.h"
#include "gesture/GestureTable.h"
#include "values/IdentifyValues.h"

namespace PelmoraTool {

namespace {

using PelmoraLib::BaseValue;
using PelmoraLib::Qualification;
using PelmoraLib::ValuesTable;

// Puts the record's gesture and segment times into the pool's "GestureTime"
// and "SegmentTime" for the re-check, and the pool's own back afterwards:
// every gesture of the frame wrote its times there in turn, and the next
// frame's processing still reads what the last one left.
class TimesOfRecord {
public:
    TimesOfRecord(PelmoraLib::IdentifyValues& pool, const PelmoraResult24& record)
        : m_Gesture(Storage(pool, ValuesTable::kGestureTimeIndex)),
          m_Segment(Storage(pool, ValuesTable::kSegmentTimeIndex)),
          m_SavedGesture(m_Gesture ? *m_Gesture : 0),
          m_SavedSegment(m_Segment ? *m_Segment : 0) {
        if (m_Gesture) *m_Gesture = record.gestureTimeMs;
        if (m_Segment) *m_Segment = record.segmentTimeMs;
    }

    ~TimesOfRecord() {
        if (m_Gesture) *m_Gesture = m_SavedGesture;
        if (m_Segment) *m_Segment = m_SavedSegment;
    }

    TimesOfRecord(const TimesOfRecord&) = delete;
    TimesOfRecord& operator=(const TimesOfRecord&) = delete;

private:
    static int* Storage(PelmoraLib::IdentifyValues& pool, uint64_t index) {
        BaseValue* value = pool.GetValue(static_cast<size_t>(index));
        return value && value->GetType() == BaseValue::Int ? value->GetValue().i : nullptr;
    }

    int* m_Gesture;
    int* m_Segment;
    int m_SavedGesture;
    int m_SavedSegment;
};

}  // namespace

Failure FailureTracker::Explain(int player, const PelmoraResult24& record, const std::vector<OperandPair>* operands) {
    PelmoraLib::Pelmora* engine = PelmoraLib::Pelmora::Get();
    PelmoraLib::IdentifyValues* pool = engine ? engine->GetIdentifyValue(player) : nullptr;
    PelmoraLib::GestureTable* table = engine ? engine->GetGestureTable(player) : nullptr;
    PelmoraLib::Gesture* gesture = table ? table->GetGesture(static_cast<size_t>(record.gestureIndex)) : nullptr;
    PelmoraLib::Segment* segment = gesture ? gesture->GetSegment(static_cast<size_t>(record.segmentIndex)) : nullptr;
    if (!pool || !segment) return Failure{};
    TimesOfRecord times(*pool, record);
    for (size_t q = 0; q < segment->GetQualificationNum(); ++q) {
        const Qualification::Result result = segment->GetQualification(q)->Check();
        if (result != Qualification::Failed && result != Qualification::Reset) continue;
        Failure failure{static_cast<int>(q), result == Qualification::Reset};
        if (operands && q < operands->size()) {
            failure.left = (*operands)[q].left.Read();
            failure.right = (*operands)[q].right.Read();
        }
        return failure;
    }
    return Failure{};
}

}  // namespace PelmoraTool
