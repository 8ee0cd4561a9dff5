#include <gtest/gtest.h>
#include <qv/operations/BCommandExecutionInterface.h>
#include <qv/operations/BDispatcher.h>
#include <qv/operations/BMessageReceiver.h>
#include <qv/operations/MessageNumbers.h>
#include <qv/operations/QVPost.h>
#include <qv/platform/ThreadId.h>
#include <thread>
#include <vector>

namespace {
struct Message {
    bool posted;
    unsigned int number;
    unsigned long long param1, param2;
};

class RecordingDispatcher : public BDispatcher {
public:
    explicit RecordingDispatcher(bool answer, unsigned long threadId = 0xFFFFFFFF)
        : m_answer(answer), m_threadId(threadId) {}
    ~RecordingDispatcher() override { ++destroyed; }

    bool Send(unsigned int m, unsigned long long p1, unsigned long long p2) override {
        messages.push_back({false, m, p1, p2});
        return m_answer;
    }
    bool Post(unsigned int m, unsigned long long p1, unsigned long long p2) override {
        messages.push_back({true, m, p1, p2});
        return m_answer;
    }
    unsigned long ThreadId() override { return m_threadId; }
    bool Subscribe(BMessageReceiver*) override { return false; }
    bool Unsubscribe(BMessageReceiver*) override { return false; }

    std::vector<Message> messages;
    static inline int destroyed = 0;

private:
    bool m_answer;
    unsigned long m_threadId;
};

// Each test leaves the process without a dispatcher, as it found it.
class BDispatcherTest : public ::testing::Test {
protected:
    void TearDown() override { BDispatcher::RegisterDispatcher(nullptr); }
};
} // namespace

TEST_F(BDispatcherTest, WithoutADispatcherMessagesVanish) {
    EXPECT_EQ(BDispatcher::Instance(), nullptr);
    EXPECT_EQ(BDispatcher::DispatcherThreadId(), 0xFFFFFFFFul);
    EXPECT_FALSE(BDispatcher::CurrentThreadIsDispatcherThread());
    EXPECT_FALSE(QVCurrentThreadIsDispatcherThread());
    std::thread([] { EXPECT_FALSE(QVCurrentThreadIsDispatcherThread()); }).join();
    EXPECT_FALSE(BDispatcher::DispatcherPost(1, 2, 3));
    EXPECT_FALSE(BDispatcher::DispatcherSend(1, 2, 3));
    QVPost(MSG_MEMORY_CHANGED, 0, 0);
    QVSend(MSG_NODE_TREATED, 0, 0);
}

TEST_F(BDispatcherTest, ForwardsMessagesAndAnswers) {
    SP<RecordingDispatcher> dispatcher(new RecordingDispatcher(false));
    BDispatcher::RegisterDispatcher(dispatcher);
    EXPECT_FALSE(BDispatcher::DispatcherPost(MSG_UNIT_CHANGED, 2, 0));
    QVPost(MSG_ASYNC_PROGRESS, 0xFFFF'FFFF'FFFF'FFFFull, 99);
    QVSend(MSG_SYNC_STATUS, 5, 6);
    ASSERT_EQ(dispatcher->messages.size(), 3u);
    EXPECT_TRUE(dispatcher->messages[0].posted);
    EXPECT_EQ(dispatcher->messages[0].number, 3113u);
    EXPECT_EQ(dispatcher->messages[1].param1, 0xFFFF'FFFF'FFFF'FFFFull);
    EXPECT_EQ(dispatcher->messages[1].param2, 99u);
    EXPECT_FALSE(dispatcher->messages[2].posted);
    EXPECT_EQ(dispatcher->messages[2].number, 4078u);

    BDispatcher::RegisterDispatcher(new RecordingDispatcher(true));
    EXPECT_TRUE(BDispatcher::DispatcherSend(1, 2, 3));
    EXPECT_TRUE(BDispatcher::DispatcherPost(1, 2, 3));
    EXPECT_EQ(dispatcher->messages.size(), 3u) << "the replaced dispatcher hears nothing more";
}

TEST_F(BDispatcherTest, RegisteringKeepsOneReferenceAndReplacingGivesItUp) {
    RecordingDispatcher::destroyed = 0;
    auto* dispatcher = new RecordingDispatcher(true);
    BDispatcher::RegisterDispatcher(dispatcher);
    EXPECT_EQ(dispatcher->RefCount(), 1);
    BDispatcher::RegisterDispatcher(BDispatcher::Instance());
    EXPECT_EQ(dispatcher->RefCount(), 1) << "registering the registered object again";
    EXPECT_EQ(BDispatcher::Instance().get(), dispatcher);
    EXPECT_EQ(dispatcher->RefCount(), 1) << "Instance hands out a new reference";
    BDispatcher::RegisterDispatcher(nullptr);
    EXPECT_EQ(RecordingDispatcher::destroyed, 1);
    EXPECT_EQ(BDispatcher::Instance(), nullptr);
}

TEST_F(BDispatcherTest, TheDispatcherThreadIsTheOneItNames) {
    BDispatcher::RegisterDispatcher(
        new RecordingDispatcher(true, qv::platform::GetCurrentThreadId()));
    EXPECT_EQ(BDispatcher::DispatcherThreadId(), qv::platform::GetCurrentThreadId());
    EXPECT_TRUE(QVCurrentThreadIsDispatcherThread());
    std::thread([] { EXPECT_FALSE(QVCurrentThreadIsDispatcherThread()); }).join();
}

namespace {
class Commands : public BCommandExecutionInterface {
public:
    int ExecuteCommand(WString command, bool flag, unsigned long value, void* data) override {
        last = command;
        lastFlag = flag;
        lastValue = value;
        lastData = data;
        return 7;
    }
    WString last;
    bool lastFlag = false;
    unsigned long lastValue = 0;
    void* lastData = nullptr;
};
} // namespace

TEST(ExecuteCommand, ForwardsEverythingToTheRegisteredObject) {
    SP<Commands> commands(new Commands);
    RegisterCommandExecution(commands);
    RegisterCommandExecution(commands);
    EXPECT_EQ(commands->RefCount(), 2);
    int context = 0;
    WString const command(u"Measure");
    EXPECT_EQ(ExecuteCommand(command, true, 0xFFFF'FFFF'FFFFul, &context), 7);
    EXPECT_EQ(commands->last, command);
    EXPECT_TRUE(commands->lastFlag);
    EXPECT_EQ(commands->lastValue, 0xFFFF'FFFF'FFFFul);
    EXPECT_EQ(commands->lastData, &context);
    EXPECT_EQ(CommandExecutionInstance().get(), commands.get());
    RegisterCommandExecution(nullptr);
    EXPECT_EQ(commands->RefCount(), 1);
    EXPECT_EQ(ExecuteCommand(command, false, 0, nullptr), 13004);
}
