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

TEST(DList, EditsKeepBothLinksAndRefuseForeignPositions) {
    DList<int> list;
    list.AddTail(3);
    list.AddHead(1);
    list.InsertAfter(list.HeadPosition(), 2);
    list.AddList(list); // adding a list to itself doubles it and stops
    list.InsertAfter(list.TailPosition(), 6);
    EXPECT_EQ(Values(list), (std::vector<int>{1, 2, 3, 1, 2, 3, 6}));

    auto pos = list.PositionAt(2);
    list.RemoveAt(pos);
    ASSERT_TRUE(pos.IsValid());
    EXPECT_EQ(*pos, 1);
    EXPECT_FALSE(list.PositionAt(6).IsValid());
    EXPECT_FALSE(list.PositionAt(-1).IsValid());
    DList<int> other;
    other.AddTail(7);
    auto foreign = other.HeadPosition();
    list.RemoveAt(foreign);
    list.InsertAfter(foreign, 8);
    EXPECT_EQ(Values(list), (std::vector<int>{1, 2, 1, 2, 3, 6}));
    EXPECT_EQ(other.Count(), 1);

    // Removing the only node leaves neither head nor tail behind.
    auto only = other.HeadPosition();
    other.RemoveAt(only);
    EXPECT_FALSE(only.IsValid() || other.HeadPosition().IsValid() ||
                 other.TailPosition().IsValid());
    other.AddTail(4);
    EXPECT_EQ(Values(other), (std::vector<int>{4}));
}

} // namespace
