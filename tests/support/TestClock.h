// TestClock - a deterministic millisecond clock for tests: installs itself as
// the library's time source and restores the steady clock when destroyed.
#pragma once

#include <cstdint>

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

private:
    static uint32_t Read(void* self);
    uint32_t m_Now;
};

}  // namespace PelmoraTest
