#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/Printed.h"
#include "values/Vector3Value.h"
#include "values/VectorMath.h"

using namespace PelmoraLib;
using PelmoraTest::Printed;

namespace {

RefFloatValue* Component(Vector3Value& v, BaseValue::SubType sub) {
    return static_cast<RefFloatValue*>(BaseValue::DynamicCast(&RefFloatValue::ms_RTTI, v.GetSubValue(sub)));
}

// The three components, compared exactly.
std::vector<float> XYZ(const float* data) { return {data[0], data[1], data[2]}; }
using Floats = std::vector<float>;

}  // namespace

// The components are what ".x", ".y", ".z" hand to functions and
// qualifications: they must write into the vector itself.
TEST(Vector3Value, Components) {
    Vector3Value v("P_Head");
    v.Set(1.0f, 2.0f, 3.0f);
    RefFloatValue* x = Component(v, BaseValue::SubX);
    RefFloatValue* y = Component(v, BaseValue::SubY);
    RefFloatValue* z = Component(v, BaseValue::SubZ);
    ASSERT_TRUE(x && y && z);
    EXPECT_STREQ(x->Name(), "");
    EXPECT_EQ(*y->Ref(), 2.0f);
    EXPECT_EQ(*z->Ref(), 3.0f);
    *x->GetValue().f = 10.0f;
    EXPECT_EQ(v.X(), 10.0f);
    v.Set(4.0f, 5.0f, 6.0f);
    EXPECT_EQ(*x->Ref(), 4.0f);

    BaseValue* got = nullptr;
    EXPECT_EQ(Printed([&] { got = v.GetSubValue(BaseValue::SubW); }), "Vecto3Value Do not has .w! return this\n");
    EXPECT_EQ(got, &v);
    EXPECT_EQ(Printed([&] { got = v.GetSubValue(BaseValue::SubWhole); }), "");
    EXPECT_EQ(got, &v);
    EXPECT_EQ(Printed([&] { got = v.GetSubValue(static_cast<BaseValue::SubType>(5)); }), "");
    EXPECT_EQ(got, &v);
}

// Both copy rules are deliberate and other code relies on them, so they are
// pinned here: a copy's components stay bound to the source, and assignment
// moves numbers only.
TEST(Vector3Value, CopyRules) {
    Vector3Value source("P_LeftHand");
    source.Set(1.0f, 2.0f, 3.0f);

    Vector3Value copy(source);
    EXPECT_STREQ(copy.Name(), "");
    EXPECT_EQ(XYZ(copy.Data()), (Floats{1, 2, 3}));
    RefFloatValue* copyX = Component(copy, BaseValue::SubX);
    ASSERT_NE(copyX, nullptr);
    EXPECT_EQ(copyX->Ref(), &source.Data()[0]);
    EXPECT_EQ(Component(copy, BaseValue::SubZ)->Ref(), &source.Data()[2]);
    *copyX->Ref() = 7.0f;
    EXPECT_EQ(source.X(), 7.0f);
    EXPECT_EQ(copy.X(), 1.0f);

    Vector3Value target("Target");
    target = source;
    EXPECT_STREQ(target.Name(), "Target");
    EXPECT_EQ(XYZ(target.Data()), (Floats{7, 2, 3}));
    EXPECT_EQ(Component(target, BaseValue::SubY)->Ref(), &target.Data()[1]);

    // Results of the vector functions are fresh vectors bound to themselves.
    Vector3Value cross = source.Cross(Vector3Value(0.0f, 0.0f, 1.0f));
    EXPECT_EQ(Component(cross, BaseValue::SubX)->Ref(), &cross.Data()[0]);
}

