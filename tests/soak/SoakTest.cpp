// Soak: the worker mode with 6 players x 100 gestures, a driver thread that
// feeds frames, switches gestures on and off and checks every pass's results,
// a thread that resets gestures and two that query, for PELMORA_SOAK_SECONDS
// (default 10; run a few minutes before a release) and at least kMinSteps
// passes however slow the machine. Every pass must be consistent: one record
// per enabled gesture, indices in range, a finished gesture back at segment 0
// in the next pass, the last of conflicting commands deciding; and live heap
// must not grow.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "pelmora.h"
#include "support/Param.h"

extern "C" size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));

namespace {

const int kPlayers = 6;
const int kGestures = 100;
const int kSegments = 3;
// Two band switches at least, whatever PELMORA_SOAK_SECONDS says.
const int kMinSteps = 110;
int32_t g_Types[] = {1, 2, 4, 9, 15};  // head, neck, waist, left hand, right hand

// Gesture g: the right hand rises past a height, then comes back down, then
// the left hand does; thresholds spread so the gestures advance at different
// frames of the motion.
std::string Document() {
    std::string xml =
        "<AppConfig><IdentfyValues><Value type='float' name='Reach'/><Value type='vector3' name='Offset'/>"
        "</IdentfyValues><Processing update='1'>"
        "<Function name='SUB' return='@Offset' value1='@P_RightHand' value2='@P_Neck'/>"
        "<Function name='LENGTH' return='@Reach' value1='@Offset'/></Processing>";
    for (int g = 0; g < kGestures; ++g) {
        const std::string level = std::to_string(0.8 + 0.004 * g);
        xml += "<Gesture name='G" + std::to_string(g) + "'>"
               "<Segment><Qualification QualificationEnum='Greate' value1='@P_RightHand.y' value2='" + level + "'/>"
               "<Qualification QualificationEnum='Greate' value1='@Reach' value2='0.1'/></Segment>"
               "<Segment><Qualification QualificationEnum='ELess' value1='@SegmentTime' value2='2000' IsResetOnFailed='1'/>"
               "<Qualification QualificationEnum='Less' value1='@P_RightHand.y' value2='" + level + "'/></Segment>"
               "<Segment><Qualification QualificationEnum='ELess' value1='@SegmentTime' value2='2000' IsResetOnFailed='1'/>"
               "<Qualification QualificationEnum='Greate' value1='@P_LeftHand.y' value2='" + level + "'/></Segment>"
               "</Gesture>";
    }
    return xml + "</AppConfig>";
}

void Frame(Point3* joints, int step, int player) {
    const float phase = 0.15f * static_cast<float>(step + 7 * player);
    joints[0] = {0.0f, 1.6f, 2.5f};
    joints[1] = {0.0f, 1.4f, 2.5f};
    joints[2] = {0.0f, 1.0f, 2.5f};
    joints[3] = {-0.3f, 1.0f + 0.5f * std::sin(phase - 1.5f), 2.4f};
    joints[4] = {0.3f, 1.0f + 0.5f * std::sin(phase), 2.4f};
}

// Sanitizer runtimes count live heap bytes; plain builds skip the check.
size_t LiveHeapBytes() {
    return __sanitizer_get_current_allocated_bytes ? __sanitizer_get_current_allocated_bytes() : 0;
}

struct Checker {
    bool enabled[kPlayers][kGestures] = {};
    bool finishedLastPass[kPlayers][kGestures] = {};

    // Validates one pass of one player; returns the failure, or "" when fine.
    std::string Check(int player, const PelmoraResult24* records, uint32_t count) {
        std::set<int32_t> seen;
        int expected = 0;
        for (int g = 0; g < kGestures; ++g) expected += enabled[player][g];
        if (static_cast<int>(count) != expected) return "record count differs from the enabled gestures";
        bool finishedNow[kGestures] = {};
        for (uint32_t k = 0; k < count; ++k) {
            const PelmoraResult24& r = records[k];
            if (r.gestureIndex < 0 || r.gestureIndex >= kGestures) return "gesture index out of range";
            if (!enabled[player][r.gestureIndex]) return "record for a disabled gesture";
            if (!seen.insert(r.gestureIndex).second) return "two records for one gesture";
            if (r.segmentIndex < 0 || r.segmentIndex >= kSegments) return "segment index out of range";
            if (finishedLastPass[player][r.gestureIndex] && r.segmentIndex != 0) return "finished gesture not back at 0";
            if (r.finished && !r.succeeded) return "finished without success";
            finishedNow[r.gestureIndex] = r.finished != 0;
        }
        for (int g = 0; g < kGestures; ++g) finishedLastPass[player][g] = finishedNow[g];
        return "";
    }
};

}  // namespace

