#include <climits>
#include <gtest/gtest.h>
#include <qv/measures/BFRect.h>
#include <qv/measures/BMatrix2x3.h>
#include <qv/measures/BRect.h>
#include <qv/measures/BRectItr.h>
#include <string>
#include <vector>

namespace {

std::string Text(BRect const& r) {
    return std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) +
           "," + std::to_string(r.bottom);
}

BRect Enclosed(BRect r, BPoint p) {
    r.Enclose(p);
    return r;
}

TEST(Geometry, RectangleRules) {
    BRect shifted(1, 2, 3, 4);
    shifted += BPoint(10, 20);
    shifted -= BPoint(1, 1);
    struct Case {
        char const* name;
        BRect got, want;
    } const cases[] = {
        {"enclose on empty makes a pixel", Enclosed(BRect(3, 3, 3, 9), BPoint(5, 7)), {5, 7, 6, 8}},
        {"enclose grows left and bottom", Enclosed(BRect(5, 7, 6, 8), BPoint(2, 8)), {2, 7, 6, 9}},
        {"intersection of touching", BRect(0, 0, 2, 2).Intersection(BRect(2, 0, 4, 2)), {}},
        {"intersection folds in order",
         BRect(0, 0, 10, 10).Intersection(BRect(2, 1, 12, 8), BRect(-5, 3, 9, 20)),
         {2, 3, 9, 8}},
        {"union skips the empty one", BRect(4, 4, 4, 9).Union(BRect(1, 2, 3, 4)), {1, 2, 3, 4}},
        // The answers of the platform's UnionRect (docs/probes/rect_probe.out.txt).
        {"union of disjoint", BRect(0, 0, 2, 2).Union(BRect(5, 5, 7, 7)), {0, 0, 7, 7}},
        {"union skips an inverted one",
         BRect(5, 5, 1, 1).Union(BRect(0, 0, 10, 10)),
         {0, 0, 10, 10}},
        {"shift by a point", shifted, {10, 21, 12, 23}},
        {"sums wrap in 32 bits", BRect(BPoint(INT_MAX, 0), BSize(1, 1)), {INT_MAX, 0, INT_MIN, 1}},
    };
    for (auto const& c : cases)
        EXPECT_EQ(Text(c.got), Text(c.want)) << c.name;
}

struct FactCase {
    std::string name;
    bool holds;
};

TEST(Geometry, Facts) {
    BRect const ten(0, 0, 10, 10);
    BFRect const unit(0.0f, 0.0f, 1.0f, 1.0f);
    std::vector<FactCase> const cases = {
        {"right is outside", !BPoint(10, 0).InRect(ten)},
        {"successor wraps to left", BRect(2, 0, 10, 5).Successor(BPoint(9, 0)) == BPoint(2, 1)},
        {"empty non-zero is not in itself", !BRect(3, 3, 3, 5).InRect(BRect(3, 3, 3, 5))},
        {"all zeros is in anything", BRect(0, 0, 0, 0).InRect(BRect(5, 5, 6, 6))},
        {"center truncates towards zero", BRect(-3, 0, 0, 0).Center() == BPoint(-1, 0)},
        {"division truncates towards zero", BPoint(-7, 7) / 2 == BPoint(-3, 3)},
        {"products wrap in 32 bits", (BSize(0x40000000, 1) * 4).cx == 0},
        {"sizes neither greater nor less",
         !BSize(1, 5).IsGreater(BSize(2, 4)) && !BSize(1, 5).IsLess(BSize(2, 4))},
        {"float intersection keeps the position",
         BFRect(0, 0, 2, 2).Intersection(BFRect(5, 1, 7, 3)) == BFRect(5, 1, 5, 2)},
        {"vertex -1 is right-top", unit.Vertex(-1) == BFPoint(1, 0)},
        {"cross product is the dot product", BFPoint(1, 2).CrossProduct(BFPoint(3, 4)) == 11.0f},
        {"round sends halves away from zero", BFPoint(-2.5f, 2.5f).Round() == BPoint(-3, 3)},
    };
    for (auto const& c : cases)
        EXPECT_TRUE(c.holds) << c.name;
}

TEST(Geometry, IteratorWalks) {
    for (auto [step, want] : {std::pair{1, "1,2 2,2 3,2 1,3 2,3 3,3 "}, std::pair{2, "1,2 3,2 "}}) {
        BRectItr it(BRect(1, 2, 4, 4), BFPoint(0, 0), 1.0f, 1.0f);
        it.SetStep(step);
        std::string got;
        for (it.Restart(); it.IsValid(); it.Next())
            got += std::to_string(it.RelativePosition().x) + "," +
                   std::to_string(it.RelativePosition().y) + " ";
        EXPECT_EQ(got, want) << "step " << step;
    }
}

TEST(Geometry, MatrixMaps) {
    // The constructor takes columns: m01 is the third argument.
    BMatrix2x3 const shear(1.0f, 0.0f, 0.75f, 1.0f, 3.0f, -2.0f);
    EXPECT_EQ(shear.Transform(BFPoint(0, 2)), BFPoint(4.5f, 0));
    BFPoint const p(3.25f, -8.5f);
    BFPoint const back = shear.TransformBack(shear.Transform(p));
    EXPECT_NEAR(back.x, p.x, 1e-4f);
    EXPECT_NEAR(back.y, p.y, 1e-4f);
    // In a * b, b is applied first.
    BMatrix2x3 const scale(2.0f, 0.0f, 0.0f, 2.0f);
    BMatrix2x3 const shift(1.0f, 0.0f, 0.0f, 1.0f, 5.0f, 0.0f);
    EXPECT_EQ((scale * shift).Transform(BFPoint(1, 1)), BFPoint(12, 2));
    EXPECT_EQ((shift * scale).Transform(BFPoint(1, 1)), BFPoint(7, 2));
}

} // namespace
