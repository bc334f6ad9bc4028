#include <gtest/gtest.h>

#include <cstring>

#include "support/Printed.h"
#include "values/FloatValue.h"
#include "values/IntValue.h"
#include "values/RefFloatValue.h"
#include "values/Vector3Value.h"

using namespace PelmoraLib;
using PelmoraTest::Printed;

// Type records are compared by address, and the kind test walks base links:
// a record chained to the wrong base (RefFloatValue under FloatValue, say)
// would make a reference pass as an owned float in the checked casts.
TEST(Rtti, RecordsAndKindTests) {
    EXPECT_STREQ(BaseValue::ms_RTTI.GetName(), "BaseValue");
    EXPECT_STREQ(IntValue::ms_RTTI.GetName(), "IntValue");
    EXPECT_STREQ(FloatValue::ms_RTTI.GetName(), "FloatValue");
    EXPECT_STREQ(RefFloatValue::ms_RTTI.GetName(), "RefFloatValue");
    EXPECT_STREQ(Vector3Value::ms_RTTI.GetName(), "Vector3Value");
    EXPECT_EQ(BaseValue::ms_RTTI.GetBaseRTTI(), nullptr);
    for (const RTTI* record : {&IntValue::ms_RTTI, &FloatValue::ms_RTTI, &RefFloatValue::ms_RTTI, &Vector3Value::ms_RTTI})
        EXPECT_EQ(record->GetBaseRTTI(), &BaseValue::ms_RTTI) << record->GetName();

    BaseValue bare;
    IntValue i;
    FloatValue f;
    float storage = 0.0f;
    RefFloatValue r(storage);
    Vector3Value v;
    const BaseValue* all[] = {&bare, &i, &f, &r, &v};
    for (const BaseValue* value : all) {
        EXPECT_TRUE(value->IsKindOf(&BaseValue::ms_RTTI)) << value->GetRTTI()->GetName();
        EXPECT_TRUE(BaseValue::IsKindOf(&BaseValue::ms_RTTI, value));
        EXPECT_TRUE(value->IsExactKindOf(value->GetRTTI()));
        EXPECT_EQ(BaseValue::DynamicCast(&BaseValue::ms_RTTI, value), value);
    }
    EXPECT_TRUE(bare.IsExactKindOf(&BaseValue::ms_RTTI));
    EXPECT_FALSE(f.IsExactKindOf(&BaseValue::ms_RTTI));
    EXPECT_FALSE(BaseValue::IsExactKindOf(&BaseValue::ms_RTTI, &f));
    EXPECT_TRUE(BaseValue::IsExactKindOf(&FloatValue::ms_RTTI, &f));

    // Siblings are unrelated; a reference is not a FloatValue.
    EXPECT_FALSE(r.IsKindOf(&FloatValue::ms_RTTI));
    EXPECT_FALSE(i.IsKindOf(&FloatValue::ms_RTTI));
    EXPECT_FALSE(bare.IsKindOf(&IntValue::ms_RTTI));
    EXPECT_EQ(f.DynamicCast(&FloatValue::ms_RTTI), &f);
    EXPECT_EQ(r.DynamicCast(&FloatValue::ms_RTTI), nullptr);
    EXPECT_EQ(BaseValue::DynamicCast(&Vector3Value::ms_RTTI, &i), nullptr);
    EXPECT_EQ(BaseValue::VerifyStaticCastDebug(&Vector3Value::ms_RTTI, &v), &v);
    EXPECT_EQ(BaseValue::VerifyStaticCastDebug(&Vector3Value::ms_RTTI, &i), nullptr);

    // A missing value is of no kind and casts to nothing.
    EXPECT_FALSE(BaseValue::IsKindOf(&BaseValue::ms_RTTI, nullptr));
    EXPECT_FALSE(BaseValue::IsExactKindOf(&BaseValue::ms_RTTI, nullptr));
    EXPECT_EQ(BaseValue::DynamicCast(&BaseValue::ms_RTTI, nullptr), nullptr);
    EXPECT_EQ(BaseValue::VerifyStaticCastDebug(&BaseValue::ms_RTTI, nullptr), nullptr);
}

