#include "operations/RecordingDispatcher.h"

#include <chrono>
#include <gtest/gtest.h>
#include <qv/core/BError.h>
#include <qv/operations/BProgressManager.h>
#include <qv/operations/BProgressMapping.h>
#include <qv/operations/BProgressMappingAndBreak.h>
#include <qv/operations/BProgressMappingOMP.h>
#include <thread>
#include <vector>

using namespace operations_test;
using namespace std::chrono_literals;

namespace {
// Opens the mapping's fields to the tests: the stride is what adapts.
template <class Mapping = BProgressMapping>
class Probe : public Mapping {
public:
    using Mapping::Mapping;
    unsigned long long& Stride() { return this->m_stride; }
    unsigned long long& StepField() { return this->m_step; }
};

// A manager that tells loops to stop once `stop` is set, as a stop button would.
class StopButton : public BProgressManager {
public:
    void BeginLongOperation(WString const&) override {}
    bool BreakLongOperation(bool) override { return stop; }
    void EndLongOperation() override {}
    void TestUserBreak() override {
        if (stop)
            throw BError(BError::kUserStopsFunction);
    }
    bool stop = false;
};

class ManagerSession {
public:
    ManagerSession() : button(new StopButton) { BProgressManager::RegisterInstance(button); }
    ~ManagerSession() { BProgressManager::RegisterInstance(nullptr); }
    SP<StopButton> button;
};

// Runs Next(1) through a whole loop and gives the steps at which it updated.
std::vector<unsigned long long> RunFast(BProgressMapping& mapping) {
    std::vector<unsigned long long> updates;
    while (mapping.Step() < mapping.GetSteps())
        if (mapping.Next(1))
            updates.push_back(mapping.Step());
    return updates;
}
} // namespace

// One jump from the start always updates (the stride is 1), so the units due at the target
// are sent as one increment.
TEST(BProgressMapping, SendsTheUnitsDueAtAStep) {
    struct Row {
        char const* name;
        unsigned long long steps, messages, target;
        std::vector<unsigned long long> sent;
    } const rows[] = {
        {"a tenth of a unit per step", 1000, 100, 15, {1}},
        {"truncated, not rounded", 1000, 100, 999, {99}},
        {"the whole loop", 1000, 100, 1000, {100}},
        {"beyond the end stops at the total", 1000, 100, 5000, {100}},
        {"no steps: a unit a step", 0, 10, 7, {7}},
        {"no steps: up to the total", 0, 10, 25, {10}},
        {"nothing is due yet", 1000, 100, 9, {}},
        {"no units to send", 3, 0, 3, {}},
        {"more units than steps", 4, 1000, 3, {750}},
        {"a product beyond 64 bits", 0, ~0ull, ~0ull, {~0ull}},
    };
    for (Row const& row : rows) {
        Session session;
        BProgressMapping mapping(row.steps, row.messages);
        EXPECT_TRUE(mapping.StepTo(row.target)) << row.name;
        EXPECT_EQ(session.dispatcher->Steps(), row.sent) << row.name;
        EXPECT_EQ(mapping.Step(), row.target) << row.name;
    }
}

// A step updates when it passes a multiple of the stride: the remainder after the step is
// below the step's size.
TEST(BProgressMapping, UpdatesWhenAStepPassesAMultipleOfTheStride) {
    struct Row {
        char const* name;
        unsigned long long stride, step, n;
        bool updates;
    } const rows[] = {
        {"lands on a multiple", 8, 7, 1, true},       {"passes a multiple", 8, 7, 2, true},
        {"short of a multiple", 8, 5, 1, false},      {"a step of the stride", 8, 3, 8, true},
        {"a step beyond the stride", 8, 1, 20, true}, {"stride 1 always", 1, 12, 1, true},
        {"from a multiple", 16, 16, 15, false},       {"no step at all", 4, 3, 0, false},
    };
    for (Row const& row : rows) {
        Probe<> mapping(100, 10);
        mapping.Stride() = row.stride;
        mapping.StepField() = row.step;
        EXPECT_EQ(mapping.Next(row.n), row.updates) << row.name;
        EXPECT_EQ(mapping.Step(), row.step + row.n) << row.name;
    }
}

