#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "PlayerFixture.h"
#include "engine/DebugInfo.h"
#include "support/Printed.h"

using namespace PelmoraLib;
using PelmoraTest::Printed;
using PlayerGesture = PelmoraTest::PlayerFixture;
using Words = std::vector<uint32_t>;

class RecordLayout : public PelmoraTest::PlayerFixture, public testing::WithParamInterface<int> {};

// One record per active gesture in the configured layout, little-endian
// whatever the host order: a one-segment gesture that holds finishes with
// segment index 0, one that fails does not, an inactive one writes nothing.
TEST_P(RecordLayout, BytesPerReturnType) {
    const int type = GetParam();
    const size_t size = 8 * (type + 1);
    Start(type);
    AddGesture("Hold", {{Qualification::Greate, "0.5"}});
    AddGesture("Idle", {{Qualification::Greate, "0.5"}});
    AddGesture("Never", {{Qualification::Less, "-1.0"}});
    Track({0, 2});
    EXPECT_EQ(GetPlayer().GetReturnInfoSize(), size);
    EXPECT_TRUE(Feed(1.0f, 30));

    std::vector<uint8_t> expected;
    for (const Words& record : {Words{1, 0, 0, 1, 30, 30}, Words{0, 2, 0, 0, 30, 30}})
        for (size_t byte = 0; byte < size; ++byte) expected.push_back(uint8_t(record[byte / 4] >> byte % 4 * 8));
    const ReturnGestureInfoBuffer& slot = GetPlayer().BeginReadGestureInfoBuffer();
    EXPECT_EQ(slot.m_Count, 2u);
    ASSERT_EQ(slot.m_Data.size(), 3 * size);
    EXPECT_EQ(std::vector<uint8_t>(slot.m_Data.begin(), slot.m_Data.begin() + 2 * size), expected);
    GetPlayer().EndReadGestureInfoBuffer();
}

INSTANTIATE_TEST_SUITE_P(Player, RecordLayout, testing::Values(0, 1, 2));

// Records carry the progress before this frame's update; gesture time comes
// before segment time; the same times are published as values for the check.
TEST_F(PlayerGesture, TwoSegmentGesture) {
    Start(2);
    AddGesture("Swipe", {{Qualification::Greate, "0.5"}, {Qualification::Less, "0.2"}});
    Track({0});  // gesture starts at 1010
    const PlayerGestureInfo& info = *GetPlayer().GetGestureInfo(0);
    EXPECT_FALSE(Feed(1.0f, 30));
    EXPECT_EQ(Records(), (Words{0, 0, 0, 1, 30, 30}));
    EXPECT_EQ(info.m_SegmentIndex, 1u);

    EXPECT_FALSE(Feed(1.0f, 20));
    EXPECT_EQ(Records(), (Words{0, 0, 1, 0, 50, 20}));
    EXPECT_EQ(IntValue("GestureTime"), 50);
    EXPECT_EQ(IntValue("SegmentTime"), 20);

    EXPECT_TRUE(Feed(0.0f, 20));
    EXPECT_EQ(Records(), (Words{1, 0, 1, 1, 70, 40}));
    EXPECT_EQ(info.m_SegmentIndex, 0u);
    EXPECT_EQ(info.m_GestureStart, m_Clock.Now());
    EXPECT_EQ(info.m_SegmentStart, m_Clock.Now());
    EXPECT_FALSE(Feed(0.0f, 10));
    EXPECT_EQ(Records(), (Words{0, 0, 0, 0, 10, 10}));
}

// A check sees the times measured for its own gesture, whichever way they
// reach the pool: found once for the pass, or looked up gesture by gesture
// (here because "SegmentTime" is looked for outside the pool).
TEST_F(PlayerGesture, ChecksSeeTheirGesturesTimes) {
    for (bool lookedUpEachTime : {false, true}) {
        Start(2);
        Gesture* gesture = new Gesture("Long");
        Qualification* longer = new Qualification;
        ASSERT_TRUE(longer->SetQualification(Qualification::Greate, Pool().GetValue("GestureTime"), BaseValue::SubWhole,
                                             Pool().GetConstValue("25"), BaseValue::SubWhole));
        Segment* segment = new Segment;
        segment->AddQualification(longer);
        gesture->AddSegment(segment);
        GestureTableAccess::Add(*Pelmora::Get()->GetGestureTable(0), gesture);
        AddGesture("Hold", {{Qualification::Greate, "0.5"}});
        Track({1, 0});
        const int32_t segmentTimeIndex = PlayerGestureInfo::ms_SegmentTimeIndex;
        if (lookedUpEachTime) PlayerGestureInfo::ms_SegmentTimeIndex = 9999;
        const std::string lookups = lookedUpEachTime ? "Index: 9999 can't be found in pool \n" : "";
        bool finished = true;
        EXPECT_EQ(Printed([&] { finished = Feed(1.0f, 10); }), lookups + lookups);
        EXPECT_TRUE(finished);
        EXPECT_EQ(Printed([&] { finished = Feed(0.0f, 10); }), lookups + lookups);
        EXPECT_FALSE(finished);
        EXPECT_EQ(Printed([&] { finished = Feed(0.0f, 10); }), lookups + lookups);
        EXPECT_TRUE(finished) << (lookedUpEachTime ? "looked up gesture by gesture" : "found once");
        PlayerGestureInfo::ms_SegmentTimeIndex = segmentTimeIndex;
        Stop();
    }
}

