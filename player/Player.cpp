#include "player/Player.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "engine/Clock.h"
#include "engine/DebugInfo.h"
#include "engine/Pelmora.h"
#include "gesture/GestureTable.h"
#include "player/GesturePass.h"
#include "processing/ProcessingTable.h"
#include "values/IdentifyValues.h"

namespace PelmoraLib {

std::vector<uint64_t> Player::m_SkeletonPosValueIndexArray;
std::vector<uint64_t> Player::m_SkeletonVelocityValueIndexArray;
std::vector<float> Player::m_VelocityFrameMul;
int Player::ms_VelocityFrameNum = 2;
VelocityMulType Player::ms_VelocityMulType = VelocityMulEqual;
int Player::ms_TypeToPositionIndex[kSkeletonTypeCount] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12,
                                                          13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24};
int Player::ms_TypeToVelocityIndex[kSkeletonTypeCount] = {25, 26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36, 37,
                                                          38, 39, 40, 41, 42, 43, 44, 45, 46, 47, 48, 49};

namespace {

uint64_t PoolIndex(int index) { return static_cast<uint32_t>(index); }

BaseValue* ValueOfType(IdentifyValues& pool, uint64_t index, BaseValue::Type type) {
    BaseValue* value = pool.GetValue(static_cast<size_t>(index));
    return value && value->GetType() == type ? value : nullptr;
}

}  // namespace

// ---- Skeleton layout, shared by all players.

bool Player::BuildSkeletonInfo(int playerIndex) {
    Pelmora* engine = Pelmora::Get("PelmoraLib::BuildSkeletonInfo", 584);
    if (!engine) return false;
    IdentifyValues* pool = engine->GetIdentifyValue(playerIndex);
    if (!pool) {
        printf("BuildSkeletonInfo Failed!\n");
        return false;
    }
    for (int type = 0; type < kSkeletonTypeCount; ++type) {
        const std::string joint = ValuesTable::JointName(type);
        ms_TypeToPositionIndex[type] = static_cast<int>(pool->GetValueIndex(("P_" + joint).c_str()));
        ms_TypeToVelocityIndex[type] = static_cast<int>(pool->GetValueIndex(("V_" + joint).c_str()));
    }
    return true;
}

int Player::ValidSkeletonType(int slot, int type) {
    if (type >= 0 && type < kSkeletonTypeCount) return type;
    printf("Skeleton type %d of slot %d is out of range (0..24), the slot is read as P_Invalid.\n", type, slot);
    return 0;
}

void Player::InitSkeleton(int playerNum, int skeletonNum, const int* skeletonTypes, int velocityFrameNum,
                          VelocityMulType mulType) {
    for (int player = 0; player < playerNum; ++player) BuildSkeletonInfo(player);

    const size_t slots = skeletonNum > 0 ? static_cast<size_t>(skeletonNum) : 0;
    if (slots > 0 && !skeletonTypes) printf("SkeletonTypeArray is NULL, every slot is read as P_Invalid.\n");
    m_SkeletonPosValueIndexArray.assign(slots, 0);
    m_SkeletonVelocityValueIndexArray.assign(slots, 0);
    for (size_t slot = 0; slot < slots; ++slot) {
        const int type = skeletonTypes ? ValidSkeletonType(static_cast<int>(slot), skeletonTypes[slot]) : 0;
        m_SkeletonPosValueIndexArray[slot] = PoolIndex(ms_TypeToPositionIndex[type]);
        m_SkeletonVelocityValueIndexArray[slot] = PoolIndex(ms_TypeToVelocityIndex[type]);
    }
    ms_VelocityFrameNum = velocityFrameNum > 2 ? velocityFrameNum : 2;
    ms_VelocityMulType = mulType;
    InitFrameDataMul();
}

void Player::InitFrameDataMul() {
    const size_t count = static_cast<size_t>(ms_VelocityFrameNum - 1);
    m_VelocityFrameMul.resize(count);
    if (ms_VelocityMulType == VelocityMulEqual) {
        std::fill(m_VelocityFrameMul.begin(), m_VelocityFrameMul.end(), 1.0f / static_cast<float>(count));
        return;
    }
    if (ms_VelocityMulType != VelocityMulHalving) return;
    float weight = 0.5f, sum = 0.0f;
    for (float& entry : m_VelocityFrameMul) {
        entry = weight;
        sum += weight;
        weight *= 0.5f;
    }
    m_VelocityFrameMul[0] += 1.0f - sum;
}

void Player::SetSkeletonTypeToIndex(int*, int*, int) {}

bool Player::CheckPositionData(const Point3* data, int count) {
    if (count < 1) return true;
    return data && data[0].z > 0.0f;
}

