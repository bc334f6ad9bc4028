// WorkerPause - holds off the worker while a host call changes or evaluates
// what a worker pass reads: waits for a running pass to end and keeps the
// next from starting. Rebuilding calls (loading, compiling, re-initialising)
// also hold the command queue, so no queued command runs against tables that
// are being rebuilt. Without an engine there is no worker to hold off.
// Thread-safety: that is its purpose. Never held while joining the worker.
#pragma once

#include <mutex>

#include "engine/Pelmora.h"

namespace PelmoraLib {

class WorkerPause {
public:
    enum Scope { PassesOnly, PassesAndCommands };

    explicit WorkerPause(Scope scope) {
        Pelmora* engine = Pelmora::Current();
        if (!engine) return;
        if (scope == PassesAndCommands) {
            Pelmora::Lock();
            m_HoldsCommands = true;
        }
        m_Passes = engine->HoldPasses();
    }

    ~WorkerPause() {
        if (m_Passes.owns_lock()) m_Passes.unlock();
        if (m_HoldsCommands) Pelmora::Unlock();
    }

    WorkerPause(const WorkerPause&) = delete;
    WorkerPause& operator=(const WorkerPause&) = delete;

private:
    bool m_HoldsCommands = false;
    std::unique_lock<std::mutex> m_Passes;
};

}  // namespace PelmoraLib
