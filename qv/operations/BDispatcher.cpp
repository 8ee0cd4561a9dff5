#include <cstdint>
#include <qv/operations/BDispatcher.h>
#include <qv/platform/ThreadId.h>

QV_REGISTER_CLASSNAME(BDispatcher);

namespace {
// Constant-initialised, so it is in place before any static constructor could register; its
// destructor gives up the library's reference when the library is unloaded.
constinit SP<BDispatcher> g_dispatcher;
} // namespace

SP<BDispatcher> BDispatcher::Instance() {
    return g_dispatcher;
}

void BDispatcher::RegisterDispatcher(SP<BDispatcher> dispatcher) {
    // The argument holds its own reference, so registering the registered object again keeps
    // it alive; the old object is let go after the slot has changed.
    g_dispatcher = std::move(dispatcher);
}

bool BDispatcher::DispatcherPost(unsigned int message, unsigned long long param1,
                                 unsigned long long param2) {
    BDispatcher* dispatcher = g_dispatcher.get();
    return dispatcher && dispatcher->Post(message, param1, param2);
}

bool BDispatcher::DispatcherSend(unsigned int message, unsigned long long param1,
                                 unsigned long long param2) {
    BDispatcher* dispatcher = g_dispatcher.get();
    return dispatcher && dispatcher->Send(message, param1, param2);
}

bool BDispatcher::IsRegistered() {
    return g_dispatcher.get() != nullptr;
}

unsigned long BDispatcher::DispatcherThreadId() {
    BDispatcher* dispatcher = g_dispatcher.get();
    return dispatcher ? dispatcher->ThreadId() : 0xFFFFFFFFul;
}

bool BDispatcher::CurrentThreadIsDispatcherThread() {
    // Thread ids have 32 bits; a dispatcher's wider value compares by its low half, as the
    // DWORD it is on Windows.
    BDispatcher* dispatcher = g_dispatcher.get();
    return dispatcher &&
           static_cast<std::uint32_t>(dispatcher->ThreadId()) == qv::platform::GetCurrentThreadId();
}
