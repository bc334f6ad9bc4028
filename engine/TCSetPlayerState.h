// TCSetPlayerState - queued request to start or stop tracking a player.
// Starting restarts the player's warm-up and runs every processing block once.
// Thread-safety: see ThreadCommand.
#pragma once

#include "engine/ThreadCommand.h"

namespace PelmoraLib {

class PELMORA_API TCSetPlayerState : public ThreadCommand {
public:
    static const RTTI ms_RTTI;

    const RTTI* GetRTTI() const override { return &ms_RTTI; }
    void DoCommand() override;
    void Set(int32_t playerIndex, bool state);

private:
    int32_t m_PlayerIndex = -1;
    bool m_State = false;
};

}  // namespace PelmoraLib
