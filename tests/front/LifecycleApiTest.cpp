// The exported calls as a host sees them: what each prints and returns when a
// singleton, a player or a gesture is missing, the differences between the
// queued and the immediate flavours, and a repeated InitPelmora.
#include <functional>
#include <string>
#include <vector>

#include "ApiFixture.h"
#include "config/GestureConfigManager.h"
#include "engine/Pelmora.h"
#include "engine/PlayerManager.h"
#include "engine/TCResetGesture.h"
#include "engine/TCSetGestureState.h"
#include "engine/TCSetPlayerState.h"
#include "engine/ThreadCommandPool.h"
#include "player/Player.h"
#include "support/TestClock.h"

using namespace PelmoraLib;
using namespace PelmoraTest;

namespace {

struct Case {
    std::function<void()> call;  // makes the call and checks its result
    std::string expected;        // everything it prints
};

std::string Missing(const std::string& singleton, const std::string& site, int line) {
    return singleton + "::Instance do not been created before calling get function.\n" + site + " line: " +
           std::to_string(line) + " Error: " + singleton + "::Instance is NULL\n";
}

void RunCases(const std::vector<Case>& cases) {
    for (size_t row = 0; row < cases.size(); ++row) {
        SCOPED_TRACE("row " + std::to_string(row));
        EXPECT_EQ(Printed(cases[row].call), cases[row].expected);
    }
}

// Runs the commands queued so far, as the worker's command phase would.
void RunQueued() { Pelmora::Get()->ProcessingThreadCommand(); }

}  // namespace

// Before InitPelmora and again after ClosePelmora every export prints the
// missing-singleton pair with its own site and line and returns its neutral
// value.
TEST_F(ApiTest, EveryExportWithoutSingletons) {
    Point3 joints[2] = {};
    PelmoraResult16 results[2];
    uint32_t count = 77;
    const std::string P = "Pelmora", G = "GestureConfigManager", M = "PlayerManager";
    const std::vector<Case> cases = {
        {[] { EXPECT_EQ(SubThreadFPS(), 0); }, Missing(P, "SubThreadFPS", 83)},
        {[] { EXPECT_FALSE(LoadConfigFile("gestures.xml")); }, Missing(G, "LoadConfigFile", 90)},
        {[] { EXPECT_FALSE(LoadConfigData("<AppConfig/>")); }, Missing(G, "LoadConfigData", 106)},
        {[] { EXPECT_FALSE(LoadConfigData(nullptr)); }, ""},
        {[] { EXPECT_FALSE(StartGestureWork()); }, Missing(G, "StartGestureWork", 119)},
        {[] { OnIdle(); }, Missing(P, "OnIdle", 136)},
        {[] { EXPECT_EQ(GetGestureIndex(0, "Up"), PELMORA_NO_GESTURE); }, Missing(P, "GetGestureIndex", 142)},
        {[] { EXPECT_STREQ(GetGestureName(0, 0), ""); }, Missing(P, "GetGestureName", 151)},
        {[] { EXPECT_EQ(GetGestureNum(0), 0u); }, Missing(P, "GetGestureNum", 163)},
        {[] { SetPlayerGesture(0, 0, true); }, Missing(P, "SetPlayerGesture", 173)},
        {[] { SetPlayerGestureFromName(0, "Up", true); }, Missing(P, "SetPlayerGestureFromName", 188)},
        {[] { ResetPlayerGesture(0, 0); }, Missing(P, "ResetPlayerGesture", 200)},
        {[] { ResetPlayerGestureFromName(0, "Up"); }, Missing(P, "ResetPlayerGestureFromName", 213)},
        {[] { SetPlayer(0, true); }, Missing(P, "SetPlayer", 225)},
        {[] { SetPlayerGestureImmediate(0, 0, true); }, Missing(M, "SetPlayerGestureImmediate", 238)},
        {[] { SetPlayerGestureImmediateFromName(0, "Up", true); }, Missing(P, "SetPlayerGestureImmediateFromName", 264)},
        {[] { ResetPlayerGestureImmediate(0, 0); }, Missing(M, "ResetPlayerGestureImmediate", 276)},
        {[] { ResetPlayerGestureImmediateFromName(0, "Up"); }, Missing(P, "ResetPlayerGestureImmediateFromName", 302)},
        {[] { SetPlayerImmediate(0, true); }, Missing(M, "SetPlayerImmediate", 314)},
        {[&] { EXPECT_FALSE(UpdateSketonData(0, joints, 2)); }, Missing(M, "UpdateSketonData", 325)},
        {[&] { EXPECT_FALSE(UpdateSketonDataImmediate(0, joints, 2, results, &count)); },
         Missing(M, "UpdateSketonDataImmediate", 332)},
        {[&] { EXPECT_FALSE(GetPlayerGestureState(0, results, &count)); }, Missing(M, "GetPlayerGestureState", 341)},
        {[&] { EXPECT_FALSE(GetPlayerVelocityData(0, joints, 2)); }, Missing(M, "GetPlayerVelocityData", 363)},
        {[] { ClosePelmora(); },
         "Pelmora::Instance do not be created do nothing.\nPlayerManager::Instance do not be created do nothing.\n"
         "GestureConfigManager::Instance do not be created do nothing.\n"},
    };
    RunCases(cases);
    Start(false);
    Printed([] { ClosePelmora(); });
    RunCases(cases);
    EXPECT_EQ(count, 77u);

    // The manager without players: compiling needs the player manager too.
    Printed([] { GestureConfigManager::Create(); });
    EXPECT_EQ(Printed([] { EXPECT_FALSE(StartGestureWork()); }), Missing(M, "StartGestureWork", 121));
    GestureConfigManager::Close();
}

