#include <mutex>
#include <qv/operations/private/ReaderSlots.h>
#include <qv/platform/ProcessWriteBuffers.h>
#include <thread>
#include <vector>

namespace qv::detail {

__thread ReaderSlots* t_readerSlots __attribute__((tls_model("initial-exec"))) = nullptr;

namespace {
// Every table ever made, and those whose thread has ended. Tables are never freed: a closing
// thread must be able to read any of them at any time, and a table may hold counts of reads
// that other threads will leave. Never destroyed either, so that threads still running while
// the process exits find it intact. Built at compile time, with no guarded initialisation
// that a fork could catch half done.
struct Registry {
    std::mutex mutex;
    std::vector<ReaderSlots*> all;
    std::vector<ReaderSlots*> unused;
};

union RegistryStorage {
    constexpr RegistryStorage() : registry() {}
    ~RegistryStorage() {}
    Registry registry;
};
constinit RegistryStorage g_registryStorage;

Registry& TheRegistry() noexcept {
    return g_registryStorage.registry;
}

// Set once the thread's own thread_local objects are being destroyed: a read taken by one of
// their destructors goes the lock's ordinary path rather than claim a table again.
__thread bool t_threadEnded __attribute__((tls_model("initial-exec"))) = false;

struct HandBackAtThreadEnd {
    ReaderSlots* slots = nullptr;
    ~HandBackAtThreadEnd() {
        t_threadEnded = true;
        t_readerSlots = nullptr;
        Registry& registry = TheRegistry();
        std::lock_guard const guard(registry.mutex);
        registry.unused.push_back(slots);
    }
};
} // namespace

ReaderSlots* ReaderSlots::OfNewThread() noexcept {
    if (t_threadEnded)
        return nullptr;
    thread_local HandBackAtThreadEnd handBack;
    Registry& registry = TheRegistry();
    std::lock_guard const guard(registry.mutex);
    if (registry.unused.empty()) {
        registry.all.push_back(new ReaderSlots);
        handBack.slots = registry.all.back();
    } else {
        handBack.slots = registry.unused.back();
        registry.unused.pop_back();
    }
    t_readerSlots = handBack.slots;
    return t_readerSlots;
}

bool const ReaderSlots::s_forkHandled =
    qv::platform::AtFork(&BeforeFork, &AfterForkInParent, &AfterForkInChild);

void ReaderSlots::BeforeFork() noexcept {
    TheRegistry().mutex.lock();
}

void ReaderSlots::AfterForkInParent() noexcept {
    TheRegistry().mutex.unlock();
}

// The child's only thread is the one that forked, which was outside every window. Counts stay
// as the other threads left them: a read such a thread held stays held in the child, as a
// mutex it held would.
void ReaderSlots::AfterForkInChild() noexcept {
    Registry& registry = TheRegistry();
    for (ReaderSlots* slots : registry.all) {
        std::uint64_t const sequence = slots->m_sequence.load(std::memory_order_relaxed);
        if (sequence & 1)
            slots->m_sequence.store(sequence + 1, std::memory_order_relaxed);
    }
    registry.mutex.unlock();
}

std::int64_t ReaderSlots::CountOf(void const* lock, std::uint64_t epoch) const noexcept {
    Slot const& slot = m_slots[IndexOf(lock)];
    for (;;) {
        std::uint64_t const before = m_sequence.load(std::memory_order_acquire);
        if (before & 1) {
            std::this_thread::yield();
            continue;
        }
        std::int64_t const count = slot.lock.load(std::memory_order_relaxed) == lock &&
                                           slot.epoch.load(std::memory_order_relaxed) == epoch
                                       ? slot.count.load(std::memory_order_relaxed)
                                       : 0;
        std::atomic_thread_fence(std::memory_order_acquire);
        if (m_sequence.load(std::memory_order_relaxed) == before)
            return count;
    }
}

std::int64_t ReaderSlots::Sum(void const* lock, std::uint64_t epoch) noexcept {
    Registry& registry = TheRegistry();
    std::lock_guard const guard(registry.mutex);
    std::int64_t sum = 0;
    for (ReaderSlots const* slots : registry.all)
        sum += slots->CountOf(lock, epoch);
    return sum;
}

std::uint64_t ReaderSlots::NewEpoch() noexcept {
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

} // namespace qv::detail
