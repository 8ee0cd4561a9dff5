// Operations and progress reported from worker threads, with the owner's thread stopping,
// fetching and unregistering at the same time. Every wait is bounded.
#include "ThreadTestSupport.h"
#include "operations/RecordingDispatcher.h"

#include <chrono>
#include <cstdint>
#include <gtest/gtest.h>
#include <qv/core/BError.h>
#include <qv/operations/BAsyncOperationInterface.h>
#include <string>
#include <thread>

using namespace operations_test;
using namespace thread_test;

namespace {
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
    Session session;
    SP<BAsyncOperationInterface> operation = new BAsyncOperationInterface;
    unsigned long long steps = 0;
    auto worker = Start([&] {
        try {
            Work(*operation, 20, steps);
        } catch (BError const& error) {
            operation->ErrorInfo(error);
        }
    });
    // The owner's loop: it takes the posted messages in order, as they come.
    unsigned int nextId = 1;
    auto const until = std::chrono::steady_clock::now() + kBound;
    for (size_t handled = 0; std::chrono::steady_clock::now() < until;) {
        std::vector<Message> const messages = session.dispatcher->Messages();
        if (handled == messages.size())
            std::this_thread::yield();
        for (; handled < messages.size(); ++handled) {
            Message const& message = messages[handled];
            ASSERT_EQ(message.param1, reinterpret_cast<std::uintptr_t>(operation.get()));
            if (message.number == MSG_ASYNC_STATUS) {
                ASSERT_EQ(message.param2, nextId);
                EXPECT_EQ(operation->FetchStatusMessage(static_cast<int>(nextId), false),
                          StepText(nextId));
                if (++nextId == 20)
                    operation->Stop();
            }
        }
        if (!messages.empty() && messages.back().number == MSG_ASYNC_ERROR)
            break;
    }
    EXPECT_EQ(worker.wait_for(kBound), std::future_status::ready);
    EXPECT_EQ(operation->GetError().Error(), 25070);
    EXPECT_EQ(nextId, steps + 1) << "every text was fetched, in order";
}
