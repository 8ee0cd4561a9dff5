// Operations and progress reported from worker threads, with the owner's thread stopping,
// fetching and unregistering at the same time. Every wait is bounded.
#include "ThreadTestSupport.h"
#include "operations/RecordingDispatcher.h"
#include "operations/RecordingWindow.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <gtest/gtest.h>
#include <qv/core/BError.h>
#include <qv/operations/BAsyncOperationInterface.h>
#include <qv/operations/BProgressMapping.h>
#include <string>
#include <thread>

using namespace operations_test;
using namespace thread_test;

namespace {
// The owner's message loop: posts from any thread queue up, the owner takes them in order.
class QueueDispatcher : public BDispatcher {
public:
    bool Send(unsigned int m, unsigned long long p1, unsigned long long p2) override {
        return Post(m, p1, p2);
    }
    bool Post(unsigned int m, unsigned long long p1, unsigned long long p2) override {
        {
            std::lock_guard lock(m_mutex);
            m_queue.push_back({true, m, p1, p2});
        }
        m_arrived.notify_one();
        return true;
    }
    unsigned long ThreadId() override { return 0xFFFFFFFF; }
    bool Subscribe(BMessageReceiver*) override { return false; }
    bool Unsubscribe(BMessageReceiver*) override { return false; }

    // The next message, or false when none came within the bound.
    bool Next(Message& message) {
        std::unique_lock lock(m_mutex);
        if (!m_arrived.wait_for(lock, kBound, [this] { return !m_queue.empty(); }))
            return false;
        message = m_queue.front();
        m_queue.pop_front();
        return true;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_arrived;
    std::deque<Message> m_queue;
};

WString StepText(unsigned long long i) {
    return WString::FromUtf8("step " + std::to_string(i));
}

// Reports status and progress until stopped; TestUserBreak is asked a few frames down.
void Work(BAsyncOperationInterface& operation, int depth, unsigned long long& steps) {
    if (depth > 0)
        return Work(operation, depth - 1, steps);
    while (steps < 1000000) {
        ++steps;
        operation.StatusInfo(StepText(steps));
        operation.ProgressInfo(static_cast<unsigned int>(steps % 100));
        operation.TestUserBreak();
        std::this_thread::yield();
    }
}
} // namespace

// The worker reports while the owner fetches every text once and then stops it; the stop
// reaches the worker as BError 25070 and every status id arrives with its own text.
TEST(OperationsConcurrent, AnOwnerFollowsAndStopsItsWorker) {
    SP<QueueDispatcher> dispatcher = new QueueDispatcher;
    BDispatcher::RegisterDispatcher(dispatcher);
    SP<BAsyncOperationInterface> operation = new BAsyncOperationInterface;
    unsigned long long steps = 0;
    auto worker = Start([&] {
        try {
            Work(*operation, 20, steps);
        } catch (BError const& error) {
            operation->ErrorInfo(error);
        }
    });
    unsigned int nextId = 1;
    bool ended = false;
    while (!ended) {
        Message message{};
        ASSERT_TRUE(dispatcher->Next(message)) << "the worker went silent";
        ASSERT_EQ(message.param1, reinterpret_cast<std::uintptr_t>(operation.get()));
        if (message.number == MSG_ASYNC_STATUS) {
            ASSERT_EQ(message.param2, nextId);
            EXPECT_EQ(operation->FetchStatusMessage(static_cast<int>(nextId), false),
                      StepText(nextId));
            if (++nextId == 20)
                operation->Stop();
        }
        ended = message.number == MSG_ASYNC_ERROR;
    }
    EXPECT_EQ(worker.wait_for(kBound), std::future_status::ready);
    EXPECT_EQ(operation->GetError().Error(), 25070);
    EXPECT_EQ(nextId, steps + 1) << "every text was fetched";
    BDispatcher::RegisterDispatcher(nullptr);
}

// Posts to a window from a worker while the owner takes the window out of service: once
// unregistering has returned, the receiver hears nothing more and may be destroyed.
TEST(OperationsConcurrent, AWindowGoesWhileAWorkerPosts) {
    class Window : public qv::platform::WindowReceiver {
    public:
        void Enqueue(HWND, unsigned int, qv::platform::WPARAM, qv::platform::LPARAM) override {
            if (!alive.load())
                late = true;
            ++received;
        }
        std::atomic<bool> alive{true}, late{false};
        std::atomic<int> received{0};
    } window;
    HWND const handle = qv::platform::RegisterWindowReceiver(&window);
    SP<BAsyncOperationInterface> operation = new BAsyncOperationInterface;
    operation->SetMessageSink(handle);
    std::atomic<bool> stop{false};
    auto worker = Start([&] {
        while (!stop)
            operation->ProgressInfo(50);
    });
    while (window.received.load() < 100)
        std::this_thread::yield();
    EXPECT_TRUE(qv::platform::UnregisterWindowReceiver(handle));
    window.alive = false;
    std::this_thread::sleep_for(kSettle);
    stop = true;
    EXPECT_EQ(worker.wait_for(kBound), std::future_status::ready);
    EXPECT_FALSE(window.late.load());
}

// Mappings on several workers send their steps to one dispatcher at once; none is lost.
TEST(OperationsConcurrent, MappingsOnWorkersSendEveryUnit) {
    Session session;
    std::vector<std::future<void>> workers;
    for (int w = 0; w < 4; ++w) {
        workers.push_back(Start([] {
            BProgressMapping mapping(1 << 16, 100);
            for (unsigned long long i = 0; i < mapping.GetSteps(); ++i)
                mapping.Next(1);
        }));
    }
    for (auto& worker : workers)
        EXPECT_EQ(worker.wait_for(kBound), std::future_status::ready);
    EXPECT_EQ(session.dispatcher->Units(), 400u);
}