// ---- One player.

Player::Player(int index) : m_PlayerIndex(index) {
    const size_t slots = m_SkeletonPosValueIndexArray.size();
    const size_t frames = static_cast<size_t>(ms_VelocityFrameNum);
    for (uint32_t slot = 0; slot < 3; ++slot) {
        m_PositionInput.GetSlot(slot).assign(slots, Point3{0.0f, 0.0f, 0.0f});
        m_VelocityOutput.GetSlot(slot).assign(slots, Point3{0.0f, 0.0f, 0.0f});
    }
    m_VelocitySums.assign(slots, Point3{0.0f, 0.0f, 0.0f});
    m_SlotTargets.resize(slots);
    m_PositionHistory.resize(frames);
    for (PositionFrame& frame : m_PositionHistory) frame.m_Points.assign(slots, Point3{0.0f, 0.0f, 0.0f});
    m_VelocityHistory.assign(frames - 1, std::vector<Point3>(slots, Point3{0.0f, 0.0f, 0.0f}));
}

Player::~Player() = default;

bool Player::UpdatePlayerInfo(const void* data, int count) {
    ScopedLock host(m_PositionInput.HostLock());
    SkeletonPositionInfo& slot = m_PositionInput.WriteSlot();
    if (slot.empty()) {
        printf("pInfo has no init in UpdateSkeletonInfo, Index == %d\n", static_cast<int>(m_PositionInput.WriteIndex()));
        return false;
    }
    if (count != static_cast<int>(slot.size())) {
        printf("DataSize(%d) no equal with player position frame data size(%d).\n", count, static_cast<int>(slot.size()));
        return false;
    }
    if (!data) return false;
    memcpy(slot.data(), data, slot.size() * sizeof(Point3));
    m_PositionInput.Commit();
    return true;
}

bool Player::ProcessPlayerInfo() {
    SkeletonPositionInfo& slot = m_PositionInput.BeginRead();
    const bool result = UpdatePlayerInfoImmediate(slot.empty() ? nullptr : slot.data(), static_cast<int>(slot.size()));
    m_PositionInput.EndRead();
    return result;
}

bool Player::UpdatePlayerInfoImmediate(const void* data, int count) {
    if (!data) {
        printf("PostionInfo is NULL!\n");
        return false;
    }
    const Point3* points = static_cast<const Point3*>(data);
    if (count > 0 && !(points[0].z > 0.0f)) return false;

    // SetVelocityFrameNum may have shortened the history under the newest
    // entry: wrap it rather than read an entry that no longer exists.
    const uint64_t previous = m_PositionIndex % m_PositionHistory.size();
    m_VelocityIndex = (m_VelocityIndex + 1) % m_VelocityHistory.size();
    m_PositionIndex = (previous + 1) % m_PositionHistory.size();
    PositionFrame& entry = m_PositionHistory[m_PositionIndex];
    entry.m_Tick = Clock::NowMs();
    if (!StoreFrame(data, count)) return false;

    if (++m_FramesReceived < 2) return false;
    DeriveVelocities(previous);
    m_IsWarmingUp = m_FramesReceived < static_cast<uint64_t>(ms_VelocityFrameNum);
    if (m_IsWarmingUp) return false;
    return UpdateGestureInfo();
}

bool Player::StoreFrame(const void* data, int count) {
    std::vector<Point3>& points = m_PositionHistory[m_PositionIndex].m_Points;
    if (count != static_cast<int>(points.size())) {
        printf("DataSize(%d) no equal with player position frame data size(%d).\n", count,
               static_cast<int>(points.size()));
        return false;
    }
    if (count > 0) memcpy(points.data(), data, points.size() * sizeof(Point3));
    return true;
}

void Player::DeriveVelocities(uint64_t previousEntry) {
    const PositionFrame& now = m_PositionHistory[m_PositionIndex];
    const PositionFrame& before = m_PositionHistory[previousEntry];
    std::vector<Point3>& velocities = m_VelocityHistory[m_VelocityIndex];
    const uint32_t stepMs = static_cast<uint32_t>(now.m_Tick - before.m_Tick);
    if (stepMs == 0) {
        // Two frames in one millisecond would divide by zero: the previous
        // step's velocities stand for this one.
        const size_t entries = m_VelocityHistory.size();
        velocities = m_VelocityHistory[(m_VelocityIndex + entries - 1) % entries];
        if (!m_ZeroStepReported) {
            printf("Player %d: two frames in the same millisecond, the previous velocities are kept.\n",
                   m_PlayerIndex);
            m_ZeroStepReported = true;
        }
        return;
    }
    const float dt = static_cast<float>(stepMs);
    const size_t slots = std::min({velocities.size(), now.m_Points.size(), before.m_Points.size()});
    for (size_t j = 0; j < slots; ++j) {
        velocities[j].x = (now.m_Points[j].x - before.m_Points[j].x) / dt;
        velocities[j].y = (now.m_Points[j].y - before.m_Points[j].y) / dt;
        velocities[j].z = (now.m_Points[j].z - before.m_Points[j].z) / dt;
    }
}

