// ReaderSlots: one thread's counts of the reads it entered or left on locks that let later
// readers in without touching the lock's own memory.
//
// A lock that opens such a path gives it an epoch, a number never used before by any lock.
// While the epoch is published in the lock's word, a reader counts itself in its own thread's
// slot for the lock: plain stores to memory that only this thread writes, so no locked
// instruction, no shared cache line and no system call. Closing the path takes the epoch out
// of the word, makes every thread pass a barrier (FlushProcessWriteBuffers) and adds up the
// slots that carry the lock and the epoch. The barrier is what makes the frequent side cheap:
// a reader orders its stores before its load of the word for the compiler only, and after the
// barrier either its load saw the closing or the closing sees its count.
//
// A slot's count may go below zero: a read entered on one thread and left on another counts
// +1 in the first thread's slot and -1 in the second's. Only the sum over all threads means
// anything, which is also why a thread that ends hands its table on to the next new thread
// instead of discarding it.
//
// Each change of a slot runs inside a window marked by an odd sequence number, so that the
// closing thread reads a slot only while its thread is outside one (a seqlock). The slot of a
// lock is found by its address; a slot that another lock's live count occupies sends the reader
// to the lock's ordinary path.
//
// A fork may catch another thread inside a window, which then never closes in the child; the
// child closes those windows, and starts with FlushProcessWriteBuffers shut, so that its locks
// open no new fast paths.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace qv::detail {

class ReaderSlots {
public:
    // Counts delta (+1 on entry, -1 on leaving) for lock in this thread's slot if the lock's
    // word holds an epoch. False, with nothing counted, if it does not, or if the slot is
    // taken: the caller then uses the lock's ordinary path.
    static bool Count(void const* lock, std::atomic<std::uint64_t> const& epochWord,
                      int delta) noexcept;
    // The sum of every thread's count for lock and epoch. Only after the epoch has left the
    // lock's word and FlushProcessWriteBuffers has returned: no count can change any more.
    static std::int64_t Sum(void const* lock, std::uint64_t epoch) noexcept;
    static std::uint64_t NewEpoch() noexcept;

private:
    static constexpr std::size_t kSlots = 64;

    struct Slot {
        std::atomic<void const*> lock{nullptr};
        std::atomic<std::uint64_t> epoch{0};
        std::atomic<std::int64_t> count{0};
    };

    static std::size_t IndexOf(void const* lock) noexcept;
    static ReaderSlots* OfNewThread() noexcept;
    // Keep the tables whole across a fork, and close in the child the windows of the threads
    // that the child does not have.
    static void BeforeFork() noexcept;
    static void AfterForkInParent() noexcept;
    static void AfterForkInChild() noexcept;
    // Registered when the library loads, before any thread can read through a table.
    static bool const s_forkHandled;
    bool CountInWindow(void const* lock, std::atomic<std::uint64_t> const& epochWord,
                       int delta) noexcept;
    std::int64_t CountOf(void const* lock, std::uint64_t epoch) const noexcept;

    // Odd while this thread changes a slot.
    std::atomic<std::uint64_t> m_sequence{0};
    std::array<Slot, kSlots> m_slots;
};

// This thread's table; null until its first fast read, and again once the thread ends.
// initial-exec keeps the read one instruction on the readers' path.
extern __thread ReaderSlots* t_readerSlots __attribute__((tls_model("initial-exec")));

inline std::size_t ReaderSlots::IndexOf(void const* lock) noexcept {
    auto const address = reinterpret_cast<std::uintptr_t>(lock);
    return ((address >> 6) ^ (address >> 12)) % kSlots;
}

inline bool ReaderSlots::Count(void const* lock, std::atomic<std::uint64_t> const& epochWord,
                               int delta) noexcept {
    if (epochWord.load(std::memory_order_relaxed) == 0)
        return false;
    ReaderSlots* slots = t_readerSlots;
    if (!slots && !(slots = OfNewThread()))
        return false;
    return slots->CountInWindow(lock, epochWord, delta);
}

inline bool ReaderSlots::CountInWindow(void const* lock,
                                       std::atomic<std::uint64_t> const& epochWord,
                                       int delta) noexcept {
    std::uint64_t const sequence = m_sequence.load(std::memory_order_relaxed);
    m_sequence.store(sequence + 1, std::memory_order_relaxed);
    // Keeps the slot's stores behind the odd number, as a seqlock's writer does (free on x86).
    std::atomic_thread_fence(std::memory_order_release);
    // Orders the store above before the load below for the compiler; the closing thread's
    // FlushProcessWriteBuffers does it for the processor.
    std::atomic_signal_fence(std::memory_order_seq_cst);
    std::uint64_t const epoch = epochWord.load(std::memory_order_acquire);
    Slot& slot = m_slots[IndexOf(lock)];
    bool counted = false;
    if (epoch != 0) {
        bool const mine = slot.lock.load(std::memory_order_relaxed) == lock;
        if (!mine || slot.epoch.load(std::memory_order_relaxed) != epoch) {
            // A count left from an earlier epoch of the same lock was added up when that
            // epoch closed; another lock's count may still be live.
            if (mine || slot.count.load(std::memory_order_relaxed) == 0) {
                slot.lock.store(lock, std::memory_order_relaxed);
                slot.epoch.store(epoch, std::memory_order_relaxed);
                slot.count.store(0, std::memory_order_relaxed);
                counted = true;
            }
        } else {
            counted = true;
        }
        if (counted)
            slot.count.store(slot.count.load(std::memory_order_relaxed) + delta,
                             std::memory_order_relaxed);
    }
    m_sequence.store(sequence + 2, std::memory_order_release);
    return counted;
}

} // namespace qv::detail
