#include <linux/membarrier.h>
#include <qv/platform/ProcessWriteBuffers.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace qv::platform {

namespace {
long Membarrier(int command) noexcept {
    return syscall(SYS_membarrier, command, 0, 0);
}

bool RegisterForBarriers() noexcept {
    long const commands = Membarrier(MEMBARRIER_CMD_QUERY);
    return commands > 0 && (commands & MEMBARRIER_CMD_PRIVATE_EXPEDITED) != 0 &&
           Membarrier(MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED) == 0;
}
} // namespace

bool CanFlushProcessWriteBuffers() noexcept {
    static bool const registered = RegisterForBarriers();
    return registered;
}

void FlushProcessWriteBuffers() noexcept {
    Membarrier(MEMBARRIER_CMD_PRIVATE_EXPEDITED);
}

} // namespace qv::platform