// Entry by entry rather than joint by joint: each sum still adds the entries
// in history order to zero, so the floats come out the same, and the inner
// loop runs over contiguous joints.
void Player::CalcSkeletonVelocity() {
    std::fill(m_VelocitySums.begin(), m_VelocitySums.end(), Point3{0.0f, 0.0f, 0.0f});
    for (const std::vector<Point3>& velocities : m_VelocityHistory) {
        const size_t joints = std::min(m_VelocitySums.size(), velocities.size());
        Point3* sums = m_VelocitySums.data();
        const Point3* entry = velocities.data();
        for (size_t j = 0; j < joints; ++j) {
            sums[j].x += entry[j].x;
            sums[j].y += entry[j].y;
            sums[j].z += entry[j].z;
        }
    }
    if (!m_IsGetVelocityData) return;
    m_VelocityOutput.WriteSlot() = m_VelocitySums;
    m_VelocityOutput.Commit();
}

void Player::DoPlayerProcessing() {
    m_PassPool = nullptr;
    Pelmora* engine = Pelmora::Get("PelmoraLib::Player::DoPlayerProcessing", 701);
    if (!engine) return;
    IdentifyValues* pool = engine->GetIdentifyValue(m_PlayerIndex);
    if (!pool) {
        printf("DoPlayerProcessing Failed!\n");
        return;
    }
    m_PassPool = pool;
    CalcSkeletonVelocity();

    const std::vector<Point3>& newest = m_PositionHistory[m_PositionIndex].m_Points;
    const size_t slots = std::min({newest.size(), m_SkeletonPosValueIndexArray.size(), m_VelocitySums.size()});
    if (pool != m_SlotPool || pool->GetGeneration() != m_SlotGeneration || m_SlotTargets.size() < slots)
        FindSlotTargets(*pool, slots);
    for (size_t k = 0; k < slots; ++k) {
        const uint64_t positionIndex = m_SkeletonPosValueIndexArray[k];
        const SlotTarget& target = m_SlotTargets[k];
        if (target.position && target.positionIndex == positionIndex &&
            target.velocityIndex == m_SkeletonVelocityValueIndexArray[k]) {
            memcpy(target.position, &newest[k], sizeof(Point3));
            memcpy(target.velocity, &m_VelocitySums[k], sizeof(Point3));
            continue;
        }
        BaseValue* position = ValueOfType(*pool, positionIndex, BaseValue::Vector3);
        BaseValue* velocity = ValueOfType(*pool, m_SkeletonVelocityValueIndexArray[k], BaseValue::Vector3);
        if (!position || !velocity) {
            printf("Skeleton Type Index:%d, Pos Index%d, pPosValue == %d, pVelocityValue == %d\n", static_cast<int>(k),
                   static_cast<int>(positionIndex), position != nullptr, velocity != nullptr);
            continue;
        }
        memcpy(position->GetValue().v3, &newest[k], sizeof(Point3));
        memcpy(velocity->GetValue().v3, &m_VelocitySums[k], sizeof(Point3));
    }

    ProcessingTable* processing = engine->GetProcessingTable(m_PlayerIndex);
    const bool processAll = m_ProcessAll;
    m_ProcessAll = false;
    if (!processing) return;
    if (processAll) {
        processing->UpdateAll();
    } else {
        processing->FrameUpdate();
    }
}

// Looks up, without a message, where each slot's position and velocity are
// stored in the pool; a slot whose values are missing or not vectors gets no
// storage and is looked up (and reported) on every frame as before.
void Player::FindSlotTargets(const IdentifyValues& pool, size_t slots) {
    m_SlotTargets.resize(std::max(slots, m_SlotTargets.size()));
    auto vectorStorage = [&](uint64_t index) -> float* {
        if (index >= pool.GetValueCount()) return nullptr;
        BaseValue* value = pool.GetValue(static_cast<size_t>(index));
        return value && value->GetType() == BaseValue::Vector3 ? value->GetValue().v3 : nullptr;
    };
    for (size_t k = 0; k < slots; ++k) {
        SlotTarget& target = m_SlotTargets[k];
        target.positionIndex = m_SkeletonPosValueIndexArray[k];
        target.velocityIndex = m_SkeletonVelocityValueIndexArray[k];
        target.position = vectorStorage(target.positionIndex);
        target.velocity = vectorStorage(target.velocityIndex);
        if (!target.velocity) target.position = nullptr;
    }
    m_SlotPool = &pool;
    m_SlotGeneration = pool.GetGeneration();
}

