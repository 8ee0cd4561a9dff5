// BNodeAttribItr: walks the attributes of one node; RemoveCurrent removes while walking.
#pragma once

#include <qv/core/Export.h>
#include <qv/tree/BNode.h>
#include <qv/tree/internal/NodeListItr.h>

class QV_EXPORT BNodeAttribItr : public qv::detail::NodeListItr<BAttribute> {
public:
    explicit BNodeAttribItr(BNode& node) : NodeListItr(node.EditAttributes()), m_node(&node) {}
    // Unlinks the attribute, stands on the next, then the node announces the change.
    void RemoveCurrent() { RemoveDecor(m_node); }

private:
    BNode* m_node;
};
