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
// Every routine exists twice: on values, whose storage it asks for on each
// access, and on storage found once at compile time (void*), for the parts
// whose storage is fixed (see PartStorage).

inline void* Storage(BaseValue* value) { return value->GetValue().p; }
inline void* Storage(void* storage) { return storage; }

template <class T, class P>
T Get(P value) {
    return *static_cast<T*>(Storage(value));
}

template <class P>
void Put(P value, int32_t number) {
    *static_cast<int32_t*>(Storage(value)) = number;
}
template <class P>
void Put(P value, float number) {
    *static_cast<float*>(Storage(value)) = number;
}

template <class P>
float* Vector(P value) {
    return static_cast<float*>(Storage(value));
}

template <class Result>
struct Store;
template <>
struct Store<int32_t> {
    template <class P>
    static void From(P value, int32_t number) { Put(value, number); }
    template <class P>
    static void From(P value, float number) { Put(value, ScalarConversion::ToInt(number)); }
};
template <>
struct Store<float> {
    template <class P>
    static void From(P value, int32_t number) { Put(value, static_cast<float>(number)); }
    template <class P>
    static void From(P value, float number) { Put(value, number); }
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

template <class Op, class Result, class First, class Second, class P>
void Arithmetic(P result, P first, P second) {
    Store<Result>::From(result, Combine<Op>(Get<First>(first), Get<Second>(second)));
}

// A scalar combines with every component; the scalar keeps its side.
template <class Op, class P>
void ScalarVector(P result, P first, P second) {
    const float s = Get<float>(first);
    const float* v = Vector(second);
    float* out = Vector(result);
    out[0] = Op::Float(s, v[0]);
    out[1] = Op::Float(s, v[1]);
    out[2] = Op::Float(s, v[2]);
}

template <class Op, class P>
void VectorScalar(P result, P first, P second) {
    const float* v = Vector(first);
    const float s = Get<float>(second);
    float* out = Vector(result);
    out[0] = Op::Float(v[0], s);
    out[1] = Op::Float(v[1], s);
    out[2] = Op::Float(v[2], s);
}

template <class Op, class P>
void VectorVector(P result, P first, P second) {
    const float* a = Vector(first);
    const float* b = Vector(second);
    float* out = Vector(result);
    out[0] = Op::Float(a[0], b[0]);
    out[1] = Op::Float(a[1], b[1]);
    out[2] = Op::Float(a[2], b[2]);
}

// ---- One-operand routines.

struct Set {
    template <class Result, class Operand, class P>
    static void Apply(P result, P operand, P) {
        Store<Result>::From(result, Get<Operand>(operand));
    }
};

// |INT_MIN| does not fit an int: it saturates instead of overflowing.
int32_t Absolute(int32_t number) {
    return number == INT32_MIN ? INT32_MAX : (number < 0 ? -number : number);
}
float Absolute(float number) { return std::fabs(number); }

struct Abs {
    template <class Result, class Operand, class P>
    static void Apply(P result, P operand, P) {
        Store<Result>::From(result, Absolute(Get<Operand>(operand)));
    }
};

template <class P>
void Length(P result, P operand, P) {
    Put(result, VectorMath::Length(Vector(operand)));
}
template <class P>
void SqrLength(P result, P operand, P) {
    Put(result, VectorMath::SqrLength(Vector(operand)));
}
template <class P>
void Normalize(P result, P operand, P) {
    VectorMath::Normalize(Vector(operand), Vector(result));
}

// ---- Two-vector routines.

template <class P>
void Dot(P result, P a, P b) {
    Put(result, VectorMath::Dot(Vector(a), Vector(b)));
}
template <class P>
void Cross(P result, P a, P b) {
    VectorMath::Cross(Vector(a), Vector(b), Vector(result));
}
template <class P>
void Distance(P result, P a, P b) {
    Put(result, VectorMath::Distance(Vector(a), Vector(b)));
}
template <class P>
void SqrDistance(P result, P a, P b) {
    Put(result, VectorMath::SqrDistance(Vector(a), Vector(b)));
}
template <class P>
void Angle(P result, P a, P b) {
    Put(result, VectorMath::Angle(Vector(a), Vector(b)));
}

// ---- Registry contents.

using Registry = std::map<uint64_t, Routines>;

// Both forms of one routine template, without and with leading template arguments.
#define PELMORA_ROUTINES(name) Routines{&name<BaseValue*>, &name<void*>}
#define PELMORA_ROUTINES_OF(name, ...) Routines{&name<__VA_ARGS__, BaseValue*>, &name<__VA_ARGS__, void*>}

// One operand: the key's last field is 0 (kInt).
template <class Conversion>
void RegisterScalarConversions(Registry& registry, BaseFunction::Type type) {
    registry[Key(type, kInt, kInt, kInt)] = PELMORA_ROUTINES_OF(Conversion::template Apply, int32_t, int32_t);
    registry[Key(type, kFloat, kInt, kInt)] = PELMORA_ROUTINES_OF(Conversion::template Apply, float, int32_t);
    registry[Key(type, kInt, kFloat, kInt)] = PELMORA_ROUTINES_OF(Conversion::template Apply, int32_t, float);
    registry[Key(type, kFloat, kFloat, kInt)] = PELMORA_ROUTINES_OF(Conversion::template Apply, float, float);
}

template <class Op>
void RegisterArithmetic(Registry& registry, BaseFunction::Type type) {
    registry[Key(type, kInt, kInt, kInt)] = PELMORA_ROUTINES_OF(Arithmetic, Op, int32_t, int32_t, int32_t);
    registry[Key(type, kInt, kInt, kFloat)] = PELMORA_ROUTINES_OF(Arithmetic, Op, int32_t, int32_t, float);
    registry[Key(type, kInt, kFloat, kInt)] = PELMORA_ROUTINES_OF(Arithmetic, Op, int32_t, float, int32_t);
    registry[Key(type, kInt, kFloat, kFloat)] = PELMORA_ROUTINES_OF(Arithmetic, Op, int32_t, float, float);
    registry[Key(type, kFloat, kInt, kInt)] = PELMORA_ROUTINES_OF(Arithmetic, Op, float, int32_t, int32_t);
    registry[Key(type, kFloat, kInt, kFloat)] = PELMORA_ROUTINES_OF(Arithmetic, Op, float, int32_t, float);
    registry[Key(type, kFloat, kFloat, kInt)] = PELMORA_ROUTINES_OF(Arithmetic, Op, float, float, int32_t);
    registry[Key(type, kFloat, kFloat, kFloat)] = PELMORA_ROUTINES_OF(Arithmetic, Op, float, float, float);
    registry[Key(type, kVector, kFloat, kVector)] = PELMORA_ROUTINES_OF(ScalarVector, Op);
    registry[Key(type, kVector, kVector, kFloat)] = PELMORA_ROUTINES_OF(VectorScalar, Op);
    registry[Key(type, kVector, kVector, kVector)] = PELMORA_ROUTINES_OF(VectorVector, Op);
}

Registry BuildOneOperand() {
    Registry registry;
    RegisterScalarConversions<Set>(registry, BaseFunction::SET);
    RegisterScalarConversions<Abs>(registry, BaseFunction::ABS);
    registry[Key(BaseFunction::LENGTH, kFloat, kVector, kInt)] = PELMORA_ROUTINES(Length);
    registry[Key(BaseFunction::SQRLENGTH, kFloat, kVector, kInt)] = PELMORA_ROUTINES(SqrLength);
    registry[Key(BaseFunction::NORMALIZE, kVector, kVector, kInt)] = PELMORA_ROUTINES(Normalize);
    return registry;
}

Registry BuildTwoOperands() {
    Registry registry;
    RegisterArithmetic<Add>(registry, BaseFunction::ADD);
    RegisterArithmetic<Sub>(registry, BaseFunction::SUB);
    RegisterArithmetic<Mul>(registry, BaseFunction::MUL);
    RegisterArithmetic<Div>(registry, BaseFunction::DIV);
    registry[Key(BaseFunction::DOT, kFloat, kVector, kVector)] = PELMORA_ROUTINES(Dot);
    registry[Key(BaseFunction::CROSS, kVector, kVector, kVector)] = PELMORA_ROUTINES(Cross);
    registry[Key(BaseFunction::DISTANCE, kFloat, kVector, kVector)] = PELMORA_ROUTINES(Distance);
    registry[Key(BaseFunction::SQRDISTANCE, kFloat, kVector, kVector)] = PELMORA_ROUTINES(SqrDistance);
    registry[Key(BaseFunction::ANGLE, kFloat, kVector, kVector)] = PELMORA_ROUTINES(Angle);
    return registry;
}

#undef PELMORA_ROUTINES
#undef PELMORA_ROUTINES_OF

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
