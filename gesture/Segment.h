// Segment - one step of a gesture: qualifications that must all hold in the
// same frame. The first one that does not hold decides between Failed and
// Reset; a qualification flagged to finish ends the check with Succeed_Finish
// when it is reached, whatever it compared.
// Thread-safety: none; checked by the thread that updates its player.
#pragma once

#include <vector>

#include "gesture/Qualification.h"

namespace PelmoraLib {

class PELMORA_API Segment {
public:
    Segment() = default;
    ~Segment();
    // A segment owns its qualifications; copies would free them twice.
    Segment(const Segment&) = delete;
    Segment& operator=(const Segment&) = delete;

    Qualification::Result OnCheck();
    Qualification::Result CheckAndPrint();
    // OnCheck, inline for the gesture loop.
    inline Qualification::Result Evaluate() const;

    // Takes ownership; used by the configuration compiler.
    void AddQualification(Qualification* qualification);
    void Reserve(size_t count) { m_Qualifications.reserve(count); }
    size_t GetQualificationNum() const { return m_Qualifications.size(); }
    Qualification* GetQualification(size_t index) const;

private:
    std::vector<Qualification*> m_Qualifications;
};

inline Qualification::Result Segment::Evaluate() const {
    for (Qualification* qualification : m_Qualifications) {
        const Qualification::Result result = qualification->Evaluate();
        if (result != Qualification::Succeed) return result;
    }
    return Qualification::Succeed;
}

}  // namespace PelmoraLib
