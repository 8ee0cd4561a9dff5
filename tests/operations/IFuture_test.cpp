// The waits over scripted futures: each future answers Wait(0) from a script, one entry per
// pass, and counts what it was asked.
#include <algorithm>
#include <chrono>
#include <gtest/gtest.h>
#include <qv/core/BError.h>
#include <qv/operations/IFunctor.h>
#include <qv/operations/IFuture.h>
#include <thread>
#include <vector>

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

using Wait = Async::Result (*)(BArray<SP<IFuture>>, unsigned int, SP<IPromise>);

struct Row {
    char const* name;
    bool all;                              // WaitForAll, else WaitForAny
    std::vector<std::vector<int>> scripts; // empty script: a null entry
    unsigned int limit;
    int cancelled; // -1: no promise, 0: a promise, 1: a cancelled promise
    Async::Result expected;
    std::vector<int> waits, cancels;
    std::vector<float> progress; // what the promise received
};
} // namespace

TEST(IFuture, WaitsOverScriptedFutures) {
    Row const rows[] = {
        {"all: empty array", true, {}, 1000, 1, Async::Finished, {}, {}, {}},
        {"any: empty array", false, {}, 1000, 1, Async::Finished, {}, {}, {}},
        {"all: null entries only", true, {{}, {}}, 1000, 0, Async::FinishedState4, {}, {}, {}},
        {"any: null entries only", false, {{}, {}}, 1000, 0, Async::FinishedState4, {}, {}, {}},
        {"all: the highest over-state",
         true,
         {{0}, {2}, {}},
         0,
         -1,
         Async::FinishedState2,
         {1, 1},
         {0, 0},
         {}},
        {"all: 4 outranks 2",
         true,
         {{4}, {2}, {0}},
         0,
         -1,
         Async::FinishedState4,
         {1, 1, 1},
         {0, 0, 0},
         {}},
        {"all: waits for the last",
         true,
         {{0}, {3, 5, 6, 2}},
         1000,
         0,
         Async::FinishedState2,
         {4, 4},
         {0, 0},
         {}},
        {"any: first over in array order",
         false,
         {{3}, {4}, {0}},
         0,
         -1,
         Async::FinishedState4,
         {1, 1, 0},
         {0, 0, 0},
         {}},
        {"any: waits for one",
         false,
         {{3, 3, 0}, {5}},
         1000,
         0,
         Async::Finished,
         {3, 2},
         {0, 0},
         {0.0f, 0.0f}},
        {"all: a limit of 0 polls once",
         true,
         {{3}, {0}},
         0,
         0,
         Async::Timeout,
         {1, 1},
         {0, 0},
         {}},
        {"any: a limit of 0 polls once",
         false,
         {{1}, {6}},
         0,
         0,
         Async::Timeout,
         {1, 1},
         {0, 0},
         {0.0f}},
        {"all: timeout is not over", true, {{1}}, 0, -1, Async::Timeout, {1}, {0}, {}},
        {"all: a cancelled promise cancels every pass",
         true,
         {{3, 3, 2}, {0}},
         1000,
         1,
         Async::FinishedState2,
         {3, 3},
         {3, 3},
         {0.5f, 0.5f, 0.5f}},
        {"any: a cancelled promise cancels every pass",
         false,
         {{3, 3, 2}, {6}},
         1000,
         1,
         Async::FinishedState2,
         {3, 2},
         {3, 2},
         {0.0f, 0.0f}},
    };
    for (Row const& row : rows) {
        BArray<SP<IFuture>> futures;
        std::vector<SP<ScriptedFuture>> scripted;
        float progress = 0.25f;
        for (auto const& script : row.scripts) {
            if (script.empty()) {
                futures.Add(nullptr);
                continue;
            }
            scripted.push_back(new ScriptedFuture(script, progress));
            progress *= 2; // 0.25, 0.5: WaitForAll hands on the larger
            futures.Add(scripted.back());
        }
        SP<FlagPromise> promise = row.cancelled < 0 ? nullptr : new FlagPromise(row.cancelled == 1);
        Wait wait = row.all ? &IFuture::WaitForAll : &IFuture::WaitForAny;
        auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(wait(futures, row.limit, promise), row.expected) << row.name;
        if (std::all_of(row.waits.begin(), row.waits.end(), [](int w) { return w <= 1; })) {
            EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(9))
                << row.name << ": one pass has no sleep";
        }
        std::vector<int> waits, cancels;
        for (auto const& future : scripted) {
            waits.push_back(future->waits);
            cancels.push_back(future->cancels);
        }
        EXPECT_EQ(waits, row.waits) << row.name;
        EXPECT_EQ(cancels, row.cancels) << row.name;
        if (promise) {
            EXPECT_EQ(promise->received, row.progress) << row.name;
        }
    }
}

// The by-value arguments are given up before the wait returns.
TEST(IFuture, WaitsKeepNoReference) {
    SP<ScriptedFuture> future = new ScriptedFuture({0});
    SP<FlagPromise> promise = new FlagPromise(false);
    BArray<SP<IFuture>> futures;
    futures.Add(future);
    IFuture::WaitForAll(futures, 0, promise);
    IFuture::WaitForAny(futures, 0, promise);
    EXPECT_EQ(future->RefCount(), 2);
    EXPECT_EQ(promise->RefCount(), 1);
}

TEST(IFunctor, TheThreadPromiseAnswersForTheThread) {
    EXPECT_EQ(IFunctor::GetThreadPromise(), nullptr);
    EXPECT_FALSE(IFunctor::IsCancelled());
    EXPECT_NO_THROW(IFunctor::CheckCancel());

    SP<FlagPromise> promise = new FlagPromise(false);
    IFunctor::SetThreadPromise(promise);
    EXPECT_EQ(promise->RefCount(), 2);
    IFunctor::SetThreadPromise(IFunctor::GetThreadPromise());
    EXPECT_EQ(promise->RefCount(), 2) << "setting the same promise again";
    EXPECT_FALSE(IFunctor::IsCancelled());
    EXPECT_NO_THROW(IFunctor::CheckCancel());
    std::thread([] { EXPECT_EQ(IFunctor::GetThreadPromise(), nullptr); }).join();

    promise->cancelled = true;
    EXPECT_TRUE(IFunctor::IsCancelled());
    try {
        IFunctor::CheckCancel();
        ADD_FAILURE() << "a cancelled promise raises";
    } catch (BError const& error) {
        EXPECT_EQ(error.Error(), 25070);
        for (int i = 0; i < 4; ++i)
            EXPECT_TRUE(error.Argument(i).IsEmpty());
    }
    IFunctor::SetThreadPromise(nullptr);
    EXPECT_EQ(promise->RefCount(), 1);
    EXPECT_FALSE(IFunctor::IsCancelled());

    std::thread([promise] { IFunctor::SetThreadPromise(promise); }).join();
    EXPECT_EQ(promise->RefCount(), 1) << "a thread's slot lets go when the thread ends";
}
