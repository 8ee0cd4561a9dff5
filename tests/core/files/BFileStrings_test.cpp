// Lines read from streams that BFile opens, through every read mode.
#include "platform/FileTestSupport.h"

#include <gtest/gtest.h>
#include <qv/core/files/BFile.h>
#include <qv/core/strings/BString.h>
#include <qv/core/strings/WString.h>
#include <string>
#include <type_traits>
#include <vector>

using namespace std::string_literals;

namespace {

// Every line ReadLn gives until it reports the end, widened unit by unit; a string that
// finds the end flagged keeps its text.
template <class S>
std::vector<std::u16string> ReadAllLines(std::string const& path, char16_t const* mode) {
    std::u16string const path16(path.begin(), path.end());
    BFile in(path16.c_str(), mode);
    EXPECT_NE(static_cast<std::FILE*>(in), nullptr) << path;
    std::vector<std::u16string> lines;
    S line;
    while (line.ReadLn(in)) {
        lines.emplace_back();
        for (auto p = line.CStr(); *p; ++p)
            lines.back() += static_cast<char16_t>(
                static_cast<std::make_unsigned_t<std::remove_cvref_t<decltype(*p)>>>(*p));
    }
    S kept(u"kept");
    EXPECT_FALSE(kept.ReadLn(in));
    EXPECT_EQ(kept, S(u"kept"));
    return lines;
}

} // namespace

TEST(BFileStrings, ReadLnThroughEveryReadMode) {
    TempDir dir;
    // A piece is read through its line feed, but its text ends at a zero unit: a piece whose
    // text is short ends the line, the rest of the piece is gone, and the next line starts
    // with the next piece.
    std::u16string zeros = u"abc\r\nxy\0z\r\n"s + std::u16string(600, u'a') + u"\r\nend";
    zeros[11 + 100] = 0;
    zeros.replace(11 + 511, 89, 89, u'b');
    std::string const ansi = "a\xFC\r\nx\ry\r\n";
    struct Row {
        char const* name;
        std::string bytes;
        char16_t const* mode;
        bool wide;
        std::vector<std::u16string> lines;
    } const rows[] = {
        // The last line ends at the end of the file, which is then flagged: no empty line.
        {"UTF-16 text folds CR LF and keeps a lone CR",
         Utf16File(u"first\r\nGr\u00FC\u00DF\u20AC\r\r\n\r\nlast"),
         u"r,ccs=UTF-16LE",
         true,
         {u"first", u"Gr\u00FC\u00DF\u20AC\r", u"", u"last"}},
        // The file ends after a line feed, so one empty line follows.
        {"ANSI text, wide", ansi, u"rt", true, {u"a\u00FC", u"x\ry", u""}},
        {"ANSI text, narrow", ansi, u"rt", false, {u"a\u00FC", u"x\ry", u""}},
        {"binary, narrow", ansi, u"rb", false, {u"a\u00FC\r", u"x\ry\r", u""}},
        {"binary, wide: a unit is two bytes as they are, the byte order mark included",
         Utf16File(u"p\r\nq\n"),
         u"rb",
         true,
         {u"\uFEFFp\r", u"q", u""}},
        {"a zero unit ends the line's text but not its read",
         Utf16File(zeros),
         u"r,ccs=UTF-16LE",
         true,
         {u"abc", u"xy", std::u16string(100, u'a'), std::u16string(89, u'b'), u"end"}},
        {"a zero byte", "ab\0cd\nef\n"s, u"rb", false, {u"ab", u"ef", u""}},
    };
    for (Row const& row : rows) {
        WriteBytes(dir / "f", row.bytes);
        EXPECT_EQ(row.wide ? ReadAllLines<WString>(dir / "f", row.mode)
                           : ReadAllLines<BString>(dir / "f", row.mode),
                  row.lines)
            << row.name;
    }
}
