// A window for the operation suites: a registered receiver that records what is posted to it,
// from any thread, and takes itself out of service when it dies.
#pragma once

#include <mutex>
#include <qv/platform/WindowMessages.h>
#include <vector>

namespace operations_test {

struct WindowMessage {
    HWND window;
    unsigned int number;
    qv::platform::WPARAM wParam;
    qv::platform::LPARAM lParam;
    bool operator==(WindowMessage const&) const = default;
};

class RecordingWindow : public qv::platform::WindowReceiver {
public:
    RecordingWindow() : handle(qv::platform::RegisterWindowReceiver(this)) {}
    RecordingWindow(RecordingWindow const&) = delete;
    RecordingWindow& operator=(RecordingWindow const&) = delete;
    ~RecordingWindow() { qv::platform::UnregisterWindowReceiver(handle); }

    void Enqueue(HWND window, unsigned int number, qv::platform::WPARAM wParam,
                 qv::platform::LPARAM lParam) override {
        std::lock_guard lock(m_mutex);
        m_messages.push_back({window, number, wParam, lParam});
    }
    std::vector<WindowMessage> Messages() {
        std::lock_guard lock(m_mutex);
        return m_messages;
    }

    HWND const handle;

private:
    std::mutex m_mutex;
    std::vector<WindowMessage> m_messages;
};

} // namespace operations_test
