#include <atomic>
#include <chrono>
#include <future>
#include <gtest/gtest.h>
#include <qv/operations/Log.h>

using namespace std::chrono_literals;
using Qv::ELog;

namespace {
// A sink that holds its Write until told to return, and checks that it never runs twice at once.
class SlowSink : public Qv::LoggerInterface {
public:
    void Write(char16_t const*, ELog, char16_t const*, char16_t const*) override {
        if (inside.exchange(true))
            overlap = true;
        if (calls == 0 && !signalled.exchange(true))
            entered.set_value();
        release.wait();
        ++calls;
        inside = false;
    }
    std::promise<void> entered;
    std::shared_future<void> release;
    std::atomic<bool> inside{false}, overlap{false}, signalled{false};
    std::atomic<int> calls{0};
};
} // namespace

TEST(LogConcurrent, UnregisteringWaitsForTheRunningWrite) {
    std::promise<void> release;
    SlowSink sink;
    sink.release = release.get_future().share();
    Qv::RegisterLoggerInterface(&sink);
    auto entered = sink.entered.get_future();
    auto writer = std::async(std::launch::async, [] { Qv::Log(ELog::Info, u"", u"one"); });
    entered.wait();
    auto unregister =
        std::async(std::launch::async, [&] { return Qv::UnregisterLoggerInterface(&sink); });
    auto second = std::async(std::launch::async, [] { Qv::Log(ELog::Info, u"", u"two"); });
    EXPECT_EQ(unregister.wait_for(50ms), std::future_status::timeout);
    release.set_value();
    ASSERT_EQ(unregister.wait_for(10s), std::future_status::ready);
    EXPECT_TRUE(unregister.get());
    writer.get();
    second.get();
    EXPECT_FALSE(sink.overlap);
    // The second call got the mutex either before the unregistering (and was written after the
    // first) or after it (and found no sink); never beside the first.
    EXPECT_GE(sink.calls.load(), 1);
}
