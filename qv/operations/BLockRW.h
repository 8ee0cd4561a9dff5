/// \file
/// BLockRW: a reader/writer lock in which readers have precedence, the write side is recursive
/// and the write owner may also read. docs/locks.md tells why it is built this way and what it
/// costs.
#pragma once

#include <atomic>
#include <cstdint>
#include <qv/core/Export.h>
#include <qv/operations/BSyncableInterface.h>
#include <qv/platform/ManualResetEvent.h>
#include <qv/platform/SlimRWLock.h>

/// Readers share the lock; a writer waits until no reader is inside and then holds it alone.
/// A reader after the first one gets in without a system call, so a steady stream of
/// overlapping readers keeps writers out. The thread that holds the write side may lock it
/// again (writes nest) and take read locks, which it must give back before its last UnlockW.
/// There is no upgrade: a thread holding a read lock that calls LockW waits for ever. Meant to
/// be shared by threads: all six operations may be called from any thread on a const lock.
class QV_EXPORT BLockRW : public BSyncableInterface {
public:
    QV_DECLARE_CLASSNAME(BLockRW)

    /// A free lock: no reader, no owner.
    BLockRW() noexcept = default;
    /// A lock is no value: a copy would share its state with the original.
    BLockRW(BLockRW const&) = delete;
    BLockRW& operator=(BLockRW const&) = delete;

    /// Takes a read lock, waiting while a writer holds the lock. For the write owner it nests
    /// inside the write lock and does not wait.
    void LockR() const override;
    /// Takes the write side, waiting until no reader is inside and no other writer holds it;
    /// for the owner it only adds one more level.
    void LockW() const override;
    /// Gives back a read lock taken by LockR or TryLockR. Calls must balance: an UnlockR
    /// without a read lock breaks the lock.
    void UnlockR() const override;
    /// Gives back one write level; the last one frees the lock. Throws the integer 1 when the
    /// last level goes while the owner still holds read locks that it took inside it: a wrong
    /// lock order in the caller, with no recovery (the lock stays held). A thread that does not
    /// own the write side changes nothing.
    void UnlockW() const override;
    /// True only for the write owner, which then holds one more read lock; false for every
    /// other thread, even on a free lock.
    bool TryLockR() const override;
    /// Waits at most 1 ms for the readers to leave, then tries the exclusive side once. False
    /// also for the write owner: unlike LockW, it does not nest.
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
