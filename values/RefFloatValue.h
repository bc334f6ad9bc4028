// RefFloatValue - a float value that refers to a float owned elsewhere; a
// vector's components are such references, so ".x" can stand wherever a float
// value is expected. It never owns the float.
// Thread-safety: none; used by the thread that updates its player.
#pragma once

#include "values/BaseValue.h"

namespace PelmoraLib {

class FloatValue;

class PELMORA_API RefFloatValue : public BaseValue {
public:
    static const RTTI ms_RTTI;

    RefFloatValue() = default;
    explicit RefFloatValue(float& ref) : m_Ref(&ref) {}
    RefFloatValue(const char* name, float& ref) : BaseValue(name), m_Ref(&ref) {}
    // Copies share the referred float.
    RefFloatValue(const RefFloatValue& other) = default;
    RefFloatValue& operator=(const RefFloatValue& other) = default;
    // Writes through the reference; an unbound reference binds to the
    // right-hand value's own float instead.
    RefFloatValue& operator=(FloatValue& value);

    const RTTI* GetRTTI() const override { return &ms_RTTI; }
    Type GetType() const override { return Float; }
    CommonPtr GetValue() override;

    void SetRef(float& ref) { m_Ref = &ref; }
    float* Ref() const { return m_Ref; }

private:
    float* m_Ref = nullptr;
};

}  // namespace PelmoraLib
