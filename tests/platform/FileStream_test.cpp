#include "platform/FileTestSupport.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <qv/platform/FileStream.h>
#include <qv/platform/WideStream.h>
#include <string>
#include <vector>

using namespace qv::platform;
using namespace std::string_literals;

namespace {

void WriteThrough(TempDir const& dir, char16_t const* mode, std::u16string const& text) {
    EXPECT_EQ(fputws16(text.c_str(), OpenStream(dir / "w.txt", mode).get()), 0);
}

// Every unit up to the end, and the end marker itself.
std::u16string ByUnits(std::FILE* f) {
    std::u16string units;
    for (int c; (c = fgetwc16(f)) != kWEOF;)
        units.push_back(static_cast<char16_t>(c));
    EXPECT_EQ(fgetwc16(f), 0xFFFF);
    return units;
}
std::u16string ReadUnits(std::string const& path, char16_t const* mode) {
    return ByUnits(OpenStream(path, mode).get());
}

// Every line fgetws16 reads with a buffer of `size` units, joined.
std::u16string ByLines(std::FILE* f, int size) {
    std::vector<char16_t> buffer(static_cast<std::size_t>(size));
    std::u16string got;
    while (fgetws16(buffer.data(), size, f))
        got += buffer.data();
    return got;
}

std::string FreadAll(std::string const& path, char16_t const* mode) {
    std::string out(256, '\0');
    out.resize(std::fread(out.data(), 1, out.size(), OpenStream(path, mode).get()));
    return out;
}

} // namespace

// One exact image of what Windows writes; UNICODE mode writes the same bytes. Appending to a new
// file writes one byte order mark; to an existing file, in its encoding.
TEST(FileStream, WritingAndAppendingMatchWindowsByteForByte) {
    TempDir dir;
    WriteThrough(dir, u"wt,ccs=UTF-16LE", u"$KEY\tGr\u00FC\u00DF\u20AC 100%\nsecond line\n");
    EXPECT_EQ(ReadBytes(dir / "w.txt"), DataFile("utf16le_written_by_windows.txt"));
    WriteThrough(dir, u"wt,ccs=UTF-16LE", u"x\ny\n");
    WriteBytes(dir / "utf8.txt", "\xEF\xBB\xBFu\n");
    WriteBytes(dir / "ansi.txt", "ab\r\n");
    for (auto [name, line] : {std::pair{"log.txt", u"x\n"},
                              {"log.txt", u"y\n"},
                              {"utf8.txt", u"\u00FC\n"},
                              {"ansi.txt", u"c\n"}})
        EXPECT_EQ(fputws16(line, OpenStream(dir / name, u"at,ccs=UNICODE").get()), 0);
    EXPECT_EQ(ReadBytes(dir / "log.txt"), ReadBytes(dir / "w.txt"));
    EXPECT_EQ(ReadBytes(dir / "utf8.txt"), "\xEF\xBB\xBFu\n\xC3\xBC\r\n");
    EXPECT_EQ(ReadBytes(dir / "ansi.txt"), "ab\r\nc\r\n");
}

TEST(FileStream, ReadingFoldsCrLfAndKeepsALoneCr) {
    TempDir dir;
    WriteBytes(dir / "a.txt", "\xFF\xFE"s + "a\0\r\0\n\0b\0\r\0c\0"s);
    EXPECT_EQ(ReadUnits(dir / "a.txt", u"r,ccs=UTF-16LE"), u"a\nb\rc");
    EXPECT_EQ(FreadAll(dir / "a.txt", u"r,ccs=UTF-16LE"), "a\0\n\0b\0\r\0c\0"s);
    // Binary mode sees the file as it is, byte order mark included.
    EXPECT_EQ(ReadUnits(dir / "a.txt", u"rb"), u"\uFEFFa\r\nb\rc");
}

