#include <gtest/gtest.h>

#include <cstdint>

#include "engine/Clock.h"
#include "pelmora.h"

namespace {

struct Recorded {
    uint32_t now;
    int calls;
    void* seen;
};

uint32_t ReadRecorded(void* user) {
    Recorded* recorded = static_cast<Recorded*>(user);
    ++recorded->calls;
    recorded->seen = user;
    return recorded->now;
}

}  // namespace

TEST(Clock, TimeSource) {
    Recorded recorded{0xFFFFFFFFu, 0, nullptr};
    SetTimeSource(&ReadRecorded, &recorded);
    EXPECT_EQ(PelmoraLib::Clock::NowMs(), 0xFFFFFFFFu);  // passed through, wrap included
    EXPECT_EQ(recorded.calls, 1);
    EXPECT_EQ(recorded.seen, &recorded);
    recorded.now = 5;
    EXPECT_EQ(PelmoraLib::Clock::NowMs(), 5u);

    // Null restores the steady clock: running, never going back, never 0.
    SetTimeSource(nullptr, &recorded);
    const uint32_t first = PelmoraLib::Clock::NowMs();
    const uint32_t second = PelmoraLib::Clock::NowMs();
    EXPECT_GT(first, 0u);
    EXPECT_GE(second, first);
    EXPECT_EQ(recorded.calls, 2);
}
