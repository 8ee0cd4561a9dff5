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

std::vector<BSmartObj*> Slots(BArray<SP<BSmartObj>> const& a, std::size_t n) {
    std::vector<BSmartObj*> out;
    for (std::size_t i = 0; i < n; ++i)
        out.push_back(a.begin()[i].get());
    return out;
}

TEST(BArray, GrowsByHalfTheCountAndTheStepKeepsItsGrowth) {
    BArray<int> a;
    std::vector<unsigned long long> capacities;
    for (int i = 0; i < 40; ++i) {
        a.Add(i);
        if (capacities.empty() || capacities.back() != a.Capacity())
            capacities.push_back(a.Capacity());
    }
    EXPECT_EQ(capacities, (std::vector<unsigned long long>{1, 2, 4, 7, 11, 17, 26, 40}));
    EXPECT_EQ(std::vector<int>(a.begin() + 38, a.end()), (std::vector<int>{38, 39}));
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

// Only the used range is reported, but slots freed by RemoveAt, assignment and Resize hold
// null (or the default) afterwards: their references are gone.
TEST(BArray, RemovingAndAssigningReleaseTheFreedSlots) {
    Probe::live = 0;
    BArray<SP<BSmartObj>> a, b;
    for (int i = 0; i < 6; ++i)
        a.Add(new Probe);
    std::vector<BSmartObj*> const added = Slots(a, 6);
    a.RemoveAt(1, 2);
    a.RemoveAt(5, 1); // past the end: nothing
    EXPECT_EQ(Slots(a, 6),
              (std::vector<BSmartObj*>{added[0], added[3], added[4], added[5], nullptr, nullptr}));
    EXPECT_EQ(Probe::live, 4);
    a.RemoveAt(2, 100);
    EXPECT_EQ(Probe::live, 2);
    b.Add(new Probe);
    a = b;
    auto const& self = a;
    a = self;
    EXPECT_EQ(a.Count(), 1u);
    EXPECT_EQ(Slots(a, 2), (std::vector<BSmartObj*>{b[0].get(), nullptr}));
    EXPECT_EQ(Probe::live, 1);
    a.Clear();
    EXPECT_EQ(a.begin(), nullptr);

    BArray<int> ints;
    for (int i = 1; i <= 4; ++i)
        ints.Add(i);
    ints.Resize(2);
    ints.Resize(4);
    ints.Reserve(2); // never shrinks
    EXPECT_EQ(std::vector<int>(ints.begin(), ints.end()), (std::vector<int>{1, 2, 0, 0}));
    EXPECT_EQ(ints.Capacity(), 4u);
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
