#include <qv/operations/BSyncableInterface.h>

QV_REGISTER_CLASSNAME(BSyncableInterface);
