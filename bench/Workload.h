// Workload - what every benchmark feeds the library: a generated configuration
// document (ten processing functions over the joints and any number of
// three-segment gestures built from four templates with varying thresholds),
// a cyclic synthetic motion that makes gestures advance, finish and reset,
// and the same rules written directly in C++ as the yardstick.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "pelmora.h"

namespace PelmoraBench {

// The skeleton handed to the library: 20 joints, tracker order.
extern const int32_t kJointTypes[];
constexpr int kJointCount = 20;
// Velocities from the last two frame steps.
constexpr int kVelocityFrames = 3;
// Frames of one motion cycle, and the tracker's frame period.
constexpr int kCycleFrames = 60;
constexpr uint32_t kFrameMs = 33;

// One generated gesture: its template and its thresholds, kept as the
// literal texts the document carries so both sides read the same floats.
struct GestureRecipe {
    int kind = 0;
    std::string a, b, c;
};

std::vector<GestureRecipe> MakeGestures(int count);
std::string MakeDocument(const std::vector<GestureRecipe>& gestures);

// Frames of the motion for one player: kCycleFrames x kJointCount.
std::vector<Point3> MakeMotion(int player);

// The start-up record for the benchmarks (24-byte records).
GestureConfigParam MakeParam(bool worker, int players);

// A millisecond counter installed as the library's time source; the host
// advances it once per frame, the worker may read it at any time.
struct FrameClock {
    static uint32_t Read(void* self);
    void Install();
    static void Uninstall();
    uint32_t Now() const { return now.load(std::memory_order_relaxed); }
    uint32_t Advance(uint32_t ms) { return now.fetch_add(ms, std::memory_order_relaxed) + ms; }
    std::atomic<uint32_t> now{1000};
};

// ---- The yardstick: the same processing, comparisons and progress logic as
// plain structs and ifs over the same frames.

struct Vec3 {
    float x, y, z;
};

class HandWritten {
public:
    HandWritten(const std::vector<GestureRecipe>& gestures, int players, uint32_t startMs);

    // One frame of one player; returns the number of records written, or
    // -1 while the velocity history warms up (as the library, which then
    // has no result set).
    int Update(int player, const Point3* joints, uint32_t nowMs, PelmoraResult24* out);

    // Qualification checks made since construction.
    uint64_t Checks() const { return m_Checks; }
    void SetCounting(bool on) { m_Counting = on; }

private:
    enum Result { Succeed = 0, Failed = 1, Reset = 2, Finish = 3 };

    struct Gesture {
        int kind;
        float a, b, c;
    };
    struct Progress {
        uint32_t segment = 0;
        uint32_t segmentStart = 0;
        uint32_t gestureStart = 0;
    };
    struct Derived {
        Vec3 handOffset;
        float handHeight;
        float handDistance;
        Vec3 rightArm;
        Vec3 rightUpperArm;
        float elbowAngle;
        Vec3 shoulderLine;
        float shoulderWidth;
        float handForward;
        float handReach;
    };
    struct PlayerState {
        Vec3 position[25];
        Vec3 velocity[25];
        Vec3 history[kVelocityFrames][kJointCount];
        uint32_t tick[kVelocityFrames] = {};
        Vec3 steps[kVelocityFrames - 1][kJointCount];
        uint32_t positionIndex = 0;
        uint32_t velocityIndex = 0;
        uint64_t frames = 0;
        std::vector<Progress> progress;
    };

    template <bool Count>
    Result Check(const Gesture& gesture, uint32_t segment, const Derived& d, const PlayerState& p, int32_t segmentTime,
                 int32_t gestureTime);

    std::vector<Gesture> m_Gestures;
    std::vector<PlayerState> m_Players;
    uint64_t m_Checks = 0;
    bool m_Counting = false;
};

}  // namespace PelmoraBench