// The worker's commands and its pass report a missing player manager with
// their own sites; the pass then ends the worker.
TEST(EngineSites, MissingPlayerManager) {
    const std::string M = "PlayerManager";
    TCResetGesture reset;
    TCSetGestureState state;
    reset.Set(0, 0);
    state.Set(0, 0, true);
    EXPECT_EQ(Printed([&] { reset.DoCommand(); }), Missing(M, "PelmoraLib::TCResetGesture::DoCommand", 24));
    EXPECT_EQ(Printed([&] { state.DoCommand(); }), Missing(M, "PelmoraLib::TCSetGestureState::DoCommand", 25));

    // Empties the pool, so the command seen there below is the one queued.
    while (ThreadCommand* idle = ThreadCommandPool::Take(&TCSetPlayerState::ms_RTTI)) delete idle;
    GestureConfigParam param{};
    param.IsUseSubThread = 1;
    const std::string printed = Printed([&] {
        Pelmora::Create()->Init(param);
        SetPlayer(0, true);
        OnIdle();
        // The command is back in the pool once the pass has run it; the pass
        // then stops at the missing manager whatever the close does.
        ThreadCommand* idle = nullptr;
        EXPECT_TRUE(Eventually([&] { return (idle = ThreadCommandPool::Take(&TCSetPlayerState::ms_RTTI)) != nullptr; }));
        ThreadCommandPool::GiveBack(idle);
        Pelmora::Close();
    });
    EXPECT_EQ(printed, "Pelmora Sub Thread Starting\n" + Missing(M, "PelmoraLib::TCSetPlayerState::DoCommand", 24) +
                           Missing(M, "PelmoraLib::Pelmora::UpdateGestureThread", 185) + "Pelmora Sub Thread Closing\n");
}

