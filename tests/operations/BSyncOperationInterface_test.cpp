#include "operations/RecordingDispatcher.h"

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

// Reads the text of a status send while the send runs: the pointer is valid only then.
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

// The dispatcher thread reports by send, raises errors and stops through the progress
// manager; any other thread, and every thread without a dispatcher, does none of it.
TEST(BSyncOperationInterface, ActsOnlyOnTheDispatcherThread) {
    struct Row {
        char const* name;
        bool dispatcher, onItsThread, manager, acts, stops;
    } const rows[] = {
        {"dispatcher thread with a manager", true, true, true, true, true},
        {"dispatcher thread without a manager", true, true, false, true, false},
        {"another thread", true, false, true, false, false},
        {"no dispatcher", false, true, true, false, false},
    };
    for (Row const& row : rows) {
        SP<ReadingDispatcher> dispatcher = new ReadingDispatcher;
        BDispatcher::RegisterDispatcher(row.dispatcher ? dispatcher.get() : nullptr);
        BProgressManager::RegisterInstance(row.manager ? new AlwaysStop : nullptr);
        SP<BSyncOperationInterface> operation = new BSyncOperationInterface;
        auto run = [&] {
            EXPECT_EQ(operation->IsStoppingWeak(), row.stops) << row.name;
            operation->StatusInfo(WString(u"$MEASURING"));
            operation->StatusInfo(WString());
            operation->ProgressInfo(250);
            bool raised = false;
            try {
                operation->ErrorInfo(BError(5002, u"a", u"b"));
            } catch (BError const& error) {
                raised = error.Error() == 5002 && error.Argument(1) == WString(u"b");
            }
            EXPECT_EQ(raised, row.acts) << row.name;
            EXPECT_TRUE(operation->FetchStatusMessage(1, true).IsEmpty()) << row.name;
        };
        if (row.onItsThread)
            run();
        else
            std::thread(run).join();
        BDispatcher::RegisterDispatcher(nullptr);
        BProgressManager::RegisterInstance(nullptr);

        std::vector<unsigned long long> sentProgress;
        for (Message const& m : dispatcher->Messages())
            if (m.number == MSG_SYNC_PROGRESS && !m.posted)
                sentProgress.push_back(m.param1);
        EXPECT_EQ(sentProgress, std::vector<unsigned long long>(row.acts, 250)) << row.name;
        std::vector<WString> const texts{WString(u"$MEASURING"), WString()};
        EXPECT_EQ(dispatcher->texts, row.acts ? texts : std::vector<WString>())
            << row.name << ": an empty text is never null";
    }
}
