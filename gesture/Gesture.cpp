#include "gesture/Gesture.h"

#include <cstdio>

#include "gesture/GestureProgram.h"

namespace PelmoraLib {

Gesture::~Gesture() { Clear(); }

void Gesture::Clear() {
    for (Segment* segment : m_Segments) delete segment;
    m_Segments.clear();
    GestureEpoch::Advance();
}

void Gesture::AddSegment(Segment* segment) {
    m_Segments.push_back(segment);
    GestureEpoch::Advance();
}

Qualification::Result Gesture::SegmentOutOfRange() {
    printf("SegmentIndex Out of range!!\n");
    return Qualification::Failed;
}

Qualification::Result Gesture::DoCheck(size_t segmentIndex) { return Evaluate(segmentIndex); }

Qualification::Result Gesture::DoCheckAndPrint(size_t segmentIndex) {
    if (segmentIndex >= m_Segments.size()) {
        printf("SegmentIndex Out of range!!\n");
        return Qualification::Failed;
    }
    const int index = static_cast<int>(segmentIndex);
    printf("---Begin To Check Gesture(%s), Segment(%d)\n", m_Name.c_str(), index);
    const Qualification::Result result = m_Segments[segmentIndex]->CheckAndPrint();
    // The result is printed through the comparison-kind names (Succeed shows
    // as "Equal"): long-standing log format that log readers rely on.
    printf("---End To Check Gesture(%s), Segment(%d). Result:(%s)\n", m_Name.c_str(), index,
           Qualification::GetQualificationEnumName(static_cast<Qualification::QualificationEnum>(result)));
    return result;
}

}  // namespace PelmoraLib
