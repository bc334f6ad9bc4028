#include "engine/ThreadCommandPool.h"

namespace PelmoraLib {

ThreadCommandPool& ThreadCommandPool::Instance() {
    static ThreadCommandPool pool;
    return pool;
}

ThreadCommandPool::~ThreadCommandPool() {
    for (auto& entry : m_Idle) {
        for (ThreadCommand* command : entry.second) delete command;
    }
}

ThreadCommand* ThreadCommandPool::Take(const RTTI* commandClass) {
    ThreadCommandPool& pool = Instance();
    ScopedLock lock(pool.m_Lock);
    const auto found = pool.m_Idle.find(commandClass);
    if (found == pool.m_Idle.end() || found->second.empty()) return nullptr;
    ThreadCommand* command = found->second.back();
    found->second.pop_back();
    return command;
}

void ThreadCommandPool::GiveBack(ThreadCommand* command) {
    if (!command) return;
    ThreadCommandPool& pool = Instance();
    ScopedLock lock(pool.m_Lock);
    pool.m_Idle[command->GetRTTI()].push_back(command);
}

}  // namespace PelmoraLib
