#include <atomic>
#include <cerrno>
#include <linux/membarrier.h>
#include <mutex>
#include <pthread.h>
#include <qv/platform/ProcessWriteBuffers.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace qv::platform {

namespace {

// Set for good once a barrier failed, and in the child of a fork: a thread of the parent may
// have been inside a reader's slot update when the process forked, and the child should not
// rely on membarrier's registration, which belongs to the parent's address space.
std::atomic<bool> g_shut{false};
std::atomic<bool> g_failNext{false};

void ShutInChild() noexcept {
    g_shut.store(true, std::memory_order_relaxed);
}
[[maybe_unused]] bool const g_childShut = AtFork(nullptr, nullptr, ShutInChild);

long Membarrier(int command) noexcept {
    if (g_failNext.exchange(false, std::memory_order_relaxed)) {
        errno = EPERM;
        return -1;
    }
    return syscall(SYS_membarrier, command, 0, 0);
}

bool RegisterForBarriers() noexcept {
    long const commands = Membarrier(MEMBARRIER_CMD_QUERY);
    return commands > 0 && (commands & MEMBARRIER_CMD_PRIVATE_EXPEDITED) != 0 &&
           Membarrier(MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED) == 0;
}

// Taking write access away from a page this process has touched makes the kernel interrupt
// every processor that may hold the page in its TLB, that is every processor running a thread
// of the process; each passes a full barrier on the way.
void BarrierThroughPageProtection() noexcept {
    static std::mutex mutex;
    static long const pageSize = sysconf(_SC_PAGESIZE);
    static void* const page = mmap(nullptr, static_cast<std::size_t>(pageSize),
                                   PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    std::atomic_thread_fence(std::memory_order_seq_cst);
    if (page == MAP_FAILED)
        return;
    std::lock_guard const lock(mutex);
    mprotect(page, static_cast<std::size_t>(pageSize), PROT_READ | PROT_WRITE);
    static_cast<std::atomic<int>*>(page)->fetch_add(1);
    mprotect(page, static_cast<std::size_t>(pageSize), PROT_NONE);
}

} // namespace

bool CanFlushProcessWriteBuffers() noexcept {
    static bool const registered = RegisterForBarriers();
    return registered && !g_shut.load(std::memory_order_relaxed);
}

void FlushProcessWriteBuffers() noexcept {
    if (Membarrier(MEMBARRIER_CMD_PRIVATE_EXPEDITED) == 0)
        return;
    g_shut.store(true, std::memory_order_relaxed);
    BarrierThroughPageProtection();
}

bool AtFork(void (*prepare)(), void (*parent)(), void (*child)()) noexcept {
    return pthread_atfork(prepare, parent, child) == 0;
}

void FailNextProcessWriteBufferFlush() noexcept {
    g_failNext.store(true, std::memory_order_relaxed);
}

} // namespace qv::platform
