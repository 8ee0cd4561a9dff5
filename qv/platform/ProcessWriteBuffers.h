// FlushProcessWriteBuffers: every running thread of the process passes a full memory barrier
// before the call returns, as on Windows. It lets a lock put the whole cost of ordering on its
// rare side: the frequent side orders its accesses for the compiler only, and the rare side
// calls this between its store and its loads. On Linux it is membarrier's private expedited
// command, which the process registers for once.
#pragma once


namespace qv::platform {

// False when the kernel offers no such barrier (before Linux 4.14, or filtered by a sandbox),
// and for good once a barrier has failed or the process is the child of a fork; callers then
// keep to paths that order their accesses themselves. Registers on first call; callers that
// come while another thread registers are answered false until it is done.
bool CanFlushProcessWriteBuffers() noexcept;
// Only after CanFlushProcessWriteBuffers() has answered true. Should the kernel refuse the
// barrier, a slower one of the same strength stands in (a page protection change, whose TLB
// shootdown interrupts every processor running the process), and
// CanFlushProcessWriteBuffers() answers false from then on.
void FlushProcessWriteBuffers() noexcept;

// Registers handlers that run around every later fork (pthread_atfork): prepare in the
// parent before it, parent after it, child in the child, whose only thread is the caller.
// Any of them may be null. False when the handlers could not be registered.
bool AtFork(void (*prepare)(), void (*parent)(), void (*child)()) noexcept;

// For tests: the next barrier fails as a refused system call would.
void FailNextProcessWriteBufferFlush() noexcept;

} // namespace qv::platform
