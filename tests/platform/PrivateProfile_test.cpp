// The ini engine against what the private-profile service answers on Windows. The read rows
// are the answers of docs/probes/ini_probe.cpp and ini_probe2.cpp (results beside them) on
// tests/data/ini_probe.ini, which joins the files of both probes; the write rows follow
// Windows, which edits only the line concerned (docs/profiles.md).
#include "FileTestSupport.h"

#include <chrono>
#include <fcntl.h>
#include <qv/platform/CodePage.h>
#include <qv/platform/PrivateProfile.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace qv::platform;

namespace {

// A list answer with its terminators shown as '|'.
std::string Shown(char16_t const* buffer, std::uint32_t n) {
    std::string out;
    for (std::uint32_t i = 0; i <= n; ++i)
        out += buffer[i] ? static_cast<char>(buffer[i]) : '|';
    return out;
}

class PrivateProfile : public ::testing::Test {
protected:
    // The file of the probes.
    void SetUp() override { WriteBytes(m_dir / "p.ini", DataFile("ini_probe.ini")); }
    std::u16string Path(std::string const& name = "p.ini") const { return m_dir.U(name); }
    std::string Bytes(std::string const& name = "p.ini") const { return ReadBytes(m_dir / name); }

    TempDir m_dir;
};

} // namespace

TEST_F(PrivateProfile, ValuesReadAsWindowsReadsThem) {
    struct {
        char const* name;
        char16_t const* section;
        char16_t const* key;
        char const* expected;
    } const rows[] = {
        {"blanks trimmed", u"sec a", u"key1", "value one"},
        {"query trimmed", u" Sec A ", u" key1 ", "value one"},
        {"double quotes", u"Sec A", u"key2", "quoted"},
        {"single quotes", u"Sec A", u"key3", "single"},
        {"unbalanced quote", u"Sec A", u"key4", "\"unbalanced"},
        {"quotes after trimming", u"Sec A", u"key5", " spaced "},
        {"outer quotes only", u"Sec A", u"q1", "a\"b"},
        {"lone quote", u"Sec A", u"q2", "\""},
        {"comment line by name", u"Sec A", u";comment", "x"},
        {"hash is no comment", u"Sec A", u"# hash", "y"},
        {"line without equals", u"Sec A", u"novalue", "def"},
        {"empty name", u"Sec A", u"", "noname"},
        {"second section of a name unseen", u"Sec A", u"extra", "def"},
        {"tab is a blank", u"Last", u"tab\tkey", "v"},
        {"no line end at the end", u"Last", u"nl", "x"},
        {"lone CR ends a line", u"Last", u"cr", "1"},
        {"name up to the last bracket", u"a]b", u"k", "v"},
        {"no closing bracket is ignored", u"a]b", u"k2", "v2"},
    };
    for (auto const& row : rows) {
        char16_t buffer[256];
        std::uint32_t const n =
            GetPrivateProfileStringW(row.section, row.key, u"def  ", buffer, 256, Path().c_str());
        EXPECT_EQ(Shown(buffer, n), row.expected + std::string("|")) << row.name;
    }
}

