// FloatValue - a 32-bit float value of a player's pool ("float").
// Thread-safety: none; used by the thread that updates its player.
#pragma once

#include "values/BaseValue.h"

namespace PelmoraLib {

class PELMORA_API FloatValue : public BaseValue {
public:
    static const RTTI ms_RTTI;

    FloatValue() = default;
    explicit FloatValue(const char* name) : BaseValue(name) {}
    // An unnamed value holding a number: what the arithmetic operators return.
    explicit FloatValue(float value) : m_Value(value) {}
    FloatValue(const FloatValue& other) = default;
    FloatValue& operator=(const FloatValue& other) = default;

    const RTTI* GetRTTI() const override { return &ms_RTTI; }
    Type GetType() const override { return Float; }
    CommonPtr GetValue() override;

    float Get() const { return m_Value; }
    void Set(float value) { m_Value = value; }

private:
    float m_Value = 0.0f;
};

}  // namespace PelmoraLib
