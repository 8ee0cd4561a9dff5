// FlushProcessWriteBuffers: every running thread of the process passes a full memory barrier
// before the call returns, as on Windows. It lets a lock put the whole cost of ordering on its
// rare side: the frequent side orders its accesses for the compiler only, and the rare side
// calls this between its store and its loads. On Linux it is membarrier's private expedited
// command, which the process registers for once.
#pragma once

namespace qv::platform {

// False when the kernel offers no such barrier (before Linux 4.14, or filtered by a sandbox);
// callers then keep to paths that order their accesses themselves. Registers on first call.
bool CanFlushProcessWriteBuffers() noexcept;
// Only after CanFlushProcessWriteBuffers() has answered true.
void FlushProcessWriteBuffers() noexcept;

} // namespace qv::platform
