#include "support/TestClock.h"

#include "pelmora.h"

namespace PelmoraTest {

TestClock::TestClock(uint32_t start) : m_Now(start) { SetTimeSource(&TestClock::Read, this); }

TestClock::~TestClock() { SetTimeSource(nullptr, nullptr); }

uint32_t TestClock::Read(void* self) { return static_cast<TestClock*>(self)->m_Now; }

}  // namespace PelmoraTest
