#include "engine/FrameRateCounter.h"

namespace PelmoraLib {

void FrameRateCounter::Add(uint32_t intervalMs) {
    if (m_Full) m_Sum -= m_Samples[m_Next];
    m_Samples[m_Next] = static_cast<int32_t>(intervalMs);
    m_Sum += m_Samples[m_Next];
    m_Full = m_Full || (m_Next + 1 >= kWindowSize);
    m_Next = (m_Next + 1) % kWindowSize;
    if (m_Sum == 0) return;
    const int64_t held = m_Full ? kWindowSize : m_Next;
    m_FramesPerSecond.store(static_cast<int32_t>(held * 1000 / m_Sum), std::memory_order_relaxed);
}

}  // namespace PelmoraLib
