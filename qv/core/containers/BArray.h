// BArray<T>: a growing array. Every slot up to the capacity holds a live T; slots outside the
// used range hold a default-constructed T, so an element that leaves the array gives up what
// it held (an SP its reference, a string its block) at once.
//
// Growth keeps the old storage alive as "pending" until the operation that grew the array has
// finished with its argument. That is what makes Add(array[0]) on a full array safe: the item
// is read from the old storage after the new one exists.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>

template <class T>
class BArray {
public:
    using value_type = T;
    using iterator = T*;
    using const_iterator = T const*;

    explicit BArray(unsigned long long step = 1) : m_step(step) {}
    BArray(BArray const& other) : m_step(other.m_step) {
        Reserve(other.m_count);
        std::copy(other.begin(), other.end(), m_data);
        m_count = other.m_count;
    }
    BArray& operator=(BArray const& other);
    virtual ~BArray() {
        delete[] m_data;
        delete[] m_pending;
    }

    // Bytes held by the storage and the array object itself.
    virtual unsigned long long AllocatedMemory() const {
        return m_capacity * sizeof(T) + sizeof(*this);
    }

    void Add(T const& item);
    // Grows the storage to n elements (never shrinks it). The all-ones value drops the storage.
    // The old storage becomes pending; the calling operation releases it.
    void Reserve(unsigned long long n);
    void Resize(unsigned long long n);
    void Clear() {
        Reserve(~0ull);
        ReleasePending();
    }
    // Removes n elements at pos; a position past the end is ignored, n is cut at the end.
    void RemoveAt(unsigned long long pos, unsigned long long n = 1);

    unsigned long long Count() const { return m_count; }
    unsigned long long Capacity() const { return m_capacity; }
    unsigned long long Step() const { return m_step; }
    // Sets the minimum growth, for arrays that are made in bulk (the buckets of a hash table).
    void SetStep(unsigned long long step) { m_step = step; }
    T& operator[](unsigned long long i) { return m_data[i]; }
    T const& operator[](unsigned long long i) const { return m_data[i]; }

    T* begin() { return m_data; }
    T* end() { return m_data + m_count; }
    T const* begin() const { return m_data; }
    T const* end() const { return m_data + m_count; }

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
