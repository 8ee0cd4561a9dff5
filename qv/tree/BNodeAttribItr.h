/// \file
/// BNodeAttribItr: walks the attributes of one node. See docs/nodes.md.
#pragma once

#include <qv/core/Export.h>
#include <qv/tree/BNode.h>
#include <qv/tree/internal/NodeListItr.h>

/// Stands on each attribute of one node in list order (Restart, IsValid, Current, ++ come from
/// the shared list walk); RemoveCurrent is the safe way to remove while walking. It holds no
/// reference on the node or the attributes: the node must outlive it, and the list must not change
/// under it other than through RemoveCurrent. One thread at a time, like the node.
class QV_EXPORT BNodeAttribItr : public qv::detail::NodeListItr<BAttribute> {
public:
    /// Stands on the first attribute, or at the end when there is none.
    explicit BNodeAttribItr(BNode& node) : NodeListItr(node.EditAttributes()), m_node(&node) {}
    /// Unlinks the attribute (dropping the node's reference), stands on the next, then the node
    /// announces MSG_NODE_DECOR_CHANGED. No effect at the end.
    void RemoveCurrent() { RemoveDecor(m_node); }

private:
    BNode* m_node;
};
