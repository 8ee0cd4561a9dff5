#include <algorithm>
#include <climits>
#include <cstdio>
#include <gtest/gtest.h>
#include <memory>
#include <qv/core/strings/BString.h>
#include <qv/core/strings/WString.h>
#include <sstream>
#include <string>
#include <vector>

namespace {

TEST(StringFormats, NumbersInAndOutAndConvertWantsTheWholeText) {
    EXPECT_EQ(WString(u"  -42abc").AtoI(), -42);
    WString w(u"keep");
    EXPECT_EQ(w.ItoA(-255, 16), u"ffffffffffffff01");
    EXPECT_EQ(w.ItoA(7, 1), u"ffffffffffffff01"); // a bad radix leaves the text
    EXPECT_EQ(BString::FromInt(LLONG_MIN), "-9223372036854775808");
    double d = 0;
    EXPECT_TRUE(WString(u" \t1.5e2 ").Convert(d) && d == 150.0);
    EXPECT_FALSE(WString(u"1.5 x").Convert(d));

    int i = 0;
    EXPECT_TRUE(BString("0x1F").Convert(i));
    EXPECT_EQ(i, 31);
    EXPECT_FALSE(BString("1.5").Convert(i));
    EXPECT_EQ(i, 1); // the scan wrote the target
    EXPECT_TRUE(WString(u"-1.5").Convert(i));
    EXPECT_EQ(i, -2);
    EXPECT_TRUE(WString(u"-3e9").Convert(i));
    EXPECT_EQ(i, INT_MIN);
    EXPECT_FALSE(WString(u"1.5x").Convert(i));
}

TEST(StringFormats, MemoryImagesRoundTripAndRefuseForeignUnits) {
    unsigned char bytes[] = {0x00, 0x1F, 0xA5, 0xFF};
    WString w;
    w.EncodeMemory(bytes, 4);
    EXPECT_EQ(w, u"001?:5??");
    unsigned char back[4] = {};
    EXPECT_TRUE(w.DecodeMemory(back, 4));
    EXPECT_TRUE(std::equal(back, back + 4, bytes));

    EXPECT_FALSE(w.DecodeMemory(back, 3)); // wrong length
    unsigned char partial[2] = {9, 9};
    EXPECT_FALSE(WString(u"12G4").DecodeMemory(partial, 2));
    EXPECT_EQ(partial[0] * 256 + partial[1], 0x1209) << "the pairs before the bad one are written";
}

TEST(StringFormats, PrintfFormatsWithStringsOfBothClasses) {
    WString w;
    w.Printf(u"%s=%d (%S) %.2f", WString(u"x"), 42, BString("n"), 0.126);
    EXPECT_EQ(w.ToUtf8(), "x=42 (n) 0.13");
    BString b("old");
    b.Printf("%s|%5s|%ls", BString("a"), "b", WString(u"w"));
    EXPECT_EQ(b, "a|    b|w");
    b.Printf(nullptr);
    EXPECT_EQ(b.CStr(0), nullptr); // no result leaves null
    w.Printf(u"%y");
    EXPECT_TRUE(w.IsEmpty());
}

// Text of n characters through %s, so that the result lands at a chosen length.
template <class S, class Unit>
void ExpectPrintfLength(std::size_t n) {
    std::basic_string<Unit> text(n, Unit('a'));
    S s;
    Unit const percent_s[] = {'<', '%', 's', '>', 0};
    s.Printf(percent_s, text.c_str());
    EXPECT_EQ(s.Length(), n + 2) << n;
    EXPECT_EQ(s.CStr()[n + 1], Unit('>')) << n;
}

TEST(StringFormats, PrintfAtAndAcrossItsBufferLimits) {
    // WString: 4096 in the fixed buffer, then 32768-unit heap buffers doubling.
    for (std::size_t n : {4094, 4095, 32765, 32766, 70000})
        ExpectPrintfLength<WString, char16_t>(n);
    // BString: 16384 in the fixed buffer.
    for (std::size_t n : {16382, 16383, 32766, 100000})
        ExpectPrintfLength<BString, char>(n);
}

TEST(StringFormats, PrintableEscapesWhatCannotBeSeen) {
    EXPECT_EQ(BString("a\tb\nc\rd\\e\x01\xe9").Printable(), "a\\tb\\nc\\rd\\\\e\\x01\\xe9");
    EXPECT_EQ(WString(u"\x7f\u0085\u00e9\u263a").Printable(), u"\\x7f\\x85\u00e9\u263a");
    BString plain("nothing to do");
    EXPECT_EQ(plain.Printable().CStr(), plain.CStr()); // shares the block
}

TEST(StringFormats, ResolveEscWorksInOnePassFromTheLeft) {
    BString b("a\\nb\\rc\\td\\\\n\\x41\\xZZe\\q\\");
    BString other = b;
    b.ResolveEsc();
    EXPECT_EQ(b, "a\nb\rc\td\\nAe\\q\\");
    EXPECT_EQ(other, "a\\nb\\rc\\td\\\\n\\x41\\xZZe\\q\\");
    WString w(u"\\x41\\x4");
    w.ResolveEsc();
    EXPECT_EQ(w, u"A");
}

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;
File TempFile() {
    return File(std::tmpfile(), &std::fclose);
}
std::vector<unsigned char> Bytes(std::FILE* f) {
    std::rewind(f);
    std::vector<unsigned char> out;
    for (int c; (c = std::fgetc(f)) != EOF;)
        out.push_back(static_cast<unsigned char>(c));
    std::rewind(f);
    return out;
}

TEST(StringFormats, RecordLayoutAndRoundTrip) {
    File f = TempFile();
    ASSERT_TRUE(WString(u"ab").FWrite(f.get()));
    ASSERT_TRUE(WString().FWrite(f.get()));
    ASSERT_TRUE(WString(u"\u20ac").FWrite(f.get()));
    std::vector<unsigned char> expected = {2, 0, 0, 0, 0xFD, 0xFF, 0xFF, 0xFF, 'a',  0,    'b', 0,
                                           0, 0, 0, 0, 0,    0,    0xFF, 0xFF, 0xFF, 0xFF, 0,   0,
                                           1, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF, 0xAC, 0x20, 0,   0};
    EXPECT_EQ(Bytes(f.get()), expected);
    WString a, b(u"not yet"), c;
    EXPECT_TRUE(a.FRead(f.get()) && b.FRead(f.get()) && c.FRead(f.get()));
    EXPECT_EQ(a, u"ab");
    EXPECT_EQ(b.CStr(0), nullptr);
    EXPECT_FALSE(c.FRead(f.get())); // end of file: unchanged
    EXPECT_EQ(c, u"\u20ac");
}

TEST(StringFormats, DamagedRecordsAreRefused) {
    auto write = [](std::vector<unsigned char> const& bytes) {
        File f = TempFile();
        std::fwrite(bytes.data(), 1, bytes.size(), f.get());
        std::rewind(f.get());
        return f;
    };
    BString s("kept");
    File bad_complement = write({2, 0, 0, 0, 0xFD, 0xFF, 0xFF, 0x7F, 'a', 'b', 0});
    EXPECT_FALSE(s.FRead(bad_complement.get()));
    EXPECT_EQ(s, "kept");
    File short_text = write({5, 0, 0, 0, 0xFA, 0xFF, 0xFF, 0xFF, 'a', 'b'});
    EXPECT_FALSE(s.FRead(short_text.get()));
    EXPECT_EQ(s.CStr(0), nullptr);
    // A huge length in a small file fails without taking the memory it names.
    File huge = write({0xF0, 0xFF, 0xFF, 0xFF, 0x0F, 0, 0, 0, 'a', 0});
    EXPECT_FALSE(WString().FRead(huge.get()));
}

TEST(StringFormats, BStringRecordsOnCppStreams) {
    std::stringstream stream;
    EXPECT_TRUE(BString("one").FWrite(stream) && BString().FWrite(stream));
    EXPECT_EQ(stream.str(),
              std::string("\3\0\0\0\xfc\xff\xff\xffone\0\0\0\0\0\xff\xff\xff\xff\0", 21));
    BString a, b("x"), c("stays");
    EXPECT_TRUE(a.FRead(stream) && b.FRead(stream));
    EXPECT_FALSE(c.FRead(stream));
    EXPECT_EQ(a, "one");
    EXPECT_TRUE(b.IsEmpty());
    EXPECT_EQ(c, "stays");
}

} // namespace
