// Threads writing different keys of one ini file lose none of them, and readers in between
// always see a whole file.
#include "../ThreadTestSupport.h"
#include "../platform/FileTestSupport.h"

#include <atomic>
#include <qv/profiles/BIniProfile.h>
#include <string>
#include <vector>

namespace {

WString Key(int thread, int i) {
    return WString::FromUtf8("t" + std::to_string(thread) + "k" + std::to_string(i));
}

} // namespace

TEST(IniProfileThreads, EightWritersLoseNoKey) {
    constexpr int kThreads = 8;
    constexpr int kKeys = 40;
    TempDir dir;
    WString const path = WString::FromUtf8(dir / "shared.ini");
    std::atomic<bool> stop{false};
    std::atomic<int> tornReads{0};
    // A reader that checks that every key it sees carries the value that was written for it.
    auto reader = thread_test::Start([&] {
        BIniProfile p(path, u"S", false);
        while (!stop) {
            for (int t = 0; t < kThreads; ++t) {
                int value = -1;
                if (p.Read(Key(t, 0), value, IProfile::kNoMin, IProfile::kNoMax) && value != t)
                    ++tornReads;
            }
        }
    });
    std::vector<std::future<void>> writers;
    for (int t = 0; t < kThreads; ++t) {
        writers.push_back(thread_test::Start([&, t] {
            BIniProfile p(path, u"S", false);
            for (int i = 0; i < kKeys; ++i)
                EXPECT_TRUE(p.Write(Key(t, i), t + 1000 * i));
        }));
    }
    for (auto& w : writers)
        ASSERT_EQ(w.wait_for(thread_test::kBound * 6), std::future_status::ready);
    stop = true;
    reader.get();
    EXPECT_EQ(tornReads, 0);
    BIniProfile check(path, u"S", false);
    for (int t = 0; t < kThreads; ++t)
        for (int i = 0; i < kKeys; ++i)
            EXPECT_EQ(check.GetInt(Key(t, i), -1), t + 1000 * i) << "thread " << t << " key " << i;
}
