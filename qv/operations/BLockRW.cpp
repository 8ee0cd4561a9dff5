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
