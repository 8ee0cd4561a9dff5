// Recording stand-ins for the operation suites: a dispatcher and a window that record every
// message from any thread. The dispatcher names the thread that made it as the dispatcher
// thread, or none; a Session registers one for its scope. Send and Post answer `answer`.
#pragma once

#include <mutex>
#include <qv/operations/BDispatcher.h>
#include <qv/operations/MessageNumbers.h>
#include <qv/platform/ThreadId.h>
#include <qv/platform/WindowMessages.h>
#include <vector>

namespace operations_test {

struct Message {
    bool posted;
    unsigned int number;
    unsigned long long param1, param2;
    bool operator==(Message const&) const = default;
};

class RecordingDispatcher : public BDispatcher {
public:
    explicit RecordingDispatcher(bool ownsThread)
        : m_threadId(ownsThread ? qv::platform::GetCurrentThreadId() : 0xFFFFFFFFul) {}
    bool Send(unsigned int m, unsigned long long p1, unsigned long long p2) override {
        return Record({false, m, p1, p2});
    }
    bool Post(unsigned int m, unsigned long long p1, unsigned long long p2) override {
        return Record({true, m, p1, p2});
    }
    unsigned long ThreadId() override { return m_threadId; }
    bool answer = true;
    bool Subscribe(BMessageReceiver*) override { return false; }
    bool Unsubscribe(BMessageReceiver*) override { return false; }

    std::vector<Message> Messages() {
        std::lock_guard lock(m_mutex);
        return m_messages;
    }
    // The parameters of the progress steps, in order.
    std::vector<unsigned long long> Steps() {
        std::vector<unsigned long long> steps;
        for (Message const& m : Messages())
            if (m.number == MSG_PROGRESS_STEP)
                steps.push_back(m.param1);
        return steps;
    }

private:
    bool Record(Message const& message) {
        std::lock_guard lock(m_mutex);
        m_messages.push_back(message);
        return answer;
    }
    unsigned long const m_threadId;
    std::mutex m_mutex;
    std::vector<Message> m_messages;
};

struct Session {
    explicit Session(bool ownsThread = false) : dispatcher(new RecordingDispatcher(ownsThread)) {
        BDispatcher::RegisterDispatcher(dispatcher);
    }
    ~Session() { BDispatcher::RegisterDispatcher(nullptr); }
    SP<RecordingDispatcher> dispatcher;
};

// A registered window; the message number and first parameter of each post, in order.
class RecordingWindow final : public qv::platform::WindowReceiver {
public:
    RecordingWindow() : handle(qv::platform::RegisterWindowReceiver(this)) {}
    ~RecordingWindow() { qv::platform::UnregisterWindowReceiver(handle); }
    void Enqueue(HWND window, unsigned int number, qv::platform::WPARAM wParam,
                 qv::platform::LPARAM lParam) override {
        std::lock_guard lock(m_mutex);
        if (window == handle && lParam == 0)
            m_messages.push_back({true, number, wParam, 0});
    }
    std::vector<Message> Messages() {
        std::lock_guard lock(m_mutex);
        return m_messages;
    }
    HWND const handle;

private:
    std::mutex m_mutex;
    std::vector<Message> m_messages;
};

} // namespace operations_test
