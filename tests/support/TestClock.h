// TestClock - a deterministic millisecond clock for tests: installs itself as
// the library's time source, moves only when the test moves it, and restores
// the steady clock when destroyed. Readings from threads other than the one
// that made it are counted; with no player tracked a worker pass reads it
// once at its end (the first pass) or twice (every later one), so the count
// tells passes apart without sleeping. Hold() parks the worker inside its
// next reading.
// Thread-safety: read from any thread; moved, held and released by its maker.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

namespace PelmoraTest {

class TestClock {
public:
    explicit TestClock(uint32_t start = 1000);
    ~TestClock();
    TestClock(const TestClock&) = delete;
    TestClock& operator=(const TestClock&) = delete;

    void Set(uint32_t now) { m_Now = now; }
    void Advance(uint32_t ms) { m_Now += ms; }
    uint32_t Now() const { return m_Now; }

    int Reads() const { return m_Reads.load(); }
    bool WaitReads(int count) const;
    void Hold();
    bool WaitHeld();
    void Release();

private:
    static uint32_t Read(void* self);

    std::atomic<uint32_t> m_Now;
    std::atomic<int> m_Reads{0};
    const std::thread::id m_Maker = std::this_thread::get_id();
    std::mutex m_Mutex;
    std::condition_variable m_Changed;
    bool m_Hold = false;
    bool m_Held = false;
};

}  // namespace PelmoraTest
