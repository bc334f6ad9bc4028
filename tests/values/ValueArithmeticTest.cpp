#include <gtest/gtest.h>

#include <cmath>

#include "support/Printed.h"
#include "values/ValueArithmetic.h"

using namespace PelmoraLib;
using PelmoraTest::Printed;

namespace {

FloatValue Float(const char* name, float value) {
    FloatValue f(name);
    f.Set(value);
    return f;
}

void ExpectVector(const Vector3Value& v, float x, float y, float z) {
    EXPECT_FLOAT_EQ(v.X(), x);
    EXPECT_FLOAT_EQ(v.Y(), y);
    EXPECT_FLOAT_EQ(v.Z(), z);
    EXPECT_STREQ(v.Name(), "");
}

}  // namespace

TEST(ValueArithmetic, Scalars) {
    const FloatValue six = Float("six", 6.0f);
    const FloatValue two = Float("two", 2.0f);
    float three = 3.0f;
    const RefFloatValue ref("ref", three);

    FloatValue sum = six + two;
    EXPECT_EQ(sum.Get(), 8.0f);
    EXPECT_STREQ(sum.Name(), "");
    EXPECT_EQ((six - two).Get(), 4.0f);
    EXPECT_EQ((six * two).Get(), 12.0f);
    EXPECT_EQ((six / two).Get(), 3.0f);
    EXPECT_EQ((two - ref).Get(), -1.0f);
    EXPECT_EQ((ref / two).Get(), 1.5f);
    EXPECT_EQ((ref * ref).Get(), 9.0f);
    EXPECT_STREQ((ref + ref).Name(), "");

    // The reference is read at the time of the operation.
    three = 5.0f;
    EXPECT_EQ((ref + two).Get(), 7.0f);
    EXPECT_EQ(six.Get(), 6.0f);

    // Plain float division, no check.
    const FloatValue zero = Float("zero", 0.0f);
    EXPECT_TRUE(std::isinf((six / zero).Get()));
    EXPECT_TRUE(std::isnan((zero / zero).Get()));
}

TEST(ValueArithmetic, UnboundReferenceReadsAsZero) {
    const RefFloatValue unbound;
    const FloatValue four = Float("four", 4.0f);
    FloatValue result = Float("", 1.0f);
    EXPECT_EQ(Printed([&] { result = four - unbound; }), "ref float value is NULL!\n");
    EXPECT_EQ(result.Get(), 0.0f);
    // The result is 0 whatever the operator, not the operation on a 0 operand.
    EXPECT_EQ(Printed([&] { result = unbound + four; }), "ref float value is NULL!\n");
    EXPECT_EQ(result.Get(), 0.0f);
    float one = 1.0f;
    const RefFloatValue bound(one);
    EXPECT_EQ(Printed([&] { result = bound / unbound; }), "ref float value is NULL!\n");
    EXPECT_EQ(result.Get(), 0.0f);
    EXPECT_STREQ(result.Name(), "");
}

// Vectors combine per component; a scalar on the left stays on the left.
TEST(ValueArithmetic, Vectors) {
    const Vector3Value a(1.0f, 2.0f, 4.0f);
    const Vector3Value b(2.0f, 4.0f, 8.0f);
    const FloatValue two = Float("two", 2.0f);
    float eight = 8.0f;
    const RefFloatValue ref(eight);

    ExpectVector(a + b, 3.0f, 6.0f, 12.0f);
    ExpectVector(a - b, -1.0f, -2.0f, -4.0f);
    ExpectVector(a * b, 2.0f, 8.0f, 32.0f);
    ExpectVector(b / a, 2.0f, 2.0f, 2.0f);

    ExpectVector(a + two, 3.0f, 4.0f, 6.0f);
    ExpectVector(a - two, -1.0f, 0.0f, 2.0f);
    ExpectVector(a * two, 2.0f, 4.0f, 8.0f);
    ExpectVector(a / two, 0.5f, 1.0f, 2.0f);

    ExpectVector(two - a, 1.0f, 0.0f, -2.0f);
    ExpectVector(two / a, 2.0f, 1.0f, 0.5f);
    ExpectVector(two * a, 2.0f, 4.0f, 8.0f);
    ExpectVector(ref - a, 7.0f, 6.0f, 4.0f);
    ExpectVector(ref / a, 8.0f, 4.0f, 2.0f);
    ExpectVector(ref + b, 10.0f, 12.0f, 16.0f);

    // Operands stay as they were, and the result is bound to its own storage.
    EXPECT_EQ(a.X(), 1.0f);
    EXPECT_EQ(b.Z(), 8.0f);
    Vector3Value sum = a + b;
    EXPECT_EQ(static_cast<RefFloatValue*>(sum.GetSubValue(BaseValue::SubZ))->Ref(), &sum.Data()[2]);

    const Vector3Value zero;
    Vector3Value inf = a / zero;
    EXPECT_TRUE(std::isinf(inf.X()) && std::isinf(inf.Y()) && std::isinf(inf.Z()));
}
