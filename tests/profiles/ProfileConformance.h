// One suite for every IProfile store: typed reads and writes, fallbacks, sections, hex, time.
// A store joins by specialising StoreTraits (how to make one, whether it can write back) and
// instantiating the suite in its own test file.
#pragma once

#include <gtest/gtest.h>
#include <qv/profiles/IProfile.h>
#include <string>
#include <utility>

// Make(writeMissingKey) gives a fresh, empty store whose current section is "S".
// kWritesMissing says whether the store can be built to write fallbacks.
template <class P>
struct StoreTraits;

inline std::string U8(WString const& text) {
    return text.ToUtf8();
}

// A time's bytes, so that a whole time compares at once.
inline std::string Image(_SYSTEMTIME const& t) {
    return std::string(reinterpret_cast<char const*>(&t), sizeof t);
}

// Read's answer and the value it leaves behind, from a start value.
template <class T, class... Limits>
std::pair<bool, T> ReadFrom(IProfile const& p, WString const& key, T value, Limits... limits) {
    bool const found = p.Read(key, value, limits...);
    return {found, value};
}

template <class P>
class ProfileConformance : public ::testing::Test {
protected:
    using Traits = StoreTraits<P>;
    SP<P> Make(bool writeMissingKey = false) { return Traits::Make(m_env, writeMissingKey); }
    typename Traits::Env m_env;
};

TYPED_TEST_SUITE_P(ProfileConformance);

// A missing key is written as null; "" stores an empty value.
struct IntRow {
    char const* name;
    char16_t const* stored;
    int start, min, max;
    bool result;
    int value;
};

TYPED_TEST_P(ProfileConformance, IntReadsParseClampAndKeep) {
    IntRow const rows[] = {
        {"plain", u"42", 7, IProfile::kNoMin, IProfile::kNoMax, true, 42},
        {"trailing text ignored", u"7.5xyz", 0, IProfile::kNoMin, IProfile::kNoMax, true, 7},
        {"missing keeps", nullptr, 9, IProfile::kNoMin, IProfile::kNoMax, false, 9},
        {"empty is missing", u"", 9, IProfile::kNoMin, IProfile::kNoMax, false, 9},
        {"above max clamps", u"15", 3, 0, 10, false, 10},
        {"limits inclusive", u"10", 3, 0, 10, true, 10},
    };
    for (auto const& row : rows) {
        auto p = this->Make();
        if (row.stored) {
            ASSERT_TRUE(p->WriteString(u"k", row.stored)) << row.name;
        }
        EXPECT_EQ(ReadFrom(*p, u"k", row.start, row.min, row.max), std::pair(row.result, row.value))
            << row.name;
    }
}

TYPED_TEST_P(ProfileConformance, NarrowAndLongReadsKeepTheValueOnAnyFailure) {
    auto p = this->Make();
    ASSERT_TRUE(p->WriteString(u"k", u"15"));
    EXPECT_EQ(ReadFrom(*p, u"k", short(3), 0, 10), std::pair(false, short(3)));
    EXPECT_EQ(ReadFrom(*p, u"k", static_cast<unsigned char>(1), 0, 255),
              std::pair(true, static_cast<unsigned char>(15)));
    // A negative number through unsigned long keeps its 32 bits.
    ASSERT_TRUE(p->Write(u"k", 4294967295ul));
    EXPECT_EQ(U8(p->GetString(u"k", WString())), "-1");
    int const any[] = {IProfile::kNoMin, IProfile::kNoMax};
    EXPECT_EQ(ReadFrom(*p, u"k", 0ul, any[0], any[1]), std::pair(true, 4294967295ul));
    EXPECT_EQ(ReadFrom(*p, u"k", 0l, any[0], any[1]), std::pair(true, -1l));
}

TYPED_TEST_P(ProfileConformance, FloatBoolAndTextReads) {
    auto p = this->Make();
    ASSERT_TRUE(p->Write(u"d", 0.123456789));
    EXPECT_EQ(U8(p->GetString(u"d", WString())), "0.123457");
    ASSERT_TRUE(p->WriteString(u"f", u"0.123456789"));
    EXPECT_EQ(ReadFrom(*p, u"f", 1.0), std::pair(true, static_cast<double>(0.123456789f)));
    ASSERT_TRUE(p->WriteString(u"bad", u"x1"));
    EXPECT_EQ(ReadFrom(*p, u"bad", 2.5f), std::pair(false, 2.5f));

    ASSERT_TRUE(p->WriteString(u"b", u"TRUE"));
    EXPECT_EQ(ReadFrom(*p, u"b", false), std::pair(true, true));
    ASSERT_TRUE(p->WriteString(u"b", u"1"));
    EXPECT_EQ(ReadFrom(*p, u"b", true), std::pair(false, true)) << "only TRUE and FALSE are bools";
    ASSERT_TRUE(p->Write(u"b", true));
    EXPECT_EQ(U8(p->GetString(u"b", WString())), "TRUE");
}

