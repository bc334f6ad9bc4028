#include "engine/TCResetGesture.h"

#include "player/Player.h"

namespace PelmoraLib {

const RTTI TCResetGesture::ms_RTTI("TCResetGesture", &ThreadCommand::ms_RTTI);

void TCResetGesture::Set(int32_t playerIndex, uint32_t gestureIndex) {
    m_PlayerIndex = playerIndex;
    m_GestureIndex = gestureIndex;
}

void TCResetGesture::DoCommand() {
    Player* player = FindPlayer(m_PlayerIndex, "PelmoraLib::TCResetGesture::DoCommand", 24,
                                "TCResetGesture Error: player can't be found! Index:%lu\n");
    if (!player) return;
    PlayerGestureInfo* info = FindGesture(*player, m_GestureIndex, "TCResetGesture Error: Gesture can't be found! Index:%lu\n");
    if (info) info->Reset();
}

}  // namespace PelmoraLib
