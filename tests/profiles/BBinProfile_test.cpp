#include "platform/FileTestSupport.h"

#include <cstring>
#include <qv/core/BError.h>
#include <qv/profiles/BBinProfile.h>
#include <qv/profiles/BProfile.h>
#include <qv/profiles/OpenProfile.h>

namespace {

// Little-endian building blocks of the file.
std::string U32(std::uint32_t v) {
    return std::string(reinterpret_cast<char const*>(&v), 4);
}
// A string record: its length, the length's complement, the units and a null.
std::string Counted(std::size_t length, std::string const& unitsWithNull) {
    return U32(static_cast<std::uint32_t>(length)) + U32(~static_cast<std::uint32_t>(length)) +
           unitsWithNull;
}
std::string Wide(std::u16string const& s) {
    return Counted(s.size(),
                   std::string(reinterpret_cast<char const*>(s.c_str()), s.size() * 2 + 2));
}
std::string Narrow(std::string const& s) {
    return Counted(s.size(), s + std::string(1, '\0'));
}
std::string const kAnsi = U32(1497451525);
std::string const kUnicode = U32(1765886982);

class BinProfile : public ::testing::Test {
protected:
    WString Path() const { return WString(m_dir.U("p.bin").c_str()); }
    std::string File() const { return ReadBytes(m_dir / "p.bin"); }
    void Put(std::string const& bytes) const { WriteBytes(m_dir / "p.bin", bytes); }
    TempDir m_dir;
};

TEST_F(BinProfile, WritesTheUnicodeFormByteForByte) {
    {
        BBinProfile profile(Path(), kProfileReadWrite);
        profile.WriteInt(u"gain", 5);
    }
    EXPECT_EQ(File(), kUnicode + Wide(u"[default]gain") + U32(1) + U32(5));
    {
        BBinProfile profile(Path(), kProfileReadWrite);
        profile.SetSection(u"Camera");
        std::uint8_t none = 0;
        profile.WriteMem(u"Empty", &none, 0);
        profile.DeleteKey(u"gain"); // in "Camera": nothing there
        profile.SetSection(u"default");
        profile.DeleteKey(u"gain");
    }
    EXPECT_EQ(File(), kUnicode + Wide(u"[camera]empty") + U32(4) + U32(0) + U32(0xFFFFFFFF));
    BBinProfile again(Path(), kProfileReadOnly);
    again.SetSection(u"CAMERA");
    EXPECT_TRUE(again.ReadMem(u"EMPTY", nullptr, 0));
    int four = 0;
    EXPECT_FALSE(again.ReadMem(u"EMPTY", &four, 4));
}

TEST_F(BinProfile, AnAnsiFileComesBackInUnicodeFormWithItsNarrowStrings) {
    Put(kAnsi + Narrow("[cam]name") + U32(2) + Narrow("left") + Narrow("[cam]on") + U32(5) +
        std::string(1, '\1'));
    {
        BBinProfile profile(Path(), kProfileReadWrite);
        profile.SetSection(u"Cam");
        EXPECT_EQ(profile.ReadString(u"Name", u"?"), WString(u"left"));
        EXPECT_TRUE(profile.ReadBoolean(u"ON", false));
        EXPECT_EQ(profile.ReadInt(u"name", -1), -1); // no conversion between types
        profile.WriteBoolean(u"on", false);
    }
    std::string file = File();
    EXPECT_EQ(file.substr(0, 4), kUnicode);
    EXPECT_NE(file.find(Wide(u"[cam]name") + U32(2) + Narrow("left")), std::string::npos);
    EXPECT_NE(file.find(Wide(u"[cam]on") + U32(5) + std::string(1, '\0')), std::string::npos);
}

TEST_F(BinProfile, DamagedFilesKeepOrDropWhatTheRecordRulesSay) {
    std::string const good = Wide(u"[s]a") + U32(1) + U32(7);
    struct Row {
        char const* name;
        std::string bytes;
        bool valid;
        int a;
    } const rows[] = {
        {"only the magic", kUnicode, true, -1},
        {"unknown magic", U32(42) + good, false, -1},
        {"cut inside a key", kUnicode + good + Wide(u"[s]b").substr(0, 11), true, 7},
        {"unknown type code drops everything", kUnicode + good + Wide(u"[s]b") + U32(7), true, -1},
        {"a value cut short reads as zero", kUnicode + Wide(u"[s]a") + U32(1) + "\x09", true, 0},
        {"a block size that lies",
         kUnicode + good + Wide(u"[s]m") + U32(4) + U32(0x7FFFFFFF) + U32(0x80000000) + "xy", true,
         7},
    };
    for (Row const& row : rows) {
        Put(row.bytes);
        BBinProfile profile(Path(), kProfileReadOnly);
        profile.SetSection(u"s");
        EXPECT_EQ(std::pair(profile.IsValid(), profile.ReadInt(u"a", -1)),
                  std::pair(row.valid, row.a))
            << row.name;
    }
}

TEST_F(BinProfile, ModesAndSections) {
    std::string const old = kUnicode + Wide(u"[old]k") + U32(1) + U32(1);
    Put(old);
    {
        BBinProfile fresh(Path(), kProfileNew);
        fresh.SetSection(u"old");
        EXPECT_EQ(fresh.ReadInt(u"k", -1), -1); // starts empty ...
    }
    EXPECT_EQ(File(), old); // ... and leaves the file alone unless written

    BBinProfile readOnly(Path(), kProfileReadOnly);
    EXPECT_THROW(readOnly.WriteInt(u"k", 2), BError);

    BBinProfile profile(Path(), kProfileReadWrite);
    profile.SetSection(u"New");
    profile.WriteString(3, u"Gain", u"x");
    EXPECT_TRUE(profile.ExistsSection(u"NEW"));
    profile.WriteInt(u"gain3", 9); // another type replaces the text
    EXPECT_EQ(profile.ReadString(u"Gain3", u"default"), WString(u"default"));
    profile.DeleteSection();
    EXPECT_FALSE(profile.ExistsSection(u"new") || profile.GetSection() != WString(u"New"));
    profile.SetSection(u"a]b"); // cut at the bracket: never found as a section
    profile.WriteInt(u"k", 1);
    EXPECT_FALSE(profile.ExistsSection(u"a]b"));
}

// Which class reads which file is what qvtool's profile commands show; here, that what
// OpenProfile gives is read-only.
TEST_F(BinProfile, OpenProfileOpensReadOnly) {
    EXPECT_FALSE(OpenProfile(Path()));
    Put(kUnicode + Wide(u"[default]k") + U32(1) + U32(4));
    SP<BProfileBase> binary = OpenProfile(Path());
    ASSERT_TRUE(dynamic_cast<BBinProfile*>(binary.get()));
    EXPECT_THROW(binary->WriteInt(u"k", 5), BError);
    Put("[default]\r\nk=6\r\n");
    SP<BProfileBase> text = OpenProfile(Path());
    ASSERT_TRUE(dynamic_cast<BProfile*>(text.get()));
    EXPECT_EQ(text->ReadInt(u"missing", 1), 1);
    EXPECT_EQ(File(), "[default]\r\nk=6\r\n");
}

} // namespace
