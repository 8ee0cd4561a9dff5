#include <qv/tree/BVisitor.h>

QV_REGISTER_CLASSNAME(BVisitor);

bool BVisitor::TreatNode(BNode*) {
    return false;
}

bool BVisitor::Treat(BSmartObj*) {
    return false;
}

void BVisitor::TreatAnnotation(SP<BSmartObj>, SP<BSmartObj const>) {}

void BVisitor::PushPath(BNode*) {}

void BVisitor::PopPath() {}

void BVisitor::PushAttrib(BAttribute*) {}

void BVisitor::PopAttrib(BAttribute*) {}

void BVisitor::VisitInactiveNodes(bool visit) {
    m_visitInactiveNodes = visit;
}

bool BVisitor::VisitInactiveNodes() const {
    return m_visitInactiveNodes;
}