TEST(Soak, WorkerStaysConsistentUnderConcurrentHosts) {
    const char* configured = getenv("PELMORA_SOAK_SECONDS");
    const int seconds = configured ? atoi(configured) : 10;
    GestureConfigParam param = PelmoraTest::Param(kPlayers, g_Types, 5);
    param.IsUseSubThread = 1;
    param.IsGetVelocityData = 1;
    testing::internal::CaptureStdout();
    InitPelmora(&param);
    ASSERT_TRUE(LoadConfigData(Document().c_str()));
    ASSERT_TRUE(StartGestureWork());
    testing::internal::GetCapturedStdout();

    // The players are tracked and their velocity history started on this
    // thread before the worker's first pass, so that every pass publishes and
    // the driver and the worker go in lockstep: one signal, one pass, one
    // result set per player, waited for.
    Checker checker;
    std::vector<PelmoraResult24> records(kGestures);
    Point3 joints[5];
    for (int32_t p = 0; p < kPlayers; ++p) {
        SetPlayerImmediate(p, true);
        for (int g = 0; g < kGestures; ++g) {
            checker.enabled[p][g] = (g + p) % 3 != 0;
            SetPlayerGestureImmediate(p, static_cast<uint32_t>(g), checker.enabled[p][g]);
        }
        Frame(joints, 0, p);
        uint32_t count = 0;
        ASSERT_FALSE(UpdateSketonDataImmediate(p, joints, 5, records.data(), &count));
    }

    std::atomic<bool> stop{false};
    std::vector<std::thread> noise;
    noise.emplace_back([&] {
        for (unsigned k = 0; !stop; ++k) {
            ResetPlayerGesture(static_cast<int32_t>(k % kPlayers), k % kGestures);
            std::this_thread::sleep_for(std::chrono::microseconds(300));
        }
    });
    for (int t = 0; t < 2; ++t) {
        noise.emplace_back([&, t] {
            Point3 velocities[5];
            for (unsigned k = 0; !stop; ++k) {
                const int32_t player = static_cast<int32_t>((k + t) % kPlayers);
                EXPECT_TRUE(GetPlayerVelocityData(player, velocities, 5));
                EXPECT_EQ(GetGestureIndex(player, ("G" + std::to_string(k % kGestures)).c_str()), k % kGestures);
                EXPECT_EQ(GetGestureNum(player), static_cast<uint64_t>(kGestures));
                EXPECT_GE(SubThreadFPS(), 0);
            }
        });
    }

    // Every 50 frames a band of gestures switches, each by two conflicting
    // commands of which the second must win; some go by name. The commands
    // apply at the start of the next pass, before its evaluation.
    auto feed = [&](int step) {
        for (int32_t p = 0; p < kPlayers; ++p) {
            for (int g = 0; step % 50 == 0 && g < kGestures; ++g) {
                const bool on = (g + step / 50 + p) % 3 != 0;
                if (checker.enabled[p][g] == on) continue;
                const std::string name = "G" + std::to_string(g);
                for (const bool state : {!on, on}) {
                    if (g % 10 == 0) {
                        SetPlayerGestureFromName(p, name.c_str(), state);
                    } else {
                        SetPlayerGesture(p, static_cast<uint32_t>(g), state);
                    }
                }
                checker.enabled[p][g] = on;
                checker.finishedLastPass[p][g] = false;
            }
            Frame(joints, step, p);
            EXPECT_TRUE(UpdateSketonData(p, joints, 5));
        }
        OnIdle();
    };

    size_t heapAfterWarmUp = 0;
    std::string failure;
    const auto start = std::chrono::steady_clock::now();
    const auto end = start + std::chrono::seconds(seconds);
    const auto warmUpEnd = start + std::chrono::seconds(seconds) / 4;
    for (int step = 1; failure.empty() && (step <= kMinSteps || std::chrono::steady_clock::now() < end); ++step) {
        feed(step);
        for (int32_t p = 0; p < kPlayers && failure.empty(); ++p) {
            uint32_t count = 0;
            const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
            while (!GetPlayerGestureState(p, records.data(), &count)) {
                if (std::chrono::steady_clock::now() > deadline) {
                    failure = "no results for the pass of step " + std::to_string(step);
                    break;
                }
                std::this_thread::yield();
            }
            if (failure.empty()) failure = checker.Check(p, records.data(), count);
        }
        if (!heapAfterWarmUp && std::chrono::steady_clock::now() > warmUpEnd) heapAfterWarmUp = LiveHeapBytes();
    }
    const size_t heapAtEnd = LiveHeapBytes();
    stop = true;
    for (std::thread& thread : noise) thread.join();
    testing::internal::CaptureStdout();
    ClosePelmora();
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(failure, "");
    // Only the queued commands' list nodes come and go; nothing accumulates.
    EXPECT_LT(heapAtEnd, heapAfterWarmUp + 64 * 1024) << "live heap grew from " << heapAfterWarmUp;
}
