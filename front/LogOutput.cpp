// Log output: every diagnostic of the library is a printf line on standard
// output. SetGestureLogOutPut makes it unbuffered so a host's console shows
// each line at once; SetDebugInfo switches evaluation to its printing twins.
// Thread-safety: both may be called from any thread at any time.
#include <atomic>
#include <cstdio>

#include "front/DebugInfo.h"
#include "pelmora.h"

namespace {

std::atomic<bool> g_DebugInfo{false};

}  // namespace

namespace PelmoraLib {

bool IsDebugInfo() { return g_DebugInfo.load(std::memory_order_relaxed); }

}  // namespace PelmoraLib

int32_t SetGestureLogOutPut(void) { return setvbuf(stdout, nullptr, _IONBF, 0); }

void SetDebugInfo(bool on) { g_DebugInfo.store(on, std::memory_order_relaxed); }
