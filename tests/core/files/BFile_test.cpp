#include "platform/FileTestSupport.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <qv/core/files/BFile.h>
#include <string>
#include <utility>
#include <vector>

using namespace std::string_literals;
namespace fs = std::filesystem;

namespace {

void MakeReadOnly(std::string const& path) {
    fs::permissions(path, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
}

} // namespace

TEST(BFile, ExistAndKind) {
    TempDir dir;
    WriteBytes(dir / "f.txt", "12345");
    fs::create_directory(dir / "sub");
    std::string exist;
    for (std::u16string const& path : {dir.U("f.txt"), dir.U() + u"\\*.TXT", dir.U("none"),
                                       dir.U("sub"), dir.U("sub") + u"/", std::u16string(u"/")})
        exist += BFile::Exist(path.c_str()) ? '1' : '0';
    // Wildcards count as a match; a directory named with a separator last does not exist.
    EXPECT_EQ(exist, "110101");
    EXPECT_TRUE(BFile::IsDirectory(dir.U("sub").c_str()));
    EXPECT_EQ(BFile::Size(dir.U("f.txt").c_str()), 5);
    EXPECT_EQ(BFile::Size(dir.U("sub").c_str()), -1);
}

TEST(BFile, IsUnicodeReadsTheByteOrderMark) {
    TempDir dir;
    for (auto const& [bytes, unicode] : std::vector<std::pair<std::string, bool>>{
             {"\xFF", false}, {"\xFE\xFF", true}, {"\xEF\xBB\xBF", true}, {"\xEF\xBB", false}}) {
        WriteBytes(dir / "f", bytes);
        EXPECT_EQ(BFile::IsUnicode(dir.U("f").c_str()), unicode) << bytes.size();
    }
}

TEST(BFile, ConvertToUnicodeKeepsPercentSignsAndLineEnds) {
    TempDir dir;
    std::string ansi = "[Sensor]\r\nGain=100%\r\nName=Gr\xFC\xDF%s%d\r\n";
    ansi += std::string(5000, 'x') + "\r\nend"; // beyond the formatted write's fixed buffer
    WriteBytes(dir / "s.ini", ansi);
    EXPECT_EQ(BFile::ConvertToUnicode(dir.U("s.ini").c_str()), 0);
    std::string expected = "\xFF\xFE";
    for (unsigned char c : ansi) {
        expected += static_cast<char>(c);
        expected += '\0';
    }
    EXPECT_EQ(ReadBytes(dir / "s.ini"), expected);
    // Already Unicode: untouched.
    EXPECT_EQ(BFile::ConvertToUnicode(dir.U("s.ini").c_str()), 0);
    EXPECT_EQ(ReadBytes(dir / "s.ini"), expected);
    // A zero byte ends its block's text.
    WriteBytes(dir / "z.txt", "ab\0cd"s);
    EXPECT_EQ(BFile::ConvertToUnicode(dir.U("z.txt").c_str()), 0);
    EXPECT_EQ(ReadBytes(dir / "z.txt"), "\xFF\xFE\x61\0b\0"s);
}

TEST(BFile, DeleteByPatternSkipsReadOnlyFilesAndDirectories) {
    TempDir dir;
    for (char const* name : {"a.tmp", "b.TMP", "ro.tmp", "keep.txt"})
        WriteBytes(dir / name, "x");
    fs::create_directory(dir / "d.tmp");
    MakeReadOnly(dir / "ro.tmp");
    EXPECT_EQ(BFile::Delete(WString(dir.U().c_str()) + u"\\*.tmp"), 2);
    for (char const* gone : {"a.tmp", "b.TMP"})
        EXPECT_FALSE(fs::exists(dir / gone)) << gone;
    for (char const* kept : {"ro.tmp", "d.tmp", "keep.txt"})
        EXPECT_TRUE(fs::exists(dir / kept)) << kept;
    EXPECT_EQ(BFile::Delete(WString(dir.U().c_str()) + u"/*.none"), -1);
    // Without a path part the names are taken in the current directory.
    auto const cwd = fs::current_path();
    fs::current_path(dir.Path());
    EXPECT_EQ(BFile::Delete(u"keep.*"), 1);
    fs::current_path(cwd);
    EXPECT_FALSE(fs::exists(dir / "keep.txt"));
}

TEST(BFile, ShortPathNames) {
    TempDir dir;
    WriteBytes(dir / "with blank.txt", "");
    auto const [blank, status] = BFile::GetShortPathNameW(dir.U("with blank.txt").c_str());
    EXPECT_EQ(std::u16string(blank.View()), dir.U("with blank.txt"));
    EXPECT_EQ(status, BFile::kShortPathNameExt);
    EXPECT_TRUE(BFile::GetShortPathNameW(dir.U("none").c_str()).first.IsEmpty());
    // Long paths pass with the long-path prefix.
    std::string deep = dir.Path();
    while (deep.size() < 300)
        deep += "/" + std::string(40, 'n');
    fs::create_directories(deep);
    std::u16string const deep16(deep.begin(), deep.end());
    auto const longOne = BFile::GetShortPathNameW(deep16.c_str());
    EXPECT_EQ(std::u16string(longOne.first.View()), u"\\\\?\\" + deep16);
    EXPECT_EQ(longOne.second, 0);
}
