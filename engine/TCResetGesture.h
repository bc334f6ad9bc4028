// TCResetGesture - queued request to restart a gesture of a player from its
// first segment (times restamped; the enabled flag is kept).
// Thread-safety: see ThreadCommand.
#pragma once

#include "engine/ThreadCommand.h"

namespace PelmoraLib {

class PELMORA_API TCResetGesture : public ThreadCommand {
public:
    static const RTTI ms_RTTI;

    const RTTI* GetRTTI() const override { return &ms_RTTI; }
    void DoCommand() override;
    void Set(int32_t playerIndex, uint32_t gestureIndex);

private:
    int32_t m_PlayerIndex = -1;
    uint32_t m_GestureIndex = 0xFFFFFFFFu;
};

}  // namespace PelmoraLib
