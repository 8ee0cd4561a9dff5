#include <qv/operations/BDispatcher.h>
#include <qv/operations/QVPost.h>

void QVPost(unsigned int message, unsigned long long param1, unsigned long long param2) {
    BDispatcher::DispatcherPost(message, param1, param2);
}

void QVSend(unsigned int message, unsigned long long param1, unsigned long long param2) {
    BDispatcher::DispatcherSend(message, param1, param2);
}

bool QVCurrentThreadIsDispatcherThread() {
    return BDispatcher::CurrentThreadIsDispatcherThread();
}
