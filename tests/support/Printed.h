// Printed - runs a piece of code and returns what it wrote to standard output,
// so a test can compare the library's diagnostic lines exactly.
#pragma once

#include <gtest/gtest.h>

#include <string>

namespace PelmoraTest {

template <class Action>
std::string Printed(Action action) {
    testing::internal::CaptureStdout();
    action();
    return testing::internal::GetCapturedStdout();
}

}  // namespace PelmoraTest
