// WakeEvent - an automatically resetting event: Wait returns once per Signal,
// and any number of signals given while nobody waits collapse into one
// pending wake-up. It paces the worker: signals during a pass give exactly
// one further pass.
// Thread-safety: Signal from any thread; Wait from the worker.
#pragma once

#include <condition_variable>
#include <mutex>

namespace PelmoraLib {

class WakeEvent {
public:
    void Signal();
    void Wait();
    // Forgets a pending wake-up, so a new worker does not start with a pass.
    void Reset();

private:
    std::mutex m_Mutex;
    std::condition_variable m_Condition;
    bool m_Pending = false;
};

}  // namespace PelmoraLib