// A reset failure reports its own segment and restarts the gesture; a
// finish flag finishes whatever the comparison says.
TEST_F(PlayerGesture, ResetAndFinishResults) {
    Start(1);
    AddGesture("Steps", {{Qualification::Greate, "0.5"},
                         {Qualification::Greate, "0.5"},
                         {Qualification::Greate, "0.5", true}});
    AddGesture("Quick", {{Qualification::Less, "-1.0", false, true}, {Qualification::Less, "-1.0"}});
    Track({0, 1});
    Player& player = GetPlayer();
    const std::pair<float, Words> frames[] = {{1.0f, {0, 0, 0, 1, 1, 1, 0, 1}}, {1.0f, {0, 0, 1, 1, 1, 1, 0, 1}},
                                              {0.0f, {0, 0, 2, 0, 1, 1, 0, 1}}, {0.0f, {0, 0, 0, 0, 1, 1, 0, 1}}};
    for (const auto& [x, records] : frames) {
        EXPECT_TRUE(Feed(x));
        EXPECT_EQ(Records(), records);
    }

    // Enabling an active gesture keeps its progress; Player::Reset restarts
    // all and keeps them active; disabling stops the records.
    Feed(1.0f);
    player.SetGesture(0, true);
    EXPECT_EQ(player.GetGestureInfo(0)->m_SegmentIndex, 1u);
    player.Reset();
    EXPECT_EQ(player.GetGestureInfo(0)->m_SegmentIndex, 0u);
    player.SetGesture(1, false);
    EXPECT_FALSE(Feed(1.0f));
    EXPECT_EQ(Records(), (Words{0, 0, 0, 1}));
}

TEST_F(PlayerGesture, NoActiveGestureStillPublishes) {
    Start(2);
    AddGesture("Hold", {{Qualification::Greate, "0.5"}});
    AddGesture("Wave", {{Qualification::Greate, "0.5"}});
    Track({});
    Player& player = GetPlayer();
    for (int frame = 0; frame < 2; ++frame) {
        EXPECT_FALSE(Feed(1.0f));
        EXPECT_TRUE(player.CheckHasNewData());
        EXPECT_FALSE(player.CheckHasNewData());
        EXPECT_EQ(player.BeginReadGestureInfoBuffer().m_Count, 0u);
        player.EndReadGestureInfoBuffer();
    }
    EXPECT_EQ(Printed([&] { EXPECT_EQ(player.GetGestureInfo(2), nullptr); }),
              "GetGestureInfo Index Out Of Range! Index: 2l\n");
    // Deliberate: an unknown index is refused rather than written past the list.
    EXPECT_EQ(Printed([&] { player.SetGesture(7, true); }), "GetGestureInfo Index Out Of Range! Index: 7l\n");
}

// Deliberate: an unknown return type builds no result areas; frames are
// still processed but write no results.
TEST_F(PlayerGesture, UnsupportedReturnTypeWritesNothing) {
    for (int type : {3, -1, 1000}) {
        EXPECT_EQ(Printed([&] { Start(type); }), "ReturnInfoType " + std::to_string(type) +
                                                     " is not supported, no gesture results will be returned.\n");
        AddGesture("Hold", {{Qualification::Greate, "0.5"}});
        Track({0});
        EXPECT_FALSE(Feed(1.0f));
        EXPECT_EQ(GetPlayer().GetReturnInfoSize(), 0u);
        EXPECT_FALSE(GetPlayer().CheckHasNewData());
        EXPECT_EQ(Value("P_Head")[0], 1.0f);
        Stop();
    }
}
