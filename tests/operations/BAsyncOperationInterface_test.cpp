#include "operations/RecordingDispatcher.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <qv/core/BError.h>
#include <qv/operations/BAsyncOperationInterface.h>
#include <qv/operations/BAutoTryLockW.h>
#include <thread>

using namespace operations_test;

// One run from construction to the end: texts stored under rising ids and fetched once,
// progress and errors at the dispatcher, a stop for good that turns TestUserBreak into a raise
// which leaves the lock free, and reports that go on while stopping.
TEST(BAsyncOperationInterface, AWholeRun) {
    Session session;
    SP<BAsyncOperationInterface> operation = new BAsyncOperationInterface;
    std::thread([&] {
        operation->StatusInfo(WString(u"$STATUS_SCANNING"));
        operation->StatusInfo(WString());
        operation->ProgressInfo(150);
        operation->ErrorInfo(BError(31825, u"scan.qva"));
    }).join();
    unsigned long long const self = reinterpret_cast<std::uintptr_t>(operation.get());
    EXPECT_EQ(session.dispatcher->Messages(),
              (std::vector<Message>{{true, MSG_ASYNC_STATUS, self, 1},
                                    {true, MSG_ASYNC_STATUS, self, 2},
                                    {true, MSG_ASYNC_PROGRESS, self, 150},
                                    {true, MSG_ASYNC_ERROR, self, 0}}));
    EXPECT_EQ(operation->FetchStatusMessage(1, true), WString(u"$STATUS_SCANNING"));
    EXPECT_EQ(operation->FetchStatusMessage(1, false), WString(u"$STATUS_SCANNING"));
    EXPECT_EQ(operation->FetchStatusMessage(1, false), WString()) << "fetched once";
    EXPECT_EQ(operation->GetError().Argument(0), WString(u"scan.qva"));

    EXPECT_NO_THROW(operation->TestUserBreak());
    EXPECT_FALSE(operation->BreakLongOperation(true));
    operation->Stop();
    operation->Stop();
    EXPECT_TRUE(operation->IsStoppingWeak());
    EXPECT_TRUE(operation->BreakLongOperation(false));
    try {
        operation->TestUserBreak();
        ADD_FAILURE() << "a stopped operation raises";
    } catch (BError const& error) {
        EXPECT_EQ(error.Error(), 25070);
    }
    std::thread([&] { EXPECT_TRUE(BAutoTryLockW(*operation).IsLocked()); }).join();
    operation->StatusInfo(WString(u"winding down"));
    EXPECT_EQ(operation->FetchStatusMessage(3, false), WString(u"winding down"));
    EXPECT_TRUE(operation->FetchStatusMessage(2, true).IsEmpty());
    EXPECT_TRUE(operation->IsStopping());
}

// Where each report goes: the window when there is one (progress at most 99, errors never),
// otherwise the dispatcher, by send on its own thread and by post elsewhere.
TEST(BAsyncOperationInterface, ReportsTakeTheirRoute) {
    enum : int { kStatus = -1, kError = -2 };
    struct Row {
        char const* name;
        bool window, onDispatcherThread;
        int report;                                  // a progress in %, or kStatus or kError
        std::vector<Message> atWindow, atDispatcher; // a first parameter 1 is the operation
    } const rows[] = {
        {"status to the window", true, false, kStatus, {{true, MSG_SINK_STATUS, 1, 0}}, {}},
        {"100 % to the window, also on its thread",
         true,
         true,
         100,
         {{true, MSG_SINK_PROGRESS, 99, 0}},
         {}},
        {"error never to the window", true, false, kError, {}, {{true, MSG_ASYNC_ERROR, 1, 0}}},
        {"status sent on its thread", false, true, kStatus, {}, {{false, MSG_ASYNC_STATUS, 1, 1}}},
        {"progress posted, no cap", false, false, 150, {}, {{true, MSG_ASYNC_PROGRESS, 1, 150}}},
        {"error sent on its thread", false, true, kError, {}, {{false, MSG_ASYNC_ERROR, 1, 0}}},
    };
    for (Row const& row : rows) {
        Session session(row.onDispatcherThread);
        RecordingWindow window;
        SP<BAsyncOperationInterface> operation = new BAsyncOperationInterface;
        operation->SetMessageSink(window.handle);
        if (!row.window)
            operation->SetMessageSink(nullptr);
        if (row.report == kStatus)
            operation->StatusInfo(WString(u"text"));
        else if (row.report == kError)
            operation->ErrorInfo(BError(5002));
        else
            operation->ProgressInfo(static_cast<unsigned int>(row.report));
        std::vector<Message> expected = row.atDispatcher;
        for (Message& m : expected)
            m.param1 = reinterpret_cast<std::uintptr_t>(operation.get());
        EXPECT_EQ(window.Messages(), row.atWindow) << row.name;
        EXPECT_EQ(session.dispatcher->Messages(), expected) << row.name;
    }
}
