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

// The answer and the path left, as "1:path".
std::u16string RemoveSpec(std::u16string path) {
    bool const removed = PathRemoveFileSpecW(path.data());
    return (removed ? u"1:" : u"0:") + std::u16string(path.c_str());
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
    EXPECT_EQ(Combine((dir + u"/../x").c_str(), u"y"), u"x/y");
}

TEST(PathText, RemoveFileSpecKeepsTheRoot) {
    EXPECT_EQ(RemoveSpec(u"C:\\a"), u"1:C:\\");
    EXPECT_EQ(RemoveSpec(u"C:\\"), u"0:C:\\");
    EXPECT_EQ(RemoveSpec(u"a"), u"1:");
    EXPECT_EQ(RemoveSpec(u"a\\"), u"1:a");
    EXPECT_EQ(RemoveSpec(u"\\\\srv\\share"), u"1:\\\\srv");
    EXPECT_EQ(RemoveSpec(u"\\\\srv"), u"1:\\\\");
    EXPECT_EQ(RemoveSpec(u"a.txt:stream"), u"1:a.txt:");
    EXPECT_EQ(RemoveSpec(u"ab:"), u"0:ab:");
    EXPECT_EQ(RemoveSpec(u"C:a"), u"1:C:");
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
    for (Case const& c : cases)
        EXPECT_EQ(std::u16string(PathFindFileNameW(c.path)) + u"|" + PathFindExtensionW(c.path) +
                      u"|" + Strip(c.path),
                  std::u16string(c.name) + u"|" + c.ext + u"|" + c.name)
            << std::u16string_view(c.path).size();
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
    EXPECT_EQ(a(drive) + a(dir), "") << "a part that does not fit clears them all";
    EXPECT_EQ(_wsplitpath_s(nullptr, drive, 3, nullptr, 0, nullptr, 0, nullptr, 0), EINVAL);
    EXPECT_EQ(_wsplitpath_s(u"a", nullptr, 3, nullptr, 0, nullptr, 0, nullptr, 0), EINVAL);
}

// Backslashes and names beyond ASCII are what the file streams see through their names.
TEST(PathText, NativePathAndAbsoluteness) {
    EXPECT_EQ(NativePath(u"\\\\?\\/tmp/x"), "/tmp/x");
    std::string absolute;
    for (char16_t const* path : {u"\\a", u"d:", u"a/b", u"1:", u""})
        absolute += PathIsAbsolute(path) ? '1' : '0';
    EXPECT_EQ(absolute, "11000");
}
