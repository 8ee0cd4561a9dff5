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
//   fetch-and-add and no system call.
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
// The fast path. Even one fetch-and-add is a locked instruction on a cache line that every
// reader writes. So once its hold is in place, the first reader of a group opens a path that
// touches no shared memory at all (see ReaderSlots): it adds kFastToken to m_reader_count,
// which stands for all readers of the path and keeps the group alive, and publishes a fresh
// epoch in m_fast_epoch. While the epoch is there, readers count their entries and exits in
// their own threads' slots: plain stores, no system call. The first reader moves its own read
// there too, so that it leaves the same way.
//
// Only a writer closes the path (CloseFastPath): it takes the epoch out, makes every thread
// pass a barrier, adds up the slots of the epoch and puts that sum into m_reader_count in
// place of the token. From then on readers use the counter again, and the group ends when its
// last reader leaves, as above. kFastToken is far larger than any number of readers, so that
// readers who entered through their slots and leave through the counter before the sum is in
// can never bring the count to 0 early. While a writer waits (m_writers_waiting), no group
// opens the path; a first reader that opened it just as a writer came closes it again, since
// each side writes its own word before it reads the other's and one of them sees both.
//
// Hence a group with the path open lasts until a writer comes, even when no reader is inside;
// the writer pays for that with one barrier and a walk over the threads' tables, some twenty
// times the cost of the write itself. So that reads and writes that take turns do not pay it
// every time, the next kGroupsAfterClosing groups after a closing keep the path shut.
//
// Writers wait on the event until no reader is inside and then compete for the exclusive
// side, so a steady stream of overlapping readers keeps them out. The event only sets the
// precedence; the exclusion itself comes from m_lock, so a late Set of the event by a
// departing group, while a new group is already inside, lets a writer at most reach the
// exclusive side early and wait there. The path is never open while a writer holds the lock:
// it opens only under a group's shared hold, and the group cannot end while it is open.
//
// The write owner's reads never touch m_reader_count: they nest in m_nested_read_count, and
// write recursion in m_write_count, both written only by the owner.
#pragma once

#include <atomic>
#include <cstdint>
#include <qv/core/Export.h>
#include <qv/operations/BSyncableInterface.h>
#include <qv/platform/ManualResetEvent.h>
#include <qv/platform/SlimRWLock.h>

class QV_EXPORT BLockRW : public BSyncableInterface {
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
    static constexpr std::uint64_t kFastToken = 1ull << 40;
    static constexpr std::uint32_t kGroupsAfterClosing = 64;

    bool IsOwner() const noexcept;
    void EnterAsFirstReader() const;
    void AwaitSharedHold() const;
    void LeaveCounted() const;
    void LeaveAsLastReader() const;
    void OpenFastPath() const;
    void CloseFastPath() const;

    mutable qv::platform::SRWLOCK m_lock;
    // Readers inside, the owner's own reads and those counted in slots not counted; plus
    // kSharedHeld, plus kFastToken while the fast path is open.
    mutable std::atomic<std::uint64_t> m_reader_count{0};
    // The epoch of the open fast path; 0 while it is closed.
    mutable std::atomic<std::uint64_t> m_fast_epoch{0};
    mutable std::atomic<std::uint32_t> m_writers_waiting{0};
    // Groups still to start with the path shut; a hint only, hence relaxed.
    mutable std::atomic<std::uint32_t> m_groups_to_skip{0};
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
