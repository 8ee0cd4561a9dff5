/// \file
/// BVisitor: what BNode::Traverse calls back during a walk of the tree. See docs/nodes.md.
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>

class BAttribute;
class BNode;

/// Called back at fixed points of a walk, with a stack discipline for path and attributes, so
/// that a visitor always knows where it stands. Per node, Traverse calls PushPath, PushAttrib
/// for each attribute in order, TreatNode, Treat with the node's object (possibly null),
/// TreatAnnotation for each annotation, then walks the children, and ends with PopAttrib for
/// each attribute in reverse order and PopPath. The callbacks do nothing by default (the
/// treats answer false): a visitor overrides what it needs. A visitor keeps its own state and
/// has no lock: one walk at a time.
class QV_EXPORT BVisitor : public BSmartObj {
public:
    /// The library stores and copies the mode and never looks at it: its values belong to
    /// derived visitors.
    using TRAVERSIONMODE = int;

    /// A visitor with mode that passes over inactive nodes.
    explicit BVisitor(TRAVERSIONMODE mode = 0) : m_traversionMode(mode) {}
    /// @name Copy and assignment take over the mode and the inactive-node flag.
    ///@{
    BVisitor(BVisitor const& other)
        : BSmartObj(other), m_traversionMode(other.m_traversionMode),
          m_visitInactiveNodes(other.m_visitInactiveNodes) {}
    BVisitor& operator=(BVisitor const& other) {
        m_traversionMode = other.m_traversionMode;
        m_visitInactiveNodes = other.m_visitInactiveNodes;
        return *this;
    }
    ///@}

    // The virtual operations in the order of their slots.
    /// @name Treating: TreatNode and Treat answer whether the visitor changed something; the
    /// node then announces MSG_NODE_TREATED. The pointers are borrowed for the call.
    ///@{
    virtual bool TreatNode(BNode* node);
    virtual bool Treat(BSmartObj* object);
    ///@}
    /// One annotation of the node; owner is the node's object, or the node itself when it has
    /// none.
    virtual void TreatAnnotation(SP<BSmartObj> annotation, SP<BSmartObj const> owner);
    /// @name Where the walk stands: PushPath on entering a node, PopPath on leaving it;
    /// PushAttrib for each of its attributes, PopAttrib for each on leaving, in reverse.
    ///@{
    virtual void PushPath(BNode* node);
    virtual void PopPath();
    virtual void PushAttrib(BAttribute* attribute);
    virtual void PopAttrib(BAttribute* attribute);
    ///@}
    /// @name Whether the walk enters inactive nodes and their branches; off at construction.
    ///@{
    virtual void VisitInactiveNodes(bool visit);
    virtual bool VisitInactiveNodes() const;
    ///@}

    /// The mode given at construction.
    TRAVERSIONMODE GetTraversionMode() const { return m_traversionMode; }

private:
    TRAVERSIONMODE m_traversionMode;
    bool m_visitInactiveNodes = false;
};
