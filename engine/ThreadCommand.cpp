#include "engine/ThreadCommand.h"

#include <cstdio>

#include "engine/PlayerManager.h"
#include "player/Player.h"

namespace PelmoraLib {

const RTTI ThreadCommand::ms_RTTI("ThreadCommand", nullptr);

// Indices print through "%lu" as unsigned 32-bit numbers: -1 shows as 4294967295.
Player* ThreadCommand::FindPlayer(int32_t playerIndex, const char* site, int line, const char* notFoundFormat) {
    PlayerManager* players = PlayerManager::Get(site, line);
    if (!players) return nullptr;
    Player* player = players->GetPlayer(playerIndex);
    if (!player) printf(notFoundFormat, static_cast<unsigned long>(static_cast<uint32_t>(playerIndex)));
    return player;
}

PlayerGestureInfo* ThreadCommand::FindGesture(Player& player, uint32_t gestureIndex, const char* notFoundFormat) {
    PlayerGestureInfo* info = player.GetGestureInfo(gestureIndex);
    if (!info) printf(notFoundFormat, static_cast<unsigned long>(gestureIndex));
    return info;
}

}  // namespace PelmoraLib
