#include "engine/TCSetGestureState.h"

#include "player/Player.h"

namespace PelmoraLib {

const RTTI TCSetGestureState::ms_RTTI("TCSetGestureState", &ThreadCommand::ms_RTTI);

void TCSetGestureState::Set(int32_t playerIndex, uint32_t gestureIndex, bool state) {
    m_PlayerIndex = playerIndex;
    m_GestureIndex = gestureIndex;
    m_State = state;
}

void TCSetGestureState::DoCommand() {
    Player* player = FindPlayer(m_PlayerIndex, "PelmoraLib::TCSetGestureState::DoCommand", 25,
                                "TCSetGestureState Error: player can't be found! Index:%lu\n");
    if (!player) return;
    PlayerGestureInfo* info =
        FindGesture(*player, m_GestureIndex, "TCSetGestureState Error: Gesture can't be found! Index:%lu\n");
    if (!info) return;
    info->m_IsActive = m_State;
    info->Reset();
}

}  // namespace PelmoraLib
