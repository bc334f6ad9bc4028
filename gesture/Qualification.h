// Qualification - one comparison between two values (or value components) of
// a player's pool: the smallest unit of a gesture. The comparison routine is
// chosen once from the operand types; each check re-reads the live values.
// Comparisons are exact (no tolerance) and follow IEEE rules for NaN.
// Thread-safety: none; checked by the thread that updates its player. The
// keyword and comparison tables are built once per process, thread-safely.
#pragma once

#include "PelmoraExport.h"
#include "values/BaseValue.h"

namespace PelmoraLib {

class PELMORA_API Qualification {
public:
    enum QualificationEnum { Equal = 0, NoEqual, Greate, Less, EGreate, ELess, Count, Error };
    enum Result { Succeed = 0, Failed = 1, Reset = 2, Succeed_Finish = 3 };
    using CompareFunction = bool (*)(BaseValue* left, BaseValue* right);

    Qualification();

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

    void SetResetOnFailed(bool on) { m_IsResetOnFailed = on; }
    void SetFinishOnSucceed(bool on) { m_IsFinishOnSucceed = on; }
    bool IsResetOnFailed() const { return m_IsResetOnFailed; }
    bool IsFinishOnSucceed() const { return m_IsFinishOnSucceed; }
    QualificationEnum GetKind() const { return m_QualificationEnum; }

private:
    BaseValue* m_Value1 = nullptr;
    BaseValue* m_Value2 = nullptr;
    BaseValue::SubType m_SubType1 = BaseValue::SubWhole;
    BaseValue::SubType m_SubType2 = BaseValue::SubWhole;
    CompareFunction m_Compare = nullptr;
    QualificationEnum m_QualificationEnum = Error;
    bool m_IsResetOnFailed = false;
    bool m_IsFinishOnSucceed = false;
};

}  // namespace PelmoraLib
