#include <gtest/gtest.h>
#include <qv/core/BSmartObj.h>
#include <qv/core/containers/DList.h>
#include <vector>

namespace {

// The values from the head. The walk back from the tail must give the same, so that the prev
// links are checked as well as the next links.
template <class T>
std::vector<T> Values(DList<T> const& list) {
    std::vector<T> forward(list.begin(), list.end()), backward;
    for (auto pos = list.TailPosition(); pos.IsValid(); pos.Prev())
        backward.insert(backward.begin(), *pos);
    EXPECT_EQ(backward, forward);
    return forward;
}

TEST(DList, AdditionsKeepBothLinksAndTheCount) {
    DList<int> list;
    list.AddHead(2);
    list.AddTail(3);
    list.AddHead(1);
    EXPECT_EQ(Values(list), (std::vector<int>{1, 2, 3}));
    list.AddList(list); // adding a list to itself doubles it and stops
    EXPECT_EQ(Values(list), (std::vector<int>{1, 2, 3, 1, 2, 3}));
    EXPECT_EQ(list.Count(), 6);
}

TEST(DList, InsertAfterAndRemoveAtMoveThroughTheList) {
    DList<int> list;
    for (int i : {1, 3, 5})
        list.AddTail(i);
    list.InsertAfter(list.HeadPosition(), 2);
    list.InsertAfter(list.TailPosition(), 6);
    EXPECT_EQ(Values(list), (std::vector<int>{1, 2, 3, 5, 6}));

    auto pos = list.PositionAt(2);
    list.RemoveAt(pos);
    ASSERT_TRUE(pos.IsValid());
    EXPECT_EQ(*pos, 5);
    EXPECT_EQ(Values(list), (std::vector<int>{1, 2, 5, 6}));
    EXPECT_FALSE(list.PositionAt(4).IsValid());
    EXPECT_FALSE(list.PositionAt(-1).IsValid());

    // Positions of another list are refused.
    DList<int> other;
    other.AddTail(7);
    auto foreign = other.HeadPosition();
    list.RemoveAt(foreign);
    list.InsertAfter(foreign, 8);
    EXPECT_EQ(list.Count(), 4);
    EXPECT_EQ(other.Count(), 1);
}

TEST(DList, RemovingTheOnlyNodeEmptiesTheList) {
    DList<int> list;
    list.AddTail(1);
    auto pos = list.HeadPosition();
    list.RemoveAt(pos);
    EXPECT_FALSE(pos.IsValid());
    EXPECT_FALSE(list.HeadPosition().IsValid());
    EXPECT_FALSE(list.TailPosition().IsValid());
    list.AddTail(4);
    EXPECT_EQ(Values(list), (std::vector<int>{4}));
}

struct Probe : BSmartObj {
    static inline int live = 0;
    Probe() { ++live; }
    ~Probe() override { --live; }
};

TEST(DList, RemovingAndDestroyingReleaseReferences) {
    Probe::live = 0;
    {
        DList<SP<BSmartObj>> list;
        for (int i = 0; i < 3; ++i)
            list.AddTail(new Probe);
        DList<SP<BSmartObj>> copy(list);
        auto pos = list.HeadPosition();
        list.RemoveAt(pos);
        EXPECT_EQ(Probe::live, 3); // the copy still holds all three
        copy.RemoveAll();
        EXPECT_EQ(copy.Count(), 0);
        EXPECT_EQ(Probe::live, 2);
    }
    EXPECT_EQ(Probe::live, 0);
}

} // namespace
