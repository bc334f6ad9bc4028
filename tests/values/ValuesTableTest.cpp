#include <gtest/gtest.h>

#include <string>

#include "support/Printed.h"
#include "values/FloatValue.h"
#include "values/IntValue.h"
#include "values/ValuesTable.h"
#include "values/Vector3Value.h"

using namespace PelmoraLib;
using PelmoraTest::Printed;

namespace {

const uint64_t kFailed = 4294967295u;

const char* const kJoints[25] = {
    "Invalid",   "Head",      "Neck",           "Torso",         "Waist",        "LeftCollar",    "LeftShoulder",
    "LeftElbow", "LeftWrist", "LeftHand",       "LeftFingertip", "RightCollar",  "RightShoulder", "RightElbow",
    "RightWrist", "RightHand", "RightFingertip", "LeftHip",       "LeftKnee",     "LeftAnkle",     "LeftFoot",
    "RightHip",  "RightKnee", "RightAnkle",     "RightFoot"};

}  // namespace

// The player code addresses joints by these indices, not by name.
TEST(ValuesTable, StandardPool) {
    ValuesTable table;
    ASSERT_EQ(table.GetValueCount(), 52u);
    for (size_t joint = 0; joint < 25; ++joint) {
        const std::string position = std::string("P_") + kJoints[joint];
        const std::string velocity = std::string("V_") + kJoints[joint];
        EXPECT_EQ(table.GetValueIndex(position.c_str()), joint) << position;
        EXPECT_EQ(table.GetValueIndex(velocity.c_str()), 25 + joint) << velocity;
        BaseValue* p = table.GetValue(joint);
        ASSERT_NE(p, nullptr);
        EXPECT_TRUE(p->IsExactKindOf(&Vector3Value::ms_RTTI));
        EXPECT_EQ(p->Name(), position);
        EXPECT_EQ(table.GetValue(position.c_str()), p);
        EXPECT_EQ(table.GetValue(25 + joint)->Name(), velocity);
    }
    EXPECT_EQ(table.GetValueIndex("GestureTime"), 50u);
    EXPECT_EQ(table.GetValueIndex("SegmentTime"), 51u);
    EXPECT_TRUE(table.GetValue(50)->IsExactKindOf(&IntValue::ms_RTTI));
    EXPECT_STREQ(table.GetValue(51)->Name(), "SegmentTime");
    EXPECT_TRUE(table.GetValue(51)->IsExactKindOf(&IntValue::ms_RTTI));
}

TEST(ValuesTable, LookupMisses) {
    ValuesTable table;
    uint64_t index = 0;
    IntValue sentinel;
    BaseValue* value = &sentinel;
    EXPECT_EQ(Printed([&] { index = table.GetValueIndex("Nope"); }), "Nope is a undefine value!\n");
    EXPECT_EQ(index, kFailed);
    EXPECT_EQ(Printed([&] { value = table.GetValue("p_head"); }), "p_head is a undefine value!\n");
    EXPECT_EQ(value, nullptr);
    EXPECT_EQ(Printed([&] { value = table.GetValue(size_t{52}); }), "Index: 52 can't be found in pool \n");
    EXPECT_EQ(value, nullptr);
    bool has = true;
    EXPECT_EQ(Printed([&] { has = table.HasValues("P_head"); }), "");
    EXPECT_FALSE(has);
    EXPECT_TRUE(table.HasValues("P_Head"));
}

