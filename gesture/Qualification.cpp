#include "gesture/Qualification.h"

#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <type_traits>

#include "engine/Pelmora.h"
#include "gesture/GestureProgram.h"
#include "values/IdentifyValues.h"
#include "values/PartStorage.h"

namespace PelmoraLib {

namespace {

const char* const kKindNames[] = {"Equal", "NoEqual", "Greate", "Less", "EGreate", "ELess", "Count", "Error"};
const char* const kResultNames[] = {"Succeed", "Failed", "Reset", "Succeed_Finish"};

template <class T>
T Number(BaseValue* part);
template <>
int32_t Number<int32_t>(BaseValue* part) { return *part->GetValue().i; }
template <>
float Number<float>(BaseValue* part) { return *part->GetValue().f; }

const std::map<std::string, Qualification::QualificationEnum>& Keywords() {
    static const std::map<std::string, Qualification::QualificationEnum> map = {
        {"Equal", Qualification::Equal},     {"NoEqual", Qualification::NoEqual}, {"Greate", Qualification::Greate},
        {"Less", Qualification::Less},       {"EGreate", Qualification::EGreate}, {"ELess", Qualification::ELess},
    };
    return map;
}

}  // namespace

Qualification::Qualification() { Keywords(); }

Qualification& Qualification::operator=(const Qualification& other) {
    m_Value1 = other.m_Value1;
    m_Value2 = other.m_Value2;
    m_SubType1 = other.m_SubType1;
    m_SubType2 = other.m_SubType2;
    m_Compare = other.m_Compare;
    m_QualificationEnum = other.m_QualificationEnum;
    m_IsResetOnFailed = other.m_IsResetOnFailed;
    m_IsFinishOnSucceed = other.m_IsFinishOnSucceed;
    m_Operands = other.m_Operands;
    m_Holds = other.m_Holds;
    m_LeftStorage = other.m_LeftStorage;
    m_RightStorage = other.m_RightStorage;
    GestureEpoch::Advance();
    return *this;
}

void Qualification::SetResetOnFailed(bool on) {
    m_IsResetOnFailed = on;
    GestureEpoch::Advance();
}

void Qualification::SetFinishOnSucceed(bool on) {
    m_IsFinishOnSucceed = on;
    GestureEpoch::Advance();
}

Qualification::QualificationEnum Qualification::GetQualificationEnum(const char* name) {
    if (!name) return Error;
    const auto found = Keywords().find(name);
    return found == Keywords().end() ? Error : found->second;
}

// Mixed int and float parts meet in the usual arithmetic conversions: the int
// is converted to single precision.
template <class Left, class Right>
unsigned Qualification::CompareParts(BaseValue* left, BaseValue* right) {
    using Common = typename std::conditional<std::is_same<Left, Right>::value, Left, float>::type;
    return Compare(static_cast<Common>(Number<Left>(left)), static_cast<Common>(Number<Right>(right)));
}

// The outcomes for which a kind (Equal ... ELess) holds: exactly the IEEE
// results of ==, !=, >, <, >=, <=.
uint8_t Qualification::HoldsFor(QualificationEnum kind) {
    static const uint8_t holds[] = {kEqual, kBelow | kAbove | kUnordered, kAbove, kBelow, kAbove | kEqual, kBelow | kEqual};
    return holds[kind];
}

// Only int and float parts compare.
Qualification::CompareFunction Qualification::ComparisonFor(BaseValue::Type left, BaseValue::Type right) {
    const bool leftInt = left == BaseValue::Int, rightInt = right == BaseValue::Int;
    if ((!leftInt && left != BaseValue::Float) || (!rightInt && right != BaseValue::Float)) return nullptr;
    if (leftInt) return rightInt ? &CompareParts<int32_t, int32_t> : &CompareParts<int32_t, float>;
    return rightInt ? &CompareParts<float, int32_t> : &CompareParts<float, float>;
}

const char* Qualification::GetQualificationEnumName(QualificationEnum kind) {
    return kind >= Equal && kind <= Error ? kKindNames[kind] : "";
}

const char* Qualification::GetResultName(Result result) {
    return result >= Succeed && result <= Succeed_Finish ? kResultNames[result] : "";
}

bool Qualification::SetQualification(QualificationEnum kind, BaseValue* value1, BaseValue::SubType subType1,
                                      BaseValue* value2, BaseValue::SubType subType2) {
    if (!value1 || !value2) return false;
    const BaseValue::Type type2 = value2->GetSubValue(subType2)->GetType();
    const BaseValue::Type type1 = value1->GetSubValue(subType1)->GetType();
    const CompareFunction compare = ComparisonFor(type1, type2);
    if (kind < Equal || kind > ELess || !compare) return false;
    m_QualificationEnum = kind;
    m_Compare = compare;
    m_Holds = HoldsFor(kind);
    m_Value1 = value1;
    m_Value2 = value2;
    m_SubType1 = subType1;
    m_SubType2 = subType2;
    ResolveOperands();
    GestureEpoch::Advance();
    return true;
}

// The comparison found by SetQualification takes int and float parts only,
// so a resolved part's storage holds one number of the part's type.
void Qualification::ResolveOperands() {
    m_Operands = kGeneral;
    BaseValue* left = PartStorage::FixedPart(m_Value1, m_SubType1);
    BaseValue* right = PartStorage::FixedPart(m_Value2, m_SubType2);
    const void* leftStorage = PartStorage::Of(left);
    const void* rightStorage = PartStorage::Of(right);
    if (!leftStorage || !rightStorage) return;
    const bool leftInt = left->GetType() == BaseValue::Int, rightInt = right->GetType() == BaseValue::Int;
    m_LeftStorage = leftStorage;
    m_RightStorage = rightStorage;
    m_Operands = leftInt ? (rightInt ? kIntInt : kIntFloat) : (rightInt ? kFloatInt : kFloatFloat);
}

Qualification::Result Qualification::Check() { return Evaluate(); }

Qualification::Result Qualification::CheckGeneral() {
    if (!m_Compare) return Failed;
    BaseValue* part2 = m_Value2->GetSubValue(m_SubType2);
    BaseValue* part1 = m_Value1->GetSubValue(m_SubType1);
    return ResultOf((m_Compare(part1, part2) & m_Holds) != 0);
}

Qualification::Result Qualification::CheckAndPrint() {
    const Result result = Check();
    if (!Pelmora::Get("PelmoraLib::Qualification::CheckAndPrint", 186)) return result;
    std::string line = GetResultName(result);
    line += ":";
    line += GetQualificationEnumName(m_QualificationEnum);
    line += "( ";
    IdentifyValues::ValueToString(m_Value1, m_SubType1, line);
    line += " , ";
    IdentifyValues::ValueToString(m_Value2, m_SubType2, line);
    line += " )";
    printf("%s\n", line.c_str());
    return result;
}

}  // namespace PelmoraLib