// Player indices below 0 are refused exactly like those past the last player;
// unknown gestures are refused by the immediate calls at once and by the
// queued ones when their command runs; unreadable documents are refused.
TEST_F(ApiTest, RefusedArguments) {
    Start(false);
    Point3 joints[2] = {};
    uint32_t count = 77;
    for (int32_t p : {-1, 1, INT32_MIN}) {
        SCOPED_TRACE("player " + std::to_string(p));
        const std::string d = std::to_string(p), u = std::to_string(static_cast<uint32_t>(p));
        const std::string table = "PlayerIndex:" + d + " is out of range in GetGestureTable\n";
        const std::string player = "GetPlayer Index == " + d + ", out of range!\n";
        auto located = [&](const char* site, int line) {
            return table + site + " line: " + std::to_string(line) + " Error: GestureTable is NULL\n";
        };
        RunCases({
            {[&] { EXPECT_EQ(GetGestureIndex(p, "Up"), PELMORA_NO_GESTURE); }, located("GetGestureIndex", 144)},
            {[&] { EXPECT_STREQ(GetGestureName(p, 0), ""); }, located("GetGestureName", 153)},
            {[&] { EXPECT_EQ(GetGestureNum(p), 0u); }, located("GetGestureNum", 166)},
            {[&] { SetPlayerGestureFromName(p, "Up", true); }, located("SetPlayerGestureFromName", 191)},
            {[&] { ResetPlayerGestureFromName(p, "Up"); }, located("ResetPlayerGestureFromName", 216)},
            {[&] { SetPlayerGestureImmediateFromName(p, "Up", true); }, located("SetPlayerGestureImmediateFromName", 267)},
            {[&] { ResetPlayerGestureImmediateFromName(p, "Up"); }, located("ResetPlayerGestureImmediateFromName", 305)},
            {[&] { SetPlayerImmediate(p, true); }, player},
            {[&] { SetPlayerGestureImmediate(p, 0, true); }, player},
            {[&] { ResetPlayerGestureImmediate(p, 0); }, player},
            {[&] { EXPECT_FALSE(UpdateSketonData(p, Frame(true), 2)); }, ""},
            {[&] { EXPECT_FALSE(UpdateSketonDataImmediate(p, Frame(true), 2, m_Results, &count)); }, player},
            {[&] { EXPECT_FALSE(GetPlayerGestureState(p, m_Results, &count)); }, player},
            {[&] { EXPECT_FALSE(GetPlayerVelocityData(p, joints, 2)); }, player},
            {[&] { SetPlayer(p, true), RunQueued(); }, player + "TCResetGesture Error: player can't be found! Index:" + u + "\n"},
            {[&] { SetPlayerGesture(p, 0, true), RunQueued(); },
             player + "TCSetGestureState Error: player can't be found! Index:" + u + "\n"},
            {[&] { ResetPlayerGesture(p, 0), RunQueued(); },
             player + "TCResetGesture Error: player can't be found! Index:" + u + "\n"},
        });
    }
    const std::string none = "4294967295";
    RunCases({
        {[] { EXPECT_STREQ(GetGestureName(0, PELMORA_NO_GESTURE), ""); }, "GetGestureName line: 156 Error: Gesture is NULL\n"},
        {[] { EXPECT_STREQ(GetGestureName(0, 2), ""); }, "GetGestureName line: 156 Error: Gesture is NULL\n"},
        {[] { SetPlayerGestureImmediate(0, PELMORA_NO_GESTURE, true); }, "SetPlayerGesture Error! No such gesture: " + none + "!\n"},
        {[] { SetPlayerGestureImmediateFromName(0, "Down", true); }, "SetPlayerGesture Error! No such gesture: " + none + "!\n"},
        {[] { ResetPlayerGestureImmediate(0, PELMORA_NO_GESTURE); },
         "ResetPlayerGestureImmediate Error! No such gesture: " + none + "!\n"},
        {[] { SetPlayerGestureImmediate(0, 2, true); }, "GetGestureInfo Index Out Of Range! Index: 2l\n"},
        {[] { ResetPlayerGestureImmediate(0, 2); }, "GetGestureInfo Index Out Of Range! Index: 2l\n"},
        {[] { SetPlayerGesture(0, PELMORA_NO_GESTURE, true), RunQueued(); },
         "GetGestureInfo Index Out Of Range! Index: " + none + "l\nTCSetGestureState Error: Gesture can't be found! Index:" +
             none + "\n"},
        {[] { ResetPlayerGestureFromName(0, "Down"), RunQueued(); },
         "GetGestureInfo Index Out Of Range! Index: " + none + "l\nTCResetGesture Error: Gesture can't be found! Index:" +
             none + "\n"},
        {[] { EXPECT_EQ(GetGestureIndex(0, "up"), PELMORA_NO_GESTURE); }, ""},  // names are case-sensitive
        {[] { EXPECT_FALSE(LoadConfigFile("/no/such/gestures.xml")); }, "Loading /no/such/gestures.xml failed!\n"},
        {[] { EXPECT_FALSE(LoadConfigData("<AppConfig><Gesture")); }, "Loading XMLData failed!\n"},
    });
    EXPECT_EQ(count, 77u);
}

