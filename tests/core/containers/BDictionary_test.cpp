#include <gtest/gtest.h>
#include <qv/core/BSmartObj.h>
#include <qv/core/containers/BDictionary.h>
#include <qv/core/strings/BString.h>
#include <qv/core/strings/WString.h>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

TEST(BHashTable, BucketCountsFollowTheExpectedCount) {
    using Table = BDictionary<BString, int>;
    struct Row {
        unsigned long long expected, buckets, step;
    };
    for (Row r : {Row{0, 2, 15}, Row{50, 2, 15}, Row{51, 3, 15}, Row{249, 19, 15}, Row{250, 11, 30},
                  Row{250000, 9277, 30}}) {
        Table t(r.expected);
        EXPECT_EQ(t.BucketCount(), r.buckets) << r.expected;
        EXPECT_EQ(t.Bucket(0).Step(), r.step) << r.expected;
    }
}

TEST(BHashTable, KeyHashesMatchTheStoredFormula) {
    using Item = BDictionaryItemBase;
    // 'a' = 97: 97*5 + 98 for WString, 97*33 + 98 for BString; only a prefix counts.
    EXPECT_EQ(Item::HashKey(WString(u"ab")), 97u * 5 + 98);
    EXPECT_EQ(Item::HashKey(BString("ab")), 97u * 33 + 98);
    // Bytes count as signed: 0xFF is -1 and wraps the unsigned arithmetic.
    EXPECT_EQ(Item::HashKey(BString("\xff")), ~0ull);
    EXPECT_EQ(Item::HashKey(WString(u"abcdefgh")), Item::HashKey(WString(u"abcdefghXYZ")));
    EXPECT_EQ(Item::HashKey(BString("abcde")), Item::HashKey(BString("abcdeXYZ")));
}

template <class Table, class Key>
using FindResult = decltype(std::declval<Table>().Find(std::declval<Key>()));

TEST(BDictionary, OnlyAWritableTableHandsOutWritableItems) {
    using D = BDictionary<WString, int>;
    static_assert(std::is_same_v<FindResult<D const&, WString const&>, D::MItem const*>);
    static_assert(std::is_same_v<FindResult<D const&, D::MItem const&>, D::MItem const*>);
    static_assert(std::is_same_v<FindResult<D&, WString const&>, D::MItem*>);
    D table;
    table.Set(u"k", 1);
    table.Find(u"k")->m_value = 2;
    D const& view = table;
    EXPECT_EQ(view.Find(u"k")->m_value, 2);
}

// Seven buckets; a one-letter key hashes to its code: a 97 % 7 = 6, b 0, c 1, h 6, i 0.
// (Control characters would not do as keys: the locale rule of WString ignores them.)
std::vector<int> ValuesInOrder(BDictionary<WString, int> const& t) {
    std::vector<int> out;
    for (auto const& item : t)
        out.push_back(item.m_value);
    return out;
}

TEST(BDictionary, IterationRunsInBucketOrderThenInOrderOfAddition) {
    BDictionary<WString, int> t(100);
    for (char16_t c : std::u16string_view(u"hcaib"))
        t.Set(WString(std::u16string_view(&c, 1)), c);
    EXPECT_EQ(ValuesInOrder(t), (std::vector<int>{'i', 'b', 'c', 'h', 'a'}));
    EXPECT_EQ(ValuesInOrder(BDictionary<WString, int>(t)), ValuesInOrder(t));
    EXPECT_TRUE(t.Remove(u"c")); // the only item of its bucket
    EXPECT_TRUE(t.Remove(u"h")); // the head of a chain
    EXPECT_EQ(ValuesInOrder(t), (std::vector<int>{'i', 'b', 'a'}));
    BDictionary<WString, int> empty(0);
    EXPECT_EQ(empty.begin(), empty.end());
}

} // namespace

TEST(BDictionary, LookupsInALongBucketAfterRemovals) {
    // Every key shares its first 8 units, so all stand in one bucket, in order of addition.
    BDictionary<WString, int> t(1000);
    for (int i = 0; i < 50; ++i)
        t.Set(WString(u"[default]k") + WString::FromInt(i), i);
    for (int i : {0, 17, 18, 49})
        EXPECT_TRUE(t.Remove(WString(u"[default]k") + WString::FromInt(i))) << i;
    EXPECT_FALSE(t.Remove(u"[default]k17"));
    EXPECT_EQ(t.Find(u"[default]k"), nullptr) << "a key's prefix is not the key";
    EXPECT_FALSE(t.Set(u"[default]k20", 120)); // overwritten in place
    EXPECT_TRUE(t.Set(u"[default]k0", 100));   // back, now last
    std::vector<int> expected;
    for (int i = 1; i < 49; ++i)
        if (i != 17 && i != 18)
            expected.push_back(i == 20 ? 120 : i);
    expected.push_back(100);
    EXPECT_EQ(ValuesInOrder(t), expected);
    for (int i = 1; i < 49; ++i) {
        auto const* item = t.Find(WString(u"[default]k") + WString::FromInt(i));
        EXPECT_EQ(item ? item->m_value : -1, i == 17 || i == 18 ? -1 : i == 20 ? 120 : i) << i;
    }
    // Canonically equivalent spellings in one bucket are one key, found by either spelling.
    EXPECT_TRUE(t.Set(u"[default]caf\u00e9", 1));
    EXPECT_FALSE(t.Set(u"[default]cafe\u0301", 2));
    EXPECT_EQ(t.Find(u"[default]caf\u00e9")->m_value, 2);
    EXPECT_EQ(t.Count(), 48u);
}
