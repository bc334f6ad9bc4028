// IntValue - a signed 32-bit value of a player's pool ("int" in a configuration).
// Thread-safety: none; used by the thread that updates its player.
#pragma once

#include <cstdint>

#include "values/BaseValue.h"

namespace PelmoraLib {

class PELMORA_API IntValue : public BaseValue {
public:
    static const RTTI ms_RTTI;

    IntValue() = default;
    explicit IntValue(const char* name) : BaseValue(name) {}
    IntValue(const IntValue& other) = default;
    IntValue& operator=(const IntValue& other) = default;

    const RTTI* GetRTTI() const override { return &ms_RTTI; }
    Type GetType() const override { return Int; }
    CommonPtr GetValue() override;

    int32_t Get() const { return m_Value; }
    void Set(int32_t value) { m_Value = value; }

private:
    int32_t m_Value = 0;
};

}  // namespace PelmoraLib
