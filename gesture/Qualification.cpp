#include "gesture/Qualification.h"

#include <cstdint>
#include <cstdio>
#include <functional>
#include <map>
#include <string>

#include "engine/Pelmora.h"
#include "gesture/GestureProgram.h"
#include "values/IdentifyValues.h"
#include "values/PartStorage.h"

namespace PelmoraLib {

namespace {

const char* const kKindNames[] = {"Equal", "NoEqual", "Greate", "Less", "EGreate", "ELess", "Count", "Error"};
const char* const kResultNames[] = {"Succeed", "Failed", "Reset", "Succeed_Finish"};

// Mixed int and float parts meet in the usual arithmetic conversions: the int
// is converted to single precision.
template <class T>
T Number(BaseValue* part);
template <>
int32_t Number<int32_t>(BaseValue* part) { return *part->GetValue().i; }
template <>
float Number<float>(BaseValue* part) { return *part->GetValue().f; }

template <class Left, class Right, class Op>
bool Compare(BaseValue* left, BaseValue* right) {
    return Op()(Number<Left>(left), Number<Right>(right));
}

uint64_t ComparisonKey(Qualification::QualificationEnum kind, BaseValue::Type left, BaseValue::Type right) {
    return static_cast<uint64_t>(kind & 0xFFFF) | (static_cast<uint64_t>(left & 0xFFFF) << 16) |
           (static_cast<uint64_t>(right & 0xFFFF) << 32);
}

template <class Op>
void Register(std::map<uint64_t, Qualification::CompareFunction>& map, Qualification::QualificationEnum kind) {
    map[ComparisonKey(kind, BaseValue::Int, BaseValue::Int)] = &Compare<int32_t, int32_t, Op>;
    map[ComparisonKey(kind, BaseValue::Float, BaseValue::Int)] = &Compare<float, int32_t, Op>;
    map[ComparisonKey(kind, BaseValue::Int, BaseValue::Float)] = &Compare<int32_t, float, Op>;
    map[ComparisonKey(kind, BaseValue::Float, BaseValue::Float)] = &Compare<float, float, Op>;
}

std::map<uint64_t, Qualification::CompareFunction> BuildComparisons() {
    std::map<uint64_t, Qualification::CompareFunction> map;
    Register<std::equal_to<>>(map, Qualification::Equal);
    Register<std::not_equal_to<>>(map, Qualification::NoEqual);
    Register<std::greater<>>(map, Qualification::Greate);
    Register<std::less<>>(map, Qualification::Less);
    Register<std::greater_equal<>>(map, Qualification::EGreate);
    Register<std::less_equal<>>(map, Qualification::ELess);
    return map;
}

const std::map<uint64_t, Qualification::CompareFunction>& Comparisons() {
    static const std::map<uint64_t, Qualification::CompareFunction> map = BuildComparisons();
    return map;
}

// The outcomes (below, above, equal, unordered) for which each kind holds,
// by QualificationEnum: exactly the IEEE results of ==, !=, >, <, >=, <=.
const uint8_t kHolds[] = {4, 1 | 2 | 8, 2, 1, 2 | 4, 1 | 4};

const std::map<std::string, Qualification::QualificationEnum>& Keywords() {
    static const std::map<std::string, Qualification::QualificationEnum> map = {
        {"Equal", Qualification::Equal},     {"NoEqual", Qualification::NoEqual}, {"Greate", Qualification::Greate},
        {"Less", Qualification::Less},       {"EGreate", Qualification::EGreate}, {"ELess", Qualification::ELess},
    };
    return map;
}

}  // namespace

Qualification::Qualification() {
    Keywords();
    Comparisons();
}

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
    Comparisons();
    if (!name) return Error;
    const auto found = Keywords().find(name);
    return found == Keywords().end() ? Error : found->second;
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
    const auto found = Comparisons().find(ComparisonKey(kind, type1, type2));
    if (found == Comparisons().end()) return false;
    m_QualificationEnum = kind;
    m_Compare = found->second;
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
    if (m_QualificationEnum < Equal || m_QualificationEnum > ELess) return;
    const void* leftStorage = PartStorage::Of(left);
    const void* rightStorage = PartStorage::Of(right);
    if (!leftStorage || !rightStorage) return;
    const bool leftInt = left->GetType() == BaseValue::Int, rightInt = right->GetType() == BaseValue::Int;
    m_LeftStorage = leftStorage;
    m_RightStorage = rightStorage;
    m_Holds = kHolds[m_QualificationEnum];
    m_Operands = leftInt ? (rightInt ? kIntInt : kIntFloat) : (rightInt ? kFloatInt : kFloatFloat);
}

Qualification::Result Qualification::Check() { return Evaluate(); }

Qualification::Result Qualification::CheckGeneral() {
    if (!m_Compare) return Failed;
    BaseValue* part2 = m_Value2->GetSubValue(m_SubType2);
    BaseValue* part1 = m_Value1->GetSubValue(m_SubType1);
    Result result = m_Compare(part1, part2) ? Succeed : (m_IsResetOnFailed ? Reset : Failed);
    if (m_IsFinishOnSucceed) result = Succeed_Finish;
    return result;
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