// Null pointers are refused quietly or with a line, never dereferenced.
TEST_F(ApiTest, NullPointers) {
    Printed([] { InitPelmora(nullptr); });
    EXPECT_EQ(Printed([] { EXPECT_EQ(SubThreadFPS(), 0); }), Missing("Pelmora", "SubThreadFPS", 83));
    Start(false);
    SetPlayerImmediate(0, true);
    uint32_t count = 77;
    PelmoraResult16 results[2];
    const std::string printed = Printed([&] {
        EXPECT_FALSE(LoadConfigFile(nullptr));
        EXPECT_EQ(GetGestureIndex(0, nullptr), PELMORA_NO_GESTURE);
        SetPlayerGestureImmediateFromName(0, nullptr, true);
        EXPECT_FALSE(UpdateSketonDataImmediate(0, nullptr, 2, nullptr, nullptr));
        EXPECT_FALSE(GetPlayerGestureState(0, results, nullptr));
        EXPECT_FALSE(GetPlayerGestureState(0, nullptr, &count));
        EXPECT_FALSE(GetPlayerVelocityData(0, nullptr, 2));
        EXPECT_NE(Stricmp(nullptr, "Up"), 0);
    });
    EXPECT_EQ(Printed([&] { EXPECT_FALSE(UpdateSketonData(0, nullptr, 2)); }), "");
    EXPECT_EQ(count, 77u);
    // A null name is an unknown gesture.
    EXPECT_NE(printed.find("SetPlayerGesture Error! No such gesture: 4294967295!\n"), std::string::npos);
}

// A size past its limit refuses the whole record with one line and builds
// nothing, nor touches a running engine; the limits themselves are taken.
TEST_F(ApiTest, StartUpSizesPastTheLimits) {
    std::vector<int32_t> types(PELMORA_MAX_JOINTS, PELMORA_JOINT_HEAD);
    const struct {
        int32_t GestureConfigParam::*field;
        int32_t limit;
        const char* refused;
    } sizes[] = {{&GestureConfigParam::PlayerNum, 1024, "InitPelmora Error: PlayerNum 1025 is above the limit of 1024\n"},
                 {&GestureConfigParam::SkeletonNum, 256, "InitPelmora Error: SkeletonNum 257 is above the limit of 256\n"},
                 {&GestureConfigParam::VelocityFrameNum, 4096,
                  "InitPelmora Error: VelocityFrameNum 4097 is above the limit of 4096\n"}};
    for (const auto& size : sizes) {
        GestureConfigParam param{0, PELMORA_RETURN_INFO_16, 1, 1, types.data(), 2, PELMORA_VELOCITY_EQUAL, 0, 0};
        param.*size.field = size.limit + 1;
        EXPECT_EQ(Printed([&] { InitPelmora(&param); }), size.refused);
        EXPECT_EQ(Printed([] { SubThreadFPS(); }), Missing("Pelmora", "SubThreadFPS", 83));
        Start(false);
        EXPECT_EQ(Printed([&] { InitPelmora(&param); }), size.refused);
        EXPECT_EQ(GetGestureNum(0), 2u);
        Printed(ClosePelmora);
        param.*size.field = size.limit;
        EXPECT_EQ(Printed([&] { InitPelmora(&param), SetPlayerImmediate(param.PlayerNum - 1, true); }), "");
        Printed(ClosePelmora);
    }
    GestureConfigParam param{0, PELMORA_RETURN_INFO_16, 1024, 5, types.data(), 4096, PELMORA_VELOCITY_EQUAL, 0, 0};
    EXPECT_EQ(Printed([&] { InitPelmora(&param); }),
              "InitPelmora Error: PlayerNum x VelocityFrameNum x SkeletonNum 20971520 is above the limit of 16777216\n");
}

