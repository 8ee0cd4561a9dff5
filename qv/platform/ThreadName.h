// Naming a thread for debuggers and tools (gdb, ps, top), as SetThreadName does through the
// debugger convention on Windows.
#pragma once

namespace qv::platform {

// threadId is the kernel's id of a thread of this process (what GetCurrentThreadId gives);
// 0 and 0xFFFFFFFF name the calling thread. Names are cut to the 15 bytes Linux keeps.
// False when the system refused.
bool NameThread(char const* name, unsigned long threadId) noexcept;

} // namespace qv::platform