TEST(BaseValue, TypesAndStorage) {
    BaseValue bare("bare");
    EXPECT_EQ(bare.GetType(), 5);
    EXPECT_EQ(bare.GetValue().p, nullptr);
    EXPECT_STREQ(bare.Name(), "bare");
    bare.SetName(nullptr);
    EXPECT_STREQ(bare.Name(), "");
    EXPECT_STREQ(BaseValue(nullptr).Name(), "");

    IntValue i("i");
    i.Set(-7);
    EXPECT_EQ(i.GetType(), BaseValue::Int);
    EXPECT_EQ(*i.GetValue().i, -7);
    *i.GetValue().i = 12;  // the pointer is the value's own storage
    EXPECT_EQ(i.Get(), 12);

    FloatValue f("f");
    EXPECT_EQ(f.Get(), 0.0f);
    EXPECT_EQ(f.GetType(), BaseValue::Float);
    *f.GetValue().f = 2.5f;
    EXPECT_EQ(f.Get(), 2.5f);

    float outside = 4.0f;
    RefFloatValue r("r", outside);
    EXPECT_EQ(r.GetType(), BaseValue::Float);
    EXPECT_EQ(r.GetValue().f, &outside);
    EXPECT_EQ(RefFloatValue().GetValue().f, nullptr);
    float other = 1.0f;
    r.SetRef(other);
    EXPECT_EQ(r.GetValue().f, &other);

    Vector3Value v(1.0f, 2.0f, 3.0f);
    EXPECT_EQ(v.GetType(), BaseValue::Vector3);
    EXPECT_EQ(v.GetValue().v3[2], 3.0f);
}

// Scalars have no components: a selector resolves to the value itself, with
// one complaint for a real component letter and none for anything else.
TEST(BaseValue, SubValueOfScalar) {
    IntValue i("i");
    FloatValue f("f");
    BaseValue* got = nullptr;
    EXPECT_EQ(Printed([&] { got = i.GetSubValue(BaseValue::SubX); }), "this type do not has any sub value, return this\n");
    EXPECT_EQ(got, &i);
    EXPECT_EQ(Printed([&] { got = f.GetSubValue(BaseValue::SubW); }), "this type do not has any sub value, return this\n");
    EXPECT_EQ(got, &f);
    EXPECT_EQ(Printed([&] { got = i.GetSubValue(BaseValue::SubWhole); }), "");
    EXPECT_EQ(got, &i);
    EXPECT_EQ(Printed([&] { got = f.GetSubValue(static_cast<BaseValue::SubType>(5)); }), "");
    EXPECT_EQ(got, &f);
}

// Copy construction drops the name; assignment carries it over the target's
// own. Both copy what `read` reads: the number, or for a reference the
// address of the float it shares.
template <class V, class Read>
void ExpectCopyRules(const V& source, V assigned, const char* name, Read read) {
    SCOPED_TRACE(name);
    const V copy(source);
    EXPECT_STREQ(copy.Name(), "");
    EXPECT_EQ(read(copy), read(source));
    assigned = source;
    EXPECT_STREQ(assigned.Name(), name);
    EXPECT_EQ(read(assigned), read(source));
}

TEST(BaseValue, ScalarCopyRules) {
    IntValue i("count");
    i.Set(3);
    ExpectCopyRules(i, IntValue("other"), "count", [](const IntValue& v) { return v.Get(); });
    FloatValue f("speed");
    f.Set(1.25f);
    ExpectCopyRules(f, FloatValue(), "speed", [](const FloatValue& v) { return v.Get(); });
    float shared = 6.0f;
    ExpectCopyRules(RefFloatValue("ref", shared), RefFloatValue(), "ref", [&](const RefFloatValue& v) {
        EXPECT_EQ(v.Ref(), &shared);
        return v.Ref();
    });
}

TEST(RefFloatValue, AssignFromFloat) {
    float target = 1.0f;
    RefFloatValue bound("bound", target);
    FloatValue source("source");
    source.Set(9.5f);
    EXPECT_EQ(Printed([&] { bound = source; }), "");
    EXPECT_EQ(target, 9.5f);
    EXPECT_EQ(bound.Ref(), &target);
    EXPECT_STREQ(bound.Name(), "bound");

    // Unbound: it adopts the source's own float rather than copying it.
    RefFloatValue unbound;
    EXPECT_EQ(Printed([&] { unbound = source; }), "this ref value is NULL! get the float as ref\n");
    EXPECT_EQ(unbound.Ref(), source.GetValue().f);
    source.Set(-2.0f);
    EXPECT_EQ(*unbound.Ref(), -2.0f);
}
