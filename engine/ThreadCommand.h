// ThreadCommand - a state change that a host thread asks of the worker (enable
// a player, enable or reset a gesture). Host threads queue it on the engine;
// the worker executes the queue at the start of its next pass, so a gesture
// never changes state in the middle of its evaluation. Commands are recycled
// through ThreadCommandPool, one list per class.
// Thread-safety: filled by one host thread, executed by the worker.
#pragma once

#include <cstdint>

#include "PelmoraExport.h"
#include "values/RTTI.h"

namespace PelmoraLib {

class Player;
class PlayerGestureInfo;

class PELMORA_API ThreadCommand {
public:
    static const RTTI ms_RTTI;

    virtual const RTTI* GetRTTI() const { return &ms_RTTI; }
    virtual ~ThreadCommand() = default;
    virtual void DoCommand() = 0;

protected:
    // The command's player, or null after the command's own messages.
    static Player* FindPlayer(int32_t playerIndex, const char* site, int line, const char* notFoundFormat);
    // The player's progress record of a gesture, or null after the messages.
    static PlayerGestureInfo* FindGesture(Player& player, uint32_t gestureIndex, const char* notFoundFormat);
};

}  // namespace PelmoraLib
