// Qualification - one comparison between two values (or value components) of
// a player's pool: the smallest unit of a gesture. The comparison routine is
// chosen once from the operand types; each check re-reads the live values.
// Comparisons are exact (no tolerance) and follow IEEE rules for NaN.
// Checking is the innermost step of every frame, so SetQualification also
// finds where the two compared numbers are stored when that is fixed (a
// pool value lives as long as its pool and never moves): a check then reads
// them directly instead of going through the values' virtual accessors.
// Thread-safety: none; checked by the thread that updates its player. The
// keyword and comparison tables are built once per process, thread-safely.
#pragma once

#include <cstdint>

#include "PelmoraExport.h"
#include "values/BaseValue.h"

namespace PelmoraLib {

class PELMORA_API Qualification {
public:
    enum QualificationEnum { Equal = 0, NoEqual, Greate, Less, EGreate, ELess, Count, Error };
    enum Result { Succeed = 0, Failed = 1, Reset = 2, Succeed_Finish = 3 };
    // The outcome of comparing two parts (see Compare).
    using CompareFunction = unsigned (*)(BaseValue* left, BaseValue* right);

    Qualification();
    Qualification(const Qualification& other) = default;
    // Changes a definition that gesture programs may have copied.
    Qualification& operator=(const Qualification& other);

    // Exact, case-sensitive keyword ("Equal" ... "ELess") to kind; Error otherwise.
    static QualificationEnum GetQualificationEnum(const char* name);
    static const char* GetQualificationEnumName(QualificationEnum kind);
    static const char* GetResultName(Result result);

    // False (and nothing changes) when no comparison exists for the kind and
    // the operand parts' types: only int and float parts compare.
    bool SetQualification(QualificationEnum kind, BaseValue* value1, BaseValue::SubType subType1, BaseValue* value2,
                          BaseValue::SubType subType2);

    Result Check();
    Result CheckAndPrint();
    // Check, inline for the segment loop.
    inline Result Evaluate();

    void SetResetOnFailed(bool on);
    void SetFinishOnSucceed(bool on);
    bool IsResetOnFailed() const { return m_IsResetOnFailed; }
    bool IsFinishOnSucceed() const { return m_IsFinishOnSucceed; }
    QualificationEnum GetKind() const { return m_QualificationEnum; }

private:
    friend class GestureProgram;

    // How the compared numbers are read: kGeneral through the values on every
    // check (also before SetQualification succeeded), otherwise straight
    // from the storage found by SetQualification, with the types it found.
    enum Operands : uint8_t { kGeneral = 0, kIntInt, kFloatFloat, kIntFloat, kFloatInt };

    // The outcome of comparing left with right, as one bit (unordered: a
    // NaN). A kind holds for a set of them (m_Holds): every route of a check,
    // and the gesture program, decide by that one set.
    enum Outcome : uint8_t { kBelow = 1, kAbove = 2, kEqual = 4, kUnordered = 8 };

    Result CheckGeneral();
    void ResolveOperands();
    static uint8_t HoldsFor(QualificationEnum kind);
    static CompareFunction ComparisonFor(BaseValue::Type left, BaseValue::Type right);
    template <class Left, class Right>
    static unsigned CompareParts(BaseValue* left, BaseValue* right);
    static unsigned Compare(int32_t left, int32_t right) {
        return static_cast<unsigned>(left < right) | static_cast<unsigned>(left > right) << 1 |
               static_cast<unsigned>(left == right) << 2;
    }
    static unsigned Compare(float left, float right) {
        const unsigned ordered = static_cast<unsigned>(left < right) | static_cast<unsigned>(left > right) << 1 |
                                 static_cast<unsigned>(left == right) << 2;
        return ordered | static_cast<unsigned>(ordered == 0) << 3;
    }
    // What a check gives when the kind holds, or does not.
    Result ResultOf(bool holds) const {
        if (m_IsFinishOnSucceed) return Succeed_Finish;
        if (holds) return Succeed;
        return m_IsResetOnFailed ? Reset : Failed;
    }
    static float AsFloat(const void* storage, bool isInt) {
        return isInt ? static_cast<float>(*static_cast<const int32_t*>(storage)) : *static_cast<const float*>(storage);
    }

    BaseValue* m_Value1 = nullptr;
    BaseValue* m_Value2 = nullptr;
    BaseValue::SubType m_SubType1 = BaseValue::SubWhole;
    BaseValue::SubType m_SubType2 = BaseValue::SubWhole;
    CompareFunction m_Compare = nullptr;
    QualificationEnum m_QualificationEnum = Error;
    bool m_IsResetOnFailed = false;
    bool m_IsFinishOnSucceed = false;
    Operands m_Operands = kGeneral;
    uint8_t m_Holds = 0;  // the outcomes for which the kind holds
    const void* m_LeftStorage = nullptr;
    const void* m_RightStorage = nullptr;
};

inline Qualification::Result Qualification::Evaluate() {
    if (m_Operands == kGeneral) return CheckGeneral();
    unsigned outcome;
    if (m_Operands == kIntInt) {
        outcome = Compare(*static_cast<const int32_t*>(m_LeftStorage), *static_cast<const int32_t*>(m_RightStorage));
    } else {
        // Mixed int and float compare in single precision, as the general route does.
        outcome = Compare(AsFloat(m_LeftStorage, m_Operands == kIntFloat), AsFloat(m_RightStorage, m_Operands == kFloatInt));
    }
    return ResultOf((outcome & m_Holds) != 0);
}

}  // namespace PelmoraLib
