#include "processing/FunctionRoutines.h"

#include <atomic>
#include <cmath>
#include <cstdio>

#include "processing/ScalarConversion.h"
#include "values/VectorMath.h"

namespace PelmoraLib {
namespace FunctionRoutines {

namespace {

const BaseValue::Type kInt = BaseValue::Int;
const BaseValue::Type kFloat = BaseValue::Float;
const BaseValue::Type kVector = BaseValue::Vector3;

// ---- Reading and writing a value's storage in the routine's scalar type.

template <class T>
T Get(BaseValue* value);
template <>
int32_t Get<int32_t>(BaseValue* value) { return *value->GetValue().i; }
template <>
float Get<float>(BaseValue* value) { return *value->GetValue().f; }

void Put(BaseValue* value, int32_t number) { *value->GetValue().i = number; }
void Put(BaseValue* value, float number) { *value->GetValue().f = number; }

template <class Result>
struct Store;
template <>
struct Store<int32_t> {
    static void From(BaseValue* value, int32_t number) { Put(value, number); }
    static void From(BaseValue* value, float number) { Put(value, ScalarConversion::ToInt(number)); }
};
template <>
struct Store<float> {
    static void From(BaseValue* value, int32_t number) { Put(value, static_cast<float>(number)); }
    static void From(BaseValue* value, float number) { Put(value, number); }
};

// ---- The four arithmetic operations, for ints (defined for every input) and floats.

void ReportIntegerDivisionByZero() {
    static std::atomic<bool> reported{false};
    if (!reported.exchange(true, std::memory_order_relaxed))
        printf("DIV Error! Integer division by zero, the result is 0.\n");
}

struct Add {
    static int32_t Int(int32_t a, int32_t b) { return ScalarConversion::Wrap(int64_t{a} + b); }
    static float Float(float a, float b) { return a + b; }
};
struct Sub {
    static int32_t Int(int32_t a, int32_t b) { return ScalarConversion::Wrap(int64_t{a} - b); }
    static float Float(float a, float b) { return a - b; }
};
struct Mul {
    static int32_t Int(int32_t a, int32_t b) { return ScalarConversion::Wrap(int64_t{a} * b); }
    static float Float(float a, float b) { return a * b; }
};
struct Div {
    static int32_t Int(int32_t a, int32_t b) {
        if (b == 0) {
            ReportIntegerDivisionByZero();
            return 0;
        }
        return ScalarConversion::Wrap(int64_t{a} / b);
    }
    static float Float(float a, float b) { return a / b; }
};

// Two ints compute in ints; any float makes both floats.
template <class Op>
int32_t Combine(int32_t a, int32_t b) { return Op::Int(a, b); }
template <class Op>
float Combine(int32_t a, float b) { return Op::Float(static_cast<float>(a), b); }
template <class Op>
float Combine(float a, int32_t b) { return Op::Float(a, static_cast<float>(b)); }
template <class Op>
float Combine(float a, float b) { return Op::Float(a, b); }

template <class Op, class Result, class First, class Second>
void Arithmetic(BaseValue* result, BaseValue* first, BaseValue* second) {
    Store<Result>::From(result, Combine<Op>(Get<First>(first), Get<Second>(second)));
}

// A scalar combines with every component; the scalar keeps its side.
template <class Op>
void ScalarVector(BaseValue* result, BaseValue* first, BaseValue* second) {
    const float s = Get<float>(first);
    const float* v = second->GetValue().v3;
    float* out = result->GetValue().v3;
    out[0] = Op::Float(s, v[0]);
    out[1] = Op::Float(s, v[1]);
    out[2] = Op::Float(s, v[2]);
}

template <class Op>
void VectorScalar(BaseValue* result, BaseValue* first, BaseValue* second) {
    const float* v = first->GetValue().v3;
    const float s = Get<float>(second);
    float* out = result->GetValue().v3;
    out[0] = Op::Float(v[0], s);
    out[1] = Op::Float(v[1], s);
    out[2] = Op::Float(v[2], s);
}

template <class Op>
void VectorVector(BaseValue* result, BaseValue* first, BaseValue* second) {
    const float* a = first->GetValue().v3;
    const float* b = second->GetValue().v3;
    float* out = result->GetValue().v3;
    out[0] = Op::Float(a[0], b[0]);
    out[1] = Op::Float(a[1], b[1]);
    out[2] = Op::Float(a[2], b[2]);
}

// ---- One-operand routines.

struct Set {
    template <class Result, class Operand>
    static void Apply(BaseValue* result, BaseValue* operand, BaseValue*) {
        Store<Result>::From(result, Get<Operand>(operand));
    }
};

// |INT_MIN| does not fit an int: it saturates instead of overflowing.
int32_t Absolute(int32_t number) {
    return number == INT32_MIN ? INT32_MAX : (number < 0 ? -number : number);
}
float Absolute(float number) { return std::fabs(number); }

struct Abs {
    template <class Result, class Operand>
    static void Apply(BaseValue* result, BaseValue* operand, BaseValue*) {
        Store<Result>::From(result, Absolute(Get<Operand>(operand)));
    }
};

void Length(BaseValue* result, BaseValue* operand, BaseValue*) {
    Put(result, VectorMath::Length(operand->GetValue().v3));
}
void SqrLength(BaseValue* result, BaseValue* operand, BaseValue*) {
    Put(result, VectorMath::SqrLength(operand->GetValue().v3));
}
void Normalize(BaseValue* result, BaseValue* operand, BaseValue*) {
    VectorMath::Normalize(operand->GetValue().v3, result->GetValue().v3);
}

// ---- Two-vector routines.

void Dot(BaseValue* result, BaseValue* a, BaseValue* b) { Put(result, VectorMath::Dot(a->GetValue().v3, b->GetValue().v3)); }
void Cross(BaseValue* result, BaseValue* a, BaseValue* b) {
    VectorMath::Cross(a->GetValue().v3, b->GetValue().v3, result->GetValue().v3);
}
void Distance(BaseValue* result, BaseValue* a, BaseValue* b) {
    Put(result, VectorMath::Distance(a->GetValue().v3, b->GetValue().v3));
}
void SqrDistance(BaseValue* result, BaseValue* a, BaseValue* b) {
    Put(result, VectorMath::SqrDistance(a->GetValue().v3, b->GetValue().v3));
}
void Angle(BaseValue* result, BaseValue* a, BaseValue* b) {
    Put(result, VectorMath::Angle(a->GetValue().v3, b->GetValue().v3));
}

// ---- Registry contents.

using Registry = std::map<uint64_t, Routine>;

// One operand: the key's last field is 0 (kInt).
template <class Conversion>
void RegisterScalarConversions(Registry& registry, BaseFunction::Type type) {
    registry[Key(type, kInt, kInt, kInt)] = &Conversion::template Apply<int32_t, int32_t>;
    registry[Key(type, kFloat, kInt, kInt)] = &Conversion::template Apply<float, int32_t>;
    registry[Key(type, kInt, kFloat, kInt)] = &Conversion::template Apply<int32_t, float>;
    registry[Key(type, kFloat, kFloat, kInt)] = &Conversion::template Apply<float, float>;
}

template <class Op>
void RegisterArithmetic(Registry& registry, BaseFunction::Type type) {
    registry[Key(type, kInt, kInt, kInt)] = &Arithmetic<Op, int32_t, int32_t, int32_t>;
    registry[Key(type, kInt, kInt, kFloat)] = &Arithmetic<Op, int32_t, int32_t, float>;
    registry[Key(type, kInt, kFloat, kInt)] = &Arithmetic<Op, int32_t, float, int32_t>;
    registry[Key(type, kInt, kFloat, kFloat)] = &Arithmetic<Op, int32_t, float, float>;
    registry[Key(type, kFloat, kInt, kInt)] = &Arithmetic<Op, float, int32_t, int32_t>;
    registry[Key(type, kFloat, kInt, kFloat)] = &Arithmetic<Op, float, int32_t, float>;
    registry[Key(type, kFloat, kFloat, kInt)] = &Arithmetic<Op, float, float, int32_t>;
    registry[Key(type, kFloat, kFloat, kFloat)] = &Arithmetic<Op, float, float, float>;
    registry[Key(type, kVector, kFloat, kVector)] = &ScalarVector<Op>;
    registry[Key(type, kVector, kVector, kFloat)] = &VectorScalar<Op>;
    registry[Key(type, kVector, kVector, kVector)] = &VectorVector<Op>;
}

Registry BuildOneOperand() {
    Registry registry;
    RegisterScalarConversions<Set>(registry, BaseFunction::SET);
    RegisterScalarConversions<Abs>(registry, BaseFunction::ABS);
    registry[Key(BaseFunction::LENGTH, kFloat, kVector, kInt)] = &Length;
    registry[Key(BaseFunction::SQRLENGTH, kFloat, kVector, kInt)] = &SqrLength;
    registry[Key(BaseFunction::NORMALIZE, kVector, kVector, kInt)] = &Normalize;
    return registry;
}

Registry BuildTwoOperands() {
    Registry registry;
    RegisterArithmetic<Add>(registry, BaseFunction::ADD);
    RegisterArithmetic<Sub>(registry, BaseFunction::SUB);
    RegisterArithmetic<Mul>(registry, BaseFunction::MUL);
    RegisterArithmetic<Div>(registry, BaseFunction::DIV);
    registry[Key(BaseFunction::DOT, kFloat, kVector, kVector)] = &Dot;
    registry[Key(BaseFunction::CROSS, kVector, kVector, kVector)] = &Cross;
    registry[Key(BaseFunction::DISTANCE, kFloat, kVector, kVector)] = &Distance;
    registry[Key(BaseFunction::SQRDISTANCE, kFloat, kVector, kVector)] = &SqrDistance;
    registry[Key(BaseFunction::ANGLE, kFloat, kVector, kVector)] = &Angle;
    return registry;
}

}  // namespace

uint64_t Key(BaseFunction::Type type, BaseValue::Type result, BaseValue::Type first, BaseValue::Type second) {
    return static_cast<uint64_t>(type & 0xFFFF) | (static_cast<uint64_t>(result & 0xFFFF) << 16) |
           (static_cast<uint64_t>(first & 0xFFFF) << 32) | (static_cast<uint64_t>(second & 0xFFFF) << 48);
}

const Registry& OneOperand() {
    static const Registry registry = BuildOneOperand();
    return registry;
}

const Registry& TwoOperands() {
    static const Registry registry = BuildTwoOperands();
    return registry;
}

}  // namespace FunctionRoutines
}  // namespace PelmoraLib
