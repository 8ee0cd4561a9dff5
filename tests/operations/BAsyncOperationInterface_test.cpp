#include "operations/RecordingDispatcher.h"
#include "operations/RecordingWindow.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <qv/core/BError.h>
#include <qv/operations/BAsyncOperationInterface.h>
#include <qv/operations/BAutoTryLockW.h>
#include <thread>

using namespace operations_test;

namespace {
unsigned long long Self(BAsyncOperationInterface* operation) {
    return reinterpret_cast<std::uintptr_t>(operation);
}
} // namespace

// One run from construction to the end: texts are stored under rising ids and fetched once,
// progress and errors reach the dispatcher, Stop is for good and turns TestUserBreak into a
// raise that leaves the lock free.
TEST(BAsyncOperationInterface, AWholeRun) {
    Session session;
    SP<BAsyncOperationInterface> operation = new BAsyncOperationInterface;
    EXPECT_FALSE(operation->IsStopping());
    EXPECT_EQ(operation->GetError().Error(), 0);
    EXPECT_EQ(operation->GetMessageSink(), nullptr);
    EXPECT_EQ(operation->FetchStatusMessage(1, true), WString());

    std::thread worker([&] {
        operation->StatusInfo(WString(u"$STATUS_SCANNING"));
        operation->StatusInfo(WString());
        operation->ProgressInfo(150);
        operation->ErrorInfo(BError(31825, u"scan.qva"));
    });
    worker.join();
    unsigned long long const self = Self(operation);
    EXPECT_EQ(session.dispatcher->Messages(),
              (std::vector<Message>{{true, MSG_ASYNC_STATUS, self, 1},
                                    {true, MSG_ASYNC_STATUS, self, 2},
                                    {true, MSG_ASYNC_PROGRESS, self, 150},
                                    {true, MSG_ASYNC_ERROR, self, 0}}));

    EXPECT_EQ(operation->FetchStatusMessage(1, true), WString(u"$STATUS_SCANNING"));
    EXPECT_EQ(operation->FetchStatusMessage(1, true), WString(u"$STATUS_SCANNING"));
    EXPECT_EQ(operation->FetchStatusMessage(1, false), WString(u"$STATUS_SCANNING"));
    EXPECT_EQ(operation->FetchStatusMessage(1, false), WString()) << "fetched once";
    EXPECT_TRUE(operation->FetchStatusMessage(2, true).IsEmpty());
    EXPECT_EQ(operation->GetError().Error(), 31825);
    EXPECT_EQ(operation->GetError().Argument(0), WString(u"scan.qva"));

    EXPECT_NO_THROW(operation->TestUserBreak());
    EXPECT_FALSE(operation->BreakLongOperation(true));
    operation->Stop();
    operation->Stop();
    EXPECT_TRUE(operation->IsStopping());
    EXPECT_TRUE(operation->IsStoppingWeak());
    EXPECT_TRUE(operation->BreakLongOperation(false));
    EXPECT_TRUE(operation->BreakLongOperation(true));
    try {
        operation->TestUserBreak();
        ADD_FAILURE() << "a stopped operation raises";
    } catch (BError const& error) {
        EXPECT_EQ(error.Error(), 25070);
        EXPECT_TRUE(error.Argument(0).IsEmpty());
    }
    std::thread([&] { EXPECT_TRUE(BAutoTryLockW(*operation).IsLocked()); }).join();

    operation->StatusInfo(WString(u"winding down"));
    EXPECT_EQ(operation->FetchStatusMessage(3, false), WString(u"winding down"))
        << "reports go on while stopping; ids go on";
    EXPECT_TRUE(operation->IsStopping()) << "nothing clears the stop";
}

// Where each report goes: the window when there is one (progress limited to 99, errors
// never), otherwise the dispatcher, by send on its own thread and by post elsewhere.
TEST(BAsyncOperationInterface, ReportsTakeTheirRoute) {
    enum Report { kStatus, kProgress100, kProgress150, kProgress42, kError };
    struct Row {
        char const* name;
        bool window, onDispatcherThread;
        Report report;
        std::vector<unsigned int> windowNumbers; // with the first parameter below
        qv::platform::WPARAM windowParam;
        std::vector<Message> dispatcher; // first parameter 1 stands for the operation
    } const rows[] = {
        {"status to the window", true, false, kStatus, {MSG_SINK_STATUS}, 1, {}},
        {"progress 100 to the window", true, false, kProgress100, {MSG_SINK_PROGRESS}, 99, {}},
        {"progress 150 to the window", true, true, kProgress150, {MSG_SINK_PROGRESS}, 99, {}},
        {"progress 42 to the window", true, false, kProgress42, {MSG_SINK_PROGRESS}, 42, {}},
        {"error never to the window", true, false, kError, {}, 0, {{true, MSG_ASYNC_ERROR, 1, 0}}},
        {"status sent on the dispatcher thread",
         false,
         true,
         kStatus,
         {},
         0,
         {{false, MSG_ASYNC_STATUS, 1, 1}}},
        {"progress posted elsewhere, unlimited",
         false,
         false,
         kProgress150,
         {},
         0,
         {{true, MSG_ASYNC_PROGRESS, 1, 150}}},
        {"error sent on the dispatcher thread",
         false,
         true,
         kError,
         {},
         0,
         {{false, MSG_ASYNC_ERROR, 1, 0}}},
    };
    for (Row const& row : rows) {
        Session session(row.onDispatcherThread);
        RecordingWindow window;
        SP<BAsyncOperationInterface> operation = new BAsyncOperationInterface;
        if (row.window)
            operation->SetMessageSink(window.handle);
        switch (row.report) {
        case kStatus:
            operation->StatusInfo(WString(u"text"));
            break;
        case kProgress100:
            operation->ProgressInfo(100);
            break;
        case kProgress150:
            operation->ProgressInfo(150);
            break;
        case kProgress42:
            operation->ProgressInfo(42);
            break;
        case kError:
            operation->ErrorInfo(BError(5002));
            break;
        }
        std::vector<WindowMessage> expectedWindow;
        for (unsigned int number : row.windowNumbers)
            expectedWindow.push_back({window.handle, number, row.windowParam, 0});
        EXPECT_EQ(window.Messages(), expectedWindow) << row.name;
        std::vector<Message> expected = row.dispatcher;
        for (Message& m : expected)
            m.param1 = Self(operation);
        EXPECT_EQ(session.dispatcher->Messages(), expected) << row.name;
    }
}

// A null sink returns the object to the dispatcher; without a dispatcher reports are lost but
// texts stay for fetching.
TEST(BAsyncOperationInterface, WithoutASinkOrADispatcher) {
    SP<BAsyncOperationInterface> operation = new BAsyncOperationInterface;
    operation->StatusInfo(WString(u"kept"));
    operation->ProgressInfo(5);
    operation->ErrorInfo(BError(7));
    EXPECT_EQ(operation->FetchStatusMessage(1, false), WString(u"kept"));
    EXPECT_EQ(operation->GetError().Error(), 7);

    Session session;
    RecordingWindow window;
    operation->SetMessageSink(window.handle);
    operation->SetMessageSink(nullptr);
    operation->ProgressInfo(5);
    EXPECT_TRUE(window.Messages().empty());
    EXPECT_EQ(session.dispatcher->Messages().size(), 1u);
}
