// Eventually - waits for progress made on another thread: polls a condition
// until it holds or a deadline generous enough for valgrind on a loaded
// machine has passed, so a hang shows as a failure, not a stuck test.
// Thread-safety: the condition is the caller's to make safe.
#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace PelmoraTest {

inline bool Eventually(const std::function<bool()>& done) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!done()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

}  // namespace PelmoraTest
