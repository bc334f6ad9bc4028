// DebugInfo - the process-wide switch of step-by-step tracing, set by the
// exported SetDebugInfo. The worker reads it without a lock; a change takes
// effect at its next read.
// Thread-safety: both functions may be called from any thread at any time.
#pragma once

namespace PelmoraLib {

bool IsDebugInfo();
void SwitchDebugInfo(bool on);

}  // namespace PelmoraLib
