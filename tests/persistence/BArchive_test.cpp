#include "ArchiveTestSupport.h"
#include "MemoryArchive.h"

#include <gtest/gtest.h>
#include <qv/core/BError.h>
#include <string>

namespace {

using namespace std::string_literals;

TEST(ArchiveStreaming, ValuesAndStringsAsStored) {
    MemoryArchive out({}, BArchive::WRITE);
    out << std::int32_t(0x01020304) << 1.0 << true << std::int16_t(-2) << BString() << BString("ab")
        << WString() << WString(u"a\u00e9");
    EXPECT_EQ(out.Bytes(), Bytes({4, 3, 2, 1, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F, 1, 0xFE, 0xFF}) +
                               "S\0\0\0\0"s + "S\x02\0\0\0ab"s + "\0\0\0\0"s +
                               Bytes({2, 0, 0, 0, 'a', 0, 0xE9, 0}));

    MemoryArchive in(out.Bytes());
    std::int32_t i = 0;
    std::int16_t h = 0;
    double d = 0;
    bool b = false;
    BString n1("old"), n2;
    WString w1(u"old"), w2;
    in >> i >> d >> b >> h >> n1 >> n2 >> w1 >> w2;
    EXPECT_TRUE(i == 0x01020304 && d == 1.0 && b && h == -2);
    EXPECT_TRUE(n1.IsEmpty() && n2 == "ab" && w1.IsEmpty() && w2 == WString(u"a\u00e9"));
}

TEST(ArchiveStreaming, ReadingIntoASharedStringLeavesTheOtherHolderAlone) {
    MemoryArchive in("S\x03\0\0\0xyzS\x02\0\0\0ab"s);
    BString target("a longer text");
    BString const other = target;
    in >> target;
    EXPECT_EQ(target + "|" + other, "xyz|a longer text");
    BString const copy = target;
    in >> target; // filled anew, not through the block it shares with copy
    EXPECT_EQ(target + "|" + copy, "ab|xyz");
    EXPECT_THROW(in >> target, ARCHIVE_EXCEPTION); // nothing left: the tag is missing
    EXPECT_EQ(target, "ab");
}

TEST(ArchiveStreaming, ShortLongAndDamagedStrings) {
    auto read = [](auto text, std::string const& bytes) {
        MemoryArchive in(bytes);
        in >> text;
        return text;
    };
    auto narrow = [&](std::string const& bytes) {
        return std::string(read(BString(), bytes).View());
    };
    EXPECT_THROW(narrow("T\0\0\0\0"s), ARCHIVE_EXCEPTION) << "a narrow string needs its tag";
    // A narrow string keeps its stated length, blanks where bytes are missing ...
    EXPECT_EQ(narrow("S\x05\0\0\0ab"s), "ab   ");
    // ... but four billion bytes announced, three present, claim no gigabytes ...
    std::string const huge = narrow("S\xFF\xFF\xFF\xFF"
                                    "abc"s);
    EXPECT_TRUE(huge.starts_with("abc") && huge.size() <= 64u * 1024u) << huge.size();
    // ... while 200000 bytes that are there come back whole.
    std::string text(200000, 'q');
    text[123456] = 'z';
    EXPECT_EQ(narrow("S\x40\x0D\x03\0"s + text), text);
    // A wide string that is cut off, or has a count below 1, is empty.
    for (std::string const& bytes :
         {Bytes({3, 0, 0, 0, 'a', 0, 'b'}), Bytes({0xFF, 0xFF, 0xFF, 0xFF, 'a', 0})})
        EXPECT_EQ(read(WString(u"old"), bytes).ToUtf8(), "");
}

TEST(ArchivePrefix, ReadPrefixWidthsOfTheFormats) {
    std::string const head = "S\x01\0\0\0\x61"s + "S\0\0\0\0"s + "S\x01\0\0\0X"s + "\x05\0\0\0"s;
    BString id, name, cls;
    int version = 0;
    unsigned long long size = 0;
    MemoryArchive eight(head + Bytes({1, 2, 0, 0, 0, 0, 0, 1}), BArchive::READ, 8);
    ASSERT_TRUE(BSmartObj::ReadPrefix(eight, id, name, cls, version, size));
    EXPECT_EQ(id + "|" + name + "|" + cls + "|" + std::to_string(version).c_str(), "a||X|5");
    EXPECT_EQ(size, 0x0100000000000201ull);
    // Older formats hold a signed 32-bit size, widened with its sign.
    MemoryArchive seven(head + Bytes({0xEA, 0xEA, 0xEA, 0xEA}), BArchive::READ, 7);
    ASSERT_TRUE(BSmartObj::ReadPrefix(seven, id, name, cls, version, size));
    EXPECT_EQ(static_cast<long long>(size), static_cast<std::int32_t>(0xEAEAEAEA));
    // A wrong tag or an archive gone bad is false, and throws nothing.
    MemoryArchive wrong("S\x01\0\0\0\x31X"s);
    EXPECT_FALSE(BSmartObj::ReadPrefix(wrong, id, name, cls, version, size));
    MemoryArchive bad(head + Bytes({1, 2, 0, 0, 0, 0, 0, 1}));
    bad.m_good = false;
    EXPECT_FALSE(BSmartObj::ReadPrefix(bad, id, name, cls, version, size));
}

SP<BSmartObj> ReadA(BArchive&, int) {
    return nullptr;
}
SP<BSmartObj> ReadB(BArchive&, int) {
    return nullptr;
}

TEST(ReadFunctionTable, FirstRegistrationWinsAndCaseCounts) {
    RegisterArchiveCallback("class TableProbe", &ReadA);
    RegisterArchiveCallback("class TableProbe", &ReadB);
    RegisterArchiveCallback(nullptr, &ReadB);
    RegisterArchiveCallback("class NullProbe", nullptr);
    EXPECT_EQ(BArchive::SmartObjReadFunction("class TableProbe"), &ReadA);
    EXPECT_EQ(BArchive::SmartObjReadFunction("class tableprobe"), nullptr);
    EXPECT_EQ(BArchive::SmartObjReadFunction("class NullProbe"), nullptr);
    EXPECT_EQ(BArchive::SmartObjReadFunction(BString()), nullptr);

    std::string const longest = "class " + std::string(121, 'L'); // 127 characters
    RegisterArchiveCallback(longest.c_str(), &ReadB);
    EXPECT_EQ(BArchive::SmartObjReadFunction(longest.c_str()), &ReadB);
}

TEST(ReadFunctionTableDeathTest, LimitsEndTheProcess) {
    EXPECT_EXIT(RegisterArchiveCallback(std::string(128, 'L').c_str(), &ReadA),
                testing::ExitedWithCode(255), "");
    EXPECT_EXIT(
        {
            for (int i = 0; i < 600; ++i)
                RegisterArchiveCallback(("class Filler" + std::to_string(i)).c_str(), &ReadA);
        },
        testing::ExitedWithCode(255), "");
}

} // namespace