void Player::SetVelocityFrameNum(int frameNum) {
    const size_t frames = static_cast<size_t>(frameNum > 2 ? frameNum : 2);
    m_PositionHistory.resize(frames);
    m_VelocityFrameMul.resize(frames);
}

void Player::SetIsUpdate(bool update) {
    if (m_IsUpdate == update) return;
    m_IsUpdate = update;
    if (!update) return;
    m_ProcessAll = true;
    m_VelocityIndex = 0;
    m_PositionIndex = 0;
    m_FramesReceived = 0;
}

// ---- Gesture progress and results.

void Player::InitGestureList() {
    Pelmora* engine = Pelmora::Get("PelmoraLib::Player::InitGestureList", 178);
    if (!engine) return;
    IdentifyValues* pool = engine->GetIdentifyValue(m_PlayerIndex);
    if (!pool) {
        printf("InitGestureList ERROR: IdentifyValues can't be found\n");
        return;
    }
    GestureTable* table = engine->GetGestureTable(m_PlayerIndex);
    if (!table) {
        printf("InitGestureList ERROR: GestureTable can't be found\n");
        return;
    }
    const size_t gestures = static_cast<size_t>(table->GetGestureNum());
    PlayerGestureInfo::ms_GestureTimeIndex = static_cast<int32_t>(pool->GetValueIndex("GestureTime"));
    PlayerGestureInfo::ms_SegmentTimeIndex = static_cast<int32_t>(pool->GetValueIndex("SegmentTime"));

    ClearGestureList();
    m_GestureInfos.reserve(gestures);
    for (size_t i = 0; i < gestures; ++i) m_GestureInfos.emplace_back(static_cast<uint32_t>(i));
    // Laid out now, so that the first frame finds it ready.
    table->Program(pool);

    m_ReturnInfoSize = GesturePass::RecordSize(engine->GetReturnInfoType());
    // A host thread may be copying results out of a slot right now.
    ScopedLock readers(m_ResultBuffer.HostLock());
    for (uint32_t slot = 0; slot < 3; ++slot) {
        ReturnGestureInfoBuffer& buffer = m_ResultBuffer.GetSlot(slot);
        buffer.m_Count = 0;
        buffer.m_Data.assign(gestures * m_ReturnInfoSize, 0);
    }
}

void Player::ClearGestureList() { m_GestureInfos.clear(); }

void Player::Reset() {
    for (PlayerGestureInfo& info : m_GestureInfos) info.Reset();
}

void Player::SetGesture(unsigned int gestureIndex, bool active) {
    PlayerGestureInfo* info = GetGestureInfo(gestureIndex);
    if (!info || info->m_IsActive == active) return;
    m_IsWarmingUp = m_IsWarmingUp && active;
    info->m_IsActive = active;
    info->Reset();
}

PlayerGestureInfo* Player::GetGestureInfo(size_t index) {
    if (index >= m_GestureInfos.size()) {
        printf("GetGestureInfo Index Out Of Range! Index: %ul\n", static_cast<unsigned>(index));
        return nullptr;
    }
    return &m_GestureInfos[index];
}

bool Player::UpdateGestureInfo() {
    DoPlayerProcessing();
    Pelmora* engine = Pelmora::Get("PelmoraLib::Player::UpdateGestureInfo", 393);
    if (!engine) return false;
    GestureTable* table = engine->GetGestureTable(m_PlayerIndex);
    if (m_ReturnInfoSize == 0) return false;

    ReturnGestureInfoBuffer& slot = m_ResultBuffer.WriteSlot();
    const GesturePass pass(table, m_PassPool, m_PlayerIndex, IsDebugInfo());
    const bool anyFinished = pass.Run(m_GestureInfos, m_ReturnInfoSize, slot.m_Data.data(), slot.m_Count);
    m_ResultBuffer.Commit();
    ScopedLock lock(m_PlayerLock);
    m_HasNewData.store(true, std::memory_order_release);
    return anyFinished;
}

// A poll that finds nothing new only reads the flag: it leaves the flag's
// cache line shared with the worker instead of taking it over for the lock.
bool Player::CheckHasNewData() {
    if (!m_HasNewData.load(std::memory_order_acquire)) return false;
    ScopedLock lock(m_PlayerLock);
    return m_HasNewData.exchange(false, std::memory_order_acq_rel);
}

}  // namespace PelmoraLib
