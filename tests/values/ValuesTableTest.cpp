#include <gtest/gtest.h>

#include "values/IdentifyValues.h"

using namespace PelmoraLib;

TEST(ValuesTable, StandardPoolHasFixedIndices) {
    ValuesTable table;
    testing::internal::CaptureStdout();
    EXPECT_EQ(table.GetValueIndex("P_Head"), 1u);
    EXPECT_EQ(table.GetValueIndex("V_Head"), 26u);
    EXPECT_EQ(table.GetValueIndex("GestureTime"), 50u);
    EXPECT_EQ(table.GetValueIndex("SegmentTime"), 51u);
    EXPECT_EQ(table.GetValueIndex("Nope"), 4294967295u);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Nope is a undefine value!\n");
}