TEST(ValuesTable, CreateValue) {
    ValuesTable table;
    EXPECT_EQ(table.CreateValue(BaseValue::Int, "count", "42"), 52u);
    EXPECT_EQ(table.CreateValue(BaseValue::Float, "ratio", "0.25"), 53u);
    EXPECT_EQ(table.CreateValue(BaseValue::Vector3, "offset", "1,2"), 54u);
    EXPECT_EQ(table.CreateValue(BaseValue::Int, "empty", ""), 55u);
    EXPECT_EQ(table.CreateValue(BaseValue::Float, "none", nullptr), 56u);
    EXPECT_EQ(table.CreateValue(BaseValue::Vector3, "zero", nullptr), 57u);

    EXPECT_EQ(static_cast<IntValue*>(table.GetValue("count"))->Get(), 42);
    EXPECT_STREQ(table.GetValue(52)->Name(), "count");
    EXPECT_EQ(static_cast<FloatValue*>(table.GetValue("ratio"))->Get(), 0.25f);
    const Vector3Value* offset = static_cast<Vector3Value*>(table.GetValue("offset"));
    EXPECT_EQ(offset->X(), 1.0f);
    EXPECT_EQ(offset->Y(), 2.0f);
    EXPECT_EQ(offset->Z(), 0.0f);  // not matched, left at 0
    EXPECT_EQ(static_cast<IntValue*>(table.GetValue("empty"))->Get(), 0);
    EXPECT_EQ(static_cast<FloatValue*>(table.GetValue("none"))->Get(), 0.0f);
    EXPECT_EQ(static_cast<Vector3Value*>(table.GetValue("zero"))->Length(), 0.0f);

    // Duplicates, standard names included, are refused silently and leave
    // the first value as it was; the failure index is the 32-bit all-ones.
    uint64_t index = 0;
    EXPECT_EQ(Printed([&] { index = table.CreateValue(BaseValue::Int, "count", "7"); }), "");
    EXPECT_EQ(index, kFailed);
    EXPECT_EQ(static_cast<IntValue*>(table.GetValue("count"))->Get(), 42);
    EXPECT_EQ(table.CreateValue(BaseValue::Float, "P_Head", "1.0"), kFailed);
    EXPECT_TRUE(table.GetValue("P_Head")->IsExactKindOf(&Vector3Value::ms_RTTI));
    EXPECT_EQ(table.GetValueCount(), 58u);

    // A quaternion (or unknown type) still takes its index, with no value.
    EXPECT_EQ(Printed([&] { index = table.CreateValue(BaseValue::Quaternion, "q", "0,0,0,1"); }),
              "Quaternion is not supported in this version.\n");
    EXPECT_EQ(index, 58u);
    IntValue sentinel;
    BaseValue* value = &sentinel;
    EXPECT_EQ(Printed([&] { value = table.GetValue("q"); }), "");
    EXPECT_EQ(value, nullptr);
    EXPECT_EQ(table.GetValueIndex("q"), 58u);
    EXPECT_EQ(table.CreateValue(BaseValue::Quaternion, "q", nullptr), kFailed);
    EXPECT_EQ(Printed([&] { index = table.CreateValue(BaseValue::None, "odd", "1"); }), "");
    EXPECT_EQ(index, 59u);
    EXPECT_EQ(table.GetValue(size_t{59}), nullptr);
    EXPECT_EQ(table.CreateValue(BaseValue::Int, "next", "1"), 60u);
}

// Literal constants: typed by their commas and dots, shared per text, and
// never visible as named values.
TEST(ValuesTable, ConstValues) {
    ValuesTable table;
    EXPECT_EQ(table.GetConstValue(nullptr), nullptr);

    // Three parts make a vector (its z is compared here); otherwise the first
    // part counts, a float if the text has a dot and an int if not.
    const struct { const char* text; const RTTI* type; float number; } rows[] = {
        {"1,2,3", &Vector3Value::ms_RTTI, 3},   {"1.5,2.5,-3.5", &Vector3Value::ms_RTTI, -3.5f},
        {"2.5", &FloatValue::ms_RTTI, 2.5f},    {"7", &IntValue::ms_RTTI, 7},
        {"1.5,2", &FloatValue::ms_RTTI, 1.5f},  {"1,2", &IntValue::ms_RTTI, 1},
        {"4,3,2,1", &IntValue::ms_RTTI, 4},
    };
    for (const auto& row : rows) {
        BaseValue* constant = table.GetConstValue(row.text);
        ASSERT_TRUE(BaseValue::IsExactKindOf(row.type, constant)) << row.text;
        EXPECT_STREQ(constant->Name(), row.text);
        const float number = row.type == &Vector3Value::ms_RTTI ? static_cast<Vector3Value*>(constant)->Z()
                             : row.type == &IntValue::ms_RTTI   ? static_cast<float>(static_cast<IntValue*>(constant)->Get())
                                                                : static_cast<FloatValue*>(constant)->Get();
        EXPECT_EQ(number, row.number) << row.text;
    }
    BaseValue* seven = table.GetConstValue("7");
    EXPECT_EQ(table.GetConstValue("7"), seven);
    EXPECT_NE(table.GetConstValue("07"), seven);  // cached by text, not by number

    EXPECT_FALSE(table.HasValues("7"));
    EXPECT_EQ(table.GetValueCount(), 52u);
    // A constant's text does not block a value of the same name.
    EXPECT_EQ(table.CreateValue(BaseValue::Int, "7", "8"), 52u);
    EXPECT_EQ(table.GetConstValue("7"), seven);
}

TEST(ValuesTable, ClearEmptiesEverything) {
    ValuesTable table;
    table.CreateValue(BaseValue::Int, "count", "1");
    table.GetConstValue("2.5");
    table.Clear();
    EXPECT_EQ(table.GetValueCount(), 0u);
    EXPECT_FALSE(table.HasValues("P_Head"));
    EXPECT_FALSE(table.HasValues("count"));
    EXPECT_EQ(Printed([&] { table.GetValue(size_t{0}); }), "Index: 0 can't be found in pool \n");
    // Not rebuilt: a cleared table starts numbering from 0.
    EXPECT_EQ(table.CreateValue(BaseValue::Float, "P_Head", "1.5"), 0u);
    BaseValue* constant = table.GetConstValue("2.5");
    EXPECT_STREQ(constant->Name(), "2.5");
}
