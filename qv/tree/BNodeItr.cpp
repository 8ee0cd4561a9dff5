#include <qv/tree/BNodeItr.h>

BNodeItr::BNodeItr(BNode* root, EMode mode) : m_root(root), m_activeOnly(mode == ACTIVE_NODES) {
    Restart();
}

void BNodeItr::Restart() {
    m_current = m_root && (!m_activeOnly || m_root->IsActive()) ? m_root : nullptr;
}

BNodeItr& BNodeItr::operator++() {
    if (m_activeOnly)
        NextActive();
    else
        Next();
    return *this;
}

BNode* BNodeItr::operator++(int) {
    BNode* before = m_current;
    ++*this;
    return before;
}

template <class Accept>
void BNodeItr::Climb(Accept accept) {
    if (m_current == m_root) {
        m_current = nullptr;
        return;
    }
    for (BNode* node = m_current;;) {
        if (BNode* sister = node->Sister()) {
            if (accept(sister)) {
                m_current = sister;
                return;
            }
            node = sister; // passed over with its branch
            continue;
        }
        node = node->Parent();
        if (!node || node == m_root) {
            m_current = nullptr;
            return;
        }
    }
}

void BNodeItr::Next() {
    if (!m_current)
        return;
    if (BNode* child = m_current->Child(0)) {
        m_current = child;
        return;
    }
    Climb([](BNode*) { return true; });
}

void BNodeItr::NextActive() {
    if (!m_current)
        return;
    for (BNode* child = m_current->Child(0); child; child = child->Sister())
        if (child->IsActive()) {
            m_current = child;
            return;
        }
    Climb([](BNode* node) { return node->IsActive(); });
}
