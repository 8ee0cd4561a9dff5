/// \file
/// BNodeChildItr: walks the children of one node. See docs/nodes.md.
#pragma once

#include <qv/core/Export.h>
#include <qv/tree/BNode.h>
#include <qv/tree/internal/NodeListItr.h>

/// Stands on each child of one node in order (Restart, IsValid, Current, ++ come from the
/// shared list walk); RemoveCurrent is the one safe way to remove a child while walking. It
/// holds no reference on the node or the children: the node must outlive it, and the list must
/// not change under it other than through RemoveCurrent. One thread at a time, like the node.
class QV_EXPORT BNodeChildItr : public qv::detail::NodeListItr<BNode> {
public:
    /// Stands on the first child, or at the end when there is none.
    explicit BNodeChildItr(BNode const& node) : NodeListItr(node.Children()) {}
    /// Removes the current child as BNode::RemoveChild does (MSG_NODE_CHILD_REMOVED, parent
    /// cleared, reference dropped) and stands on the next. No effect at the end.
    void RemoveCurrent();
};
