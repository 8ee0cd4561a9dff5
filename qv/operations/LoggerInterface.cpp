#include <qv/operations/Log.h>
#include <qv/operations/LoggerInterface.h>

namespace Qv {

LoggerInterface::~LoggerInterface() {
    UnregisterLoggerInterface(this);
}

} // namespace Qv
