#include "engine/Clock.h"

#include <atomic>
#include <chrono>

#include "pelmora.h"

namespace {

using TimeSourceFn = uint32_t (*)(void*);

std::atomic<TimeSourceFn> g_Source{nullptr};
std::atomic<void*> g_User{nullptr};

}  // namespace

namespace PelmoraLib {
namespace Clock {

uint32_t NowMs() { return Reader().Now(); }

Reader::Reader()
    : m_Source(g_Source.load(std::memory_order_acquire)), m_User(g_User.load(std::memory_order_relaxed)) {}

uint32_t Reader::SteadyMs() {
    using namespace std::chrono;
    static const steady_clock::time_point start = steady_clock::now();
    // Start above 0: a zero pass time means "no pass yet" to the meter.
    return static_cast<uint32_t>(duration_cast<milliseconds>(steady_clock::now() - start).count()) + 1u;
}

}  // namespace Clock
}  // namespace PelmoraLib

void SetTimeSource(uint32_t (*now)(void* user), void* user) {
    g_User.store(user, std::memory_order_relaxed);
    g_Source.store(now, std::memory_order_release);
}
