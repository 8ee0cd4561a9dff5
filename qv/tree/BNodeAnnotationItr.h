// BNodeAnnotationItr: walks the annotations of one node; RemoveCurrent removes while walking.
#pragma once

#include <qv/core/Export.h>
#include <qv/tree/BNode.h>
#include <qv/tree/internal/NodeListItr.h>

class QV_EXPORT BNodeAnnotationItr : public qv::detail::NodeListItr<BSmartObj> {
public:
    explicit BNodeAnnotationItr(BNode& node) : NodeListItr(node.EditAnnotations()), m_node(&node) {}
    // Unlinks the annotation, stands on the next, then the node announces the change.
    void RemoveCurrent() { RemoveDecor(m_node); }

private:
    BNode* m_node;
};
