#include "../platform/FileTestSupport.h"

#include <qv/core/BError.h>
#include <qv/core/files/BFile.h>
#include <qv/profiles/BProfile.h>

namespace {

class Profile : public ::testing::Test {
protected:
    WString Path(std::string const& name = "p.ini") const {
        return WString::FromUtf8(m_dir / name);
    }
    std::string Bytes(std::string const& name = "p.ini") const { return ReadBytes(m_dir / name); }
    TempDir m_dir;
};

} // namespace

TEST_F(Profile, ModesDecideWhatHappensToTheFile) {
    struct {
        char const* name;
        EProfileMode mode;
        bool exists;
        char const* after; // null: no file
    } const rows[] = {
        {"read only, missing", kProfileReadOnly, false, nullptr},
        {"read only, present", kProfileReadOnly, true, "[S]\r\nk=1\r\n"},
        {"new, present: emptied", kProfileNew, true, "\xFF\xFE"},
        {"read-write, present: kept", kProfileReadWrite, true, "[S]\r\nk=1\r\n"},
        {"read-write, missing: created", kProfileReadWrite, false, "\xFF\xFE"},
    };
    int i = 0;
    for (auto const& row : rows) {
        std::string const name = "m" + std::to_string(i++) + ".ini";
        if (row.exists)
            WriteBytes(m_dir / name, "[S]\r\nk=1\r\n");
        BProfile p(Path(name), row.mode);
        EXPECT_EQ(Bytes(name), row.after ? row.after : "") << row.name;
        EXPECT_EQ(BFile::Exist(Path(name).CStr()), row.after != nullptr) << row.name;
        if (row.mode == kProfileReadOnly) {
            EXPECT_THROW(p.WriteString(u"k", u"v"), BError) << row.name;
            EXPECT_THROW(p.DeleteSection(), BError) << row.name;
            EXPECT_EQ(p.ReadInt(u"missing", 3), 3) << row.name;
            EXPECT_EQ(BFile::Exist(Path(name).CStr()), row.exists) << "reads store nothing";
        }
    }
}

TEST_F(Profile, ReadsStoreTheirDefaultsUnlessReadOnly) {
    BProfile p(Path(), kProfileReadWrite);
    p.SetSection(u"S");
    EXPECT_EQ(p.ReadInt(u"i", 7), 7);
    EXPECT_EQ(p.ReadString(u"s", u"text").ToUtf8(), "text");
    EXPECT_TRUE(p.ReadBoolean(u"b", true));
    EXPECT_EQ(p.ReadDouble(u"d", 0.5), 0.5);
    EXPECT_EQ(Bytes(), Utf16File(u"[S]\r\ni=7\r\nb=TRUE\r\nd=0.5\r\n"))
        << "a missing key read as text gets the default from the service and stores nothing";

    struct {
        char const* name;
        char16_t const* stored;
        int asInt;
        bool asBool;
    } const rows[] = {
        {"number with text", u"12abc", 12, false},
        {"one is not true", u"1", 1, false},
        {"true any case", u"tRuE", -1, true},
    };
    for (auto const& row : rows) {
        ASSERT_TRUE(p.WriteString(u"v", row.stored)) << row.name;
        EXPECT_EQ(std::pair(p.ReadInt(u"v", -1), p.ReadBoolean(u"v", true)),
                  std::pair(row.asInt, row.asBool))
            << row.name;
    }
}

TEST_F(Profile, NumberedKeysAndNumberTexts) {
    BProfile p(Path(), kProfileNew);
    EXPECT_TRUE(p.WriteString(3, u"Gain", u"8") && p.WriteDouble(u"pi", 3.14159265358979));
    EXPECT_EQ(p.ReadInt(3, u"Gain", 0), 8);
    EXPECT_EQ((p.ReadString(u"Gain3", WString()) + u" " + p.ReadString(u"pi", WString())).ToUtf8(),
              "8 3.14159265358979");
    EXPECT_TRUE(p.ExistsSection(u"DEFAULT"));
    p.DeleteSection();
    EXPECT_FALSE(p.ExistsSection(u"default"));
}

TEST_F(Profile, BooleansNeitherCreateNorConvert) {
    EXPECT_EQ(BProfile::WriteString(Path("none/x.ini"), u"S", u"k", u"v"), 0)
        << "the static write makes the folder";
    BProfile bools(Path("other/x.ini"), kProfileReadOnly);
    EXPECT_FALSE(bools.IsValid()) << "no folder, no file";
    WriteBytes(m_dir / "a.ini", "[default]\r\n");
    BProfile ansi(Path("a.ini"), kProfileReadWrite);
    EXPECT_TRUE(ansi.WriteBoolean(u"b", false));
    EXPECT_EQ(Bytes("a.ini"), "[default]\r\nb=FALSE\r\n");
    EXPECT_TRUE(BProfile(Path("fresh.ini"), kProfileReadOnly).IsValid());
    EXPECT_EQ(Bytes("fresh.ini"), "") << "IsValid creates an empty file";
}
