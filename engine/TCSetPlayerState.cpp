#include "engine/TCSetPlayerState.h"

#include "player/Player.h"

namespace PelmoraLib {

const RTTI TCSetPlayerState::ms_RTTI("TCSetPlayerState", &ThreadCommand::ms_RTTI);

void TCSetPlayerState::Set(int32_t playerIndex, bool state) {
    m_PlayerIndex = playerIndex;
    m_State = state;
}

// This command reports a missing player with the reset command's text: hosts'
// log filters look for that line.
void TCSetPlayerState::DoCommand() {
    Player* player = FindPlayer(m_PlayerIndex, "PelmoraLib::TCSetPlayerState::DoCommand", 24,
                                "TCResetGesture Error: player can't be found! Index:%lu\n");
    if (player) player->SetIsUpdate(m_State);
}

}  // namespace PelmoraLib
