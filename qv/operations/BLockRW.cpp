// BLockRW: how it works
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

#include <climits>
#include <qv/operations/BLockRW.h>
#include <qv/operations/private/ReaderSlots.h>
#include <qv/platform/Futex.h>
#include <qv/platform/ProcessWriteBuffers.h>
#include <qv/platform/ThreadId.h>

using namespace qv::platform;
using qv::detail::ReaderSlots;

QV_REGISTER_CLASSNAME(BLockRW);

bool BLockRW::IsOwner() const noexcept {
    return m_owner.load(std::memory_order_relaxed) == GetCurrentThreadId();
}

void BLockRW::LockR() const {
    // While the path is open no thread owns the write side, so the owner test can wait.
    if (ReaderSlots::Count(this, m_fast_epoch, +1))
        return;
    if (IsOwner()) {
        ++m_nested_read_count;
        return;
    }
    std::uint64_t const before = m_reader_count.fetch_add(1);
    if (before & kSharedHeld)
        return;
    if (before == 0)
        EnterAsFirstReader();
    else
        AwaitSharedHold();
}

void BLockRW::EnterAsFirstReader() const {
    m_no_readers_event.Reset();
    AcquireSRWLockShared(m_lock);
    if (m_reader_count.fetch_or(kSharedHeld) != 1) {
        ++m_admissions;
        FutexWake(m_admissions, INT_MAX);
    }
    OpenFastPath();
}

void BLockRW::OpenFastPath() const {
    std::uint32_t const skip = m_groups_to_skip.load(std::memory_order_relaxed);
    if (skip != 0) {
        m_groups_to_skip.store(skip - 1, std::memory_order_relaxed);
        return;
    }
    if (!CanFlushProcessWriteBuffers() || m_writers_waiting.load() != 0)
        return;
    m_reader_count.fetch_add(kFastToken);
    m_fast_epoch.store(ReaderSlots::NewEpoch());
    if (m_writers_waiting.load() != 0) {
        CloseFastPath();
        return;
    }
    // Counted in the slot before it leaves the counter, so that the group never looks empty.
    if (ReaderSlots::Count(this, m_fast_epoch, +1))
        LeaveCounted();
}

void BLockRW::CloseFastPath() const {
    std::uint64_t const epoch = m_fast_epoch.exchange(0);
    if (epoch == 0)
        return;
    m_groups_to_skip.store(kGroupsAfterClosing, std::memory_order_relaxed);
    FlushProcessWriteBuffers();
    auto const change = static_cast<std::uint64_t>(ReaderSlots::Sum(this, epoch)) - kFastToken;
    if (m_reader_count.fetch_add(change) + change == kSharedHeld)
        LeaveAsLastReader();
}

void BLockRW::AwaitSharedHold() const {
    // The admission number is read before the flag: if the flag is still missing, the first
    // reader's later bump makes the wait return at once or wakes it.
    for (;;) {
        std::uint32_t const admissions = m_admissions.load();
        if (m_reader_count.load() & kSharedHeld)
            return;
        FutexWait(m_admissions, admissions);
    }
}

void BLockRW::UnlockR() const {
    if (ReaderSlots::Count(this, m_fast_epoch, -1))
        return;
    if (IsOwner()) {
        --m_nested_read_count;
        return;
    }
    LeaveCounted();
}

void BLockRW::LeaveCounted() const {
    if (m_reader_count.fetch_sub(1) == (kSharedHeld | 1))
        LeaveAsLastReader();
}

void BLockRW::LeaveAsLastReader() const {
    std::uint64_t held = kSharedHeld;
    if (!m_reader_count.compare_exchange_strong(held, 0))
        return; // a new reader entered on our hold and will give it back
    ReleaseSRWLockShared(m_lock);
    m_no_readers_event.Set();
}

void BLockRW::LockW() const {
    if (!IsOwner()) {
        ++m_writers_waiting;
        CloseFastPath();
        m_no_readers_event.Wait();
        AcquireSRWLockExclusive(m_lock);
        --m_writers_waiting;
        m_owner.store(GetCurrentThreadId(), std::memory_order_relaxed);
    }
    ++m_write_count;
}

void BLockRW::UnlockW() const {
    if (!IsOwner() || m_write_count.fetch_sub(1) != 1)
        return;
    if (m_nested_read_count.fetch_add(1) + 1 > 1)
        throw 1;
    --m_nested_read_count;
    m_owner.store(kNoOwner, std::memory_order_relaxed);
    ReleaseSRWLockExclusive(m_lock);
}

bool BLockRW::TryLockR() const {
    if (!IsOwner())
        return false;
    ++m_nested_read_count;
    return true;
}

bool BLockRW::TryLockW() const {
    ++m_writers_waiting;
    CloseFastPath();
    bool const acquired =
        m_no_readers_event.Wait(1) != WAIT_TIMEOUT && TryAcquireSRWLockExclusive(m_lock);
    --m_writers_waiting;
    if (!acquired)
        return false;
    m_owner.store(GetCurrentThreadId(), std::memory_order_relaxed);
    ++m_write_count;
    return true;
}
