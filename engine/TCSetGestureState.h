// TCSetGestureState - queued request to enable or disable a gesture of a
// player. Either way the gesture's progress starts over.
// Thread-safety: see ThreadCommand.
#pragma once

#include "engine/ThreadCommand.h"

namespace PelmoraLib {

class PELMORA_API TCSetGestureState : public ThreadCommand {
public:
    static const RTTI ms_RTTI;

    const RTTI* GetRTTI() const override { return &ms_RTTI; }
    void DoCommand() override;
    void Set(int32_t playerIndex, uint32_t gestureIndex, bool state);

private:
    int32_t m_PlayerIndex = -1;
    uint32_t m_GestureIndex = 0xFFFFFFFFu;
    bool m_State = false;
};

}  // namespace PelmoraLib
