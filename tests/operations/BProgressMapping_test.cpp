#include "operations/RecordingDispatcher.h"

#include <chrono>
#include <gtest/gtest.h>
#include <numeric>
#include <qv/core/BError.h>
#include <qv/operations/BProgressManager.h>
#include <qv/operations/BProgressMappingAndBreak.h>
#include <qv/operations/BProgressMappingOMP.h>
#include <thread>

using namespace operations_test;
using namespace std::chrono_literals;

namespace {
// Opens the stride and the step to the tests.
class Probe : public BProgressMapping {
public:
    using BProgressMapping::BProgressMapping;
    unsigned long long& Stride() { return m_stride; }
    unsigned long long& StepField() { return m_step; }
};

// A stop button: the registered manager tells loops to stop once `stop` is set.
class StopButton : public BProgressManager {
public:
    StopButton() { BProgressManager::RegisterInstance(this); }
    void BeginLongOperation(WString const&) override {}
    bool BreakLongOperation(bool) override { return stop; }
    void EndLongOperation() override {}
    void TestUserBreak() override {
        if (stop)
            throw BError(BError::kUserStopsFunction);
    }
    bool stop = false;
};
struct ButtonSession {
    SP<StopButton> button = new StopButton;
    ~ButtonSession() { BProgressManager::RegisterInstance(nullptr); }
};

// Next(1) to the end of the loop; the steps at which it updated.
std::vector<unsigned long long> RunFast(BProgressMapping& mapping) {
    std::vector<unsigned long long> updates;
    while (mapping.Step() < mapping.GetSteps())
        if (mapping.Next(1))
            updates.push_back(mapping.Step());
    return updates;
}
} // namespace

// From a fresh mapping the stride is 1, so a StepTo always updates and the units due at the
// target go out as one increment.
TEST(BProgressMapping, SendsTheUnitsDueAtAStep) {
    struct Row {
        char const* name;
        unsigned long long steps, messages, target;
        std::vector<unsigned long long> sent;
    } const rows[] = {
        {"truncated, not rounded", 1000, 100, 999, {99}},
        {"beyond the end stops at the total", 1000, 100, 5000, {100}},
        {"no steps: up to the total", 0, 10, 25, {10}},
        {"nothing due yet", 1000, 100, 9, {}},
        {"no units to send", 3, 0, 3, {}},
        {"a product beyond 64 bits", 0, ~0ull, ~0ull, {~0ull}},
    };
    for (Row const& row : rows) {
        Session session;
        BProgressMapping mapping(row.steps, row.messages);
        EXPECT_TRUE(mapping.StepTo(row.target)) << row.name;
        EXPECT_FALSE(mapping.StepTo(row.target)) << row.name << ": not forward";
        EXPECT_EQ(session.dispatcher->Steps(), row.sent) << row.name;
    }
}

// A step updates when it passes a multiple of the stride.
TEST(BProgressMapping, UpdatesWhenAStepPassesAMultipleOfTheStride) {
    struct Row {
        char const* name;
        unsigned long long stride, step, n;
        bool updates;
    } const rows[] = {
        {"lands on a multiple", 8, 7, 1, true},
        {"short of a multiple", 8, 5, 1, false},
        {"from a multiple", 16, 16, 15, false},
        {"no step at all", 4, 3, 0, false},
        {"at the ceiling", 1ull << 63, 0, 1ull << 63, true},
    };
    for (Row const& row : rows) {
        Probe mapping(0, 0);
        mapping.Stride() = row.stride;
        mapping.StepField() = row.step;
        EXPECT_EQ(mapping.Next(row.n), row.updates) << row.name;
        EXPECT_NE(mapping.Stride(), 0u) << row.name << ": doubling stops at 2^63";
    }
}

// A fast loop doubles the stride at every update: updates at the powers of two, messages with
// the increments of the units due there. A run stalled for 50 ms is tried again.
TEST(BProgressMapping, AFastLoopSendsAKnownSequence) {
    for (int attempt = 0;; ++attempt) {
        Session session;
        auto start = std::chrono::steady_clock::now();
        Probe mapping(1024, 100);
        std::vector<unsigned long long> updates = RunFast(mapping);
        if (std::chrono::steady_clock::now() - start > 40ms && attempt < 5)
            continue;
        EXPECT_EQ(updates,
                  (std::vector<unsigned long long>{1, 2, 4, 8, 16, 32, 64, 128, 256, 512, 1024}));
        // Units due: 0 up to step 8, then 1, 3, 6, 12, 25, 50, 100.
        EXPECT_EQ(session.dispatcher->Steps(),
                  (std::vector<unsigned long long>{1, 2, 3, 6, 13, 25, 50}));
        EXPECT_EQ(mapping.Stride(), 2048u);
        break;
    }
}

// Updates more than 100 ms apart halve the stride, never below 1: a slow loop updates at
// every step.
TEST(BProgressMapping, TheStrideShrinksInASlowLoop) {
    Probe mapping(1 << 10, 10);
    mapping.Stride() = 4;
    for (unsigned long long expected : {2, 1, 1}) {
        std::this_thread::sleep_for(110ms);
        EXPECT_TRUE(mapping.Next(mapping.Stride()));
        EXPECT_EQ(mapping.Stride(), expected);
    }
}

// The manager is asked through its registered instance.
TEST(BProgressMappingAndBreak, RaisesOutOfTheStepWhenTheManagerSaysStop) {
    BProgressMappingAndBreak unmanaged(10, 10);
    EXPECT_NO_THROW(unmanaged.StepTo(10)) << "without a manager loops cannot be stopped";
    ButtonSession session;
    BProgressMappingAndBreak mapping(1000, 10);
    EXPECT_TRUE(mapping.Next(1));
    EXPECT_TRUE(mapping.Next(1)); // fast updates: the stride is now 4
    session.button->stop = true;
    EXPECT_FALSE(mapping.Next(1)) << "no update, no question";
    EXPECT_THROW(mapping.StepTo(1000), BError);
}

// An OpenMP loop sharing one mapping, its steps in a critical region, reports what a serial
// loop reports: a loop of 2^n steps updates at its last step, so every unit is sent. A stop
// reaches every thread through IsStopping, and stays.
TEST(BProgressMappingOMP, AParallelLoopReportsWhatTheSerialLoopReports) {
    constexpr long long kSteps = 1 << 14;
    ButtonSession buttons;
    for (bool stop : {false, true}) {
        Session session;
        buttons.button->stop = stop;
        BProgressMappingOMP mapping(kSteps, 250);
        long long skipped = 0;
#pragma omp parallel for num_threads(2) reduction(+ : skipped)
        for (long long i = 0; i < kSteps; ++i) {
            if (mapping.IsStopping()) {
                ++skipped;
                continue;
            }
#pragma omp critical(qv_progress_test)
            mapping.Next(1);
        }
        EXPECT_EQ(mapping.IsStopping(), stop);
        EXPECT_EQ(skipped > 0, stop);
        auto const steps = session.dispatcher->Steps();
        if (!stop) {
            EXPECT_EQ(std::accumulate(steps.begin(), steps.end(), 0ull), 250u);
        }
    }
}
