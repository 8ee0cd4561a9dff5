/// \file
/// BNodeItr: walks a branch of the tree depth-first. See docs/nodes.md.
#pragma once

#include <qv/core/Export.h>
#include <qv/tree/BNode.h>

/// A node before its children, children in list order, never beyond the root's branch; over
/// all nodes or over the active ones only (an inactive node hides its branch). It holds a
/// reference on the root and the current node, so neither can vanish under it; the tree must
/// not change around the current node during the walk. One thread at a time, like the tree.
class QV_EXPORT BNodeItr {
public:
    /// Which nodes the walk visits.
    enum EMode { ALL_NODES = 0, ACTIVE_NODES = 1 };

    /// Stands on the root, as Restart does; a null root gives a walk that is at its end.
    BNodeItr(BNode* root, EMode mode = ALL_NODES);

    /// Back to the root; in ACTIVE_NODES the root only if it is there and active.
    void Restart();
    /// @name Whether the walk stands on a node, and that node (null at the end).
    ///@{
    explicit operator bool() const { return IsValid(); }
    bool IsValid() const { return m_current != nullptr; }
    BNode* Current() const { return m_current; }
    ///@}
    /// Steps to the next node of the walk; at the end it stays there.
    BNodeItr& operator++();
    /// Steps on and gives the node that was current before the step.
    BNode* operator++(int);

private:
    void Next();
    void NextActive();
    // Leaves the children of the current node: on to the sister behind it, or up.
    template <class Accept>
    void Climb(Accept accept);

    SP<BNode> m_root;
    SP<BNode> m_current;
    bool m_activeOnly;
};
