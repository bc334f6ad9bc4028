#include "gesture/Segment.h"

#include "gesture/GestureProgram.h"

namespace PelmoraLib {

Segment::~Segment() {
    for (Qualification* qualification : m_Qualifications) delete qualification;
    GestureEpoch::Advance();
}

Qualification::Result Segment::OnCheck() { return Evaluate(); }

Qualification::Result Segment::CheckAndPrint() {
    for (Qualification* qualification : m_Qualifications) {
        const Qualification::Result result = qualification->CheckAndPrint();
        if (result != Qualification::Succeed) return result;
    }
    return Qualification::Succeed;
}

void Segment::AddQualification(Qualification* qualification) {
    m_Qualifications.push_back(qualification);
    GestureEpoch::Advance();
}

Qualification* Segment::GetQualification(size_t index) const {
    return index < m_Qualifications.size() ? m_Qualifications[index] : nullptr;
}

}  // namespace PelmoraLib