// Disabling through the queue clears the progress, disabling at once keeps
// it; the queued reset restamps the times, the immediate one keeps them.
TEST_F(ApiTest, QueuedAndImmediateDiffer) {
    TestClock clock(1000);
    Start(false);
    const uint32_t upDown = GetGestureIndex(0, "UpDown");
    PlayerGestureInfo& info = *PlayerManager::Get()->GetPlayer(0)->GetGestureInfo(upDown);
    SetPlayerImmediate(0, true);
    // Enables the gesture at 1000 and reaches its second segment at 1010.
    auto reachSecond = [&](bool queued) {
        clock.Set(1000);
        if (queued) SetPlayerGesture(0, upDown, true), RunQueued();
        else SetPlayerGestureImmediate(0, upDown, true);
        EXPECT_FALSE(UpdateSketonDataImmediate(0, Frame(false), 2, m_Results, &m_Count));  // warm-up
        clock.Set(1010);
        EXPECT_TRUE(UpdateSketonDataImmediate(0, Frame(true), 2, m_Results, &m_Count));
        ASSERT_EQ(m_Count, 1u);
        EXPECT_EQ(m_Results[0].segmentIndex, 0);
        EXPECT_EQ(m_Results[0].succeeded, 1);
        EXPECT_EQ(info.m_SegmentIndex, 1u);
        EXPECT_EQ(info.m_SegmentStart, 1010u);
        clock.Set(1050);
    };

    reachSecond(false);
    SetPlayerGestureImmediate(0, upDown, false);
    EXPECT_FALSE(info.m_IsActive);
    EXPECT_EQ(info.m_SegmentIndex, 1u);
    ResetPlayerGestureImmediate(0, upDown);
    EXPECT_EQ(info.m_SegmentIndex, 0u);
    EXPECT_EQ(info.m_GestureStart, 1000u);
    EXPECT_EQ(info.m_SegmentStart, 1010u);

    SetPlayerImmediate(0, false);
    SetPlayerImmediate(0, true);  // restarts the warm-up
    reachSecond(true);
    SetPlayerGesture(0, upDown, false), RunQueued();
    EXPECT_FALSE(info.m_IsActive);
    EXPECT_EQ(info.m_SegmentIndex, 0u);
    EXPECT_EQ(info.m_GestureStart, 1050u);
    clock.Set(1100);
    ResetPlayerGesture(0, upDown), RunQueued();
    EXPECT_EQ(info.m_GestureStart, 1100u);
    EXPECT_EQ(info.m_SegmentStart, 1100u);
    EXPECT_FALSE(info.m_IsActive);
}

// A second InitPelmora says that all three singletons exist, joins the
// earlier worker and rebuilds players and tables for the new record.
TEST_F(WorkerApiTest, SecondInitRebuilds) {
    Start(true, 2);
    OnIdle();
    ASSERT_TRUE(m_Clock.WaitReads(1));  // the worker has started and passed once
    const std::string created =
        "Pelmora::Instance has been created before.\nGestureConfigManager::Instance has been created before.\n"
        "PlayerManager::Instance has been created before.\n";
    EXPECT_EQ(Printed([&] { Init(false, 1); }), created + "Pelmora Sub Thread Closing\n");
    EXPECT_EQ(GetGestureNum(0), 0u);  // fresh, empty tables
    EXPECT_EQ(Printed([] { GetGestureNum(1); }),
              "PlayerIndex:1 is out of range in GetGestureTable\nGetGestureNum line: 166 Error: GestureTable is NULL\n");

    // The configuration manager kept its document: compiling fills the new
    // tables once.
    Printed([&] {
        Init(true, 1);
        ASSERT_TRUE(StartGestureWork());
    });
    EXPECT_EQ(GetGestureNum(0), 2u);
    SetPlayer(0, true);
    SetPlayerGestureFromName(0, "Up", true);
    EXPECT_TRUE(Eventually([&] {
        UpdateSketonData(0, Frame(true), 2);
        OnIdle();
        return GetPlayerGestureState(0, m_Results, &m_Count);
    }));
    EXPECT_EQ(m_Count, 1u);
    EXPECT_EQ(Printed([] { ClosePelmora(); }), "Pelmora Sub Thread Closing\n");
}
