#include <cerrno>
#include <gtest/gtest.h>
#include <qv/platform/PathText.h>
#include <string>

using namespace qv::platform;

namespace {

std::u16string Combine(char16_t const* dir, char16_t const* file) {
    char16_t out[MAX_PATH] = u"untouched";
    char16_t* r = PathCombineW(out, dir, file);
    return r ? std::u16string(r) : u"<null:" + std::u16string(out) + u">";
}

std::u16string RemoveSpec(std::u16string path, bool expected) {
    EXPECT_EQ(PathRemoveFileSpecW(path.data()), expected) << std::string(path.begin(), path.end());
    return path.c_str();
}

std::u16string Strip(std::u16string path) {
    PathStripPathW(path.data());
    return path.c_str();
}

} // namespace

// Windows' answers (docs/probes/path_text_probe.cpp) with '/' composed, except where
// docs/paths.md tells otherwise.
TEST(PathText, CombineResolvesDotsAndTakesAbsoluteFilesAlone) {
    struct Row {
        char const* name;
        char16_t const* dir;
        char16_t const* file;
        char16_t const* result;
    } const rows[] = {
        {"up one", u"C:\\a\\b", u"..\\c", u"C:/a/c"},
        {"separators", u"a\\b", u"sub/x\\y", u"a/b/sub/x/y"},
        {"trailing separator", u"a", u"b\\", u"a/b/"},
        {"not above a drive root", u"C:\\a", u"..\\..\\..\\c", u"C:/c"},
        {"not above the start", u"a\\b", u"..\\..\\..\\c", u"c"},
        {"leading .. after a dot", u".", u"..\\b", u"../b"},
        {"leading .. survives a later one", u"..\\a", u"..\\b", u"../b"},
        {"out of a share", u"\\\\srv\\share", u"..\\x", u"//srv/x"},
        {"never above the server", u"\\\\srv\\sh", u"..\\..\\..\\z", u"//srv/z"},
        {"bare drive", u"C:", u"", u"C:/"},
        {"both empty", u"", u"", u"/"},
        {"absolute file alone", u"/a", u"\\\\srv\\s", u"//srv/s"},
        {"null file", u"x", nullptr, u"x"},
        {"both null", nullptr, nullptr, u"<null:>"},
    };
    for (Row const& r : rows)
        EXPECT_EQ(Combine(r.dir, r.file), r.result) << r.name;
    EXPECT_EQ(PathCombineW(nullptr, u"a", u"b"), nullptr);
}

// What a result of MAX_PATH or more turns into is the path entries' test; here the boundary.
TEST(PathText, CombineFitsResultsBelowMaxPath) {
    std::u16string const dir(255, u'd');
    EXPECT_EQ(Combine(dir.c_str(), u"abc").size(), 259u);
    // A long input that resolves to a short result is fine.
    std::u16string const longInput = dir + u"/../x";
    EXPECT_EQ(Combine(longInput.c_str(), u"y"), u"x/y");
}

TEST(PathText, RemoveFileSpecKeepsTheRoot) {
    EXPECT_EQ(RemoveSpec(u"C:\\a", true), u"C:\\");
    EXPECT_EQ(RemoveSpec(u"C:\\", false), u"C:\\");
    EXPECT_EQ(RemoveSpec(u"a", true), u"");
    EXPECT_EQ(RemoveSpec(u"a\\", true), u"a");
    EXPECT_EQ(RemoveSpec(u"\\\\srv\\share", true), u"\\\\srv");
    EXPECT_EQ(RemoveSpec(u"\\\\srv", true), u"\\\\");
    EXPECT_EQ(RemoveSpec(u"a.txt:stream", true), u"a.txt:");
    EXPECT_EQ(RemoveSpec(u"ab:", false), u"ab:");
    EXPECT_EQ(RemoveSpec(u"C:a", true), u"C:");
    EXPECT_FALSE(PathRemoveFileSpecW(nullptr));
}

TEST(PathText, FileNameExtensionAndStrip) {
    struct Case {
        char16_t const* path;
        char16_t const* name;
        char16_t const* ext;
    };
    // The path entries' test takes ordinary names, dots in directories and roots apart.
    Case const cases[] = {
        {u"a\\b\\", u"b\\", u""},
        {u".bashrc", u".bashrc", u".bashrc"},
        {u"a.", u"a.", u"."},
        {u"C:x.y", u"x.y", u".y"},
    };
    for (Case const& c : cases) {
        std::u16string const path(c.path);
        EXPECT_EQ(std::u16string(PathFindFileNameW(c.path)), c.name)
            << std::string(path.begin(), path.end());
        EXPECT_EQ(std::u16string(PathFindExtensionW(c.path)), c.ext);
        EXPECT_EQ(Strip(c.path), c.name);
    }
    EXPECT_EQ(PathFindFileNameW(nullptr), nullptr);
    EXPECT_EQ(PathFindExtensionW(nullptr), nullptr);
}

TEST(PathText, SplitPath) {
    char16_t drive[3], dir[MAX_PATH], name[MAX_PATH], ext[MAX_PATH];
    auto a = [](char16_t const* s) { return std::string(s, s + std::u16string_view(s).size()); };
    auto split = [&](char16_t const* path) {
        int r = _wsplitpath_s(path, drive, 3, dir, MAX_PATH, name, MAX_PATH, ext, MAX_PATH);
        return std::to_string(r) + "|" + a(drive) + "|" + a(dir) + "|" + a(name) + "|" + a(ext);
    };
    EXPECT_EQ(split(u"C:\\a\\b.txt"), "0|C:|\\a\\|b|.txt");
    EXPECT_EQ(split(u"a/b.c.d"), "0||a/|b.c|.d");
    EXPECT_EQ(split(u"\\\\srv\\share\\x.y"), "0||\\\\srv\\share\\|x|.y");
    // Parts not wanted, parts that do not fit, bad arguments.
    EXPECT_EQ(_wsplitpath_s(u"/a/b.c", nullptr, 0, nullptr, 0, name, MAX_PATH, nullptr, 0), 0);
    EXPECT_EQ(std::u16string(name), u"b");
    EXPECT_EQ(_wsplitpath_s(u"C:\\a", drive, 2, dir, MAX_PATH, nullptr, 0, nullptr, 0), ERANGE);
    EXPECT_EQ(drive[0], 0);
    EXPECT_EQ(dir[0], 0);
    EXPECT_EQ(_wsplitpath_s(nullptr, drive, 3, nullptr, 0, nullptr, 0, nullptr, 0), EINVAL);
    EXPECT_EQ(_wsplitpath_s(u"a", nullptr, 3, nullptr, 0, nullptr, 0, nullptr, 0), EINVAL);
}

// Backslashes and names beyond ASCII are what the file streams see through their names.
TEST(PathText, NativePathAndAbsoluteness) {
    EXPECT_EQ(NativePath(u"\\\\?\\/tmp/x"), "/tmp/x");
    EXPECT_TRUE(PathIsAbsolute(u"\\a"));
    EXPECT_TRUE(PathIsAbsolute(u"d:"));
    EXPECT_FALSE(PathIsAbsolute(u"a/b"));
    EXPECT_FALSE(PathIsAbsolute(u"1:"));
    EXPECT_FALSE(PathIsAbsolute(u""));
}
