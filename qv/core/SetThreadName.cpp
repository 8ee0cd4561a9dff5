#include <qv/core/SetThreadName.h>
#include <qv/platform/ThreadName.h>

void SetThreadName(char const* name, unsigned long threadId) {
    qv::platform::NameThread(name, threadId);
}
