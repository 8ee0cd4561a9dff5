#include <qv/operations/BOperationInterface.h>

QV_REGISTER_CLASSNAME(BOperationInterface);

void BOperationInterface::Stop() {}
