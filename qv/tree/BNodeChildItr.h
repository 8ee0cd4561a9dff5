// BNodeChildItr: walks the children of one node; RemoveCurrent is the one safe way to remove
// a child while walking.
#pragma once

#include <qv/core/Export.h>
#include <qv/tree/BNode.h>
#include <qv/tree/internal/NodeListItr.h>

class QV_EXPORT BNodeChildItr : public qv::detail::NodeListItr<BNode> {
public:
    explicit BNodeChildItr(BNode const& node) : NodeListItr(node.Children()) {}
    // Announces the removal, clears the child's parent, unlinks it and stands on the next.
    void RemoveCurrent();
};