TEST(BProgressMapping, StepToBackwardsChangesNothing) {
    Session session;
    BProgressMapping mapping(100, 100);
    ASSERT_TRUE(mapping.StepTo(10));
    EXPECT_FALSE(mapping.StepTo(10));
    EXPECT_FALSE(mapping.StepTo(3));
    EXPECT_EQ(mapping.Step(), 10u);
    EXPECT_EQ(session.dispatcher->Steps(), (std::vector<unsigned long long>{10}));
}

// A fast loop of 1024 Next(1) doubles the stride at every update, so updates come at the
// powers of two and the messages carry the increments of units due there. A machine that
// stalls the loop for 50 ms changes the stride; such runs are tried again.
TEST(BProgressMapping, AFastLoopSendsAKnownSequence) {
    std::vector<unsigned long long> const powers = {1, 2, 4, 8, 16, 32, 64, 128, 256, 512, 1024};
    // Units due at those steps with 100 units over 1024 steps: 0 up to step 8, then 1, 3, 6,
    // 12, 25, 50, 100.
    std::vector<unsigned long long> const increments = {1, 2, 3, 6, 13, 25, 50};
    for (int attempt = 0;; ++attempt) {
        Session session;
        auto start = std::chrono::steady_clock::now();
        Probe<> mapping(1024, 100);
        std::vector<unsigned long long> updates = RunFast(mapping);
        if (std::chrono::steady_clock::now() - start > 40ms && attempt < 5)
            continue;
        EXPECT_EQ(updates, powers);
        EXPECT_EQ(session.dispatcher->Steps(), increments);
        EXPECT_EQ(session.dispatcher->Units(), 100u);
        EXPECT_EQ(mapping.Stride(), 2048u);
        break;
    }
}

// Whatever the pace, a loop whose length is a power of two updates at its last step, and the
// units sent add up to the total.
TEST(BProgressMapping, ALoopOfPowerOfTwoStepsSendsEveryUnit) {
    for (unsigned long long steps : {1ull, 64ull, 1ull << 20}) {
        Session session;
        BProgressMapping mapping(steps, 37);
        RunFast(mapping);
        EXPECT_EQ(session.dispatcher->Units(), 37u) << steps;
    }
}

// Updates more than 100 ms apart halve the stride, never below 1; so a slow loop updates at
// every step.
TEST(BProgressMapping, TheStrideShrinksInASlowLoop) {
    Probe<> mapping(1 << 10, 10);
    mapping.Stride() = 4;
    for (unsigned long long expected : {2, 1, 1}) {
        std::this_thread::sleep_for(110ms);
        EXPECT_TRUE(mapping.Next(mapping.Stride()));
        EXPECT_EQ(mapping.Stride(), expected);
    }
    std::this_thread::sleep_for(110ms);
    EXPECT_TRUE(mapping.Next(1)) << "a slow loop updates at every step";
}

// The stride stops doubling at the largest power of two, so the remainder never divides by 0.
TEST(BProgressMapping, TheStrideHasACeiling) {
    Probe<> mapping(0, 0);
    mapping.Stride() = 1ull << 63;
    EXPECT_TRUE(mapping.Next(1ull << 63));
    EXPECT_EQ(mapping.Stride(), 1ull << 63);
    EXPECT_FALSE(mapping.Next(1));
}