TEST_F(PrivateProfile, ListsAndTheirCuts) {
    struct {
        char const* name;
        char16_t const* section; // null: section names
        bool wholeSection;
        std::uint32_t size;
        char const* expected;
        std::uint32_t n;
    } const rows[] = {
        {"section names", nullptr, false, 256, "Sec A|sec a|a]b|Last||", 21},
        {"keys: no comments, no valueless lines, first section only", u"Sec A", false, 256,
         "key1|key2|key3|key4|key5|KEY1|# hash|empty||int1|int2|int3|int4|int5|int6|int7|int8|"
         "int9|q1|q2|q3||",
         98},
        {"keys of a missing section", u"none", false, 256, "|", 0},
        {"keys cut anywhere", u"Sec A", false, 8, "key1|k||", 6},
        {"names cut at whole names", nullptr, false, 8, "Sec A|||", 6},
        {"section lines cut at whole lines", u"a]b", true, 6, "k=v|||", 4},
        {"whole section, valueless lines too", u"Last", true, 256, "lone|cr=1|tab\tkey=v|nl=x||",
         25},
        {"keys size 2", u"Sec A", false, 2, "||", 0},
    };
    for (auto const& row : rows) {
        char16_t buffer[256];
        std::fill(buffer, buffer + 256, u'#');
        std::uint32_t n;
        if (row.wholeSection)
            n = GetPrivateProfileSectionW(row.section, buffer, row.size, Path().c_str());
        else if (!row.section)
            n = GetPrivateProfileSectionNamesW(buffer, row.size, Path().c_str());
        else
            n = GetPrivateProfileStringW(row.section, nullptr, nullptr, buffer, row.size,
                                         Path().c_str());
        EXPECT_EQ(n, row.n) << row.name;
        EXPECT_EQ(Shown(buffer, row.size == 256 ? n : row.size - 1), row.expected) << row.name;
    }
}

TEST_F(PrivateProfile, ValueCutsAndDefaults) {
    char16_t buffer[16];
    auto get = [&](char16_t const* key, char16_t const* fallback, std::uint32_t size) {
        std::uint32_t const n =
            GetPrivateProfileStringW(u"Sec A", key, fallback, buffer, size, Path().c_str());
        return std::to_string(n) + ":" + Utf16ToUtf8(size ? buffer : u"");
    };
    EXPECT_EQ(get(u"key1", u"", 5), "4:valu");
    EXPECT_EQ(get(u"key1", u"", 1), "0:");
    EXPECT_EQ(get(u"key1", u"", 0), "0:");
    EXPECT_EQ(get(u"x", nullptr, 16), "0:");
    EXPECT_EQ(get(u"x", u" \"x\" ", 16), "4: \"x\"")
        << "a default keeps its leading blanks and quotes";
    EXPECT_EQ(GetPrivateProfileStringW(u"s", u"k", u"d", buffer, 16, Path("none.ini").c_str()), 1u);
}

TEST_F(PrivateProfile, NumbersReadAsWindowsReadsThem) {
    struct {
        char16_t const* key;
        std::uint32_t expected;
    } const rows[] = {
        {u"int1", 42}, {u"int2", 4294967289u}, {u"int3", 31},          {u"int4", 0},  {u"int5", 99},
        {u"int6", 1},  {u"int7", 0},           {u"int8", 4294967280u}, {u"int9", 12},
    };
    for (auto const& row : rows)
        EXPECT_EQ(GetPrivateProfileIntW(u"Sec A", row.key, 99, Path().c_str()), row.expected)
            << std::string(row.key, row.key + std::char_traits<char16_t>::length(row.key));
}

// Round trips and size checks are the ini profile's; here the image and the checksum.
TEST_F(PrivateProfile, StructsCarryAChecksum) {
    unsigned char const data[3] = {0x12, 0xAF, 0x00};
    ASSERT_TRUE(WritePrivateProfileStructW(u"S", u"blob", data, 3, Path("s.ini").c_str()));
    ASSERT_TRUE(WritePrivateProfileStringW(u"S", u"low", u"12af00c1", Path("s.ini").c_str()));
    ASSERT_TRUE(WritePrivateProfileStringW(u"S", u"bad", u"12AF00C2", Path("s.ini").c_str()));
    EXPECT_EQ(Bytes("s.ini"), "[S]\r\nblob=12AF00C1\r\nlow=12af00c1\r\nbad=12AF00C2\r\n");
    unsigned char back[3] = {9, 9, 9};
    EXPECT_FALSE(GetPrivateProfileStructW(u"S", u"bad", back, 3, Path("s.ini").c_str()));
    EXPECT_EQ(back[0], 9);
    EXPECT_TRUE(GetPrivateProfileStructW(u"S", u"low", back, 3, Path("s.ini").c_str()));
    EXPECT_EQ(back[1], 0xAF);
}

