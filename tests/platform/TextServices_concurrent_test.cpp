#include "qv/platform/CodePage.h"
#include "qv/platform/TextServices.h"

#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

using namespace qv::platform;

namespace {

// Everything a thread answers for a list of pairs: both strengths, both widths, the
// conversions and a narrow case-blind search, which use the shared collation, the per-thread
// collator clones, converters and fold tables.
std::vector<std::string> Answers() {
    static char16_t const* const pairs[][2] = {
        {u"Node1", u"node1"}, {u"\u00C4b", u"\u00E4B"},    {u"Stra\u00DFe", u"Strasse"},
        {u"\u4E2D", u"z"},    {u"zebra", u"\u00C5ngel B"},
    };
    std::vector<std::string> out;
    for (auto const& p : pairs) {
        char a[32] = {};
        char b[32] = {};
        WideCharToMultiByte(p[0], -1, a, 32);
        WideCharToMultiByte(p[1], -1, b, 32);
        char16_t back[32] = {};
        MultiByteToWideChar(a, -1, back, 32);
        char const* hit = StrStrIA(b, "\xE5ng");
        out.push_back(std::to_string(lstrcmpW(p[0], p[1])) + std::to_string(lstrcmpiW(p[0], p[1])) +
                      std::to_string(lstrcmpA(a, b)) + std::to_string(lstrcmpiA(a, b)) + a +
                      Utf16ToUtf8(back) + Utf16ToUtf8(p[1]) +
                      std::to_string(hit != nullptr ? hit - b : -1));
    }
    return out;
}

} // namespace

// Several threads at once get the answers one thread gets. Each starts cold, so the lazy
// set-up of the collation (when this test runs alone, as ctest runs it) and of each thread's
// clones, converter and fold table races too.
TEST(TextServicesConcurrent, ThreadsAgreeWithOneThread) {
    std::atomic<bool> go{false};
    std::atomic<int> mismatches{0};
    std::vector<std::vector<std::string>> firstRound(4);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            while (!go.load())
                std::this_thread::yield();
            firstRound[static_cast<std::size_t>(t)] = Answers();
            for (int round = 0; round < 100; ++round)
                if (Answers() != firstRound[static_cast<std::size_t>(t)])
                    ++mismatches;
        });
    go = true;
    for (std::thread& t : threads)
        t.join();
    std::vector<std::string> const expected = Answers();
    EXPECT_EQ(mismatches.load(), 0);
    for (auto const& answers : firstRound)
        EXPECT_EQ(answers, expected);
}
