/// \file
/// Window messages, what PostMessageW and HWND give on Windows: a message (a number and two
/// parameters) enqueued for a receiver without waiting. Linux has no windows, so the receiver
/// is an object of the application: it implements WindowReceiver, registers it, and gets an
/// opaque HWND that names it. Asynchronous operations post to that handle; the receiver hands
/// each message to its own loop in the order of arrival. Design notes: docs/operations.md.
#pragma once

#include <cstdint>
#include <qv/core/Export.h>
#include <qv/platform/WindowsTypes.h>

namespace qv::platform {

/// Windows' WPARAM and LPARAM: pointer-wide, the first unsigned, the second signed.
using WPARAM = std::uint64_t;
using LPARAM = std::int64_t;

/// The application's side of a window: where posted messages arrive.
class QV_EXPORT WindowReceiver {
public:
    /// Takes one posted message, on the posting thread. It must return at once: enqueue the
    /// message for the receiver's own thread and wake it, nothing more. Posters may hold locks
    /// of their own, so it must not wait for any other thread, and it must not register,
    /// unregister or post itself.
    virtual void Enqueue(HWND window, unsigned int message, WPARAM wParam, LPARAM lParam) = 0;

protected:
    ~WindowReceiver() = default;
};

/// Registers a receiver and returns the handle that names it; handles are never reused within
/// a process. The receiver is borrowed: it must stay alive until it is unregistered. Null for
/// a null receiver. Any thread may register.
QV_EXPORT HWND RegisterWindowReceiver(WindowReceiver* receiver);

/// Takes the receiver of the handle out of service. Waits until posts that are under way to it
/// have returned, so the receiver may be destroyed as soon as this returns. False for a handle
/// that names no registered receiver.
QV_EXPORT bool UnregisterWindowReceiver(HWND window);

/// Hands the message to the handle's receiver and returns without waiting for it to be
/// handled. False when the handle names no registered receiver (the message is dropped then).
/// Messages posted by one thread arrive in the order they were posted. Any thread may post.
QV_EXPORT bool PostMessageW(HWND window, unsigned int message, WPARAM wParam, LPARAM lParam);

} // namespace qv::platform
