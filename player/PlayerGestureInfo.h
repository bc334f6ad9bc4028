// PlayerGestureInfo - one player's progress in one gesture: whether it is
// watched, the segment checked next and the millisecond ticks at which the
// gesture and the current segment began.
// Thread-safety: none; changed by the thread that updates the player (or by
// the immediate calls in the mode without a worker).
#pragma once

#include <cstdint>

#include "PelmoraExport.h"

namespace PelmoraLib {

class PELMORA_API PlayerGestureInfo {
public:
    // Pool indices of "GestureTime" and "SegmentTime", shared by all players.
    static int32_t ms_GestureTimeIndex;
    static int32_t ms_SegmentTimeIndex;

    PlayerGestureInfo();
    explicit PlayerGestureInfo(uint32_t gestureIndex);

    // Back to segment 0 with both times restarted; the active flag stays.
    void Reset();
    void ResetSegmentTime();
    void ResetTime();
    // Clears the progress fields only, keeping the time stamps.
    void ClearProgress();
    // Measures both times and publishes them as the player's "GestureTime"
    // and "SegmentTime" values.
    void UpdateTime(int playerIndex);
    // The two steps of UpdateTime, for a caller that found the values'
    // storage itself: the times at tick `now`, and their copy into the
    // storage (a value that does not exist gets storage nothing reads).
    void MeasureTimes(uint32_t now) {
        m_SegmentTime = now - m_SegmentStart;
        m_GestureTime = now - m_GestureStart;
    }
    void PublishTimes(int32_t* gestureTime, int32_t* segmentTime) const {
        *segmentTime = static_cast<int32_t>(m_SegmentTime);
        *gestureTime = static_cast<int32_t>(m_GestureTime);
    }

    uint32_t m_GestureIndex = 0;
    uint32_t m_SegmentIndex = 0;
    uint32_t m_SegmentTime = 0;
    uint32_t m_GestureTime = 0;
    uint32_t m_SegmentStart = 0;
    uint32_t m_GestureStart = 0;
    bool m_IsActive = false;
};

}  // namespace PelmoraLib
