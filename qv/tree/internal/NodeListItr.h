/// \file
/// The walk that the three list iterators of a node share: a pointer into one list, no share
/// of ownership of the list or of the element.
#pragma once

#include <qv/core/containers/DList.h>
#include <qv/tree/BNode.h>

namespace qv::detail {

template <class T>
class NodeListItr {
public:
    /// Back to the first element.
    void Restart() { m_pos = m_list->HeadPosition(); }
    /// @name Whether the walk stands on an element.
    ///@{
    explicit operator bool() const { return IsValid(); }
    bool IsValid() const { return m_pos.IsValid(); }
    ///@}
    /// The element, borrowed; must not be called at the end.
    T* Current() const { return m_pos->get(); }
    /// Steps to the next element; at the end it stays there.
    NodeListItr& operator++() {
        if (m_pos.IsValid())
            m_pos.Next();
        return *this;
    }
    /// Gives the element and steps on; must not be called at the end.
    T* operator++(int) {
        T* current = Current();
        ++*this;
        return current;
    }

protected:
    using List = DList<SP<T>>;
    explicit NodeListItr(List const& list)
        : m_list(const_cast<List*>(&list)), m_pos(list.HeadPosition()) {}

    // Unlinks the current element, stands on the next one, and then lets the node announce
    // the change of its attributes or annotations. No effect at the end.
    void RemoveDecor(BNode* node) {
        if (!m_pos.IsValid())
            return;
        m_list->RemoveAt(m_pos);
        node->AnnounceDecorChange();
    }

    List* m_list;
    typename List::Position m_pos;
};

} // namespace qv::detail