TEST_F(PrivateProfile, WritesEditOnlyTheLineConcerned) {
    struct {
        char const* name;
        char const* before;
        char16_t const* section;
        char16_t const* key;   // null: delete the section
        char16_t const* value; // null: delete the key
        char const* after;
    } const rows[] = {
        {"new file", nullptr, u"S", u"k", u"v", "[S]\r\nk=v\r\n"},
        {"value replaced, spacing kept", "[S]\r\n  k = old  \r\nz=1\r\n", u"s", u"K", u"new",
         "[S]\r\n  k =new\r\nz=1\r\n"},
        {"LF line ends stay", "[S]\nk=1\n", u"S", u"k", u"2", "[S]\nk=2\n"},
        {"new key after the last key", "[S]\r\na=1\r\n\r\n[T]\r\n", u"S", u"b", u"2",
         "[S]\r\na=1\r\nb=2\r\n\r\n[T]\r\n"},
        {"last line without line end", "[S]\r\na=1", u"S", u"b", u"2", "[S]\r\na=1\r\nb=2\r\n"},
        {"valueless line gets a value", "[S]\r\nflag\r\n", u"S", u"flag", u"on",
         "[S]\r\nflag=on\r\n"},
        {"first of duplicate keys", "[S]\r\nk=1\r\nK=2\r\n", u"S", u"k", u"3",
         "[S]\r\nk=3\r\nK=2\r\n"},
        {"key deleted with its line end", "[S]\r\na=1\r\nb=2\r\n", u"S", u"a", nullptr,
         "[S]\r\nb=2\r\n"},
        {"section deleted up to the next header", "[S]\r\na=1\r\n\r\n[T]\r\nb=2\r\n", u"s", nullptr,
         nullptr, "[T]\r\nb=2\r\n"},
        {"every section of the name deleted", "[S]\r\na=1\r\n[T]\r\n[s]\r\nc=3\r\n", u"S", nullptr,
         nullptr, "[T]\r\n"},
        {"folding beyond ASCII", "[\xC4rger]\r\n\xE4pfel=1\r\n", u"\u00E4rger", u"\u00C4PFEL",
         u"\u20AC", "[\xC4rger]\r\n\xE4pfel=\x80\r\n"},
        {"character outside the code page", nullptr, u"S", u"k", u"\u4E00", "[S]\r\nk=?\r\n"},
    };
    int i = 0;
    for (auto const& row : rows) {
        std::string const name = "w" + std::to_string(i++) + ".ini";
        if (row.before)
            WriteBytes(m_dir / name, row.before);
        EXPECT_TRUE(WritePrivateProfileStringW(row.section, row.key, row.value, Path(name).c_str()))
            << row.name;
        EXPECT_EQ(Bytes(name), row.after) << row.name;
    }
    // A UTF-16 file stays UTF-16, and a stray last byte goes with the first edit.
    WriteBytes(m_dir / "u.ini", Utf16File(u"[S]\r\n") + "x");
    EXPECT_TRUE(WritePrivateProfileStringW(u"S", u"k", u"\u20AC", Path("u.ini").c_str()));
    EXPECT_EQ(Bytes("u.ini"), Utf16File(u"[S]\r\nk=\u20AC\r\n"));
}

