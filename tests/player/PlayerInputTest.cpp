#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "PlayerFixture.h"
#include "support/Printed.h"

using namespace PelmoraLib;
using PelmoraTest::Printed;
using PlayerInput = PelmoraTest::PlayerFixture;
using Indices = std::vector<uint64_t>;
using Weights = std::vector<float>;

TEST(Skeleton, LayoutAndVelocityWeights) {
    int types[3] = {1, 15, 25};
    EXPECT_EQ(Printed([&] { Player::InitSkeleton(0, 3, types, 1, VelocityMulHalving); }),
              "Skeleton type 25 of slot 2 is out of range (0..24), the slot is read as P_Invalid.\n");
    EXPECT_EQ(Player::m_SkeletonPosValueIndexArray, (Indices{1, 15, 0}));
    EXPECT_EQ(Player::m_SkeletonVelocityValueIndexArray, (Indices{26, 40, 25}));
    EXPECT_EQ(Player::GetVelocityFrameNum(), 2);
    EXPECT_EQ(Player::m_VelocityFrameMul, Weights{1.0f});

    types[2] = -1;
    EXPECT_EQ(Printed([&] { Player::InitSkeleton(0, 3, types, 4, VelocityMulHalving); }),
              "Skeleton type -1 of slot 2 is out of range (0..24), the slot is read as P_Invalid.\n");
    EXPECT_EQ(Player::GetVelocityFrameNum(), 4);
    EXPECT_EQ(Player::m_VelocityFrameMul, (Weights{0.625f, 0.25f, 0.125f}));
    // Unknown weightings keep the weights, resized.
    Player::InitSkeleton(0, 3, types, 5, static_cast<VelocityMulType>(7));
    EXPECT_EQ(Player::m_VelocityFrameMul, (Weights{0.625f, 0.25f, 0.125f, 0.0f}));

    types[2] = 24;
    Player::InitSkeleton(0, 3, types, 4, VelocityMulEqual);
    EXPECT_EQ(Player::m_SkeletonVelocityValueIndexArray[2], 49u);
    EXPECT_EQ(Player::m_VelocityFrameMul, Weights(3, 1.0f / 3.0f));
    EXPECT_EQ(Printed([] { Player::InitSkeleton(0, 2, nullptr, 0, VelocityMulEqual); }),
              "SkeletonTypeArray is NULL, every slot is read as P_Invalid.\n");
    EXPECT_EQ(Player::m_SkeletonPosValueIndexArray, (Indices{0, 0}));
    EXPECT_EQ(Player::GetVelocityFrameNum(), 2);
}

// Gestures are first checked on the N-th accepted frame, and again on the
// N-th after tracking restarts.
TEST_F(PlayerInput, WarmUpTakesVelocityFrameNumFrames) {
    for (int frames : {2, 3}) {
        SCOPED_TRACE(frames);
        Start(0, frames);
        AddGesture("Always", {{Qualification::Greate, "-1.0"}});
        PlayerManager::Get()->InitGestureData();
        Player& player = GetPlayer();
        player.SetGesture(0, true);
        EXPECT_FALSE(Feed(0.0f));  // counted, then forgotten when tracking starts
        player.SetIsUpdate(true);
        for (int round = 0; round < 2; ++round) {
            for (int frame = 1; frame < frames; ++frame) {
                EXPECT_FALSE(Feed(0.0f));
                EXPECT_FALSE(player.CheckHasNewData());
            }
            EXPECT_TRUE(Feed(0.0f));
            EXPECT_TRUE(player.CheckHasNewData());
            EXPECT_FALSE(player.CheckHasNewData());
            EXPECT_EQ(Records(), (std::vector<uint32_t>{1, 0}));
            player.SetIsUpdate(false);
            player.SetIsUpdate(true);
        }
        Stop();
    }
}

// Only the first joint's depth decides.
TEST_F(PlayerInput, RejectsFramesByFirstJointDepth) {
    Start(0);
    Track({});
    Feed(0.3f);
    EXPECT_TRUE(GetPlayer().CheckHasNewData());
    EXPECT_FALSE(Feed(0.7f, 10, 0.0f, 0.0f));
    EXPECT_FALSE(Feed(0.7f, 10, 0.0f, -1.0f));
    EXPECT_FALSE(Feed(0.7f, 10, 0.0f, std::numeric_limits<float>::quiet_NaN()));
    EXPECT_FALSE(GetPlayer().CheckHasNewData());
    EXPECT_EQ(Value("P_Head")[0], 0.3f);

    SetFrame(0.5f);
    m_Frame[1].z = -5.0f;
    GetPlayer().UpdatePlayerInfoImmediate(m_Frame, 2);
    EXPECT_TRUE(GetPlayer().CheckHasNewData());
    EXPECT_EQ(Value("P_RightHand")[2], -5.0f);
    EXPECT_EQ(Printed([&] { EXPECT_FALSE(GetPlayer().UpdatePlayerInfoImmediate(nullptr, 2)); }),
              "PostionInfo is NULL!\n");
}

