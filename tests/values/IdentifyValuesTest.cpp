#include <gtest/gtest.h>
#include <tinyxml.h>

#include <string>

#include "support/Printed.h"
#include "values/FloatValue.h"
#include "values/IdentifyValues.h"
#include "values/IntValue.h"
#include "values/Vector3Value.h"

using namespace PelmoraLib;
using PelmoraTest::Printed;

namespace {

// Parses a value section holding `declarations` and reads it into `values`,
// expecting it to print `printed`; returns Read's result.
bool ReadSection(IdentifyValues& values, const std::string& declarations, const std::string& printed = "") {
    TiXmlDocument document;
    document.Parse(("<IdentfyValues>" + declarations + "</IdentfyValues>").c_str());
    EXPECT_FALSE(document.Error()) << document.ErrorDesc();
    bool ok = false;
    EXPECT_EQ(Printed([&] { ok = values.Read(document.RootElement()); }), printed) << declarations;
    return ok;
}

}  // namespace

TEST(IdentifyValues, ReadDeclaresValues) {
    IdentifyValues values;
    EXPECT_TRUE(ReadSection(values,
                            "  <Value type=\"int\" name=\"Count\">12</Value>"
                            "  <Value type=\"FLOAT\" name=\"Ratio\">0.5</Value>"
                            "  <Value type=\"Vector3\" name=\"Offset\">1,2,3</Value>"
                            "  <Other type=\"int\" name=\"Skipped\">1</Other>"
                            "  <Value type=\"vector3\" name=\"Zero\"/>"
                            "  <Value type=\"Quaternion\" name=\"Turn\">0,0,0,1</Value>"
                            "  <Value type=\"int\">3</Value>",
                            "Quaternion is not supported in this version.\n"));
    EXPECT_EQ(values.GetValueIndex("Count"), 52u);
    EXPECT_EQ(static_cast<IntValue*>(values.GetValue("Count"))->Get(), 12);
    EXPECT_EQ(static_cast<FloatValue*>(values.GetValue("Ratio"))->Get(), 0.5f);
    const Vector3Value* offset = static_cast<Vector3Value*>(values.GetValue("Offset"));
    ASSERT_TRUE(BaseValue::IsExactKindOf(&Vector3Value::ms_RTTI, offset));
    EXPECT_TRUE(offset->X() == 1.0f && offset->Y() == 2.0f && offset->Z() == 3.0f);
    EXPECT_FALSE(values.HasValues("Skipped"));
    EXPECT_EQ(static_cast<Vector3Value*>(values.GetValue("Zero"))->SqrLength(), 0.0f);
    EXPECT_EQ(values.GetValueIndex("Turn"), 56u);
    EXPECT_EQ(values.GetValue(size_t{56}), nullptr);
    EXPECT_EQ(values.GetValueIndex(""), 57u);  // a missing name is the empty name
    EXPECT_EQ(values.GetValueCount(), 58u);

    // A section with no values is fine.
    EXPECT_TRUE(ReadSection(values, ""));
}

// Reading stops at the first bad declaration; what came before it stays.
TEST(IdentifyValues, ReadFailures) {
    IdentifyValues values;
    EXPECT_FALSE(ReadSection(values,
                             "  <Value type=\"int\" name=\"Before\">1</Value>"
                             "  <Value name=\"Untyped\">2</Value>"
                             "  <Value type=\"int\" name=\"After\">3</Value>",
                             " type is undefine value type!!\n"));
    EXPECT_TRUE(values.HasValues("Before"));
    EXPECT_FALSE(values.HasValues("Untyped"));
    EXPECT_FALSE(values.HasValues("After"));

    EXPECT_FALSE(ReadSection(values, "<Value type=\"double\" name=\"D\">1</Value>", "double type is undefine value type!!\n"));

    // A repeated name (here one of the standard pool) is refused silently.
    EXPECT_FALSE(ReadSection(values,
                             "  <Value type=\"int\" name=\"Fresh\">1</Value>"
                             "  <Value type=\"float\" name=\"GestureTime\">2.0</Value>"
                             "  <Value type=\"int\" name=\"Late\">3</Value>"));
    EXPECT_TRUE(values.HasValues("Fresh"));
    EXPECT_FALSE(values.HasValues("Late"));
    EXPECT_TRUE(values.GetValue("GestureTime")->IsExactKindOf(&IntValue::ms_RTTI));
}

