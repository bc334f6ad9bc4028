// ThreadCommandPool - idle command objects, one stack per command class (keyed
// by the class's type record), so that after warm-up a state change reuses an
// object instead of allocating one.
// Thread-safety: all calls take the pool's own lock. Callers that also hold
// Pelmora::m_PelmoraLock take it first.
#pragma once

#include <map>
#include <vector>

#include "engine/CriticalSection.h"
#include "engine/ThreadCommand.h"

namespace PelmoraLib {

class ThreadCommandPool {
public:
    // An idle command of the class, or null when there is none.
    static ThreadCommand* Take(const RTTI* commandClass);
    static void GiveBack(ThreadCommand* command);

    // An idle command of class Command, or a new one.
    template <class Command>
    static Command* Make() {
        ThreadCommand* idle = Take(&Command::ms_RTTI);
        return idle ? static_cast<Command*>(idle) : new Command();
    }

private:
    ThreadCommandPool() = default;
    ~ThreadCommandPool();
    static ThreadCommandPool& Instance();

    CriticalSection m_Lock;
    std::map<const RTTI*, std::vector<ThreadCommand*>> m_Idle;
};

}  // namespace PelmoraLib
