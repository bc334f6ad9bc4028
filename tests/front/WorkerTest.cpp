// The worker thread as the host paces it: signals collapse into passes, the
// host's lock holds the command phase, the pass-rate meter, and closing.
#include <thread>

#include "ApiFixture.h"
#include "engine/FrameRateCounter.h"
#include "engine/Pelmora.h"
#include "engine/PlayerManager.h"
#include "player/Player.h"

using namespace PelmoraLib;
using namespace PelmoraTest;

// The rate is the samples held times 1000 over their sum, truncated; after
// 200 samples the oldest leaves the window.
TEST(FrameRateCounter, Window) {
    FrameRateCounter meter;
    meter.Add(0);
    EXPECT_EQ(meter.FramesPerSecond(), 0);  // a zero sum leaves the rate alone
    meter.Add(20);
    EXPECT_EQ(meter.FramesPerSecond(), 100);  // 2 samples over 20 ms
    meter.Add(11);
    EXPECT_EQ(meter.FramesPerSecond(), 96);  // 3000 / 31
    for (int i = 3; i < FrameRateCounter::kWindowSize; ++i) meter.Add(1000);
    EXPECT_EQ(meter.FramesPerSecond(), 200 * 1000 / (31 + 197 * 1000));
    for (int i = 0; i < FrameRateCounter::kWindowSize; ++i) meter.Add(10);
    EXPECT_EQ(meter.FramesPerSecond(), 100);
    meter.Add(2010);  // replaces one 10
    EXPECT_EQ(meter.FramesPerSecond(), 200 * 1000 / 4000);
}

// Through the worker on a fixed clock: the first pass only stores its time;
// passes every 20 ms read 50, and an uneven pass moves the mean.
TEST_F(WorkerApiTest, PassRate) {
    Init(true);
    int reads = 1;
    OnIdle();
    ASSERT_TRUE(m_Clock.WaitReads(reads));
    EXPECT_EQ(SubThreadFPS(), 0);
    for (int pass = 2; pass <= 6; ++pass) {
        m_Clock.Advance(pass == 6 ? 120 : 20);
        OnIdle();
        ASSERT_TRUE(m_Clock.WaitReads(reads += 2));
        if (pass < 6) {
            EXPECT_EQ(SubThreadFPS(), 50);
        }
    }
    EXPECT_EQ(SubThreadFPS(), 5 * 1000 / 200);

    // Without a worker nothing measures and signals have no reader.
    Printed([&] { ClosePelmora(), Init(false); });
    OnIdle();
    Pelmora::Get()->UpdateAll();
    EXPECT_EQ(SubThreadFPS(), 0);
}

// Any number of signals given during a pass start exactly one further pass.
TEST_F(WorkerApiTest, SignalsDuringPassGiveOneMorePass) {
    Init(true);
    m_Clock.Hold();
    OnIdle();
    ASSERT_TRUE(m_Clock.WaitHeld());  // the first pass is parked at its end
    for (int signal = 0; signal < 10; ++signal) OnIdle();
    m_Clock.Release();
    ASSERT_TRUE(m_Clock.WaitReads(3));  // first pass 1 reading, second 2
    // Each pass gives the rate meter the time since the one before: a pass
    // 20 ms later makes two samples over 20 ms, an extra pass of the signals
    // a third.
    m_Clock.Advance(20);
    OnIdle();
    ASSERT_TRUE(m_Clock.WaitReads(5));
    EXPECT_EQ(SubThreadFPS(), 100);
}

// While the host holds Pelmora::Lock the worker waits at its command phase;
// the host can still queue (the lock is recursive), and the commands run once
// it lets go.
TEST_F(WorkerApiTest, HostLockHoldsCommandPhase) {
    Start(true);
    Player& player = *PlayerManager::Get()->GetPlayer(0);
    Pelmora::Lock();
    SetPlayer(0, true);
    OnIdle();
    // A grace period, not a measure: on a slow machine it may miss a worker
    // that runs ahead, but it never fails one that waits.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(m_Clock.Reads(), 0);
    EXPECT_FALSE(player.IsUpdate());
    Pelmora::Unlock();
    ASSERT_TRUE(m_Clock.WaitReads(1));
    EXPECT_TRUE(player.IsUpdate());
}

// Closing while the worker waits ends it before ClosePelmora returns, and
// drops the commands still queued without running them.
TEST_F(WorkerApiTest, CloseWhileWaiting) {
    Start(true);
    OnIdle();
    ASSERT_TRUE(m_Clock.WaitReads(1));
    SetPlayer(7, true);  // would print two lines if it ran
    SetPlayerGesture(0, 9, true);
    EXPECT_EQ(Printed([] { ClosePelmora(); }), "Pelmora Sub Thread Closing\n");
}
