#include "values/ValueArithmetic.h"

#include <cstdio>
#include <functional>

namespace PelmoraLib {

namespace {

// What an operand contributes: a number (scalar) or a triple (vector).
struct Operand {
    float xyz[3];
    bool valid;
};

Operand Read(const FloatValue& value) { return {{value.Get(), value.Get(), value.Get()}, true}; }

Operand Read(const RefFloatValue& value) {
    if (!value.Ref()) {
        printf("ref float value is NULL!\n");
        return {{0.0f, 0.0f, 0.0f}, false};
    }
    const float f = *value.Ref();
    return {{f, f, f}, true};
}

Operand Read(const Vector3Value& value) { return {{value.X(), value.Y(), value.Z()}, true}; }

template <class Op, class Left, class Right>
FloatValue Scalar(const Left& left, const Right& right) {
    const Operand a = Read(left);
    if (!a.valid) return FloatValue(0.0f);
    const Operand b = Read(right);
    if (!b.valid) return FloatValue(0.0f);
    return FloatValue(Op()(a.xyz[0], b.xyz[0]));
}

template <class Op, class Left, class Right>
Vector3Value Vector(const Left& left, const Right& right) {
    const Operand a = Read(left);
    const Operand b = Read(right);
    const Op op;
    return Vector3Value(op(a.xyz[0], b.xyz[0]), op(a.xyz[1], b.xyz[1]), op(a.xyz[2], b.xyz[2]));
}

}  // namespace

#define PELMORA_DEFINE_ARITHMETIC(Result, Left, Right, Combine)                                                     \
    Result operator+(const Left& l, const Right& r) { return Combine<std::plus<float>>(l, r); }                  \
    Result operator-(const Left& l, const Right& r) { return Combine<std::minus<float>>(l, r); }                 \
    Result operator*(const Left& l, const Right& r) { return Combine<std::multiplies<float>>(l, r); }            \
    Result operator/(const Left& l, const Right& r) { return Combine<std::divides<float>>(l, r); }

PELMORA_DEFINE_ARITHMETIC(FloatValue, FloatValue, FloatValue, Scalar)
PELMORA_DEFINE_ARITHMETIC(FloatValue, FloatValue, RefFloatValue, Scalar)
PELMORA_DEFINE_ARITHMETIC(FloatValue, RefFloatValue, FloatValue, Scalar)
PELMORA_DEFINE_ARITHMETIC(FloatValue, RefFloatValue, RefFloatValue, Scalar)
PELMORA_DEFINE_ARITHMETIC(Vector3Value, FloatValue, Vector3Value, Vector)
PELMORA_DEFINE_ARITHMETIC(Vector3Value, RefFloatValue, Vector3Value, Vector)
PELMORA_DEFINE_ARITHMETIC(Vector3Value, Vector3Value, FloatValue, Vector)
PELMORA_DEFINE_ARITHMETIC(Vector3Value, Vector3Value, Vector3Value, Vector)

#undef PELMORA_DEFINE_ARITHMETIC

}  // namespace PelmoraLib
