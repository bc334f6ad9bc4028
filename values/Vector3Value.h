// Vector3Value - a three-component float value ("vector3"): joint positions,
// velocities and declared vectors. It owns three unnamed float references bound
// to its own x, y and z, so that ".x", ".y" and ".z" are values too.
// A copy-constructed vector's components keep referring to the source's
// floats, and assignment copies only x, y and z: both are the defined copy
// rules. Results are therefore always returned as temporaries, never copied
// out of a named local.
// Thread-safety: none; used by the thread that updates its player.
#pragma once

#include "values/RefFloatValue.h"

namespace PelmoraLib {

class PELMORA_API Vector3Value : public BaseValue {
public:
    static const RTTI ms_RTTI;

    Vector3Value();
    explicit Vector3Value(const char* name);
    Vector3Value(float x, float y, float z);
    Vector3Value(const Vector3Value& other);
    Vector3Value& operator=(const Vector3Value& other);

    const RTTI* GetRTTI() const override { return &ms_RTTI; }
    Type GetType() const override { return Vector3; }
    CommonPtr GetValue() override;
    BaseValue* GetSubValue(SubType sub) override;

    float X() const { return m_XYZ[0]; }
    float Y() const { return m_XYZ[1]; }
    float Z() const { return m_XYZ[2]; }
    const float* Data() const { return m_XYZ; }
    void Set(float x, float y, float z);

    float Dot(const Vector3Value& v) const;
    Vector3Value Cross(const Vector3Value& v) const;
    float SqrLength() const;
    float Length() const;
    Vector3Value Normalize() const;
    float SqrDistance(const Vector3Value& v) const;
    float Distance(const Vector3Value& v) const;
    float Angle(const Vector3Value& v) const;

private:
    float m_XYZ[3] = {0.0f, 0.0f, 0.0f};
    RefFloatValue m_XValue;
    RefFloatValue m_YValue;
    RefFloatValue m_ZValue;
};

}  // namespace PelmoraLib
