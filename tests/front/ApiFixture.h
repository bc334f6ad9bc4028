// ApiFixture - a host of the C interface for tests: a two-joint skeleton
// (head, right hand), gestures written as configuration text, frames with the
// hand above or below the head, and a worker-side clock that counts the
// worker's readings so tests can tell where a pass stands without sleeping.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "pelmora.h"
#include "support/Printed.h"

namespace PelmoraTest {

// "Up": the right hand above the head. "UpDown": up, then down again.
inline const char* kGestures =
    "<AppConfig>"
    "<Gesture name='Up'><Segment><Qualification QualificationEnum='Greate' value1='@P_RightHand.y' "
    "value2='@P_Head.y'/></Segment></Gesture>"
    "<Gesture name='UpDown'><Segment><Qualification QualificationEnum='Greate' value1='@P_RightHand.y' "
    "value2='@P_Head.y'/></Segment><Segment><Qualification QualificationEnum='Less' value1='@P_RightHand.y' "
    "value2='@P_Head.y'/></Segment></Gesture>"
    "</AppConfig>";

// Polls for up to five seconds; a hang shows as a failure, not a stuck test.
inline bool Eventually(const std::function<bool()>& done) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!done()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

// A fixed millisecond clock. Readings from threads other than the one that
// made it are counted; with no player tracked a worker pass reads it once at
// its end (the first pass) or twice (every later one), so the count tells
// passes apart. Hold() parks the worker inside its next reading.
class WorkerClock {
public:
    explicit WorkerClock(uint32_t now = 1000) : m_Now(now) { SetTimeSource(&WorkerClock::Read, this); }
    ~WorkerClock() { SetTimeSource(nullptr, nullptr); }

    void Advance(uint32_t ms) { m_Now += ms; }
    int Reads() const { return m_Reads.load(); }
    bool WaitReads(int count) const { return Eventually([&] { return Reads() >= count; }); }
    void Hold() {
        std::lock_guard<std::mutex> lock(m_Mutex);
        m_Hold = true;
    }
    bool WaitHeld() {
        std::unique_lock<std::mutex> lock(m_Mutex);
        return m_Changed.wait_for(lock, std::chrono::seconds(5), [&] { return m_Held; });
    }
    void Release() {
        std::lock_guard<std::mutex> lock(m_Mutex);
        m_Hold = false;
        m_Changed.notify_all();
    }

private:
    static uint32_t Read(void* user) {
        WorkerClock& self = *static_cast<WorkerClock*>(user);
        if (std::this_thread::get_id() == self.m_Host) return self.m_Now.load();
        std::unique_lock<std::mutex> lock(self.m_Mutex);
        if (self.m_Hold) {
            self.m_Held = true;
            self.m_Changed.notify_all();
            self.m_Changed.wait(lock, [&] { return !self.m_Hold; });
        }
        // Read before counting: a host that saw the count may move the time.
        const uint32_t now = self.m_Now.load();
        ++self.m_Reads;
        return now;
    }

    std::atomic<uint32_t> m_Now;
    std::atomic<int> m_Reads{0};
    const std::thread::id m_Host = std::this_thread::get_id();
    std::mutex m_Mutex;
    std::condition_variable m_Changed;
    bool m_Hold = false;
    bool m_Held = false;
};

class ApiTest : public testing::Test {
protected:
    void TearDown() override { Printed([] { ClosePelmora(); }); }

    void Init(bool worker, int players = 1, int returnType = PELMORA_RETURN_INFO_16) {
        // Velocities from two frames; every player keeps them for the host.
        GestureConfigParam param{worker ? 1 : 0, returnType, players, 2, m_Types, 2, PELMORA_VELOCITY_EQUAL, 1, 0};
        InitPelmora(&param);
    }

    // Init, load and compile, quietly.
    void Start(bool worker, int players = 1, int returnType = PELMORA_RETURN_INFO_16) {
        Printed([&] {
            Init(worker, players, returnType);
            ASSERT_TRUE(LoadConfigData(kGestures));
            ASSERT_TRUE(StartGestureWork());
        });
    }

    const Point3* Frame(bool handUp) {
        m_Frame[0] = Point3{0.0f, 1.0f, 2.0f};
        m_Frame[1] = Point3{0.3f, handUp ? 1.5f : 0.5f, 2.0f};
        return m_Frame;
    }

    int32_t m_Types[2] = {PELMORA_JOINT_HEAD, PELMORA_JOINT_RIGHT_HAND};
    Point3 m_Frame[2] = {};
    PelmoraResult16 m_Results[4] = {};
    uint32_t m_Count = 0;
};

// The clock outlives the worker: members go after TearDown has closed.
class WorkerApiTest : public ApiTest {
protected:
    WorkerClock m_Clock;
};

}  // namespace PelmoraTest
