// BNodeItr: walks a branch depth-first, a node before its children and children in list
// order, over all nodes or over the active ones only (an inactive node hides its branch). It
// holds the root and the current node, so neither can vanish under it.
#pragma once

#include <qv/core/Export.h>
#include <qv/tree/BNode.h>

class QV_EXPORT BNodeItr {
public:
    enum EMode { ALL_NODES = 0, ACTIVE_NODES = 1 };

    BNodeItr(BNode* root, EMode mode = ALL_NODES);

    // Back to the root; in ACTIVE_NODES the root only if it is there and active.
    void Restart();
    explicit operator bool() const { return IsValid(); }
    bool IsValid() const { return m_current != nullptr; }
    BNode* Current() const { return m_current; }
    BNodeItr& operator++();
    // Gives the node that was current before the step.
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
