#include "values/BaseValue.h"

#include <cstdio>

namespace PelmoraLib {

const RTTI BaseValue::ms_RTTI("BaseValue", nullptr);

BaseValue::BaseValue() : m_Flag(true) {}

BaseValue::BaseValue(const char* name) : m_Name(name ? name : ""), m_Flag(true) {}

BaseValue::BaseValue(const BaseValue& other) : m_Flag(other.m_Flag) {}

BaseValue& BaseValue::operator=(const BaseValue& other) {
    if (this != &other) {
        m_Name = other.m_Name;
        m_Flag = other.m_Flag;
    }
    return *this;
}

BaseValue::~BaseValue() = default;

CommonPtr BaseValue::GetValue() {
    CommonPtr ptr;
    ptr.p = nullptr;
    return ptr;
}

BaseValue* BaseValue::GetSubValue(SubType sub) {
    if (sub >= SubX && sub <= SubW) printf("this type do not has any sub value, return this\n");
    return this;
}

bool BaseValue::IsExactKindOf(const RTTI* rtti) const { return GetRTTI() == rtti; }

bool BaseValue::IsExactKindOf(const RTTI* rtti, const BaseValue* value) {
    return value && value->IsExactKindOf(rtti);
}

bool BaseValue::IsKindOf(const RTTI* rtti) const {
    for (const RTTI* own = GetRTTI(); own; own = own->GetBaseRTTI()) {
        if (own == rtti) return true;
    }
    return false;
}

bool BaseValue::IsKindOf(const RTTI* rtti, const BaseValue* value) {
    return value && value->IsKindOf(rtti);
}

BaseValue* BaseValue::DynamicCast(const RTTI* rtti) const {
    return IsKindOf(rtti) ? const_cast<BaseValue*>(this) : nullptr;
}

BaseValue* BaseValue::DynamicCast(const RTTI* rtti, const BaseValue* value) {
    return value ? value->DynamicCast(rtti) : nullptr;
}

BaseValue* BaseValue::VerifyStaticCastDebug(const RTTI* rtti, const BaseValue* value) {
    return DynamicCast(rtti, value);
}

void BaseValue::SetName(const char* name) { m_Name = name ? name : ""; }

}  // namespace PelmoraLib
