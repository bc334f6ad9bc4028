// Clock - the library's one millisecond tick (unsigned 32-bit, wrapping): gesture
// and segment times, frame times for velocities and the pass-rate meter all
// read it. It follows a steady clock unless a host installed its own source
// with SetTimeSource. Differences are taken in unsigned 32-bit arithmetic, so
// the wrap is harmless.
// Thread-safety: NowMs may be called from any thread.
#pragma once

#include <cstdint>

namespace PelmoraLib {
namespace Clock {

uint32_t NowMs();

}  // namespace Clock
}  // namespace PelmoraLib
