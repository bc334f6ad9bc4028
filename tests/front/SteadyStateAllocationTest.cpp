// A steady-state frame allocates nothing on any thread, in either mode: the
// host's calls, the worker's pass, the processing, the checks and the result
// records all reuse what loading, compiling and the first frames set up.
// Counted at the malloc level, so allocations inside the library and the C++
// runtime count as well as operator new.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <thread>
#include <vector>

#include "bench/AllocationCounter.h"
#include "pelmora.h"
#include "support/Param.h"
#include "support/Printed.h"
#include "support/TestClock.h"

using namespace PelmoraTest;

namespace {

const int kCycle = 30;
const int kPlayers = 2;
const uint32_t kFrameMs = 33;
const int kVelocityFrames = 3;

int32_t g_Joints[] = {PELMORA_JOINT_HEAD, PELMORA_JOINT_LEFT_SHOULDER, PELMORA_JOINT_RIGHT_SHOULDER,
                      PELMORA_JOINT_LEFT_HAND, PELMORA_JOINT_RIGHT_HAND};
const int kJoints = 5;

// The right hand rises over the head and comes down; the left hand meets it
// twice per cycle.
std::vector<Point3> Motion() {
    std::vector<Point3> frames;
    for (int f = 0; f < kCycle; ++f) {
        const float phase = 6.2831853f * static_cast<float>(f) / kCycle;
        const float raise = 0.5f - 0.5f * std::cos(phase);
        const float clap = 0.5f - 0.5f * std::cos(2.0f * phase);
        const Point3 right{0.3f, -0.1f + raise, 2.3f};
        frames.push_back(Point3{0.0f, 0.7f, 2.5f});   // head
        frames.push_back(Point3{-0.2f, 0.5f, 2.5f});  // left shoulder
        frames.push_back(Point3{0.2f, 0.5f, 2.5f});   // right shoulder
        frames.push_back(Point3{right.x - 0.05f - 0.6f * clap, right.y, right.z});
        frames.push_back(right);
    }
    return frames;
}

class SteadyStateAllocation : public testing::Test {
protected:
    void TearDown() override { Printed([] { ClosePelmora(); }); }

    void Start(bool worker) {
        SetDebugInfo(false);
        Printed([&] {
            GestureConfigParam param = Param(kPlayers, g_Joints, kJoints);
            param.IsUseSubThread = worker;
            param.VelocityFrameNum = kVelocityFrames;
            param.VelocityMulType = PELMORA_VELOCITY_HALVING;
            param.IsGetVelocityData = 1;
            InitPelmora(&param);
            ASSERT_TRUE(LoadConfigFile(PELMORA_TEST_DATA "/front/steady_state.xml"));
            ASSERT_TRUE(StartGestureWork());
        });
        m_Gestures = static_cast<uint32_t>(GetGestureNum(0));
        ASSERT_EQ(m_Gestures, 4u);
        m_Results.resize(m_Gestures);
        for (int p = 0; p < kPlayers; ++p) {
            SetPlayerImmediate(p, true);
            for (uint32_t g = 0; g < m_Gestures; ++g) SetPlayerGestureImmediate(p, g, true);
        }
    }

    // Two cycles set everything up, three more are counted. The measured
    // frames must have done the whole job: every gesture of every player
    // every frame, with progress, finishes and waits in later segments. In
    // the worker's mode the velocity history is filled by immediate frames
    // first, so that every pass publishes and each frame waits for its own.
    void ExpectSteadyState(bool worker) {
        Start(worker);
        for (int f = 0; worker && f < kVelocityFrames - 1; ++f) Immediate();
        const auto frame = [&] { return worker ? Worker() : Immediate(); };
        for (int f = 0; f < 2 * kCycle; ++f) ASSERT_TRUE(frame());
        ResetTally();
        {
            PelmoraBench::AllocationCounter counter;
            for (int f = 0; f < 3 * kCycle; ++f) ASSERT_TRUE(frame());
            EXPECT_EQ(counter.Count(), 0u);
        }
        EXPECT_EQ(m_Records, static_cast<uint64_t>(3 * kCycle * kPlayers) * m_Gestures);
        EXPECT_GT(m_Finished, 0u);
        EXPECT_GT(m_Advanced, 0u);
        EXPECT_GT(m_Waiting, 0u);
    }

    const Point3* Frame(int player) {
        return m_Motion.data() + static_cast<size_t>((m_Frame + player * 7) % kCycle) * kJoints;
    }

    // One frame for every player; tallies what the records show.
    bool Immediate() {
        m_Clock.Advance(kFrameMs);
        for (int p = 0; p < kPlayers; ++p) {
            uint32_t count = 0;
            if (UpdateSketonDataImmediate(p, Frame(p), kJoints, m_Results.data(), &count)) Tally(count);
        }
        ++m_Frame;
        return true;
    }

    // One frame for every player and the one worker pass it wakes, waited
    // for: false only when the pass has not published within a minute.
    bool Worker() {
        m_Clock.Advance(kFrameMs);
        for (int p = 0; p < kPlayers; ++p) UpdateSketonData(p, Frame(p), kJoints);
        OnIdle();
        ++m_Frame;
        uint32_t count = 0;
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!GetPlayerGestureState(kPlayers - 1, m_Results.data(), &count)) {
            if (std::chrono::steady_clock::now() > deadline) return false;
            std::this_thread::yield();
        }
        Tally(count);
        for (int p = 0; p + 1 < kPlayers; ++p) {
            if (GetPlayerGestureState(p, m_Results.data(), &count)) Tally(count);
        }
        return true;
    }

    void Tally(uint32_t count) {
        m_Records += count;
        for (uint32_t r = 0; r < count; ++r) {
            const PelmoraResult24& record = m_Results[r];
            m_Finished += record.finished != 0;
            m_Advanced += record.succeeded && !record.finished;
            m_Waiting += !record.succeeded && record.segmentIndex > 0;
        }
    }

    void ResetTally() { m_Records = m_Finished = m_Advanced = m_Waiting = 0; }

    TestClock m_Clock;
    std::vector<Point3> m_Motion = Motion();
    std::vector<PelmoraResult24> m_Results;
    uint32_t m_Gestures = 0;
    int m_Frame = 0;
    uint64_t m_Records = 0, m_Finished = 0, m_Advanced = 0, m_Waiting = 0;
};

}  // namespace

TEST_F(SteadyStateAllocation, ImmediateFramesAllocateNothing) { ExpectSteadyState(false); }

TEST_F(SteadyStateAllocation, WorkerFramesAllocateNothing) { ExpectSteadyState(true); }
