// Lines read from streams that BFile opens, through every read mode.
#include "platform/FileTestSupport.h"

#include <gtest/gtest.h>
#include <qv/core/files/BFile.h>
#include <qv/core/strings/BString.h>
#include <qv/core/strings/WString.h>
#include <qv/platform/WideStream.h>
#include <string>
#include <vector>

using namespace std::string_literals;

namespace {

// Every line ReadLn gives until it reports the end.
template <class S>
std::vector<S> ReadAllLines(std::FILE* stream) {
    std::vector<S> lines;
    for (S line; line.ReadLn(stream);)
        lines.push_back(line);
    return lines;
}

} // namespace

TEST(BFileStrings, ReadLnOnUtf16TextFoldsCrLfAndKeepsLoneCarriageReturns) {
    TempDir dir;
    WriteBytes(dir / "u.txt", Utf16File(u"first\r\nGr\u00FC\u00DF\u20AC\r\r\n\r\nlast"));
    BFile in(dir.U("u.txt").c_str(), u"r,ccs=UTF-16LE");
    ASSERT_NE(static_cast<std::FILE*>(in), nullptr);
    // The last line ends at the end of the file, which is then flagged: no empty line after it.
    std::vector<WString> const expected{u"first", u"Gr\u00FC\u00DF\u20AC\r", u"", u"last"};
    EXPECT_EQ(ReadAllLines<WString>(in), expected);
    WString line(u"kept");
    EXPECT_FALSE(line.ReadLn(in));
    EXPECT_EQ(line, u"kept");
}

TEST(BFileStrings, ReadLnOnAnsiTextAndBinaryStreams) {
    TempDir dir;
    WriteBytes(dir / "a.txt", "a\xFC\r\nx\ry\r\n");
    {
        // Text mode folds CR LF; the file ends after a line feed, so one empty line follows.
        BFile in(dir.U("a.txt").c_str(), u"rt");
        std::vector<WString> const expected{u"a\u00FC", u"x\ry", u""};
        EXPECT_EQ(ReadAllLines<WString>(in), expected);
        ASSERT_TRUE(in.Rewind());
        std::vector<BString> const narrow{"a\xFC", "x\ry", ""};
        EXPECT_EQ(ReadAllLines<BString>(in), narrow);
    }
    {
        BFile in(dir.U("a.txt").c_str(), u"rb");
        std::vector<BString> const expected{"a\xFC\r", "x\ry\r", ""};
        EXPECT_EQ(ReadAllLines<BString>(in), expected);
    }
    // In binary mode a 16-bit unit is two bytes as they are, the byte order mark included.
    WriteBytes(dir / "u.bin", Utf16File(u"p\r\nq\n"));
    BFile in(dir.U("u.bin").c_str(), u"rb");
    std::vector<WString> const expected{u"\uFEFFp\r", u"q", u""};
    EXPECT_EQ(ReadAllLines<WString>(in), expected);
}

TEST(BFileStrings, AZeroUnitEndsTheLinesTextButNotItsRead) {
    TempDir dir;
    // A piece is read through its line feed, but its text ends at a zero unit: a piece whose
    // text is short ends the line, the rest of the piece is gone, and the next line starts
    // with the next piece.
    std::u16string text = u"abc\r\nxy\0z\r\n"s + std::u16string(600, u'a') + u"\r\nend";
    text[11 + 100] = 0;
    text.replace(11 + 511, 89, 89, u'b');
    WriteBytes(dir / "z.txt", Utf16File(text));
    BFile in(dir.U("z.txt").c_str(), u"r,ccs=UTF-16LE");
    std::vector<WString> const expected{u"abc", u"xy", WString(std::u16string(100, u'a')),
                                        WString(std::u16string(89, u'b')), u"end"};
    EXPECT_EQ(ReadAllLines<WString>(in), expected);
    WriteBytes(dir / "z.bin", "ab\0cd\nef\n"s);
    BFile bin(dir.U("z.bin").c_str(), u"rb");
    std::vector<BString> const narrow{"ab", "ef", ""};
    EXPECT_EQ(ReadAllLines<BString>(bin), narrow);
}

TEST(BFileStrings, LongLinesComeBackWholeThroughUtf16Text) {
    TempDir dir;
    // Around the piece of 511 units: a piece that is exactly a line with its line feed, a line
    // that needs a second piece for its line feed alone, and lines of several pieces.
    std::vector<std::u16string> lines;
    for (std::size_t n : {510u, 511u, 512u, 1022u, 1100u})
        lines.push_back(std::u16string(n, static_cast<char16_t>(u'a' + n % 26)));
    lines.back()[700] = u'\u20AC';
    {
        BFile out(dir.U("l.txt").c_str(), u"wt,ccs=UTF-16LE");
        for (auto const& line : lines)
            ASSERT_EQ(qv::platform::fputws16((line + u"\n").c_str(), out), 0);
    }
    BFile in(dir.U("l.txt").c_str(), u"r,ccs=UTF-16LE");
    WString line(u"shared");
    WString const before = line;
    for (auto const& expected : lines) {
        ASSERT_TRUE(line.ReadLn(in));
        EXPECT_EQ(line.View(), expected) << expected.size();
    }
    EXPECT_EQ(before, u"shared"); // the line was built in a block of its own
    EXPECT_TRUE(line.ReadLn(in)); // nothing left, but the end was not flagged yet
    EXPECT_TRUE(line.IsEmpty());
    EXPECT_FALSE(line.ReadLn(in));
}
