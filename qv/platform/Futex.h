// Waiting on a 32-bit word: the one blocking primitive beneath our locks and events, as
// WaitOnAddress is on Windows. Every lock keeps its whole state in atomic words and calls the
// kernel only to sleep while a word holds a value, or to wake the sleepers after changing it.
#pragma once

#include <atomic>
#include <cstdint>

namespace qv::platform {

// A point on the monotonic clock, for waits with a time limit.
struct Deadline {
    long long seconds;
    long nanoseconds;

    // Now plus the given milliseconds.
    static Deadline After(std::uint32_t milliseconds) noexcept;
};

// Sleeps while word holds expected, until woken or until the deadline (null: no limit).
// Returns false only when the deadline passed; a wake, a signal or a word that no longer
// holds expected all return true, so callers re-check their condition in a loop.
bool FutexWait(std::atomic<std::uint32_t>& word, std::uint32_t expected,
               Deadline const* deadline = nullptr) noexcept;
// Wakes up to count threads sleeping on word (INT32_MAX: all).
void FutexWake(std::atomic<std::uint32_t>& word, int count) noexcept;

} // namespace qv::platform
