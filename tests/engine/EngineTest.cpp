#include <gtest/gtest.h>

#include <string>

#include "engine/Pelmora.h"
#include "engine/PlayerManager.h"
#include "gesture/GestureTable.h"
#include "player/Player.h"
#include "support/Param.h"
#include "support/Printed.h"

using namespace PelmoraLib;
using PelmoraTest::Printed;

namespace {

int g_Head[1] = {1};

GestureConfigParam Param(int players, int skeleton = 1) { return PelmoraTest::Param(players, g_Head, skeleton); }

}  // namespace

// Every getter rejects indices outside 0..PlayerNum-1, negative ones too.
TEST(Pelmora, PerPlayerTables) {
    GestureConfigParam param = Param(2);
    Pelmora* engine = Pelmora::Create();
    engine->Init(param);
    EXPECT_EQ(engine->GetReturnInfoType(), ReturnInfo24);
    EXPECT_FALSE(engine->IsUseSubThread());
    for (int player : {0, 1})
        EXPECT_TRUE(engine->GetIdentifyValue(player) && engine->GetProcessingTable(player) &&
                    engine->GetGestureTable(player));
    EXPECT_NE(engine->GetIdentifyValue(0), engine->GetIdentifyValue(1));
    for (int player : {2, -1}) {
        const std::string range = "PlayerIndex:" + std::to_string(player) + " is out of range in ";
        EXPECT_EQ(Printed([&] {
                      EXPECT_FALSE(engine->GetIdentifyValue(player) || engine->GetProcessingTable(player) ||
                                   engine->GetGestureTable(player));
                  }),
                  range + "GetIdentifyValue\n" + range + "GetProcessingTable\n" + range + "GetGestureTable\n");
    }
    // A second Init makes fresh tables for the new count.
    param.PlayerNum = 3;
    engine->Init(param);
    EXPECT_EQ(engine->GetGestureTable(2)->GetGestureNum(), 0u);
    for (int players : {0, -4}) {
        param.PlayerNum = players;
        engine->Init(param);
        EXPECT_EQ(Printed([&] { EXPECT_EQ(engine->GetIdentifyValue(0), nullptr); }),
                  "PlayerIndex:0 is out of range in GetIdentifyValue\n");
    }
    Pelmora::Close();
}

// Deliberate: negative indices, no players and no skeleton slots are safe.
TEST(PlayerManager, PlayersByIndex) {
    EXPECT_EQ(Printed([] { EXPECT_EQ(PlayerManager::Get(), nullptr); }),
              "PlayerManager::Instance do not been created before calling get function.\n");
    GestureConfigParam param = Param(2);
    Pelmora::Create()->Init(param);
    PlayerManager* manager = PlayerManager::Create();
    EXPECT_EQ(Printed([&] { EXPECT_EQ(PlayerManager::Create(), manager); }),
              "PlayerManager::Instance has been created before.\n");
    manager->Init(param);
    EXPECT_EQ(manager->GetPlayer(1)->GetIndex(), 1);
    EXPECT_FALSE(manager->GetPlayer(1)->IsUpdate());
    EXPECT_EQ(Printed([&] { EXPECT_EQ(manager->GetPlayer(2), nullptr); }), "GetPlayer Index == 2, out of range!\n");
    EXPECT_EQ(Printed([&] { EXPECT_EQ(manager->GetPlayer(-1), nullptr); }), "GetPlayer Index == -1, out of range!\n");

    manager->Init(Param(-1));
    EXPECT_EQ(Printed([&] { EXPECT_EQ(manager->GetPlayer(0), nullptr); }), "GetPlayer Index == 0, out of range!\n");
    manager->UpdatePlayers();

    manager->Init(Param(1, -3));
    Player* player = manager->GetPlayer(0);
    const Point3 frame[1] = {{0, 0, 1}};
    EXPECT_EQ(Printed([&] { EXPECT_FALSE(player->UpdatePlayerInfo(frame, 1)); }),
              "pInfo has no init in UpdateSkeletonInfo, Index == 2\n");
    EXPECT_EQ(Printed([&] { EXPECT_FALSE(player->ProcessPlayerInfo()); }), "PostionInfo is NULL!\n");
    EXPECT_EQ(Printed([&] { EXPECT_FALSE(player->UpdatePlayerInfoImmediate(frame, 1)); }),
              "DataSize(1) no equal with player position frame data size(0).\n");
    PlayerManager::Release();
    EXPECT_EQ(Printed([] { PlayerManager::Release(); }), "PlayerManager::Instance do not be created do nothing.\n");
    Pelmora::Close();
}

// A player the engine has no tables for is reported and skipped; the others
// still get their lists.
TEST(PlayerManager, MissingEngineTables) {
    PlayerManager* manager = PlayerManager::Create();
    const std::string noEngine = "Pelmora::Instance do not been created before calling get function.\n";
    EXPECT_EQ(Printed([&] { manager->Init(Param(1)); }),
              noEngine + "PelmoraLib::BuildSkeletonInfo line: 584 Error: Pelmora::Instance is NULL\n");
    EXPECT_EQ(Printed([&] { manager->InitGestureData(); }),
              noEngine + "PelmoraLib::Player::InitGestureList line: 178 Error: Pelmora::Instance is NULL\n");

    GestureConfigParam one = Param(1);
    Pelmora::Create()->Init(one);
    EXPECT_EQ(Printed([&] { manager->Init(Param(2)); }),
              "PlayerIndex:1 is out of range in GetIdentifyValue\nBuildSkeletonInfo Failed!\n");
    EXPECT_EQ(Printed([&] { manager->InitGestureData(); }),
              "PlayerIndex:1 is out of range in GetIdentifyValue\n"
              "InitGestureList ERROR: IdentifyValues can't be found\n");
    EXPECT_EQ(manager->GetPlayer(0)->GetReturnInfoSize(), 24u);
    EXPECT_EQ(manager->GetPlayer(1)->GetReturnInfoSize(), 0u);
    PlayerManager::Release();
    Pelmora::Close();
}
