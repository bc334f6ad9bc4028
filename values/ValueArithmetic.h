// ValueArithmetic - the + - * / operators between float, float-reference and
// vector values. Each returns a new unnamed value; operands are unchanged.
// Scalars combine with every component of a vector (scalar on the left stays
// on the left); two vectors combine component by component. Divisions are
// plain float divisions. An unbound float reference prints
// "ref float value is NULL!" and reads as 0.
// Thread-safety: pure functions.
#pragma once

#include "values/FloatValue.h"
#include "values/RefFloatValue.h"
#include "values/Vector3Value.h"

namespace PelmoraLib {

#define PELMORA_DECLARE_ARITHMETIC(Result, Left, Right)                      \
    PELMORA_API Result operator+(const Left& left, const Right& right);     \
    PELMORA_API Result operator-(const Left& left, const Right& right);     \
    PELMORA_API Result operator*(const Left& left, const Right& right);     \
    PELMORA_API Result operator/(const Left& left, const Right& right);

PELMORA_DECLARE_ARITHMETIC(FloatValue, FloatValue, FloatValue)
PELMORA_DECLARE_ARITHMETIC(FloatValue, FloatValue, RefFloatValue)
PELMORA_DECLARE_ARITHMETIC(FloatValue, RefFloatValue, FloatValue)
PELMORA_DECLARE_ARITHMETIC(FloatValue, RefFloatValue, RefFloatValue)
PELMORA_DECLARE_ARITHMETIC(Vector3Value, FloatValue, Vector3Value)
PELMORA_DECLARE_ARITHMETIC(Vector3Value, RefFloatValue, Vector3Value)
PELMORA_DECLARE_ARITHMETIC(Vector3Value, Vector3Value, FloatValue)
PELMORA_DECLARE_ARITHMETIC(Vector3Value, Vector3Value, Vector3Value)

#undef PELMORA_DECLARE_ARITHMETIC

}  // namespace PelmoraLib
