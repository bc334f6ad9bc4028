// Several host threads feed frames, switch gestures and read results while
// the worker runs passes; meant to be run under ThreadSanitizer as well.
// Nothing may be lost: every frame is accepted, every result set is whole,
// and the last command of each kind decides the final state.
#include <atomic>
#include <thread>
#include <vector>

#include "ApiFixture.h"

using namespace PelmoraTest;

TEST_F(ApiTest, HostThreadsAgainstWorker) {
    const int kPlayers = 2;
    Start(true, kPlayers, PELMORA_RETURN_INFO_24);
    for (int p = 0; p < kPlayers; ++p) SetPlayer(p, true);

    std::atomic<bool> stop{false};
    std::atomic<int> refusedFrames{0}, badResults{0}, resultSets{0};
    std::vector<std::thread> hosts;
    for (int p = 0; p < kPlayers; ++p) {
        hosts.emplace_back([&, p] {  // one tracking loop per player
            Point3 frame[2] = {{0.0f, 1.0f, 2.0f}, {0.3f, 0.5f, 2.0f}};
            for (int i = 0; !stop; ++i) {
                frame[1].y = i % 4 < 2 ? 1.5f : 0.5f;
                if (!UpdateSketonData(p, frame, 2)) ++refusedFrames;
                OnIdle();
                std::this_thread::yield();
            }
        });
    }
    hosts.emplace_back([&] {  // switches gestures on and off
        for (uint32_t i = 0; !stop; ++i) {
            SetPlayerGesture(i % kPlayers, i % 2, i % 3 != 0);
            ResetPlayerGesture(i % kPlayers, (i + 1) % 2);
            if (i % 16 == 0) SetPlayerGestureFromName(i % kPlayers, "UpDown", true);
            std::this_thread::yield();
        }
    });
    for (int reader = 0; reader < 2; ++reader) {
        hosts.emplace_back([&] {
            PelmoraResult24 results[2];
            Point3 velocity[2];
            for (uint32_t i = 0; !stop; ++i) {
                const int p = i % kPlayers;
                uint32_t count = 0;
                if (GetPlayerGestureState(p, results, &count)) {
                    ++resultSets;
                    for (uint32_t r = 0; r < count; ++r)
                        if (count > 2 || results[r].gestureIndex < 0 || results[r].gestureIndex > 1) ++badResults;
                }
                if (!GetPlayerVelocityData(p, velocity, 2)) ++badResults;
                if (GetGestureIndex(p, "UpDown") != 1) ++badResults;
                if (SubThreadFPS() < 0) ++badResults;
            }
        });
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(800));
    stop = true;
    for (std::thread& host : hosts) host.join();

    EXPECT_EQ(refusedFrames, 0);
    EXPECT_EQ(badResults, 0);
    EXPECT_GT(resultSets, 0);
    // The last commands win: first everything off, then both gestures on.
    auto expectRecords = [&](uint32_t records) {
        for (int p = 0; p < kPlayers; ++p) {
            SCOPED_TRACE(p);
            EXPECT_TRUE(Eventually([&] {
                OnIdle();
                return GetPlayerGestureState(p, m_Results, &m_Count) && m_Count == records;
            }));
        }
    };
    for (int p = 0; p < kPlayers; ++p) {
        SetPlayerGesture(p, 0, true);
        SetPlayerGesture(p, 0, false);
        SetPlayerGesture(p, 1, false);
    }
    expectRecords(0);
    for (int p = 0; p < kPlayers; ++p) {
        SetPlayerGesture(p, 0, true);
        SetPlayerGestureFromName(p, "UpDown", true);
    }
    expectRecords(2);
    EXPECT_EQ(Printed([] { ClosePelmora(); }), "Pelmora Sub Thread Closing\n");
}
