#include <gtest/gtest.h>
#include <qv/core/files/BDirEntry.h>
#include <string>

namespace {
std::u16string Full(BDirEntry const& e) {
    return std::u16string(e.GetFull().View());
}
std::u16string S(WString const& w) {
    return std::u16string(w.View());
}
} // namespace

TEST(BDirEntry, TakesPathsApart) {
    BDirEntry const e(u"C:\\data\\scan.v2.bmp");
    EXPECT_EQ(S(e.GetName()), u"scan.v2.bmp");
    EXPECT_EQ(S(e.GetBase()), u"scan.v2"); // the last dot starts the extension
    EXPECT_EQ(S(e.GetExtension()), u"bmp");
    EXPECT_EQ(Full(e.GetPath()), u"C:\\data");
    EXPECT_EQ(S(BDirEntry(u"dir.d/noext").GetBase()), u"noext");
    EXPECT_EQ(S(BDirEntry(u"dir.d/noext").GetExtension()), u"");
    // The path part of a root is the root itself: nothing could be removed.
    EXPECT_EQ(Full(BDirEntry(u"C:\\").GetPath()), u"C:\\");
}

TEST(BDirEntry, RemoveFileSpecAtTheLengthLimit) {
    std::u16string const dir = u"/" + std::u16string(249, u'd');
    std::u16string const at259 = dir + u"/12345678";
    std::u16string const at260 = dir + u"/123456789";
    ASSERT_EQ(at259.size(), 259u);
    BDirEntry e(at259.c_str());
    EXPECT_TRUE(e.RemoveFileSpec());
    EXPECT_EQ(Full(e), dir);
    BDirEntry const tooLong(at260.c_str());
    EXPECT_EQ(Full(tooLong.GetPath()), at260);
    // GetBase works up to 260 units and gives empty beyond.
    EXPECT_EQ(S(tooLong.GetBase()), u"123456789");
    EXPECT_EQ(S(BDirEntry((at260 + u"0").c_str()).GetBase()), u"");
    EXPECT_EQ(S(BDirEntry((at260 + u"0.x").c_str()).GetExtension()), u"x");
}

TEST(BDirEntry, ChangesExtensionAndName) {
    for (char16_t const* path : {u"a.txt", u"a", u"a."}) {
        BDirEntry e(path);
        e.ChangeExtension(u"bmp");
        EXPECT_EQ(Full(e), u"a.bmp");
    }
    BDirEntry cut(u"dir.d/x.tar.gz");
    EXPECT_EQ(S(cut.CutExtension()), u"gz");
    EXPECT_EQ(Full(cut), u"dir.d/x.tar");

    BDirEntry e(u"C:\\sensor\\old.ini");
    e.ChangeName(u"cam1.ini");
    EXPECT_EQ(Full(e), u"C:\\sensor/cam1.ini");
    BDirEntry bare(u"old.ini");
    bare.ChangeName(u"new.ini");
    EXPECT_EQ(Full(bare), u"/new.ini");
}

TEST(BDirEntry, CombinesPaths) {
    BDirEntry e(u"C:\\sensor\\head");
    e += BDirEntry(u"..\\sub\\cam1.ini");
    EXPECT_EQ(Full(e), u"C:/sensor/sub/cam1.ini");
    // Too long to combine: appended as it is behind one separator.
    std::u16string const longDir(255, u'd');
    BDirEntry tooLong(longDir.c_str());
    tooLong += BDirEntry(u"abcd");
    EXPECT_EQ(Full(tooLong), longDir + u"/abcd");
    BDirEntry withSep((longDir + u"\\").c_str());
    withSep += BDirEntry(u"abcd");
    EXPECT_EQ(Full(withSep), longDir + u"\\abcd");
}
