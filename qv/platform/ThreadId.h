// GetCurrentThreadId: the kernel's id of the calling thread (gettid), as a 32-bit value.
// Linux ids are positive and below the kernel's pid_max (at most 2^22), so a live thread never
// has 0 or 0xFFFFFFFF, which callers use for "none". It is the same number that ps, top, gdb
// and /proc/self/task show, which is what NameThread relies on to name another thread.
#pragma once

#include <cstdint>

namespace qv::platform {

namespace detail {
// The id of the calling thread once asked for, 0 before. gettid is a system call each time;
// locks ask for the id on their fastest paths, so it is cached per thread. __thread rather
// than thread_local: the variable has no initialiser to run, and the compiler then reads it
// directly instead of calling a wrapper. initial-exec keeps the read a single instruction.
extern __thread std::uint32_t t_threadId __attribute__((tls_model("initial-exec")));
std::uint32_t FetchCurrentThreadId() noexcept;
} // namespace detail

inline std::uint32_t GetCurrentThreadId() noexcept {
    std::uint32_t const id = detail::t_threadId;
    return id ? id : detail::FetchCurrentThreadId();
}

} // namespace qv::platform
