#include <qv/operations/IPromise.h>

QV_REGISTER_CLASSNAME(IPromise);
