#include <gtest/gtest.h>

#include <cstdio>

#include "engine/DebugInfo.h"
#include "pelmora.h"

TEST(LogOutput, DebugSwitch) {
    // Off at load: tracing must be asked for.
    EXPECT_FALSE(PelmoraLib::IsDebugInfo());
    SetDebugInfo(true);
    EXPECT_TRUE(PelmoraLib::IsDebugInfo());
    SetDebugInfo(true);
    EXPECT_TRUE(PelmoraLib::IsDebugInfo());
    SetDebugInfo(false);
    EXPECT_FALSE(PelmoraLib::IsDebugInfo());
}

// Binding may be repeated; each time the result is setvbuf's, and messages
// printed afterwards still arrive whole and in order.
TEST(LogOutput, BindOutput) {
    EXPECT_EQ(SetGestureLogOutPut(), 0);
    EXPECT_EQ(SetGestureLogOutPut(), 0);
    testing::internal::CaptureStdout();
    printf("first %d\n", 1);
    printf("second\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "first 1\nsecond\n");
}
