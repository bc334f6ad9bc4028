// FrameRateCounter - the worker's pass-rate meter: a window of the last 200
// pass intervals with a running sum, so each pass costs constant time.
// Thread-safety: Add runs on the worker; FramesPerSecond may be read from any
// thread (a stale value is fine).
#pragma once

#include <atomic>
#include <cstdint>

namespace PelmoraLib {

class FrameRateCounter {
public:
    static const int32_t kWindowSize = 200;

    // Records one interval in milliseconds and updates the rate.
    void Add(uint32_t intervalMs);
    int32_t FramesPerSecond() const { return m_FramesPerSecond.load(std::memory_order_relaxed); }

private:
    std::atomic<int32_t> m_FramesPerSecond{0};
    int32_t m_Samples[kWindowSize] = {};
    int64_t m_Sum = 0;  // wide, so hours-long intervals cannot overflow it
    int32_t m_Next = 0;
    bool m_Full = false;
};

}  // namespace PelmoraLib
