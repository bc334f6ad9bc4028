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

// The source NowMs would use, taken once, for a loop that reads the clock
// for every gesture: each Now() is still a reading of its own.
class Reader {
public:
    Reader();
    uint32_t Now() const { return m_Source ? m_Source(m_User) : SteadyMs(); }

private:
    static uint32_t SteadyMs();

    uint32_t (*m_Source)(void*);
    void* m_User;
};

}  // namespace Clock
}  // namespace PelmoraLib
