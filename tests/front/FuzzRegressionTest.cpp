// Inputs the fuzzers found, kept as regression tests.
#include <gtest/gtest.h>

#include "pelmora.h"
#include "support/Param.h"
#include "support/Printed.h"

// A configuration without gestures leaves every result area empty: reading
// results must not hand the C library a null source, even for zero bytes.
TEST(FuzzRegression, ResultsOfAConfigurationWithoutGestures) {
    int32_t types[] = {1};
    GestureConfigParam param = PelmoraTest::Param(1, types, 1);
    PelmoraTest::Printed([&] {
        InitPelmora(&param);
        ASSERT_TRUE(LoadConfigData("<AppConfig/>"));
        ASSERT_TRUE(StartGestureWork());
        SetPlayerImmediate(0, true);
        PelmoraResult24 results[1];
        uint32_t count = 7;
        const Point3 frame[1] = {{0.0f, 1.0f, 2.0f}};
        EXPECT_FALSE(UpdateSketonDataImmediate(0, frame, 1, results, &count));
        EXPECT_TRUE(UpdateSketonDataImmediate(0, frame, 1, results, &count));
        EXPECT_EQ(count, 0u);
        ClosePelmora();
    });
}
