#include "support/TestClock.h"

#include "pelmora.h"
#include "support/Eventually.h"

namespace PelmoraTest {

TestClock::TestClock(uint32_t start) : m_Now(start) { SetTimeSource(&TestClock::Read, this); }

TestClock::~TestClock() { SetTimeSource(nullptr, nullptr); }

bool TestClock::WaitReads(int count) const {
    return Eventually([&] { return Reads() >= count; });
}

void TestClock::Hold() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_Hold = true;
}

bool TestClock::WaitHeld() {
    return Eventually([&] {
        std::lock_guard<std::mutex> lock(m_Mutex);
        return m_Held;
    });
}

void TestClock::Release() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_Hold = false;
    m_Changed.notify_all();
}

uint32_t TestClock::Read(void* user) {
    TestClock& self = *static_cast<TestClock*>(user);
    if (std::this_thread::get_id() == self.m_Maker) return self.m_Now.load();
    std::unique_lock<std::mutex> lock(self.m_Mutex);
    if (self.m_Hold) {
        self.m_Held = true;
        self.m_Changed.wait(lock, [&] { return !self.m_Hold; });
    }
    // Read before counting: a test that saw the count may move the time.
    const uint32_t now = self.m_Now.load();
    ++self.m_Reads;
    return now;
}

}  // namespace PelmoraTest
