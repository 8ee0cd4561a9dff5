#include <gtest/gtest.h>
#include <qv/core/BSmartObj.h>
#include <qv/core/containers/BArray.h>
#include <qv/core/strings/WString.h>
#include <vector>

namespace {

// Counts the live objects, so that a test sees an SP's reference go.
struct Probe : BSmartObj {
    static inline int live = 0;
    Probe() { ++live; }
    ~Probe() override { --live; }
};

TEST(BArray, GrowsByHalfTheCountAndTheStepKeepsItsGrowth) {
    BArray<int> a;
    std::vector<unsigned long long> capacities;
    for (int i = 0; i < 40; ++i) {
        a.Add(i);
        if (capacities.empty() || capacities.back() != a.Capacity())
            capacities.push_back(a.Capacity());
    }
    EXPECT_EQ(capacities, (std::vector<unsigned long long>{1, 2, 4, 7, 11, 17, 26, 40}));
    for (int i = 0; i < 40; ++i)
        ASSERT_EQ(a[i], i);
    // A large step wins over the half-count rule until the count catches up.
    BArray<int> big(128);
    big.Add(1);
    EXPECT_EQ(big.Capacity(), 128u);
}

TEST(BArray, AddOfItsOwnElementOnAFullArrayCopiesAValidValue) {
    BArray<WString> a;
    a.Add(u"first element, long enough to live on the heap");
    a.Add(u"second");
    ASSERT_EQ(a.Count(), a.Capacity());
    a.Add(a[0]);
    a.Add(a[2]);
    EXPECT_EQ(a[2], u"first element, long enough to live on the heap");
    EXPECT_EQ(a[3], a[0]);
}

TEST(BArray, RemoveAtMovesTheTailDownAndReleasesTheFreedSlots) {
    Probe::live = 0;
    BArray<SP<BSmartObj>> a;
    std::vector<BSmartObj*> added;
    for (int i = 0; i < 6; ++i) {
        a.Add(new Probe);
        added.push_back(a[i]);
    }
    a.RemoveAt(1, 2);
    ASSERT_EQ(a.Count(), 4u);
    EXPECT_EQ(a[1].get(), added[3]);
    EXPECT_EQ(a[3].get(), added[5]);
    EXPECT_EQ(Probe::live, 4);
    // Only the used range is reported, but the freed slots hold null now.
    EXPECT_EQ(a.begin()[4].get(), nullptr);
    EXPECT_EQ(a.begin()[5].get(), nullptr);
    a.RemoveAt(2, 100);
    a.RemoveAt(5, 1); // past the end: nothing
    EXPECT_EQ(a.Count(), 2u);
    EXPECT_EQ(Probe::live, 2);
}

TEST(BArray, ClearAndAssignmentDropWhatTheyNoLongerHold) {
    Probe::live = 0;
    BArray<SP<BSmartObj>> a, b;
    for (int i = 0; i < 4; ++i)
        a.Add(new Probe);
    b.Add(new Probe);
    a = b;
    EXPECT_EQ(a.Count(), 1u);
    EXPECT_EQ(a[0].get(), b[0].get());
    EXPECT_EQ(Probe::live, 1);
    EXPECT_EQ(a.begin()[1].get(), nullptr);
    auto const& self = a;
    a = self;
    EXPECT_EQ(a.Count(), 1u);
    a.Clear();
    EXPECT_EQ(a.Capacity(), 0u);
    EXPECT_EQ(a.begin(), nullptr);
    a.Add(nullptr);
    EXPECT_EQ(a.Count(), 1u);
}

TEST(BArray, ResizeFillsWithDefaultsAlsoAfterAShrink) {
    BArray<int> a;
    for (int i = 1; i <= 4; ++i)
        a.Add(i);
    a.Resize(2);
    a.Resize(4);
    EXPECT_EQ(std::vector<int>(a.begin(), a.end()), (std::vector<int>{1, 2, 0, 0}));
    a.Reserve(2); // never shrinks
    EXPECT_EQ(a.Capacity(), 4u);
}

TEST(BArray, DirectReserveCallsLeaveNothingBehind) {
    // Pending storage of a direct Reserve is released by the next operation or the destructor;
    // the sanitizer build would report a leak otherwise.
    BArray<WString> a;
    a.Add(u"x");
    a.Reserve(8);
    a.Reserve(16);
    EXPECT_EQ(a[0], u"x");
    a.Reserve(~0ull);
    EXPECT_EQ(a.Count(), 0u);
    EXPECT_EQ(a.Capacity(), 0u);
}

} // namespace