// Velocities are position units per millisecond; with N frames they are the
// sum (not the mean) of the last N - 1 steps.
TEST_F(PlayerInput, VelocityIsDisplacementOverElapsedMilliseconds) {
    Start(0, 2);
    Track({});
    Feed(0.4f, 20, -0.2f, 1.1f);
    EXPECT_FLOAT_EQ(Value("V_Head")[0], 0.02f);
    EXPECT_FLOAT_EQ(Value("V_Head")[1], -0.01f);
    EXPECT_FLOAT_EQ(Value("V_Head")[2], 0.005f);
    EXPECT_EQ(Value("V_RightHand")[0], 0.0f);
    MulBuffer<SkeletonPositionInfo>& published = GetPlayer().GetAfterCalLastPosVelocityInfo();
    EXPECT_EQ(published.BeginRead()[0].z, Value("V_Head")[2]);
    published.EndRead();
    Stop();

    Start(0, 3);
    Track({});  // x = 0 at 1010 and 1020
    Feed(1.0f, 10);
    EXPECT_FLOAT_EQ(Value("V_Head")[0], 0.1f);
    Feed(2.0f, 20);
    EXPECT_FLOAT_EQ(Value("V_Head")[0], 0.15f);
}

// Deliberate: two frames in the same millisecond keep the previous step's
// velocities rather than dividing by zero.
TEST_F(PlayerInput, ZeroTimeStepKeepsPreviousVelocities) {
    Start(0);
    Track({});
    Feed(1.0f, 10);
    EXPECT_EQ(Printed([&] { Feed(5.0f, 0); }),
              "Player 0: two frames in the same millisecond, the previous velocities are kept.\n");
    EXPECT_FLOAT_EQ(Value("V_Head")[0], 0.1f);
    EXPECT_EQ(Value("P_Head")[0], 5.0f);
    EXPECT_EQ(Printed([&] { Feed(6.0f, 0); }), "");  // reported once
    EXPECT_TRUE(std::isfinite(Value("V_Head")[1]));
    Feed(8.0f, 10);
    EXPECT_FLOAT_EQ(Value("V_Head")[0], 0.2f);
}

// Deliberate: the host-side call refuses a frame of the wrong length (it
// would overrun the slot); the immediate call advances the history entry
// but counts no frame.
TEST_F(PlayerInput, WrongFrameLength) {
    Start(0, 3);
    PlayerManager::Get()->InitGestureData();
    Player& player = GetPlayer();
    player.SetIsUpdate(true);
    const Point3 frame[3] = {{0, 0, 1}, {0, 0, 1}, {0, 0, 1}};
    const char* tooLong = "DataSize(3) no equal with player position frame data size(2).\n";
    EXPECT_EQ(Printed([&] { EXPECT_FALSE(player.UpdatePlayerInfo(frame, 3)); }), tooLong);
    EXPECT_EQ(Printed([&] { EXPECT_FALSE(player.UpdatePlayerInfo(frame, 1)); }),
              "DataSize(1) no equal with player position frame data size(2).\n");
    EXPECT_EQ(player.GetPositionInfo().WriteIndex(), 2u);  // nothing committed
    Feed(0.0f);
    EXPECT_EQ(Printed([&] { EXPECT_FALSE(player.UpdatePlayerInfoImmediate(frame, 3)); }), tooLong);
    Feed(0.0f);
    EXPECT_FALSE(player.CheckHasNewData());  // the second accepted frame
    Feed(0.0f);
    EXPECT_TRUE(player.CheckHasNewData());
}

// The update pass takes the newest complete frame, evaluates it again when
// no new one came, and skips untracked players.
TEST_F(PlayerInput, ManagerPassesUseNewestFrame) {
    Start(0, 2, 0, 2);
    PlayerManager* manager = PlayerManager::Get();
    manager->InitGestureData();
    Player& tracked = GetPlayer(0);
    tracked.SetIsUpdate(true);
    SetFrame(0.1f);
    EXPECT_TRUE(tracked.UpdatePlayerInfo(m_Frame, 2));
    EXPECT_TRUE(GetPlayer(1).UpdatePlayerInfo(m_Frame, 2));
    SetFrame(0.2f);
    EXPECT_TRUE(tracked.UpdatePlayerInfo(m_Frame, 2));
    for (int pass = 0; pass < 3; ++pass) {
        m_Clock.Advance(10);
        manager->UpdatePlayers();
        EXPECT_EQ(tracked.CheckHasNewData(), pass > 0);
    }
    EXPECT_EQ(Value("P_Head")[0], 0.2f);
    EXPECT_EQ(Value("V_Head")[0], 0.0f);
    EXPECT_FALSE(GetPlayer(1).CheckHasNewData());
}

// Changing the history length of a running player keeps it within its
// buffers: a shorter history wraps the newest entry, and entries added by a
// longer one hold no points, so frames landing there are refused.
TEST_F(PlayerInput, VelocityFrameNumChangeStaysInBounds) {
    Start(0, 4);
    Track({});  // the newest frame sits in history entry 3
    Player& player = GetPlayer();
    player.SetVelocityFrameNum(2);
    EXPECT_EQ(Player::m_VelocityFrameMul.size(), 2u);
    Feed(1.0f);
    EXPECT_TRUE(player.CheckHasNewData());
    EXPECT_TRUE(std::isfinite(Value("V_Head")[0]));

    player.SetVelocityFrameNum(3);
    EXPECT_EQ(Printed([&] { Feed(1.0f); }), "");
    EXPECT_EQ(Printed([&] { Feed(1.0f); }), "DataSize(2) no equal with player position frame data size(0).\n");
}