TEST_F(PrivateProfile, WholeSectionsAndConversion) {
    WriteBytes(m_dir / "c.ini", "[S]\r\nold=1\r\n\r\n[T]\nx=\xE4\n");
    EXPECT_TRUE(WritePrivateProfileSectionW(u"S", u"a=1\0b = 2\0", Path("c.ini").c_str()));
    EXPECT_TRUE(WritePrivateProfileSectionW(u"N", u"n=1\0", Path("c.ini").c_str()));
    EXPECT_EQ(Bytes("c.ini"), "[S]\r\na=1\r\nb = 2\r\n[T]\nx=\xE4\n[N]\r\nn=1\r\n");
    EXPECT_TRUE(ConvertPrivateProfileToUnicode(Path("c.ini").c_str()));
    std::string const converted = Bytes("c.ini");
    EXPECT_EQ(converted, Utf16File(u"[S]\r\na=1\r\nb = 2\r\n[T]\r\nx=\u00E4\r\n[N]\r\nn=1\r\n"));
    EXPECT_TRUE(ConvertPrivateProfileToUnicode(Path("c.ini").c_str()));
    EXPECT_EQ(Bytes("c.ini"), converted) << "a Unicode file stays as it is";
}

TEST_F(PrivateProfile, DamagedFilesReadWithoutHarm) {
    struct {
        char const* name;
        std::string bytes;
        char const* value; // of [S] k
    } const rows[] = {
        {"odd byte in utf-16", std::string("\xFF\xFE[\0S\0]\0\n\0k\0=\0v\0x", 17), "v"},
        {"utf-8 with mark", "\xEF\xBB\xBF[S]\nk=\xE2\x82\xAC\n", "\xE2\x82\xAC"},
    };
    for (auto const& row : rows) {
        // Another program's write is seen once the stamp is checked again.
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        WriteBytes(m_dir / "d.ini", row.bytes);
        char16_t buffer[8];
        GetPrivateProfileStringW(u"S", u"k", u"def", buffer, 8, Path("d.ini").c_str());
        EXPECT_EQ(Utf16ToUtf8(buffer), row.value) << row.name;
        EXPECT_TRUE(WritePrivateProfileStringW(u"S", u"n", u"1", Path("d.ini").c_str()))
            << row.name;
        EXPECT_EQ(GetPrivateProfileIntW(u"S", u"n", 0, Path("d.ini").c_str()), 1u) << row.name;
    }
}

TEST_F(PrivateProfile, FailedWritesLeaveTheFile) {
    EXPECT_FALSE(WritePrivateProfileStringW(u"S", u"k", u"v", Path("no/dir.ini").c_str()));
    EXPECT_FALSE(WritePrivateProfileStringW(u"S", u"k", u"v", m_dir.U().c_str()));
    EXPECT_EQ(Bytes(), DataFile("ini_probe.ini"));
    WriteBytes(m_dir / "ro.ini", "[S]\r\nk=1\r\n");
    ::chmod((m_dir / "ro.ini").c_str(), 0444);
    if (::access((m_dir / "ro.ini").c_str(), W_OK) == 0)
        GTEST_SKIP() << "running with rights that ignore file modes";
    EXPECT_FALSE(WritePrivateProfileStringW(u"S", u"k", u"2", Path("ro.ini").c_str()));
    EXPECT_EQ(Bytes("ro.ini"), "[S]\r\nk=1\r\n");
}

TEST_F(PrivateProfile, ChangesFromOutsideAreSeen) {
    auto const path = Path("x.ini");
    WriteBytes(m_dir / "x.ini", "[S]\r\nk=1\r\n");
    EXPECT_EQ(GetPrivateProfileIntW(u"S", u"k", 0, path.c_str()), 1u);
    // Same size, rewritten in place.
    WriteBytes(m_dir / "x.ini", "[S]\r\nk=2\r\n");
    struct timespec const later[2] = {{0, UTIME_OMIT}, {2000000000, 0}};
    ::utimensat(AT_FDCWD, (m_dir / "x.ini").c_str(), later, 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(GetPrivateProfileIntW(u"S", u"k", 0, path.c_str()), 2u);
    EXPECT_TRUE(WritePrivateProfileStringW(u"S", u"j", u"3", path.c_str()));
    EXPECT_EQ(Bytes("x.ini"), "[S]\r\nk=2\r\nj=3\r\n");
    ::unlink((m_dir / "x.ini").c_str());
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(GetPrivateProfileIntW(u"S", u"k", 7, path.c_str()), 7u);
}