TYPED_TEST_P(ProfileConformance, HexReadsCountTwoForThePrefix) {
    struct {
        char const* name;
        char16_t const* stored;
        bool result;
        unsigned long value;
    } const rows[] = {
        {"prefixed", u"0x1234", true, 0x1234},        {"too short", u"12", false, 99},
        {"five after prefix", u"0x12345", false, 99}, {"six bare", u"123456", true, 0x123456},
        {"stops at blank", u"0x12 z", true, 0x12},    {"stops at letter", u"0x12z", false, 99},
    };
    for (auto const& row : rows) {
        auto p = this->Make();
        ASSERT_TRUE(p->WriteString(u"h", row.stored)) << row.name;
        unsigned long value = 99;
        EXPECT_EQ(std::pair(p->ReadHex(u"h", value, 4), value), std::pair(row.result, row.value))
            << row.name;
    }
}

TYPED_TEST_P(ProfileConformance, TimeTextRoundTripsAndNormalises) {
    auto p = this->Make();
    _SYSTEMTIME const t = {2021, 3, 4, 7, 8, 5, 9, 4};
    ASSERT_TRUE(p->Write(u"t", t));
    EXPECT_EQ(U8(p->GetString(u"t", WString())), "03/07/2021 08:05:09.004");
    _SYSTEMTIME back{};
    EXPECT_TRUE(p->Read(u"t", back));
    EXPECT_EQ(Image(back), Image({2021, 3, 0, 7, 8, 5, 9, 4})) << "7 March 2021 was a Sunday";

    _SYSTEMTIME missing = t;
    EXPECT_FALSE(p->Read(u"none", missing));
    EXPECT_EQ(Image(missing), Image({1899, 12, 6, 30, 0, 0, 0, 0}));

    ASSERT_TRUE(p->WriteString(u"bad", u"13/40/2021 00:00:00.000"));
    _SYSTEMTIME bad{};
    EXPECT_TRUE(p->Read(u"bad", bad)) << "the text parses; only the normalising fails";
    EXPECT_EQ(bad.wMonth, 13);
}

TYPED_TEST_P(ProfileConformance, SectionsSelectListAndDelete) {
    auto p = this->Make();
    ASSERT_TRUE(p->WriteString(u"a", u"1"));
    p->SetSection(u"Other");
    ASSERT_TRUE(p->WriteString(u"b", u"2"));
    BArray<WString> keys;
    EXPECT_TRUE(p->LoadSection(u"s", &keys)) << "names compare without regard to case";
    EXPECT_EQ(keys.Count() == 1 ? U8(keys[0]) : "", "a");
    EXPECT_FALSE(p->LoadSection(u"Nothing", &keys) || p->LoadSection(WString(), nullptr));
    EXPECT_TRUE(p->GetSection().IsEmpty());

    p->SetSection(u"S");
    ASSERT_TRUE(p->WriteString(u"gone", u"x"));
    p->DeleteKey(u"GONE");
    EXPECT_TRUE(p->DeleteSection(u"Other"));
    EXPECT_EQ(U8(p->GetSection()), "S") << "deleting another section keeps the current one";
    EXPECT_EQ(static_cast<IProfile&>(*p).GetAllKeys().Count(), 1u) << "gone is gone, a is left";
    EXPECT_TRUE(p->DeleteSection(u"s"));
    EXPECT_TRUE(p->GetSection().IsEmpty());
    p->SetSection(u"S");
    EXPECT_TRUE(p->GetString(u"a", WString()).IsEmpty());
}

TYPED_TEST_P(ProfileConformance, FallbackWritesStoreTheCallersValue) {
    if (!StoreTraits<TypeParam>::kWritesMissing)
        GTEST_SKIP() << "this store cannot be built to write fallbacks";
    auto p = this->Make(true);
    ASSERT_TRUE(p->WriteString(u"i", u"abc") && p->WriteString(u"b", u"maybe"));
    WString text(u"dflt"), none;
    int i = 5;
    bool b = true;
    float f = 1.5f;
    EXPECT_FALSE(p->Read(u"t", text) || p->Read(u"n", none) ||
                 p->Read(u"i", i, IProfile::kNoMin, IProfile::kNoMax) || p->Read(u"b", b) ||
                 p->Read(u"f", f));
    EXPECT_EQ(U8(p->GetString(u"t", WString()) + u"|" + p->GetString(u"i", WString()) + u"|" +
                 p->GetString(u"b", WString()) + u"|" + p->GetString(u"f", WString())),
              "dflt|5|maybe|1.5")
        << "bad number text replaced, bad bool text left";
    EXPECT_EQ(static_cast<IProfile&>(*p).GetAllKeys().Count(), 4u)
        << "an empty caller's text stores nothing";
    ASSERT_TRUE(p->WriteString(u"e", u""));
    EXPECT_TRUE(p->GetString(u"e", u"def").IsEmpty());
    EXPECT_EQ(U8(p->GetString(u"e", WString())), "def") << "present and empty takes the default";
}

REGISTER_TYPED_TEST_SUITE_P(ProfileConformance, IntReadsParseClampAndKeep,
                            NarrowAndLongReadsKeepTheValueOnAnyFailure, FloatBoolAndTextReads,
                            HexReadsCountTwoForThePrefix, TimeTextRoundTripsAndNormalises,
                            SectionsSelectListAndDelete, FallbackWritesStoreTheCallersValue);
