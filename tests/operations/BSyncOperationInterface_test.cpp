#include "operations/RecordingDispatcher.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <qv/core/BError.h>
#include <qv/operations/BProgressManager.h>
#include <qv/operations/BSyncOperationInterface.h>
#include <thread>

using namespace operations_test;

namespace {
class AlwaysStop : public BProgressManager {
public:
    void BeginLongOperation(WString const&) override {}
    bool BreakLongOperation(bool) override { return true; }
    void EndLongOperation() override {}
    void TestUserBreak() override {}
};

// A dispatcher that reads the text of a status send while the send runs: the pointer is valid
// only then.
class ReadingDispatcher : public RecordingDispatcher {
public:
    ReadingDispatcher() : RecordingDispatcher(true) {}
    bool Send(unsigned int m, unsigned long long p1, unsigned long long p2) override {
        if (m == MSG_SYNC_STATUS)
            texts.push_back(WString(reinterpret_cast<char16_t const*>(p1)));
        return RecordingDispatcher::Send(m, p1, p2);
    }
    std::vector<WString> texts;
};
} // namespace

// The dispatcher thread reports by send and stops through the progress manager; any other
// thread, and every thread without a dispatcher, does nothing and never stops.
TEST(BSyncOperationInterface, ActsOnlyOnTheDispatcherThread) {
    struct Row {
        char const* name;
        bool dispatcher, onItsThread, manager;
        bool reports, stops;
    } const rows[] = {
        {"dispatcher thread with a manager", true, true, true, true, true},
        {"dispatcher thread without a manager", true, true, false, true, false},
        {"another thread", true, false, true, false, false},
        {"no dispatcher", false, false, true, false, false},
    };
    for (Row const& row : rows) {
        SP<ReadingDispatcher> dispatcher = new ReadingDispatcher;
        if (row.dispatcher)
            BDispatcher::RegisterDispatcher(dispatcher);
        if (row.manager)
            BProgressManager::RegisterInstance(new AlwaysStop);
        SP<BSyncOperationInterface> operation = new BSyncOperationInterface;
        auto run = [&] {
            EXPECT_EQ(operation->IsStopping(), row.stops) << row.name;
            EXPECT_EQ(operation->IsStoppingWeak(), row.stops) << row.name;
            operation->StatusInfo(WString(u"$MEASURING"));
            operation->StatusInfo(WString());
            operation->ProgressInfo(250);
            if (row.reports) {
                try {
                    operation->ErrorInfo(BError(5002, u"a", u"b"));
                    ADD_FAILURE() << row.name << ": the error is raised to the caller";
                } catch (BError const& error) {
                    EXPECT_EQ(error.Error(), 5002) << row.name;
                    EXPECT_EQ(error.Argument(1), WString(u"b")) << row.name;
                }
            } else {
                EXPECT_NO_THROW(operation->ErrorInfo(BError(5002))) << row.name;
            }
            EXPECT_TRUE(operation->FetchStatusMessage(1, true).IsEmpty()) << row.name;
        };
        if (row.onItsThread)
            run();
        else
            std::thread(run).join();
        BDispatcher::RegisterDispatcher(nullptr);
        BProgressManager::RegisterInstance(nullptr);

        if (!row.reports) {
            EXPECT_TRUE(dispatcher->Messages().empty()) << row.name;
            continue;
        }
        EXPECT_EQ(dispatcher->texts, (std::vector<WString>{WString(u"$MEASURING"), WString()}))
            << row.name << ": an empty text is an empty buffer, never null";
        std::vector<Message> const messages = dispatcher->Messages();
        ASSERT_EQ(messages.size(), 3u) << row.name;
        EXPECT_EQ(messages[1].number, MSG_SYNC_STATUS);
        EXPECT_NE(messages[1].param1, 0u);
        EXPECT_EQ(messages[2], (Message{false, MSG_SYNC_PROGRESS, 250, 0})) << row.name;
    }
}
