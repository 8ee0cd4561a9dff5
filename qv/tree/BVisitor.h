// BVisitor: called back by BNode::Traverse at fixed points of a walk, with a stack
// discipline for path and attributes, so that a visitor always knows where it stands.
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>

class BAttribute;
class BNode;

class QV_EXPORT BVisitor : public BSmartObj {
public:
    // The library stores and copies the mode and never looks at it: its values belong to
    // derived visitors.
    using TRAVERSIONMODE = int;

    explicit BVisitor(TRAVERSIONMODE mode = 0) : m_traversionMode(mode) {}
    BVisitor(BVisitor const& other)
        : BSmartObj(other), m_traversionMode(other.m_traversionMode),
          m_visitInactiveNodes(other.m_visitInactiveNodes) {}
    BVisitor& operator=(BVisitor const& other) {
        m_traversionMode = other.m_traversionMode;
        m_visitInactiveNodes = other.m_visitInactiveNodes;
        return *this;
    }

    // The virtual operations in the order of their slots. TreatNode and Treat answer whether
    // the visitor changed something; the node then announces it.
    virtual bool TreatNode(BNode* node);
    virtual bool Treat(BSmartObj* object);
    virtual void TreatAnnotation(SP<BSmartObj> annotation, SP<BSmartObj const> owner);
    virtual void PushPath(BNode* node);
    virtual void PopPath();
    virtual void PushAttrib(BAttribute* attribute);
    virtual void PopAttrib(BAttribute* attribute);
    virtual void VisitInactiveNodes(bool visit);
    virtual bool VisitInactiveNodes() const;

    TRAVERSIONMODE GetTraversionMode() const { return m_traversionMode; }

private:
    TRAVERSIONMODE m_traversionMode;
    bool m_visitInactiveNodes = false;
};
