/// \file
/// BSmartObjBase: the reference count and the process-wide unique number that every smart
/// object carries.
#pragma once

#include <atomic>
#include <cstdint>
#include <qv/core/Export.h>

/// Objects start with a count of 0: the first SP<T> that takes one makes it 1, and the last
/// one to let go destroys it. The count and the number counter are atomic, so threads may
/// take and drop references to one object at once; nothing else here is shared.
class QV_EXPORT BSmartObjBase {
public:
    /// A count of 0 and the next number of the process (the first object gets 1).
    BSmartObjBase() noexcept : m_unique_id(NextUniqueID()) {}
    /// A copy is a new object: it gets a count of 0 and a fresh number of its own.
    BSmartObjBase(BSmartObjBase const&) noexcept : BSmartObjBase() {}

    // The assignment comes first among the virtual operations, then the destructor; the order
    // is part of the interface.
    /// Copies nothing and returns the target: count and number stay.
    virtual BSmartObjBase const& operator=(BSmartObjBase const&) { return *this; }
    virtual ~BSmartObjBase() = default;

    /// @name Counting; const, so that a pointer to a const object can own it.
    ///@{
    /// Adds an owner.
    void Ref() const noexcept { m_count.fetch_add(1, std::memory_order_relaxed); }
    /// Drops an owner; the last one destroys the object through its virtual destructor (it
    /// must have been made with new).
    void Unref() const noexcept {
        if (m_count.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete this;
    }
    ///@}
    /// The object's number, given at construction; negative once more than 2^31 - 1 objects
    /// have been made, as on Windows.
    long UniqueID() const noexcept { return m_unique_id; }

    /// Owners of the object through SP<T>, for tests and diagnostics.
    std::int32_t RefCount() const noexcept { return m_count.load(std::memory_order_relaxed); }
    /// The last number given out, 0 before the first object.
    static long LastUniqueID() noexcept {
        return m_unique_id_counter.load(std::memory_order_relaxed);
    }

private:
    // SP<T>::FirstOwner alone may count an owner without the atomic step: only the code that
    // has just made an object knows that no other thread can reach it yet.
    template <class T>
    friend class SP;
    void RefFirst() const noexcept { m_count.store(1, std::memory_order_relaxed); }

    // 32 bits as on Windows: after 2^31 - 1 objects the numbers wrap to negative values.
    static std::int32_t NextUniqueID() noexcept {
        std::uint32_t last =
            static_cast<std::uint32_t>(m_unique_id_counter.fetch_add(1, std::memory_order_relaxed));
        return static_cast<std::int32_t>(last + 1u);
    }

    static std::atomic<std::int32_t> m_unique_id_counter;

    std::int32_t const m_unique_id;
    mutable std::atomic<std::int32_t> m_count{0};
};