TEST(FileStream, ByteOrderMarkDecidesTheEncodingOnReading) {
    TempDir dir;
    WriteBytes(dir / "utf8.txt", "\xEF\xBB\xBFu\n\xC3\xBC\r\n\xF0\x9F\x98\x80\xFF");
    EXPECT_EQ(ReadUnits(dir / "utf8.txt", u"r,ccs=UTF-16LE"), u"u\n\u00FC\n\U0001F600\uFFFD");
    EXPECT_EQ(FreadAll(dir / "utf8.txt", u"r,ccs=UTF-16LE").substr(0, 8), "u\0\n\0\xFC\0\n\0"s);
    // Without one, UNICODE reads ANSI and UTF-16LE reads UTF-16LE.
    WriteBytes(dir / "plain.txt", "ab\r\nc");
    EXPECT_EQ(ReadUnits(dir / "plain.txt", u"r,ccs=UNICODE"), u"ab\nc");
    EXPECT_EQ(ReadUnits(dir / "plain.txt", u"r,ccs=UTF-16LE"), u"\u6261\u0A0D");
}

TEST(FileStream, AnsiTextModeFoldsCrLfAndEndsAtCtrlZ) {
    TempDir dir;
    WriteBytes(dir / "ansi.txt", "\xE4\x80\r\nz\x1Aq");
    EXPECT_EQ(ReadUnits(dir / "ansi.txt", u"rt"), u"\u00E4\u0080\nz");
    EXPECT_EQ(FreadAll(dir / "ansi.txt", u"rt"), "\xE4\x80\nz");
    EXPECT_EQ(FreadAll(dir / "ansi.txt", u"r"), "\xE4\x80\nz"); // text is the default
    {
        Stream const f = OpenStream(dir / "out.txt", u"wt");
        EXPECT_EQ(fputws16(u"p\n\u00E4", f.get()), 0);
        EXPECT_EQ(std::fputs("\n", f.get()), 1);
        // The runtime's "C" locale has no byte for the euro sign.
        EXPECT_EQ(fputwc16(u'\u20AC', f.get()), kWEOF);
        EXPECT_EQ(fputws16(u"q\u20ACr", f.get()), -1);
    }
    EXPECT_EQ(ReadBytes(dir / "out.txt"), "p\r\n\xE4\r\nq");
}

TEST(FileStream, BinaryModeWritesUnitsAsTheyAre) {
    TempDir dir;
    WriteThrough(dir, u"wb", u"a\n\x1A");
    EXPECT_EQ(ReadBytes(dir / "w.txt"), "a\0\n\0\x1A\0"s);
}

TEST(FileStream, OnlyALineFeedEndsALineRead) {
    TempDir dir;
    // Units that share bits or bytes with a line feed, and a zero unit, which ends the text.
    std::u16string const line = u"\u0002\u0008\u0A0A\u000B" + std::u16string(20, u'x') + u"\0y\n"s;
    WriteBytes(dir / "c.txt", Utf16File(line + u"z"));
    Stream const f = OpenStream(dir / "c.txt", u"r,ccs=UTF-16LE");
    char16_t buffer[64];
    _lock_file(f.get());
    EXPECT_EQ(GetLineUnlocked(buffer, 64, f.get()), 24);
    _unlock_file(f.get());
    EXPECT_EQ(std::u16string(buffer, line.size()), line);
    EXPECT_EQ(fgetwc16(f.get()), u'z');
}

TEST(FileStream, CrLfSplitBetweenTheLayersReadsIsFolded) {
    TempDir dir;
    // Lines of three units behind none, one or two: one of the three has a CR last in any read
    // of whole units, with its line feed in the next read.
    for (std::u16string const prefix : {u"", u"x", u"xx"}) {
        std::u16string text = prefix, expected = prefix;
        for (int i = 0; i < 30000; ++i) {
            text += u"x\r\n";
            expected += u"x\n";
        }
        WriteBytes(dir / "e.txt", Utf16File(text));
        Stream const f = OpenStream(dir / "e.txt", u"r,ccs=UTF-16LE");
        EXPECT_TRUE(ByLines(f.get(), 8) == expected) << prefix.size(); // no diff of such texts
        std::rewind(f.get());
        std::u16string got(expected.size() + 1, u'?');
        got.resize(std::fread(got.data(), 2, got.size(), f.get()));
        EXPECT_TRUE(got == expected) << prefix.size();
    }
}

