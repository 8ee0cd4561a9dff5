// The waits over scripted futures: each future answers Wait(0) from a script, one entry per
// pass, and counts what it was asked.
#include <chrono>
#include <cmath>
#include <gtest/gtest.h>
#include <qv/core/BError.h>
#include <qv/operations/IFunctor.h>
#include <qv/operations/IFuture.h>
#include <sstream>
#include <string>
#include <vector>

using namespace std::chrono_literals;

namespace {
class ScriptedFuture : public IFuture {
public:
    ScriptedFuture(std::vector<int> script, float progress = 0.0f)
        : m_script(std::move(script)), m_progress(progress) {}

    Async::Result Wait(int milliseconds) override {
        EXPECT_EQ(milliseconds, 0);
        int const result = m_script[std::min<size_t>(waits, m_script.size() - 1)];
        ++waits;
        return static_cast<Async::Result>(result);
    }
    void Cancel() override { ++cancels; }
    BError GetError() override { return BError(); }
    float Progress() override { return m_progress; }
    SP<IFunctor> GetFunctor() override { return nullptr; }

    int waits = 0, cancels = 0;

private:
    std::vector<int> m_script;
    float m_progress;
};

class FlagPromise : public IPromise {
public:
    explicit FlagPromise(bool cancelled) : cancelled(cancelled) {}
    bool IsCancelled() override { return cancelled; }
    void SetProgress(float progress) override { received.push_back(progress); }
    bool cancelled;
    std::vector<float> received;
};

// Digit strings: each digit one entry. Scripts are separated by blanks, "-" is a null entry.
std::vector<int> Digits(std::string const& text) {
    std::vector<int> out;
    for (char c : text)
        out.push_back(c - '0');
    return out;
}

struct Row {
    char const* name;
    bool all; // WaitForAll, else WaitForAny
    char const* scripts;
    unsigned int limit;
    int cancelled; // -1: no promise, 0: a promise, 1: a cancelled promise
    Async::Result expected;
    char const *waits, *cancels;
    char const* progress; // what the promise received, in tenths
};
} // namespace

TEST(IFuture, WaitsOverScriptedFutures) {
    using namespace Async;
    Row const rows[] = {
        {"all: empty array", true, "", 1000, 1, Finished, "", "", ""},
        {"any: empty array", false, "", 1000, 1, Finished, "", "", ""},
        {"all: null entries only", true, "- -", 1000, 0, FinishedState4, "", "", ""},
        {"any: null entries only", false, "- -", 1000, 0, FinishedState4, "", "", ""},
        {"all: 4 outranks 2 outranks 0", true, "0 4 - 2", 0, -1, FinishedState4, "111", "000", ""},
        {"all: waits for the last", true, "0 3562", 1000, 0, FinishedState2, "44", "00", ""},
        {"any: first over in array order", false, "3 4 0", 0, -1, FinishedState4, "110", "000", ""},
        {"all: a limit of 0 polls once", true, "3 0", 0, 0, Timeout, "11", "00", ""},
        {"any: timeout is not over", false, "1 6", 0, 0, Timeout, "11", "00", "0"},
        {"all: a cancelled promise cancels", true, "332 0", 1000, 1, Cancelled, "33", "33", "555"},
        {"any: a promise gets progress", false, "332 6", 1000, 1, Cancelled, "32", "32", "00"},
    };
    for (Row const& row : rows) {
        BArray<SP<IFuture>> futures;
        std::vector<SP<ScriptedFuture>> scripted;
        std::istringstream scripts(row.scripts);
        for (std::string script; scripts >> script;) {
            // Progress 0.25, 0.5 ...: WaitForAll hands on the largest.
            scripted.push_back(
                script == "-" ? nullptr
                              : new ScriptedFuture(Digits(script), 0.25f * (1 << scripted.size())));
            futures.Add(scripted.back());
        }
        SP<FlagPromise> promise = row.cancelled < 0 ? nullptr : new FlagPromise(row.cancelled == 1);
        auto start = std::chrono::steady_clock::now();
        auto wait = row.all ? &IFuture::WaitForAll : &IFuture::WaitForAny;
        EXPECT_EQ(wait(futures, row.limit, promise), row.expected) << row.name;
        bool const onePass = std::string(row.waits).find_first_not_of("01") == std::string::npos;
        EXPECT_TRUE(!onePass || std::chrono::steady_clock::now() - start < 9ms)
            << row.name << ": one pass has no sleep";
        std::string waits, cancels, progress;
        for (auto const& future : scripted) {
            if (future) {
                waits += static_cast<char>('0' + future->waits);
                cancels += static_cast<char>('0' + future->cancels);
            }
        }
        for (float received : promise ? promise->received : std::vector<float>())
            progress += static_cast<char>('0' + std::lround(received * 10));
        EXPECT_EQ(waits + " " + cancels + " " + progress,
                  std::string(row.waits) + " " + row.cancels + " " + row.progress)
            << row.name << ": waits, cancels and progress in tenths";
    }
}
