// DebugInfo - the process-wide switch of step-by-step tracing, set by the
// exported SetDebugInfo. The worker reads it without a lock; a change takes
// effect at its next read.
#pragma once

namespace PelmoraLib {

bool IsDebugInfo();

}  // namespace PelmoraLib
