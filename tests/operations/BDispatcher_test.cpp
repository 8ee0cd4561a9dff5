#include "operations/RecordingDispatcher.h"

#include <gtest/gtest.h>
#include <qv/operations/BCommandExecutionInterface.h>
#include <qv/operations/QVPost.h>
#include <thread>
#include <tuple>

using namespace operations_test;

namespace {
// Each test leaves the process without a dispatcher, as it found it.
class BDispatcherTest : public ::testing::Test {
protected:
    void TearDown() override { BDispatcher::RegisterDispatcher(nullptr); }
};
bool OtherThreadIsDispatcherThread() {
    bool answer = true;
    std::thread([&] { answer = QVCurrentThreadIsDispatcherThread(); }).join();
    return answer;
}
} // namespace

TEST_F(BDispatcherTest, WithoutADispatcherMessagesVanish) {
    EXPECT_EQ(BDispatcher::Instance(), nullptr);
    EXPECT_EQ(BDispatcher::DispatcherThreadId(), 0xFFFFFFFFul);
    EXPECT_FALSE(QVCurrentThreadIsDispatcherThread());
    EXPECT_FALSE(BDispatcher::DispatcherPost(1, 2, 3));
    EXPECT_FALSE(BDispatcher::DispatcherSend(1, 2, 3));
    QVPost(MSG_MEMORY_CHANGED, 0, 0);
    QVSend(MSG_NODE_TREATED, 0, 0);
}

// Messages reach the registered dispatcher as they are and its answers come back; the slot
// holds one reference, also when the registered object is registered again, and gives it up
// on replacement, after which the old dispatcher hears nothing more.
TEST_F(BDispatcherTest, ForwardsMessagesAndKeepsOneReference) {
    SP<RecordingDispatcher> dispatcher(new RecordingDispatcher(false));
    dispatcher->answer = false;
    BDispatcher::RegisterDispatcher(dispatcher);
    BDispatcher::RegisterDispatcher(BDispatcher::Instance());
    EXPECT_EQ(dispatcher->RefCount(), 2);
    EXPECT_FALSE(BDispatcher::DispatcherPost(MSG_UNIT_CHANGED, 2, 0));
    QVPost(MSG_ASYNC_PROGRESS, 0xFFFF'FFFF'FFFF'FFFFull, 99);
    QVSend(MSG_SYNC_STATUS, 5, 6);
    EXPECT_EQ(dispatcher->Messages(),
              (std::vector<Message>{{true, 3113, 2, 0},
                                    {true, MSG_ASYNC_PROGRESS, 0xFFFF'FFFF'FFFF'FFFFull, 99},
                                    {false, 4078, 5, 6}}));

    BDispatcher::RegisterDispatcher(new RecordingDispatcher(true));
    EXPECT_EQ(dispatcher->RefCount(), 1);
    EXPECT_TRUE(BDispatcher::DispatcherSend(1, 2, 3));
    EXPECT_TRUE(BDispatcher::DispatcherPost(1, 2, 3));
    EXPECT_EQ(dispatcher->Messages().size(), 3u);
    EXPECT_EQ(BDispatcher::DispatcherThreadId(), qv::platform::GetCurrentThreadId());
    EXPECT_TRUE(QVCurrentThreadIsDispatcherThread());
    EXPECT_FALSE(OtherThreadIsDispatcherThread());
}

namespace {
class Commands : public BCommandExecutionInterface {
public:
    int ExecuteCommand(WString command, bool flag, unsigned long value, void* data) override {
        last = {command, flag, value, data};
        return 7;
    }
    std::tuple<WString, bool, unsigned long, void*> last;
};
} // namespace

TEST(ExecuteCommand, ForwardsEverythingToTheRegisteredObject) {
    SP<Commands> commands(new Commands);
    RegisterCommandExecution(commands);
    int context = 0;
    EXPECT_EQ(ExecuteCommand(WString(u"Measure"), true, 0xFFFF'FFFF'FFFFul, &context), 7);
    EXPECT_EQ(commands->last, std::make_tuple(WString(u"Measure"), true, 0xFFFF'FFFF'FFFFul,
                                              static_cast<void*>(&context)));
    RegisterCommandExecution(nullptr);
    EXPECT_EQ(ExecuteCommand(WString(u"Measure"), false, 0, nullptr), 13004);
}