TEST(IdentifyValues, References) {
    IdentifyValues values;
    BaseValue* const leftHand = values.GetValue("P_LeftHand");
    BaseValue::SubType sub = BaseValue::SubZ;
    const struct { const char* text; BaseValue::SubType sub; } selectors[] = {
        {"@P_LeftHand", BaseValue::SubWhole}, {"@P_LeftHand.Y", BaseValue::SubY}, {"@P_LeftHand.x", BaseValue::SubX},
        {"@P_LeftHand.Z", BaseValue::SubZ},   {"@P_LeftHand.w", BaseValue::SubW}};
    for (const auto& row : selectors) {
        EXPECT_EQ(values.GetValueFromString(row.text, sub, true), leftHand) << row.text;
        EXPECT_EQ(sub, row.sub) << row.text;
    }

    // Anything that is not a single component letter selects the whole value, silently.
    BaseValue* got = nullptr;
    EXPECT_EQ(Printed([&] { got = values.GetValueFromString("@P_LeftHand.q", sub, true); }), "");
    EXPECT_EQ(got, leftHand);
    EXPECT_EQ(sub, BaseValue::SubWhole);
    sub = BaseValue::SubY;
    EXPECT_EQ(values.GetValueFromString("@P_LeftHand.xy", sub, true), leftHand);
    EXPECT_EQ(sub, BaseValue::SubWhole);

    // The first dot ends the name.
    values.CreateValue(BaseValue::Vector3, "A", "1,2,3");
    sub = BaseValue::SubX;
    EXPECT_EQ(values.GetValueFromString("@A.B.x", sub, true), values.GetValue("A"));
    EXPECT_EQ(sub, BaseValue::SubWhole);

    // The caller's text is left as it was.
    char text[] = "@P_LeftHand.y";
    values.GetValueFromString(text, sub, true);
    EXPECT_STREQ(text, "@P_LeftHand.y");

    // Names are case-sensitive; a miss reports the bare name.
    EXPECT_EQ(Printed([&] { got = values.GetValueFromString("@p_lefthand.x", sub, true); }),
              "p_lefthand is a undefine value!\n");
    EXPECT_EQ(got, nullptr);
    EXPECT_EQ(Printed([&] { got = values.GetValueFromString("@Missing", sub, false); }),
              "Missing is a undefine value!\n");
    EXPECT_EQ(got, nullptr);

    // Literals are constants unless the caller forbids them.
    BaseValue* half = values.GetValueFromString("0.5", sub, false);
    ASSERT_TRUE(BaseValue::IsExactKindOf(&FloatValue::ms_RTTI, half));
    EXPECT_EQ(static_cast<FloatValue*>(half)->Get(), 0.5f);
    EXPECT_EQ(values.GetConstValue("0.5"), half);
    EXPECT_EQ(values.GetValueFromString("0.5", sub, false), half);
    sub = BaseValue::SubZ;
    EXPECT_EQ(Printed([&] { got = values.GetValueFromString("0.5", sub, true); }), "");
    EXPECT_EQ(got, nullptr);
    EXPECT_EQ(sub, BaseValue::SubWhole);
    // A name without the at sign is a literal, not a reference.
    BaseValue* literal = values.GetValueFromString("P_Head", sub, false);
    EXPECT_NE(literal, values.GetValue("P_Head"));
    EXPECT_TRUE(BaseValue::IsExactKindOf(&IntValue::ms_RTTI, literal));
}

TEST(IdentifyValues, ValueToString) {
    IdentifyValues values;
    values.CreateValue(BaseValue::Int, "Count", "-3");
    values.CreateValue(BaseValue::Float, "Ratio", "0.25");
    Vector3Value* head = static_cast<Vector3Value*>(values.GetValue("P_Head"));
    head->Set(1.0f, -2.5f, 3.0f);

    BaseValue::SubType sub = BaseValue::SubWhole;
    std::string out = "> ";
    IdentifyValues::ValueToString(values.GetValue("Count"), sub, out);
    EXPECT_EQ(out, "> Count(-3)");

    // Appends; a scalar ignores the selector.
    sub = BaseValue::SubX;
    IdentifyValues::ValueToString(values.GetValue("Ratio"), sub, out);
    EXPECT_EQ(out, "> Count(-3)Ratio(0.250000)");

    const char* const expected[] = {"P_Head(1.000000,-2.500000,3.000000)", "P_Head.x(1.000000)", "P_Head.y(-2.500000)",
                                    "P_Head.z(3.000000)", ""};
    for (int selector = 0; selector <= 4; ++selector) {
        sub = static_cast<BaseValue::SubType>(selector);
        std::string text;
        IdentifyValues::ValueToString(head, sub, text);
        EXPECT_EQ(text, expected[selector]) << "selector " << selector;
    }

    // A float reference prints as a float under its own (here empty) name.
    sub = BaseValue::SubWhole;
    std::string component;
    IdentifyValues::ValueToString(head->GetSubValue(BaseValue::SubY), sub, component);
    EXPECT_EQ(component, "(-2.500000)");

    // Constants carry their literal as their name.
    std::string literal;
    IdentifyValues::ValueToString(values.GetConstValue("1,2,3"), sub, literal);
    EXPECT_EQ(literal, "1,2,3(1.000000,2.000000,3.000000)");
}