TEST(Vector3Value, CrossDotLengthDistance) {
    const Vector3Value x(1.0f, 0.0f, 0.0f), y(0.0f, 1.0f, 0.0f), z(0.0f, 0.0f, 1.0f);
    // The middle component is negated with respect to the textbook product.
    EXPECT_EQ(XYZ(z.Cross(x).Data()), (Floats{0, -1, 0}));
    EXPECT_EQ(XYZ(x.Cross(y).Data()), (Floats{0, 0, 1}));
    Vector3Value general = Vector3Value(1.0f, 2.0f, 3.0f).Cross(Vector3Value(4.0f, 5.0f, 6.0f));
    EXPECT_EQ(XYZ(general.Data()), (Floats{-3, -6, -3}));  // textbook: -3, +6, -3
    EXPECT_STREQ(general.Name(), "");

    // The raw form may write over an operand.
    float a[3] = {1.0f, 2.0f, 3.0f};
    const float b[3] = {4.0f, 5.0f, 6.0f};
    VectorMath::Cross(a, b, a);
    EXPECT_EQ(XYZ(a), (Floats{-3, -6, -3}));

    const Vector3Value p(3.0f, 0.0f, 4.0f);
    EXPECT_EQ(p.Dot(Vector3Value(1.0f, 2.0f, 3.0f)), 15.0f);
    EXPECT_EQ(p.SqrLength(), 25.0f);
    EXPECT_EQ(p.Length(), 5.0f);
    EXPECT_EQ(p.SqrDistance(Vector3Value(0.0f, 0.0f, 0.0f)), 25.0f);
    EXPECT_EQ(Vector3Value(1.0f, 1.0f, 1.0f).Distance(Vector3Value(1.0f, 4.0f, 5.0f)), 5.0f);

    Vector3Value unit = p.Normalize();
    EXPECT_FLOAT_EQ(unit.X(), 0.6f);
    EXPECT_FLOAT_EQ(unit.Z(), 0.8f);
    EXPECT_EQ(unit.Y(), 0.0f);
    EXPECT_EQ(p.X(), 3.0f);  // the operand is untouched

    // No guard for the zero vector.
    Vector3Value nan = Vector3Value().Normalize();
    EXPECT_TRUE(std::isnan(nan.X()) && std::isnan(nan.Y()) && std::isnan(nan.Z()));
}

// The angle is signed about +z and reported in degrees; configurations compare
// it against thresholds, so both sign and scale matter.
TEST(Vector3Value, Angle) {
    const Vector3Value x(1.0f, 0.0f, 0.0f), y(0.0f, 1.0f, 0.0f), z(0.0f, 0.0f, 1.0f);
    EXPECT_EQ(x.Angle(x), 0.0f);
    EXPECT_FLOAT_EQ(x.Angle(y), -90.0f);
    EXPECT_FLOAT_EQ(y.Angle(x), 90.0f);
    EXPECT_FLOAT_EQ(x.Angle(Vector3Value(-1.0f, 0.0f, 0.0f)), 180.0f);
    EXPECT_FLOAT_EQ(x.Angle(Vector3Value(1.0f, 1.0f, 0.0f)), -45.0f);
    EXPECT_FLOAT_EQ(Vector3Value(1.0f, 1.0f, 0.0f).Angle(x), 45.0f);
    // Lengths do not matter; a turn with no z in the cross product stays positive.
    EXPECT_FLOAT_EQ(Vector3Value(2.0f, 0.0f, 0.0f).Angle(Vector3Value(0.0f, 5.0f, 0.0f)), -90.0f);
    EXPECT_FLOAT_EQ(x.Angle(z), 90.0f);
    EXPECT_FLOAT_EQ(z.Angle(x), 90.0f);

    // The dot product of this vector's normal with itself rounds to just above
    // 1; acos is not clamped, so the angle is NaN rather than 0.
    const Vector3Value rounding(2.0f, 3.0f, 0.0f);
    EXPECT_TRUE(std::isnan(rounding.Angle(rounding)));
    const float raw[3] = {2.0f, 3.0f, 0.0f};
    EXPECT_TRUE(std::isnan(VectorMath::Angle(raw, raw)));
}
