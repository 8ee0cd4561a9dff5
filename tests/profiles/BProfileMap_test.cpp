#include "ProfileConformance.h"

#include <qv/profiles/BProfileMap.h>

template <>
struct StoreTraits<BProfileMap> {
    struct Env {};
    static constexpr bool kWritesMissing = false;
    static SP<BProfileMap> Make(Env&, bool) { return SP<BProfileMap>(new BProfileMap(u"S")); }
};

INSTANTIATE_TYPED_TEST_SUITE_P(Map, ProfileConformance, BProfileMap);

namespace {

// The content as "section:key=value;" in map order.
std::string Dump(BProfileMap const& map) {
    std::string out;
    BArray<WString> sections;
    map.GetSections(sections);
    for (auto const& name : sections)
        for (auto const& [key, value] : *map.FindSection(name))
            out += name.ToUtf8() + ":" + key.ToUtf8() + "=" + value.ToUtf8() + ";";
    return out;
}

} // namespace

TEST(BProfileMap, LoadLineRules) {
    struct {
        char const* name;
        char16_t const* text;
        char const* content;
        char const* section;
    } const rows[] = {
        {"header keeps blanks", u"[ Camera ]\nGain=3", " Camera :Gain=3;", " Camera "},
        {"leading equals dropped", u"Title==b", "start:Title=b;", "start"},
        {"equals after blank stays", u"Title= =b", "start:Title==b;", "start"},
        {"semicolon means nothing", u";Gain=3", "start:;Gain=3;", "start"},
        {"no closing bracket is a key", u"[Camera=3", "start:[Camera=3;", "start"},
        {"no equals ignored", u"Gain", "", "start"},
        {"blank before bracket is no header", u" [A]=1", "start:[A]=1;", "start"},
        {"case folds to first spelling", u"Gain=1\nGAIN=2", "start:Gain=2;", "start"},
        {"sections fold", u"[Cam]\na=1\n[CAM]\nb=2", "Cam:a=1;Cam:b=2;", "CAM"},
        {"sorted without case", u"[b]\nk=1\n[A]\nk=2\n[c]", "A:k=2;b:k=1;", "c"},
        {"text ends at nul", u"a=1\0b=2", "start:a=1;", "start"},
    };
    for (auto const& row : rows) {
        BProfileMap map(u"start");
        map.WriteString(u"old", u"gone");
        EXPECT_EQ(map.Load(row.text), 0) << row.name;
        EXPECT_EQ(Dump(map) + "|" + map.GetSection().ToUtf8(),
                  std::string(row.content) + "|" + row.section)
            << row.name;
    }
}

TEST(BProfileMap, ASecondLoadStartsWhereTheFirstEndedAndEmptyValuesAreMissingForRead) {
    BProfileMap map;
    map.Load(u"[One]\na=1");
    map.Load(u"b=2");
    EXPECT_EQ(Dump(map), "One:b=2;");
    map.Load(u"Title=");
    EXPECT_TRUE(map.GetString(u"Title", u"d").IsEmpty());
    EXPECT_EQ(map.GetString(u"Other", u"d").ToUtf8(), "d");
    WString text(u"x");
    EXPECT_FALSE(map.Read(u"Title", text));
    EXPECT_EQ(map.GetInt(u"Other", 4), 4);
}

TEST(BProfileMap, MemoryBlocksUseTheNibbleAlphabet) {
    BProfileMap map;
    unsigned char bytes[2] = {0x12, 0xAF};
    EXPECT_TRUE(map.WriteMem(u"m", bytes, 2));
    EXPECT_EQ(map.GetString(u"m", WString()).ToUtf8(), "12:?");
    unsigned char back[2] = {};
    EXPECT_TRUE(map.ReadMem(u"m", back, 2));
    EXPECT_EQ(back[0] * 256 + back[1], 0x12AF);
    unsigned char untouched[3] = {7, 7, 7};
    EXPECT_FALSE(map.ReadMem(u"m", untouched, 3));
    EXPECT_EQ(std::string(untouched, untouched + 3), "\7\7\7");
    EXPECT_TRUE(map.WriteMem(u"z", bytes, 0));
    EXPECT_FALSE(map.ReadMem(u"z", back, 0)) << "an empty value reads as missing";
    // A first byte of 0xD0..0xDF encodes as '=' and loses it on the way through Load.
    unsigned char eq[1] = {0xD1};
    map.WriteMem(u"e", eq, 1);
    map.Load(u"[default]\ne=" + map.GetString(u"e", WString()));
    EXPECT_FALSE(map.ReadMem(u"e", eq, 1));
}

TEST(BProfileMap, DeletedSectionStaysListedAndCopiesAreDeep) {
    BProfileMap map(u"A");
    map.WriteString(u"k", u"v");
    map.SetSection(u"Ghost");
    map.DeleteKey(u"k");
    EXPECT_EQ(map.FindSection(u"Ghost"), nullptr) << "deleting a key creates no section";
    EXPECT_FALSE(map.DeleteSection(u"Ghost"));
    EXPECT_TRUE(map.DeleteSection(u"a"));
    EXPECT_EQ(Dump(map), "");
    ASSERT_NE(map.FindSection(u"A"), nullptr);

    map.SetSection(u"A");
    map.WriteString(u"k", u"v");
    BProfileMap copy(map);
    copy.WriteString(u"k", u"changed");
    EXPECT_EQ(Dump(map), "A:k=v;");
}
