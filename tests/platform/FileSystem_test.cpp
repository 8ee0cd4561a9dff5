#include "platform/FileTestSupport.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <qv/platform/FileSystem.h>
#include <set>
#include <string>
#include <vector>

using namespace qv::platform;
namespace fs = std::filesystem;

namespace {

// Every name FindFirstFileW finds for the pattern, with its attribute word.
std::vector<std::pair<std::string, std::uint32_t>> Find(std::u16string const& pattern) {
    std::vector<std::pair<std::string, std::uint32_t>> found;
    WIN32_FIND_DATAW data;
    HANDLE h = FindFirstFileW(pattern.c_str(), &data);
    if (h == INVALID_HANDLE_VALUE)
        return found;
    do {
        std::u16string_view const name(data.cFileName);
        found.emplace_back(std::string(name.begin(), name.end()), data.dwFileAttributes);
    } while (FindNextFileW(h, &data));
    EXPECT_FALSE(FindNextFileW(h, &data));
    EXPECT_TRUE(FindClose(h));
    return found;
}

std::set<std::string> Names(std::u16string const& pattern) {
    std::set<std::string> names;
    for (auto const& [name, attributes] : Find(pattern))
        names.insert(name);
    return names;
}

} // namespace

TEST(Wildcards, MatchAsWindowsDoes) {
    EXPECT_TRUE(MatchesWildcard(u"readme", u"*.*"));
    EXPECT_TRUE(MatchesWildcard(u"\u00C4rger.ini", u"\u00E4*.INI"));
    EXPECT_FALSE(MatchesWildcard(u"cam12.ini", u"cam?.ini"));
    EXPECT_TRUE(MatchesWildcard(u"abcabd", u"*ab?"));
    EXPECT_TRUE(MatchesWildcard(u"x", u"x.*"));
    EXPECT_TRUE(MatchesWildcard(u"noext", u"*."));
    EXPECT_FALSE(MatchesWildcard(u"a.txt", u"*."));
    EXPECT_FALSE(MatchesWildcard(nullptr, u"*"));
}

TEST(FindFiles, ListsMatchesWithTheirAttributes) {
    TempDir dir;
    WriteBytes(dir / "a.txt", "1");
    WriteBytes(dir / "B.TXT", "22");
    WriteBytes(dir / ".hidden", "");
    WriteBytes(dir / "ro.txt", "x");
    fs::permissions(dir / "ro.txt",
                    fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
    fs::create_directory(dir / "sub.d");
    EXPECT_EQ(Names(dir.U() + u"/*.*"),
              (std::set<std::string>{".", "..", ".hidden", "B.TXT", "a.txt", "ro.txt", "sub.d"}));
    for (auto const& [name, attributes] : Find(dir.U() + u"/*")) {
        std::uint32_t const expected = name == "ro.txt"    ? FILE_ATTRIBUTE_READONLY
                                       : name == ".hidden" ? FILE_ATTRIBUTE_HIDDEN
                                       : name == "sub.d" || name[0] == '.'
                                           ? FILE_ATTRIBUTE_DIRECTORY
                                           : FILE_ATTRIBUTE_NORMAL;
        EXPECT_EQ(attributes, expected) << name;
    }
    WIN32_FIND_DATAW data;
    HANDLE h = FindFirstFileW((dir.U() + u"/b.txt").c_str(), &data);
    ASSERT_NE(h, INVALID_HANDLE_VALUE);
    EXPECT_EQ(std::u16string(data.cFileName), u"B.TXT");
    EXPECT_EQ(data.nFileSizeLow, 2u);
    FindClose(h);
    EXPECT_EQ(FindFirstFileW((dir.U() + u"/*.none").c_str(), &data), INVALID_HANDLE_VALUE);
    EXPECT_EQ(FindFirstFileW((dir.U() + u"/sub.d/").c_str(), &data), INVALID_HANDLE_VALUE);
    EXPECT_FALSE(FindClose(INVALID_HANDLE_VALUE));
}

TEST(DirectoryServices, AnswersAsWindowsDoes) {
    TempDir dir;
    std::u16string const deep = dir.U() + u"\\x\\y";
    EXPECT_EQ(SHCreateDirectoryExW(nullptr, deep.c_str(), nullptr), ERROR_SUCCESS);
    EXPECT_EQ(SHCreateDirectoryExW(nullptr, deep.c_str(), nullptr), ERROR_ALREADY_EXISTS);
    EXPECT_TRUE(PathIsDirectoryEmptyW(deep.c_str()));
    EXPECT_TRUE(RemoveDirectoryW(deep.c_str()));
    EXPECT_FALSE(RemoveDirectoryW(deep.c_str()));
    WriteBytes(dir / "file", "1");
    EXPECT_EQ(SHCreateDirectoryExW(nullptr, dir.U("file").c_str(), nullptr), ERROR_FILE_EXISTS);
    EXPECT_EQ(SHCreateDirectoryExW(nullptr, u"", nullptr), ERROR_BAD_PATHNAME);
    EXPECT_FALSE(PathIsDirectoryEmptyW(dir.U("file").c_str()));
    EXPECT_TRUE(PathFileExistsW((dir.U() + u"\\x\\").c_str()));
    // Read-only files staying is the file class's deletion test.
    EXPECT_FALSE(DeleteFileW((dir.U() + u"/x").c_str()));
    EXPECT_TRUE(DeleteFileW(dir.U("file").c_str()));
}
