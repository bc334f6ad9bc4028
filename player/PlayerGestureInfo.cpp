#include "player/PlayerGestureInfo.h"

#include "engine/Clock.h"
#include "engine/Pelmora.h"
#include "values/IdentifyValues.h"

namespace PelmoraLib {

int32_t PlayerGestureInfo::ms_GestureTimeIndex = static_cast<int32_t>(ValuesTable::kGestureTimeIndex);
int32_t PlayerGestureInfo::ms_SegmentTimeIndex = static_cast<int32_t>(ValuesTable::kSegmentTimeIndex);

PlayerGestureInfo::PlayerGestureInfo() { ResetTime(); }

PlayerGestureInfo::PlayerGestureInfo(uint32_t gestureIndex) : m_GestureIndex(gestureIndex) { ResetTime(); }

void PlayerGestureInfo::Reset() {
    m_SegmentIndex = 0;
    ResetTime();
}

void PlayerGestureInfo::ResetSegmentTime() {
    m_SegmentTime = 0;
    m_SegmentStart = Clock::NowMs();
}

void PlayerGestureInfo::ResetTime() {
    m_SegmentTime = 0;
    m_GestureTime = 0;
    m_SegmentStart = m_GestureStart = Clock::NowMs();
}

void PlayerGestureInfo::ClearProgress() {
    m_SegmentIndex = 0;
    m_SegmentTime = 0;
    m_GestureTime = 0;
}

void PlayerGestureInfo::UpdateTime(int playerIndex) {
    MeasureTimes(Clock::NowMs());
    IdentifyValues* pool = Pelmora::PlayerValues(playerIndex, "PelmoraLib::PlayerGestureInfo::UpdateTime", 47, 50);
    if (!pool) return;
    BaseValue* gestureTime = pool->GetValue(static_cast<size_t>(static_cast<uint32_t>(ms_GestureTimeIndex)));
    if (!gestureTime) return;
    BaseValue* segmentTime = pool->GetValue(static_cast<size_t>(static_cast<uint32_t>(ms_SegmentTimeIndex)));
    int32_t unread = 0;
    PublishTimes(gestureTime->GetValue().i, segmentTime ? segmentTime->GetValue().i : &unread);
}

}  // namespace PelmoraLib
