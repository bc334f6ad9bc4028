#include <gtest/gtest.h>

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
    EXPECT_EQ(BaseValue::ms_RTTI.GetBaseRTTI(), nullptr);
    for (const RTTI* record : {&IntValue::ms_RTTI, &FloatValue::ms_RTTI, &RefFloatValue::ms_RTTI, &Vector3Value::ms_RTTI})
        EXPECT_EQ(record->GetBaseRTTI(), &BaseValue::ms_RTTI) << record->GetName();
    IntValue i;
    FloatValue f;
    float storage = 0.0f;
    RefFloatValue r(storage);
    Vector3Value v;
    const BaseValue* all[] = {&i, &f, &r, &v};
    for (const BaseValue* value : all) {
        EXPECT_TRUE(BaseValue::IsKindOf(&BaseValue::ms_RTTI, value));
        EXPECT_TRUE(value->IsExactKindOf(value->GetRTTI()));
        EXPECT_FALSE(value->IsExactKindOf(&BaseValue::ms_RTTI));
    }
    EXPECT_FALSE(r.IsKindOf(&FloatValue::ms_RTTI));
    EXPECT_EQ(f.DynamicCast(&FloatValue::ms_RTTI), &f);
    EXPECT_EQ(r.DynamicCast(&FloatValue::ms_RTTI), nullptr);
    EXPECT_EQ(BaseValue::VerifyStaticCastDebug(&Vector3Value::ms_RTTI, &i), nullptr);
    EXPECT_FALSE(BaseValue::IsKindOf(&BaseValue::ms_RTTI, nullptr));
    EXPECT_EQ(BaseValue::DynamicCast(&BaseValue::ms_RTTI, nullptr), nullptr);
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