// Lines longer than fgetws16's buffer, across the layer's buffers, with stdio's reads between.
TEST(FileStream, LineReadsAndStdioReadsTakeTurns) {
    TempDir dir;
    std::u16string text;
    for (int i = 0; text.size() < 20000; ++i)
        text +=
            std::u16string(static_cast<std::size_t>(i % 50), static_cast<char16_t>(u'a' + i % 26)) +
            u"\r\n";
    WriteBytes(dir / "t.txt", Utf16File(text + u"end\r"));
    std::u16string expected = text + u"end\r";
    for (std::size_t at; (at = expected.find(u"\r\n")) != std::u16string::npos;)
        expected.erase(at, 1);
    Stream const f = OpenStream(dir / "t.txt", u"r,ccs=UTF-16LE");
    std::u16string got;
    char16_t line[32];
    for (int i = 0; fgetws16(line, 32, f.get()); ++i) {
        got += line;
        EXPECT_EQ(std::ftell(f.get()), static_cast<long>(2 * got.size()));
        if (i % 100 == 99) // stdio fills its buffer, which the next line reads take first
            for (int c; got.size() % 1000 != 0 && (c = fgetwc16(f.get())) != kWEOF;)
                got += static_cast<char16_t>(c);
    }
    EXPECT_TRUE(got == expected);
    EXPECT_TRUE(std::feof(f.get()));
    // Rewinding starts again behind the byte order mark.
    std::rewind(f.get());
    EXPECT_EQ(fgetwc16(f.get()), u'\n');
    EXPECT_EQ(std::ftell(f.get()), 2);
}

// A line read must not take units from beside stdio while stdio still holds bytes of its own:
// an odd byte left by a byte read, or a byte pushed back. It then reads what unit reads see.
TEST(FileStream, LineReadsAfterAnOddByteOrAPushedBackByteSeeWhatUnitReadsSee) {
    TempDir dir;
    std::u16string text;
    for (int i = 0; i < 20000; ++i) // more than stdio's buffer, so that the layer has more
        text += u"abc\r\n";
    WriteBytes(dir / "o.txt", Utf16File(text));
    for (auto disturb : {+[](std::FILE* f) { std::fgetc(f); },
                         +[](std::FILE* f) { std::ungetc(std::fgetc(f), f); }}) {
        Stream const lines = OpenStream(dir / "o.txt", u"r,ccs=UTF-16LE");
        Stream const units = OpenStream(dir / "o.txt", u"r,ccs=UTF-16LE");
        disturb(lines.get());
        disturb(units.get());
        EXPECT_TRUE(ByLines(lines.get(), 16) == ByUnits(units.get())); // no diff of such texts
    }
}

TEST(FileStream, BadArgumentsAndMissingFiles) {
    TempDir dir;
    std::FILE* f = reinterpret_cast<std::FILE*>(1);
    EXPECT_EQ(_wfopen_s(&f, nullptr, u"rb"), EINVAL);
    EXPECT_EQ(f, nullptr);
    for (char16_t const* mode : {u"", u"q", u"rbt", u"rb,ccs=UNICODE", u"r,ccs=UTF-7", u"r+t"})
        EXPECT_EQ(_wfopen_s(&f, dir.U("x").c_str(), mode), EINVAL);
    EXPECT_EQ(_wfopen_s(&f, dir.U("missing").c_str(), u"r,ccs=UTF-16LE"), ENOENT);
    // A directory is no stream, as on Windows.
    EXPECT_EQ(_wfopen_s(&f, dir.U().c_str(), u"rt"), EACCES);
}

// Names beyond ASCII reach the file system as UTF-8.
TEST(FileStream, WideNamesReachTheFileSystemAsUtf8) {
    TempDir dir;
    std::u16string const name = dir.U() + u"/Me\u00DFkopf \u6E2C\u5B9A.ini";
    std::FILE* f = _wfsopen(name.c_str(), u"wt,ccs=UNICODE", _SH_DENYNO);
    ASSERT_NE(f, nullptr);
    std::fclose(f);
    EXPECT_EQ(ReadBytes(dir / "Me\xC3\x9Fkopf \xE6\xB8\xAC\xE5\xAE\x9A.ini"), "\xFF\xFE");
}
