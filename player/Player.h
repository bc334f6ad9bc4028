// Player - one tracked person. Frames come in from the host through a triple
// buffer, are kept in a short position history from which joint velocities
// are derived, and are written with the velocities into the player's value
// pool; then the processing runs, a GesturePass checks every active
// gesture's current segment, and its result records are published through a
// second triple buffer.
// Thread-safety: UpdatePlayerInfo and the result/velocity readers run on host
// threads; ProcessPlayerInfo, UpdatePlayerInfoImmediate and the gesture state
// run on the thread that updates the player (the worker, or the host in the
// mode without one). The buffers and the has-new-data flag are the only
// shared state, each under its own short lock. The skeleton layout statics
// are set by InitSkeleton before any player exists.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "PelmoraExport.h"
#include "engine/CriticalSection.h"
#include "pelmora.h"
#include "player/MulBuffer.h"
#include "player/PlayerGestureInfo.h"

namespace PelmoraLib {

class IdentifyValues;

// Fixed to the record's 32-bit field: other codes from the host are kept
// (and leave the weights alone) without UB.
enum VelocityMulType : int32_t { VelocityMulEqual = 0, VelocityMulHalving = 1 };

using SkeletonPositionInfo = std::vector<Point3>;

// One slot of the result triple buffer.
struct ReturnGestureInfoBuffer {
    uint64_t m_Count = 0;
    std::vector<char> m_Data;
};

class PELMORA_API Player {
public:
    static const int kSkeletonTypeCount = 25;

    static std::vector<uint64_t> m_SkeletonPosValueIndexArray;
    static std::vector<uint64_t> m_SkeletonVelocityValueIndexArray;
    static std::vector<float> m_VelocityFrameMul;

    static void InitSkeleton(int playerNum, int skeletonNum, const int* skeletonTypes, int velocityFrameNum,
                             VelocityMulType mulType);
    static void SetSkeletonTypeToIndex(int* positionIndices, int* velocityIndices, int count);
    static bool CheckPositionData(const Point3* data, int count);
    static int GetVelocityFrameNum() { return ms_VelocityFrameNum; }

    explicit Player(int index);
    ~Player();
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    int GetIndex() const { return m_PlayerIndex; }

    // ---- Skeleton input and velocity.
    bool UpdatePlayerInfo(const void* data, int count);
    bool ProcessPlayerInfo();
    bool UpdatePlayerInfoImmediate(const void* data, int count);
    void SetVelocityFrameNum(int frameNum);
    bool IsUpdate() const { return m_IsUpdate; }
    void SetIsUpdate(bool update);
    void SetIsGetVelocityData(bool on) { m_IsGetVelocityData = on; }
    MulBuffer<SkeletonPositionInfo>& GetPositionInfo() { return m_PositionInput; }
    MulBuffer<SkeletonPositionInfo>& GetAfterCalLastPosVelocityInfo() { return m_VelocityOutput; }

    // ---- Gesture progress and results.
    void InitGestureList();
    void ClearGestureList();
    void Reset();
    void SetGesture(unsigned int gestureIndex, bool active);
    PlayerGestureInfo* GetGestureInfo(size_t index);
    size_t GetGestureInfoNum() const { return m_GestureInfos.size(); }
    bool UpdateGestureInfo();
    ReturnGestureInfoBuffer& BeginReadGestureInfoBuffer() { return m_ResultBuffer.BeginRead(); }
    void EndReadGestureInfoBuffer() { m_ResultBuffer.EndRead(); }
    CriticalSection& GetResultReaderLock() { return m_ResultBuffer.HostLock(); }
    uint64_t GetReturnInfoSize() const { return m_ReturnInfoSize; }
    bool CheckHasNewData();

protected:
    static void InitFrameDataMul();
    void DoPlayerProcessing();
    void CalcSkeletonVelocity();

private:
    struct PositionFrame {
        uint64_t m_Tick = 0;
        std::vector<Point3> m_Points;
    };

    static bool BuildSkeletonInfo(int playerIndex);
    static int ValidSkeletonType(int slot, int type);
    bool StoreFrame(const void* data, int count);
    void DeriveVelocities(uint64_t previousEntry);
    void FindSlotTargets(const IdentifyValues& pool, size_t slots);

    static int ms_VelocityFrameNum;
    static VelocityMulType ms_VelocityMulType;
    static int ms_TypeToPositionIndex[kSkeletonTypeCount];
    static int ms_TypeToVelocityIndex[kSkeletonTypeCount];

    int m_PlayerIndex;
    MulBuffer<SkeletonPositionInfo> m_PositionInput;
    MulBuffer<SkeletonPositionInfo> m_VelocityOutput;
    std::vector<Point3> m_VelocitySums;
    std::vector<PositionFrame> m_PositionHistory;
    std::vector<std::vector<Point3>> m_VelocityHistory;
    uint64_t m_VelocityIndex = 0;
    uint64_t m_PositionIndex = 0;
    uint64_t m_FramesReceived = 0;
    bool m_IsWarmingUp = true;
    bool m_IsUpdate = false;
    bool m_ProcessAll = true;
    bool m_IsGetVelocityData = false;
    bool m_ZeroStepReported = false;

    // One record per gesture, side by side: a pass walks them in order.
    std::vector<PlayerGestureInfo> m_GestureInfos;
    MulBuffer<ReturnGestureInfoBuffer> m_ResultBuffer;
    uint64_t m_ReturnInfoSize = 0;
    // Set by the pass that publishes a result set, cleared by the host call
    // that takes it; atomic so that a host polling between frames can look
    // without taking the lock.
    std::atomic<bool> m_HasNewData{false};
    CriticalSection m_PlayerLock;
    // The value pool found by this pass's processing step; null when it
    // found none.
    IdentifyValues* m_PassPool = nullptr;

    // Where each skeleton slot's position and velocity are stored in the
    // pool, found once and kept while the pool's generation stands (see
    // FindSlotTargets). A null position: look the slot up every frame.
    struct SlotTarget {
        uint64_t positionIndex = 0;
        uint64_t velocityIndex = 0;
        float* position = nullptr;
        float* velocity = nullptr;
    };
    std::vector<SlotTarget> m_SlotTargets;
    const IdentifyValues* m_SlotPool = nullptr;
    uint64_t m_SlotGeneration = 0;
};

}  // namespace PelmoraLib
