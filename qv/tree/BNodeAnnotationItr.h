/// \file
/// BNodeAnnotationItr: walks the annotations of one node. See docs/nodes.md.
#pragma once

#include <qv/core/Export.h>
#include <qv/tree/BNode.h>
#include <qv/tree/internal/NodeListItr.h>

/// Stands on each annotation of one node in list order (Restart, IsValid, Current, ++ come from
/// the shared list walk); RemoveCurrent is the safe way to remove while walking. It holds no
/// reference on the node or the annotations: the node must outlive it, and the list must not change
/// under it other than through RemoveCurrent. One thread at a time, like the node.
class QV_EXPORT BNodeAnnotationItr : public qv::detail::NodeListItr<BSmartObj> {
public:
    /// Stands on the first annotation, or at the end when there is none.
    explicit BNodeAnnotationItr(BNode& node) : NodeListItr(node.EditAnnotations()), m_node(&node) {}
    /// Unlinks the annotation (dropping the node's reference), stands on the next, then the node
    /// announces MSG_NODE_DECOR_CHANGED. No effect at the end.
    void RemoveCurrent() { RemoveDecor(m_node); }

private:
    BNode* m_node;
};
