/// \file
/// DList<T>: a doubly linked list with a count. The list owns its nodes; each value is copied
/// into its node, and removing a node destroys the value at once, so a list of SP gives up its
/// references as nodes go. There is no search: owners walk the list with a Position.
#pragma once

#include <cstdint>
#include <iterator>
#include <utility>

/// Storage only: no lock, no reports; one thread at a time, or the owner keeps access apart.
/// A failed allocation (std::bad_alloc) propagates. Nothing checks for an empty list or an
/// invalid position where a value is read: that is the caller's duty.
template <class T>
class DList {
    struct Node {
        T value;
        Node* prev;
        Node* next;
    };

public:
    /// A place in one list: the list and the current node. A position past either end holds a
    /// null node. RemoveAt moves the position on to the following node; removing the node by
    /// any other way leaves the position dangling.
    class Position {
    public:
        /// Belongs to no list and is not valid.
        Position() = default;
        /// True while the position stands on a node.
        bool IsValid() const { return m_node != nullptr; }
        /// @name The value of the current node; the position must be valid.
        ///@{
        T& Value() const { return m_node->value; }
        T& operator*() const { return m_node->value; }
        T* operator->() const { return &m_node->value; }
        ///@}
        /// @name Moves to the following or the preceding node; past an end the position is no
        /// longer valid. The position must be valid.
        ///@{
        Position& Next() {
            m_node = m_node->next;
            return *this;
        }
        Position& Prev() {
            m_node = m_node->prev;
            return *this;
        }
        ///@}
        /// The list the position belongs to; null for a default one.
        DList const* List() const { return m_list; }
        /// Same list and same node.
        bool operator==(Position const& other) const = default;

    private:
        friend class DList;
        Position(DList const* list, Node* node) : m_list(list), m_node(node) {}
        DList const* m_list = nullptr;
        Node* m_node = nullptr;
    };

    /// Forward iterator for range-for, from head to tail.
    template <class V>
    class Iterator {
    public:
        using iterator_category = std::bidirectional_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = V*;
        using reference = V&;
        Iterator() = default;
        explicit Iterator(Node* node) : m_node(node) {}
        V& operator*() const { return m_node->value; }
        V* operator->() const { return &m_node->value; }
        Iterator& operator++() {
            m_node = m_node->next;
            return *this;
        }
        Iterator operator++(int) {
            Iterator old = *this;
            ++*this;
            return old;
        }
        bool operator==(Iterator const& other) const = default;

    private:
        Node* m_node = nullptr;
    };
    using iterator = Iterator<T>;
    using const_iterator = Iterator<T const>;

    DList() = default;
    /// Copies the values in order.
    DList(DList const& other) { AddList(other); }
    /// Replaces the values by copies of the other's; if a copy throws, the list stays as it was.
    DList& operator=(DList const& other) {
        if (this != &other) {
            DList copy(other);
            std::swap(m_head, copy.m_head);
            std::swap(m_tail, copy.m_tail);
            std::swap(m_count, copy.m_count);
        }
        return *this;
    }

    /// Destroys every node and so every value.
    virtual ~DList() { RemoveAll(); }

    // The virtual operations in the order of their slots, after the destructor.
    /// Appends copies of the other's values in order, through AddTail. Adding a list to itself
    /// doubles it.
    virtual void AddList(DList const& other) {
        // Counted, not walked to the end: adding a list to itself doubles it and stops.
        Node* n = other.m_head;
        for (std::int32_t left = other.m_count; left > 0; --left, n = n->next)
            AddTail(n->value);
    }
    /// @name A copy of \p value as the new tail or the new head.
    ///@{
    virtual void AddTail(T const& value) { Link(new Node{value, m_tail, nullptr}); }
    virtual void AddHead(T const& value) { Link(new Node{value, nullptr, m_head}); }
    ///@}

    /// A copy of \p value behind the position's node. A position of another list, or one past
    /// the end, inserts nothing.
    void InsertAfter(Position const& pos, T const& value) {
        if (pos.m_list == this && pos.m_node)
            Link(new Node{value, pos.m_node, pos.m_node->next});
    }
    /// Unlinks and destroys the position's node; the position moves to the following node. A
    /// position of another list, or one past the end, removes nothing.
    void RemoveAt(Position& pos);
    /// Removes every node from the head on; the count becomes 0.
    void RemoveAll() {
        for (Position pos = HeadPosition(); pos.IsValid();)
            RemoveAt(pos);
    }

    /// The number of values, kept as a 32-bit count (no walk).
    std::int32_t Count() const { return m_count; }
    bool IsEmpty() const { return m_count == 0; }
    /// @name Positions on the first and the last node; not valid for an empty list.
    ///@{
    Position HeadPosition() const { return Position(this, m_head); }
    Position TailPosition() const { return Position(this, m_tail); }
    ///@}
    /// The position of the \p index-th value, walking from the head; not valid for a negative
    /// index or one past the end.
    Position PositionAt(std::int32_t index) const {
        Node* n = index >= 0 ? m_head : nullptr;
        for (; n && index > 0; --index)
            n = n->next;
        return Position(this, n);
    }
    /// @name The first and the last value; the list must not be empty.
    ///@{
    T& GetHead() const { return m_head->value; }
    T& GetTail() const { return m_tail->value; }
    ///@}

    /// @name Range-for from head to tail.
    ///@{
    iterator begin() { return iterator(m_head); }
    iterator end() { return iterator(); }
    const_iterator begin() const { return const_iterator(m_head); }
    const_iterator end() const { return const_iterator(); }
    ///@}

private:
    // Puts a node whose prev and next are already set into the chain.
    void Link(Node* node) {
        (node->prev ? node->prev->next : m_head) = node;
        (node->next ? node->next->prev : m_tail) = node;
        ++m_count;
    }

    Node* m_head = nullptr;
    Node* m_tail = nullptr;
    std::int32_t m_count = 0;
};

template <class T>
void DList<T>::RemoveAt(Position& pos) {
    Node* node = pos.m_node;
    if (pos.m_list != this || !node)
        return;
    (node->prev ? node->prev->next : m_head) = node->next;
    (node->next ? node->next->prev : m_tail) = node->prev;
    pos.m_node = node->next;
    --m_count;
    delete node;
}
