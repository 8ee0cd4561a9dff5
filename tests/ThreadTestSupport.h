// Timing and thread start-up shared by the threaded suites.
#pragma once

#include <chrono>
#include <future>
#include <utility>

namespace thread_test {

using namespace std::chrono_literals;

// Long enough for a thread that could get in to do so, short enough to keep the suite quick.
constexpr auto kSettle = 50ms;
// The longest any single wait in a threaded test may take before it counts as a hang.
constexpr auto kBound = 10s;

template <class F>
std::future<void> Start(F f) {
    return std::async(std::launch::async, std::move(f));
}

} // namespace thread_test
