/// \file
/// BArray<T>: a growing array. Every slot up to the capacity holds a live T; slots outside the
/// used range hold a default-constructed T, so an element that leaves the array gives up what
/// it held (an SP its reference, a string its block) at once.
///
/// Growth keeps the old storage alive as "pending" until the operation that grew the array has
/// finished with its argument. That is what makes Add(array[0]) on a full array safe: the item
/// is read from the old storage after the new one exists. docs/containers.md tells why.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>

/// Storage only: no lock, no reports. One thread at a time, or the owner keeps access apart.
/// A failed allocation (std::bad_alloc) or a throwing assignment of T propagates; the array is
/// then as it was before a Reserve. T needs a default constructor.
template <class T>
class BArray {
public:
    using value_type = T;
    using iterator = T*;
    using const_iterator = T const*;

    /// Empty, no storage; \p step is the least growth, in elements.
    explicit BArray(unsigned long long step = 1) : m_step(step) {}
    /// The same step, storage for exactly the other's count, the elements copied.
    BArray(BArray const& other) : m_step(other.m_step) {
        Reserve(other.m_count);
        std::copy(other.begin(), other.end(), m_data);
        m_count = other.m_count;
    }
    /// Copies the elements; the storage grows when the counts differ and never shrinks, and
    /// slots the array no longer uses are reset to the default. The step stays.
    BArray& operator=(BArray const& other);
    virtual ~BArray() {
        delete[] m_data;
        delete[] m_pending;
    }

    /// Capacity times the size of T plus the size of the array object; what elements hold
    /// elsewhere (a string's text) is not counted.
    virtual unsigned long long AllocatedMemory() const {
        return m_capacity * sizeof(T) + sizeof(*this);
    }

    /// Appends a copy of \p item, which may be an element of this array. A full array grows by
    /// the step, and at least by half its count plus one; the step keeps the larger figure, so
    /// the cost of Add stays constant on average.
    void Add(T const& item);
    /// Grows the storage to \p n elements (never shrinks it); new slots hold the default. The
    /// all-ones value drops the storage: count and capacity become 0. Called directly, it leaves
    /// the old storage pending until a later growing operation or the destructor frees it.
    void Reserve(unsigned long long n);
    /// Sets the count to \p n: new slots hold the default, slots given up are reset to it.
    /// The storage grows to exactly \p n when needed and never shrinks.
    void Resize(unsigned long long n);
    /// Drops the elements and the storage: count and capacity 0. The step stays.
    void Clear() {
        Reserve(~0ull);
        ReleasePending();
    }
    /// Removes \p n elements at \p pos, moving the ones behind down in order; the freed slots
    /// at the end are reset to the default. A position past the end is ignored, \p n is cut at
    /// the end. The capacity stays.
    void RemoveAt(unsigned long long pos, unsigned long long n = 1);

    /// @name Figures: elements in use, elements allocated, the least growth.
    ///@{
    unsigned long long Count() const { return m_count; }
    unsigned long long Capacity() const { return m_capacity; }
    unsigned long long Step() const { return m_step; }
    ///@}
    /// Sets the least growth, for arrays that are made in bulk (the buckets of a hash table).
    void SetStep(unsigned long long step) { m_step = step; }
    /// @name Access to element \p i, with no check: an index at or past Count() is the caller's
    /// fault. A reference holds until the storage grows.
    ///@{
    T& operator[](unsigned long long i) { return m_data[i]; }
    T const& operator[](unsigned long long i) const { return m_data[i]; }
    ///@}

    /// @name The elements in use, for range-for; null for an array without storage.
    ///@{
    T* begin() { return m_data; }
    T* end() { return m_data + m_count; }
    T const* begin() const { return m_data; }
    T const* end() const { return m_data + m_count; }
    ///@}

private:
    void ReleasePending() { delete[] std::exchange(m_pending, nullptr); }
    // Puts the default value into [from, to): the elements there have left the used range.
    void ResetSlots(unsigned long long from, unsigned long long to) {
        for (; from < to; ++from)
            m_data[from] = T();
    }

    T* m_data = nullptr;
    T* m_pending = nullptr;
    std::uint64_t m_count = 0;
    std::uint64_t m_step = 1;
    std::uint64_t m_capacity = 0;
};

template <class T>
BArray<T>& BArray<T>::operator=(BArray const& other) {
    if (this == &other)
        return *this;
    std::uint64_t old = m_count;
    if (other.m_count != m_count) {
        Reserve(other.m_count);
        ReleasePending();
        m_count = other.m_count;
    }
    std::copy(other.begin(), other.end(), m_data);
    if (m_count < old)
        ResetSlots(m_count, old);
    return *this;
}

template <class T>
void BArray<T>::Add(T const& item) {
    if (m_count + 1 > m_capacity) {
        // Growth is at least the step and at least half the count; the step keeps what it
        // grew to, so a large array goes on growing in large pieces.
        if (m_step <= m_count / 2)
            m_step = m_count / 2 + 1;
        Reserve(m_count + m_step);
    }
    // item may live in the pending storage; it is still there.
    m_data[m_count] = item;
    ++m_count;
    ReleasePending();
}

template <class T>
void BArray<T>::Reserve(unsigned long long n) {
    if (n == ~0ull) {
        ReleasePending();
        m_pending = std::exchange(m_data, nullptr);
        m_count = m_capacity = 0;
        return;
    }
    if (n <= m_capacity)
        return;
    // The array stays as it was if an allocation or an assignment throws.
    std::unique_ptr<T[]> fresh(new T[n]());
    std::copy(m_data, m_data + m_count, fresh.get());
    // A pending storage left by an earlier direct call would otherwise be lost.
    ReleasePending();
    m_pending = std::exchange(m_data, fresh.release());
    m_capacity = n;
}

template <class T>
void BArray<T>::Resize(unsigned long long n) {
    if (n == m_count)
        return;
    Reserve(n);
    ReleasePending();
    // Slots that a shrink frees are reset, so that a later growth finds defaults there.
    if (n < m_count)
        ResetSlots(n, m_count);
    m_count = n;
}

template <class T>
void BArray<T>::RemoveAt(unsigned long long pos, unsigned long long n) {
    if (pos >= m_count || n == 0)
        return;
    if (n > m_count - pos)
        n = m_count - pos;
    std::copy(m_data + pos + n, m_data + m_count, m_data + pos);
    ResetSlots(m_count - n, m_count);
    m_count -= n;
}
