// The registry of window receivers: a short list of (handle, receiver) pairs behind one
// reader/writer lock. A post holds the shared side while it looks the handle up and while the
// receiver enqueues, so unregistering, which takes the exclusive side, cannot return while a
// post is still inside the receiver. Receivers are few (a window per running operation), so
// the list is searched linearly.
#include <algorithm>
#include <mutex>
#include <qv/platform/WindowMessages.h>
#include <shared_mutex>
#include <utility>
#include <vector>

namespace qv::platform {

namespace {

struct Registry {
    std::shared_mutex lock;
    std::vector<std::pair<HWND, WindowReceiver*>> receivers;
    // The number behind the last handle given out. Handles start at 1 so that none is null.
    std::uintptr_t lastHandle = 0;
};

Registry& TheRegistry() {
    // Never destroyed: a receiver may post from a thread that outlives static destruction.
    static Registry* registry = new Registry;
    return *registry;
}

} // namespace

HWND RegisterWindowReceiver(WindowReceiver* receiver) {
    if (!receiver)
        return nullptr;
    Registry& registry = TheRegistry();
    std::unique_lock guard(registry.lock);
    HWND const window = reinterpret_cast<HWND>(++registry.lastHandle);
    registry.receivers.emplace_back(window, receiver);
    return window;
}

bool UnregisterWindowReceiver(HWND window) {
    Registry& registry = TheRegistry();
    std::unique_lock guard(registry.lock);
    auto found = std::find_if(registry.receivers.begin(), registry.receivers.end(),
                              [window](auto const& entry) { return entry.first == window; });
    if (!window || found == registry.receivers.end())
        return false;
    registry.receivers.erase(found);
    return true;
}

bool PostMessageW(HWND window, unsigned int message, WPARAM wParam, LPARAM lParam) {
    if (!window)
        return false;
    Registry& registry = TheRegistry();
    std::shared_lock guard(registry.lock);
    for (auto const& [handle, receiver] : registry.receivers) {
        if (handle == window) {
            receiver->Enqueue(window, message, wParam, lParam);
            return true;
        }
    }
    return false;
}

} // namespace qv::platform
