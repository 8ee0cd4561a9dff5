#include "qv/platform/CodePage.h"
#include "qv/platform/TextServices.h"

#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

using namespace qv::platform;

namespace {

struct Pair {
    std::u16string a;
    std::u16string b;
};

std::vector<Pair> Pairs() {
    return {
        {u"Node1", u"node1"},
        {u"a_b", u"a b"},
        {u"\u00C4b", u"\u00E4B"},
        {u"Stra\u00DFe", u"Strasse"},
        {u"x", u"x "},
        {u"abc", u"ABD"},
        {u"\u00E9t\u00E9", u"ete"},
        {u"a\x01", u"a"},
        {u"Point 12", u"point 9"},
        {u"\u4E2D\u6587", u"\u4E2D"},
        {u"zebra", u"\u00C5ngel"},
        {u"", u"a"},
    };
}

struct Answers {
    std::vector<int> cmp, icmp, acmp, aicmp;
    std::vector<std::string> ansi, utf8;
    std::vector<std::u16string> back;
    std::vector<std::ptrdiff_t> found;

    static Answers Compute(std::vector<Pair> const& pairs) {
        Answers r;
        for (Pair const& p : pairs) {
            r.cmp.push_back(lstrcmpW(p.a.c_str(), p.b.c_str()));
            r.icmp.push_back(lstrcmpiW(p.a.c_str(), p.b.c_str()));
            char a[64] = {};
            char b[64] = {};
            WideCharToMultiByte(p.a.c_str(), -1, a, 64);
            WideCharToMultiByte(p.b.c_str(), -1, b, 64);
            r.ansi.push_back(a);
            r.acmp.push_back(lstrcmpA(a, b));
            r.aicmp.push_back(lstrcmpiA(a, b));
            char16_t w[64] = {};
            MultiByteToWideChar(a, -1, w, 64);
            r.back.push_back(w);
            r.utf8.push_back(Utf16ToUtf8(p.a));
            char const* hit = StrStrIA(a, "B");
            r.found.push_back(hit != nullptr ? hit - a : -1);
        }
        return r;
    }

    bool operator==(Answers const&) const = default;
};

} // namespace

// Comparisons and conversions from several threads at once give the answers one thread gets:
// the shared collator, the per-thread converters and the per-thread fold tables do not
// interfere. Every thread starts cold, so the lazy set-up races too.
TEST(TextServicesConcurrent, ComparisonsAndConversionsAgreeAcrossThreads) {
    std::vector<Pair> const pairs = Pairs();
    Answers const expected = Answers::Compute(pairs);
    std::atomic<int> mismatches{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int round = 0; round < 200; ++round)
                if (!(Answers::Compute(pairs) == expected))
                    ++mismatches;
        });
    for (std::thread& t : threads)
        t.join();
    EXPECT_EQ(mismatches.load(), 0);
}

TEST(TextServicesConcurrent, FirstUseFromManyThreadsAtOnce) {
    // No comparison has run in this process yet when the suite runs this test alone, so the
    // collator and its tables are built while other threads ask for them.
    std::atomic<bool> go{false};
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            while (!go.load())
                std::this_thread::yield();
            for (int i = 0; i < 1000; ++i)
                if (lstrcmpiW(u"Alpha", u"aLPHA") != 0 || lstrcmpW(u"a", u"B") >= 0)
                    ++wrong;
        });
    go = true;
    for (std::thread& t : threads)
        t.join();
    EXPECT_EQ(wrong.load(), 0);
}