// Units already sent stand after SetSteps; the new ratio applies to the same step.
TEST(BProgressMapping, SetStepsKeepsWhatWasSent) {
    Session session;
    BProgressMapping mapping(100, 100);
    ASSERT_TRUE(mapping.StepTo(50));
    mapping.SetSteps(200);
    EXPECT_EQ(mapping.GetSteps(), 200u);
    EXPECT_EQ(mapping.Step(), 50u);
    mapping.StepTo(1000); // the stride has grown; a jump beyond it always updates
    EXPECT_EQ(session.dispatcher->Steps(), (std::vector<unsigned long long>{50, 50}));
    mapping.SetSteps(0);
    EXPECT_FALSE(mapping.StepTo(1000));
    EXPECT_EQ(session.dispatcher->Units(), 100u);
}

TEST(BProgressMappingAndBreak, RaisesOutOfTheStepOnlyWhenTheManagerSaysStop) {
    BProgressMappingAndBreak unmanaged(10, 10);
    EXPECT_NO_THROW(unmanaged.StepTo(10)) << "without a manager loops cannot be stopped";

    ManagerSession manager;
    BProgressMappingAndBreak mapping(1000, 10);
    EXPECT_TRUE(mapping.Next(1));
    EXPECT_TRUE(mapping.Next(1)); // fast updates: the stride is now 4
    manager.button->stop = true;
    EXPECT_FALSE(mapping.Next(1)) << "no update, no question";
    try {
        mapping.StepTo(1000);
        ADD_FAILURE() << "the update must raise";
    } catch (BError const& error) {
        EXPECT_EQ(error.Error(), 25070);
    }
    EXPECT_EQ(mapping.Step(), 1000u) << "the step was taken before the question";
}

TEST(BProgressMappingOMP, CountsAStopAndKeepsIt) {
    ManagerSession manager;
    BProgressMappingOMP mapping(1000, 10);
    EXPECT_TRUE(mapping.Next(1));
    EXPECT_FALSE(mapping.IsStopping());
    manager.button->stop = true;
    EXPECT_FALSE(mapping.IsStopping()) << "seen only at an update";
    EXPECT_NO_THROW(mapping.StepTo(500));
    EXPECT_TRUE(mapping.IsStopping());
    manager.button->stop = false;
    mapping.StepTo(1000);
    EXPECT_TRUE(mapping.IsStopping()) << "a stop stays";
    BProgressMappingOMP copy(mapping);
    EXPECT_TRUE(copy.IsStopping());
    EXPECT_EQ(copy.Step(), 1000u);
}

// An OpenMP loop that shares one mapping, its steps in a critical region, reports the same
// total as the serial loop; a stop reaches every thread through IsStopping.
TEST(BProgressMappingOMP, AParallelLoopReportsWhatTheSerialLoopReports) {
    constexpr long long kSteps = 1 << 14;
    unsigned long long serialUnits = 0;
    {
        Session session;
        BProgressMapping serial(kSteps, 250);
        RunFast(serial);
        serialUnits = session.dispatcher->Units();
    }
    Session session;
    BProgressMappingOMP mapping(kSteps, 250);
    std::vector<int> done(kSteps, 0);
#pragma omp parallel for num_threads(2)
    for (long long i = 0; i < kSteps; ++i) {
        done[i] = 1;
#pragma omp critical(qv_progress_test)
        mapping.Next(1);
    }
    EXPECT_EQ(mapping.Step(), static_cast<unsigned long long>(kSteps));
    EXPECT_EQ(session.dispatcher->Units(), serialUnits);
    EXPECT_EQ(serialUnits, 250u);

    ManagerSession manager;
    manager.button->stop = true;
    BProgressMappingOMP stopped(kSteps, 250);
    long long skipped = 0;
#pragma omp parallel for num_threads(2) reduction(+ : skipped)
    for (long long i = 0; i < kSteps; ++i) {
        if (stopped.IsStopping()) {
            ++skipped;
            continue;
        }
#pragma omp critical(qv_progress_test)
        stopped.Next(1);
    }
    EXPECT_TRUE(stopped.IsStopping());
    EXPECT_GT(skipped, 0);
}
