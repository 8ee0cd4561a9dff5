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

// Registration runs once, without a function-local static: a fork that catches another thread
// inside a guarded initialisation leaves the guard taken for good in the child, whose first
// caller would then wait forever. A caller that finds the registration under way answers "no"
// and keeps to the ordinary path; the answer turns to "yes" once the registration is done.
enum Registration : int { kNotTried, kRegistering, kRegistered, kRefused };
std::atomic<int> g_registration{kNotTried};

// The stand-in barrier's lock, held across fork so that the child finds it free.
std::mutex g_pageMutex;

void BeforeFork() noexcept {
    g_pageMutex.lock();
}

void AfterForkInParent() noexcept {
    g_pageMutex.unlock();
}

void AfterForkInChild() noexcept {
    g_pageMutex.unlock();
    g_shut.store(true, std::memory_order_relaxed);
}
[[maybe_unused]] bool const g_forkHandled = AtFork(BeforeFork, AfterForkInParent, AfterForkInChild);

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

bool Registered() noexcept {
    int state = g_registration.load(std::memory_order_acquire);
    if (state == kNotTried && g_registration.compare_exchange_strong(state, kRegistering)) {
        state = RegisterForBarriers() ? kRegistered : kRefused;
        g_registration.store(state, std::memory_order_release);
    }
    return state == kRegistered;
}

// Taking write access away from a page this process has touched makes the kernel interrupt
// every processor that may hold the page in its TLB, that is every processor running a thread
// of the process; each passes a full barrier on the way.
void BarrierThroughPageProtection() noexcept {
    std::atomic_thread_fence(std::memory_order_seq_cst);
    std::lock_guard const lock(g_pageMutex);
    static void* page = nullptr; // made under the lock: no guarded initialisation
    std::size_t const pageSize = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    if (!page) {
        void* const made =
            mmap(nullptr, pageSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (made == MAP_FAILED)
            return;
        page = made;
    }
    mprotect(page, pageSize, PROT_READ | PROT_WRITE);
    static_cast<std::atomic<int>*>(page)->fetch_add(1);
    mprotect(page, pageSize, PROT_NONE);
}

} // namespace

bool CanFlushProcessWriteBuffers() noexcept {
    return Registered() && !g_shut.load(std::memory_order_relaxed);
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
