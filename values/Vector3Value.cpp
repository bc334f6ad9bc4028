#include "values/Vector3Value.h"

#include <cstdio>

#include "values/VectorMath.h"

namespace PelmoraLib {

const RTTI Vector3Value::ms_RTTI("Vector3Value", &BaseValue::ms_RTTI);

Vector3Value::Vector3Value() : m_XValue(m_XYZ[0]), m_YValue(m_XYZ[1]), m_ZValue(m_XYZ[2]) {}

Vector3Value::Vector3Value(const char* name)
    : BaseValue(name), m_XValue(m_XYZ[0]), m_YValue(m_XYZ[1]), m_ZValue(m_XYZ[2]) {}

Vector3Value::Vector3Value(float x, float y, float z) : Vector3Value() { Set(x, y, z); }

Vector3Value::Vector3Value(const Vector3Value& other)
    : BaseValue(other),
      m_XYZ{other.m_XYZ[0], other.m_XYZ[1], other.m_XYZ[2]},
      m_XValue(other.m_XValue),
      m_YValue(other.m_YValue),
      m_ZValue(other.m_ZValue) {}

Vector3Value& Vector3Value::operator=(const Vector3Value& other) {
    Set(other.m_XYZ[0], other.m_XYZ[1], other.m_XYZ[2]);
    return *this;
}

CommonPtr Vector3Value::GetValue() {
    CommonPtr ptr;
    ptr.v3 = m_XYZ;
    return ptr;
}

BaseValue* Vector3Value::GetSubValue(SubType sub) {
    switch (sub) {
        case SubX: return &m_XValue;
        case SubY: return &m_YValue;
        case SubZ: return &m_ZValue;
        case SubW: printf("Vecto3Value Do not has .w! return this\n"); return this;
        default: return this;
    }
}

void Vector3Value::Set(float x, float y, float z) {
    m_XYZ[0] = x;
    m_XYZ[1] = y;
    m_XYZ[2] = z;
}

float Vector3Value::Dot(const Vector3Value& v) const { return VectorMath::Dot(m_XYZ, v.m_XYZ); }

Vector3Value Vector3Value::Cross(const Vector3Value& v) const {
    float out[3];
    VectorMath::Cross(m_XYZ, v.m_XYZ, out);
    return Vector3Value(out[0], out[1], out[2]);
}

float Vector3Value::SqrLength() const { return VectorMath::SqrLength(m_XYZ); }

float Vector3Value::Length() const { return VectorMath::Length(m_XYZ); }

Vector3Value Vector3Value::Normalize() const {
    float out[3];
    VectorMath::Normalize(m_XYZ, out);
    return Vector3Value(out[0], out[1], out[2]);
}

float Vector3Value::SqrDistance(const Vector3Value& v) const { return VectorMath::SqrDistance(m_XYZ, v.m_XYZ); }

float Vector3Value::Distance(const Vector3Value& v) const { return VectorMath::Distance(m_XYZ, v.m_XYZ); }

float Vector3Value::Angle(const Vector3Value& v) const { return VectorMath::Angle(m_XYZ, v.m_XYZ); }

}  // namespace PelmoraLib
