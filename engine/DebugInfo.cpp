#include "engine/DebugInfo.h"

#include <atomic>

namespace {

std::atomic<bool> g_DebugInfo{false};

}  // namespace

namespace PelmoraLib {

bool IsDebugInfo() { return g_DebugInfo.load(std::memory_order_relaxed); }

void SwitchDebugInfo(bool on) { g_DebugInfo.store(on, std::memory_order_relaxed); }

}  // namespace PelmoraLib
