#include "../platform/FileTestSupport.h"
#include "ProfileConformance.h"

#include <cstring>
#include <qv/core/BError.h>
#include <qv/profiles/BIniProfile.h>

template <>
struct StoreTraits<BIniProfile> {
    struct Env {
        TempDir dir;
        int files = 0;
    };
    static constexpr bool kWritesMissing = true;
    static SP<BIniProfile> Make(Env& env, bool writeMissingKey) {
        std::string const name = "f" + std::to_string(env.files++) + ".ini";
        return SP<BIniProfile>(
            new BIniProfile(WString::FromUtf8(env.dir / name), u"S", writeMissingKey));
    }
};

INSTANTIATE_TYPED_TEST_SUITE_P(Ini, ProfileConformance, BIniProfile);

namespace {

class IniProfile : public ::testing::Test {
protected:
    WString Path(std::string const& name = "p.ini") const {
        return WString::FromUtf8(m_dir / name);
    }
    TempDir m_dir;
};

} // namespace

TEST_F(IniProfile, LongValuesNeedTheGrowingBuffer) {
    BIniProfile p(Path(), u"S", false);
    struct {
        char const* name;
        std::size_t length, expected;
    } const rows[] = {
        {"510 fits the first buffer", 510, 510},
        {"511 needs a second call", 511, 511},
        {"32768 exactly", 32768, 32768},
        {"longer is cut", 40000, 32768},
    };
    for (auto const& row : rows) {
        std::u16string const value(row.length, u'v');
        ASSERT_TRUE(p.WriteString(u"k", WString(value))) << row.name;
        EXPECT_EQ(p.GetString(u"k", WString()).Length(), row.expected) << row.name;
    }
    for (int i = 0; i < 300; ++i)
        p.WriteInt(WString::FromUtf8("key" + std::to_string(i)), i);
    BArray<WString> keys;
    EXPECT_TRUE(p.LoadSection(u"S", &keys));
    EXPECT_EQ(keys.Count(), 301u) << "a key list beyond 512 characters";
    EXPECT_EQ(keys[300].ToUtf8(), "key299");
    EXPECT_EQ(p.GetInt(u"key299", 0), 299);
}

TEST_F(IniProfile, FilesAreMadeUnicodeAndConvertedWhenTheyMustBe) {
    BIniProfile fresh(Path("sub/dir/new.ini"), u"S", false);
    ASSERT_TRUE(fresh.WriteString(u"k", u"v"));
    EXPECT_EQ(ReadBytes(m_dir / "sub/dir/new.ini"), Utf16File(u"[S]\r\nk=v\r\n"));

    WriteBytes(m_dir / "ansi.ini", "[S]\r\na=\xE4\r\n");
    BIniProfile ansi(Path("ansi.ini"), u"S", false);
    ASSERT_TRUE(ansi.WriteString(u"b", u"\u00FF"));
    EXPECT_EQ(ReadBytes(m_dir / "ansi.ini"), "[S]\r\na=\xE4\r\nb=\xFF\r\n")
        << "codes below 256 keep the file ANSI";
    ASSERT_TRUE(ansi.WriteString(u"c", u"\u20AC\u4E00"));
    EXPECT_EQ(ReadBytes(m_dir / "ansi.ini"),
              Utf16File(u"[S]\r\na=\u00E4\r\nb=\u00FF\r\nc=\u20AC\u4E00\r\n"));
    EXPECT_EQ(ansi.GetString(u"a", WString()).ToUtf8(), "\xC3\xA4");
}

TEST_F(IniProfile, ListsAndMemoryBlocks) {
    WriteBytes(m_dir / "l.ini", "[B]\r\nz=1\r\na=2\r\n[A]\r\nx=1\r\n[b]\r\nq=3\r\n");
    BIniProfile p(Path("l.ini"), u"B", false);
    BArray<WString> sections, keys;
    ASSERT_TRUE(p.GetSections(sections));
    p.LoadSection(u"b", &keys);
    std::string listed;
    for (auto const& name : {sections, keys})
        for (WString const& n : name)
            listed += n.ToUtf8() + " ";
    EXPECT_EQ(listed, "B A b z a ") << "file order; the first section of a name";
    EXPECT_FALSE(BIniProfile(WString(), u"S", false).GetSections(sections));

    unsigned char bytes[4] = {1, 2, 3, 250}, back[4] = {};
    EXPECT_TRUE(p.WriteMem(u"m", bytes, 4));
    EXPECT_TRUE(p.ReadMem(u"m", back, 4));
    EXPECT_EQ(std::memcmp(back, bytes, 4), 0);
    EXPECT_FALSE(p.ReadMem(u"m", back, 3));
    EXPECT_THROW(p.WriteMem(u"m", bytes, 1ull << 40), BError);
}
