#include <qv/operations/IScheduler.h>

QV_REGISTER_CLASSNAME(IScheduler);
