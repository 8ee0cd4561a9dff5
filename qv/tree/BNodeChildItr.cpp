#include <qv/tree/BNodeChildItr.h>

void BNodeChildItr::RemoveCurrent() {
    if (!IsValid())
        return;
    BNode* child = Current();
    BNode* parent = child ? child->m_parent : nullptr;
    auto here = m_pos;
    m_pos.Next();
    if (parent)
        parent->Unlink(here);
    else
        m_list->RemoveAt(here);
}
