#include "engine/PlayerManager.h"

#include <cstdio>

#include "engine/Diagnostics.h"
#include "player/Player.h"

namespace PelmoraLib {

PlayerManager* PlayerManager::ms_Instance = nullptr;

PlayerManager* PlayerManager::Create() {
    if (ms_Instance) {
        printf("PlayerManager::Instance has been created before.\n");
        return ms_Instance;
    }
    ms_Instance = new PlayerManager();
    return ms_Instance;
}

PlayerManager* PlayerManager::Get() {
    if (!ms_Instance) printf("PlayerManager::Instance do not been created before calling get function.\n");
    return ms_Instance;
}

PlayerManager* PlayerManager::Get(const char* site, int line) {
    PlayerManager* players = Get();
    if (!players) Diagnostics::Located(site, line, Diagnostics::kPlayerManager);
    return players;
}

void PlayerManager::Release() {
    if (!ms_Instance) {
        printf("PlayerManager::Instance do not be created do nothing.\n");
        return;
    }
    ms_Instance->Close();
    delete ms_Instance;
    ms_Instance = nullptr;
}

void PlayerManager::Init(GestureConfigParam param) {
    Player::InitSkeleton(param.PlayerNum, param.SkeletonNum, param.SkeletonTypeArray, param.VelocityFrameNum,
                         static_cast<VelocityMulType>(param.VelocityMulType));
    const int count = param.PlayerNum > 0 ? param.PlayerNum : 0;
    m_Players.resize(static_cast<size_t>(count));
    for (int index = 0; index < count; ++index) {
        m_Players[index].reset(new Player(index));
        m_Players[index]->SetIsGetVelocityData(param.IsGetVelocityData != 0);
    }
}

void PlayerManager::InitGestureData() {
    for (size_t index = 0; index < m_Players.size(); ++index) {
        if (!m_Players[index]) {
            printf("PlayerList %d is NULL in InitGestureData!!\n", static_cast<int>(index));
            continue;
        }
        m_Players[index]->InitGestureList();
    }
}

// A player that got no frame since the last pass evaluates its newest frame
// again: gesture times keep running even while the host sends nothing.
void PlayerManager::UpdatePlayers() {
    for (auto& player : m_Players) {
        if (player && player->IsUpdate()) player->ProcessPlayerInfo();
    }
}

Player* PlayerManager::GetPlayer(int index) {
    if (index < 0 || index >= GetPlayerCount()) {
        printf("GetPlayer Index == %d, out of range!\n", index);
        return nullptr;
    }
    return m_Players[static_cast<size_t>(index)].get();
}

Player* PlayerManager::PlayerAt(int index) const {
    if (index < 0 || index >= GetPlayerCount()) return nullptr;
    return m_Players[static_cast<size_t>(index)].get();
}

void PlayerManager::Close() { m_Players.clear(); }

}  // namespace PelmoraLib
