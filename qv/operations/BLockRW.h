// BLockRW: a reader/writer lock in which readers have precedence, the write side is recursive
// and the write owner may also read.
//
// How it works
//
// Readers do not take the system lock one by one. The first reader of a group acquires the
// shared side of m_lock on behalf of every reader, and whichever reader of the group leaves
// last releases it; that thread need not be the first one, which is why m_lock is our slim
// reader/writer lock and not std::shared_mutex. m_reader_count counts the readers inside;
// its top bit, kSharedHeld, says that the group's shared hold is in place. So:
//
// - A reader that finds kSharedHeld set in the value it incremented is in: one atomic
//   fetch-and-add and no system call. This is the path of every reader while the shared side
//   is held, and what makes the lock cheap for overlapping readers.
// - A reader that finds the count at 0 is the first: it resets m_no_readers_event, acquires
//   the shared side (waiting behind a writer if need be) and then sets kSharedHeld.
// - A reader that arrives while the first is still acquiring finds a count above 0 without
//   kSharedHeld. It must not run yet, or it would run beside the writer that the first reader
//   waits for: it sleeps on m_admissions until kSharedHeld is set. Its increment already
//   counts it as inside, so the group cannot end before it gets in. The first reader wakes
//   such readers only when the value it changed shows that some came (no system call
//   otherwise).
// - The reader whose decrement leaves kSharedHeld with a count of 0 was the last. It swaps
//   that value for 0 and only then releases the shared side and sets the event. If a new
//   reader slipped in between (it saw kSharedHeld and entered on the existing hold), the swap
//   fails and the shared side stays held for it; that reader releases it in turn.
//
// Writers wait on the event until no reader is inside and then compete for the exclusive
// side, so a steady stream of overlapping readers keeps them out. The event only sets the
// precedence; the exclusion itself comes from m_lock, so a late Set of the event by a
// departing group, while a new group is already inside, lets a writer at most reach the
// exclusive side early and wait there.
//
// The write owner's reads never touch m_reader_count: they nest in m_nested_read_count, and
// write recursion in m_write_count, both written only by the owner.
#pragma once

#include <atomic>
#include <cstdint>
#include <qv/operations/BSyncableInterface.h>
#include <qv/platform/ManualResetEvent.h>
#include <qv/platform/SlimRWLock.h>

class BLockRW : public BSyncableInterface {
public:
    QV_DECLARE_CLASSNAME(BLockRW)

    // Free: no reader, no owner, the event set.
    BLockRW() noexcept = default;
    // A lock is no value: a copy would share its state with the original.
    BLockRW(BLockRW const&) = delete;
    BLockRW& operator=(BLockRW const&) = delete;

    void LockR() const override;
    void LockW() const override;
    void UnlockR() const override;
    // Throws the integer 1 when the last write level goes while the owner still holds read
    // locks that it took inside it: a wrong lock order in the caller, with no recovery. A
    // thread that does not own the write side changes nothing.
    void UnlockW() const override;
    // True only for the write owner, which then holds one more read lock; false for every
    // other thread, even on a free lock.
    bool TryLockR() const override;
    // Waits at most 1 ms for the readers to leave, then tries the exclusive side once. False
    // also for the write owner: unlike LockW, it does not nest.
    bool TryLockW() const override;

private:
    static constexpr std::uint32_t kNoOwner = 0xFFFFFFFF;
    static constexpr std::uint64_t kSharedHeld = 1ull << 63;

    bool IsOwner() const noexcept;
    void EnterAsFirstReader() const;
    void AwaitSharedHold() const;
    void LeaveAsLastReader() const;

    mutable qv::platform::SRWLOCK m_lock;
    // Readers inside, the owner's own reads not counted; plus kSharedHeld.
    mutable std::atomic<std::uint64_t> m_reader_count{0};
    mutable std::atomic<std::uint64_t> m_nested_read_count{0};
    mutable std::atomic<std::uint64_t> m_write_count{0};
    // Set while no reader is inside.
    mutable qv::platform::ManualResetEvent m_no_readers_event{true};
    // Written only by the owner and compared by everybody: the comparison can only come out
    // true for the owner itself, so no ordering is needed.
    mutable std::atomic<std::uint32_t> m_owner{kNoOwner};
    // Bumped each time a group's shared hold is in place, for readers that wait for it.
    mutable std::atomic<std::uint32_t> m_admissions{0};
};
