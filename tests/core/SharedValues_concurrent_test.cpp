// Strings and smart objects shared between threads: only the counts are atomic, and that must
// be enough for copies held in different threads.
#include <atomic>
#include <gtest/gtest.h>
#include <qv/core/BSmartObj.h>
#include <qv/core/strings/BString.h>
#include <qv/core/strings/WString.h>
#include <thread>
#include <vector>

namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 2000;

struct Counted : BSmartObj {
    explicit Counted(std::atomic<int>* destroyed) : m_destroyed(destroyed) {}
    ~Counted() override { m_destroyed->fetch_add(1); }
    std::atomic<int>* m_destroyed;
};

template <class F>
void RunThreads(F f) {
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back(f, t);
    for (auto& t : threads)
        t.join();
}

} // namespace

TEST(SharedValuesConcurrent, StringCopiesInThreadsStayIsolated) {
    WString const shared(u"measurement/points/cloud");
    BString const narrow("sensor.ini");
    std::atomic<int> mismatches{0};
    RunThreads([&](int t) {
        for (int i = 0; i < kRounds; ++i) {
            WString mine = shared;
            mine.Append(static_cast<char16_t>(u'a' + t));
            mine.SetAt(0, u'M');
            BString copy = narrow;
            if (mine.Length() != shared.Length() + 1 || copy.ToUpper() != BString("SENSOR.INI"))
                mismatches.fetch_add(1);
        }
    });
    EXPECT_EQ(mismatches.load(), 0);
    EXPECT_EQ(shared.ToUtf8() + narrow.CStr(), "measurement/points/cloudsensor.ini");
}

TEST(SharedValuesConcurrent, ObjectsOwnedFromManyThreadsDieOnce) {
    std::atomic<int> destroyed{0};
    {
        SP<Counted> root = new Counted(&destroyed);
        std::vector<SP<BSmartObj>> perThread(kThreads);
        RunThreads([&](int t) {
            for (int i = 0; i < kRounds; ++i) {
                SP<BSmartObj> local = root;
                SP<Counted> back = local; // checked conversion takes its own reference
                perThread[t] = back;
            }
        });
        EXPECT_EQ(root->RefCount(), 1 + kThreads);
        EXPECT_EQ(destroyed.load(), 0);
    }
    EXPECT_EQ(destroyed.load(), 1);
}
