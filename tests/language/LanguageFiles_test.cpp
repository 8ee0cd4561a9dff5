#include "platform/FileTestSupport.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <qv/language/BLanguageMap.h>
#include <qv/platform/CodePage.h>
#include <qv/platform/WideStream.h>
#include <string>
#include <vector>

namespace {

std::string U8(WString const& s) {
    return s.ToUtf8();
}
WString W(std::u16string const& s) {
    return WString(s.c_str());
}

// A UTF-16LE text file as the library's text streams read it: the mark skipped, CR LF folded.
std::string Text(std::string const& path) {
    Stream const f = OpenStream(path, u"r,ccs=UTF-16LE");
    std::u16string text;
    for (int c; (c = qv::platform::fgetwc16(f.get())) != qv::platform::kWEOF;)
        text += static_cast<char16_t>(c);
    return qv::platform::Utf16ToUtf8(text);
}

// Imports one file into a fresh map, keeping the result and the report.
struct Imported {
    BLanguageMap map;
    WString report;
    int result = -1;

    Imported(TempDir const& dir, std::u16string const& content) {
        WriteBytes(dir / "lang.txt", Utf16File(content));
        result = map.ImportMapFiles(W(dir.U()), u"lang.txt", &report, false);
    }
    // The default text of a key, found through the reverse lookup.
    bool HasDefault(char16_t const* key, std::u16string const& defaultText) {
        WString keys;
        return map.TranslateBack(defaultText.c_str(), keys, u"", BLanguageMap::DEFAULT) > 0 &&
               keys.Includes(key);
    }
};

struct CellCase {
    char const* name;
    std::u16string file;
    char16_t const* key;
    std::u16string defaultText;
    std::u16string text;
};

// Every record's third cell is its text, or its default text when empty (imports use defaults).
// Cells longer than the reader keeps at hand; a line that ends at its key has an empty default
// text, and its one-word key is checked against that text, not the line before's.
std::vector<CellCase> const kCellCases = {
    {"quote inside a plain cell", u"$K\ta\"b\tc\"d\n", u"$K", u"a\"b", u"c\"d"},
    {"quoted tab, line feed, doubled quote", u"$K\t\"x\ty\nz\"\"q\"\tt\n", u"$K", u"x\ty\nz\"q",
     u"t"},
    {"letter behind closing quote is lost", u"$K\t\"ab\"Xcd\tt\n", u"$K", u"ab", u"cd"},
    {"one cell behind a default", u"$L\td\tt\n$K\n", u"$K", u"", u""},
    {"one cell on the last line", u"$L\td\tt\n$K", u"$K", u"", u""},
    {"plain cell of 1500 units", u"$K\t" + std::u16string(1500, u'd') + u"\tt\n", u"$K",
     std::u16string(1500, u'd'), u"t"},
    {"quoted cell with a doubled quote across unit 512",
     u"$K\t\"" + std::u16string(511, u'a') + u"\"\"" + std::u16string(600, u'b') + u"\"\tt\n",
     u"$K", std::u16string(511, u'a') + u"\"" + std::u16string(600, u'b'), u"t"},
    {"five cells, two skipped", u"$K\ta\tb\tc\td\n$L\tx\ty\n", u"$K", u"a", u"b"},
    {"escapes, plain and quoted", u"$K\ta\\nb\t\"c\\td\\x41\"\n", u"$K", u"a\nb", u"c\tdA"},
    {"unterminated quote runs to the end", u"$K\td\t\"abc\n$L\tx\ty", u"$K", u"d",
     u"abc\n$L\tx\ty"},
    {"empty text takes the default", u"$K\td\t\n", u"$K", u"d", u"d"},
    {"doubled quote ends skipping's quote", u"$K\ta\tb\t\"x\"\"\n$L\tl\tm\n", u"$L", u"l", u"m"},
};

} // namespace

TEST(LanguageFiles, CellsReadByTheGrammar) {
    for (CellCase const& c : kCellCases) {
        TempDir dir;
        Imported in(dir, c.file);
        EXPECT_TRUE(in.map.Includes(c.key)) << c.name << "\n" << U8(in.report);
        EXPECT_EQ(U8(in.map.Translate(c.key)), U8(W(c.text))) << c.name;
        EXPECT_TRUE(in.HasDefault(c.key, c.defaultText)) << c.name;
    }
}

TEST(LanguageFiles, ImportReportsConflictsByRecord) {
    TempDir dir;
    Imported in(dir, u"# comment\n"
                     u"$A\tAlpha\tA1\n"
                     u"\tstarts with a tab\n"
                     u"$a\tAlpha again\t\"two\nlines\"\n"
                     u"$bad-key\tx\ty\n");
    EXPECT_EQ(in.result, BLanguageMap::kImportError);
    EXPECT_EQ(U8(in.report), "Import Language File " + dir.Path() +
                                 "\\lang.txt\n"
                                 "Line 4 : Error 7359 [$a] [Alpha again] [two\nlines]\n"
                                 "Line 5 : Error 7356 [$bad-key] [x] [y]\n"
                                 "3 entries loaded\n\n");
    EXPECT_EQ(U8(in.map.Translate(u"$A")), "A1"); // the first stays
    EXPECT_EQ(U8(in.map.CurrentLanguage()), std::filesystem::path(dir.Path()).filename().string());

    // A second import appends to the same report. Replace takes the new text, and a one-word
    // key's own old entry counts against its default text.
    WriteBytes(dir / "lang.txt", Utf16File(u"$A\tAlpha\tA2"));
    EXPECT_EQ(in.map.ImportMapFiles(W(dir.U()), u"*.TXT", &in.report, true),
              BLanguageMap::kImportError);
    EXPECT_TRUE(in.report.EndsWith(W(u"entries loaded\n\nImport Language File " + dir.U() +
                                     u"\\lang.txt\nLine 1 : Error 7358 [$A] [Alpha] [A2]\n"
                                     u"1 entries loaded\n\n")))
        << U8(in.report);
    EXPECT_EQ(U8(in.map.Translate(u"$A")), "A2");
}

TEST(LanguageFiles, ImportResults) {
    TempDir dir;
    BLanguageMap map;
    WString report;
    struct Row {
        char const* name;
        std::u16string directory;
        char16_t const* pattern;
        int expected;
        std::string language;
    } const rows[] = {
        {"no match", dir.U(), u"*.none", BLanguageMap::kNoFileMatches, ""},
        {"empty file", dir.U(), u"empty.lng*", 0,
         std::filesystem::path(dir.Path()).filename().string()},
        {"backslash path", dir.U() + u"\\sub\\German", u"*", 0, "German"},
    };
    WriteBytes(dir / "empty.lng", "");
    std::filesystem::create_directories(dir / "sub/German");
    WriteBytes(dir / "sub/German/x.txt", Utf16File(u"$X\tx\ty\n"));
    for (Row const& r : rows) {
        EXPECT_EQ(map.ImportMapFiles(W(r.directory), r.pattern, &report, false), r.expected)
            << r.name;
        if (r.expected == 0) {
            EXPECT_EQ(U8(map.CurrentLanguage()), r.language) << r.name;
        }
    }
    std::string const file = "Import Language File " + dir.Path();
    EXPECT_EQ(U8(report), file + "\\empty.lng\n0 entries loaded\n\n" + file +
                              "\\sub\\German\\x.txt\n1 entries loaded\n\n");
}

TEST(LanguageFiles, ExportReadsBackEqual) {
    TempDir dir;
    BLanguageMap map;
    map.Add(u"$b_KEY", u"Default", u"Zweite \"Zeile\" mit Ümlaut", false, false);
    map.Add(u"$A_X", u"", u"\\n stays escaped", false, false);
    map.Add(u"$C_X", u"x", u"old", false, false);
    map.Add(u"$c_x", u"x", u"", true, false); // replaced: the key as added last
    ASSERT_EQ(map.ExportMapFile(W(dir.U("out.txt"))), 0);
    EXPECT_EQ(Text(dir / "out.txt"),
              "$A_X\t\t\\n stays escaped\n$b_KEY\t\tZweite \"Zeile\" mit Ümlaut\n$c_x\t\t\n");
    EXPECT_EQ(ReadBytes(dir / "out.txt").substr(0, 6), std::string("\xFF\xFE$\0A\0", 6));
    BLanguageMap back;
    ASSERT_EQ(back.ImportMapFiles(W(dir.U()), u"out.txt", nullptr, false), 0);
    // The reader resolves escapes, so a literal backslash-n comes back as a line feed; all
    // other texts come back as they were.
    EXPECT_EQ(U8(back.Translate(u"$a_x")), "\n stays escaped");
    EXPECT_EQ(U8(back.Translate(u"$B_key")), "Zweite \"Zeile\" mit Ümlaut");
    EXPECT_EQ(U8(back.Translate(u"$C_X")), "");
    EXPECT_EQ(map.ExportMapFile(W(dir.U("missing/out.txt"))), BLanguageMap::kCannotCreateFile);
}

TEST(LanguageFiles, MergeFillsTheReferenceFromTheTranslation) {
    TempDir dir;
    for (char const* sub : {"ref", "old", "new"})
        std::filesystem::create_directory(dir / sub);
    WriteBytes(dir / "ref/a.lng", Utf16File(u"# Reference\t\tthird\n"
                                            u"$OPEN\tOpen\tOpen\n"
                                            u"$SAVE\tSave now\t\n"
                                            u"\tdropped\tcells\n"
                                            u"$NEW_KEY\tNew\\tone\n"
                                            u"$Untranslated\tDefault\t\n"
                                            u"$MULTI\tMulti\n"));
    WriteBytes(dir / "old/a.lng", Utf16File(u"$open\tOpen\tÖffnen\n"
                                            u"$SAVE\tSave\tSpeichern\n"
                                            u"$UNTRANSLATED\tOld default\t\n"
                                            u"$MULTI\tMulti\t\"Zwei\nZeilen\"\n"
                                            u"$GONE\tGone\tWeg\n"));
    int newEntries = 7;
    EXPECT_EQ(BLanguageMap::MergeMapFile(W(dir.U("ref")), W(dir.U("old")), W(dir.U("new")),
                                         u"a.lng", newEntries),
              0);
    EXPECT_EQ(newEntries, 8);
    EXPECT_EQ(Text(dir / "new/a.lng"), "# Reference\tthird\n"
                                       "$OPEN\tOpen\tÖffnen\n"
                                       "$SAVE\tSave now\tSpeichern\n"
                                       "\t\t\n"
                                       "$NEW_KEY\tNew\\tone\t\tnew entry!\n"
                                       "$Untranslated\tDefault\tOld default\n"
                                       "$MULTI\tMulti\tZwei\\nZeilen\n"
                                       "\t\t\n");
}

TEST(LanguageFiles, MergeResultsAndCounts) {
    TempDir dir;
    for (char const* sub : {"ref", "old", "new", "new/b.lng"})
        std::filesystem::create_directory(dir / sub);
    for (char const* name : {"a.lng", "b.lng", "c.lng"})
        WriteBytes(dir / ("ref/" + std::string(name)), Utf16File(u"$A\ta\n$B\tb\n$C\tc"));
    WriteBytes(dir / "old/a.lng", Utf16File(u"$A\ta\tx\n"));
    WriteBytes(dir / "old/c.lng", Utf16File(u"$A\ta\tx\n$B\tb\ty\n$C\tc\tz\n"));
    struct Row {
        char const* name;
        char const* ref;
        char const* old;
        char const* target;
        char16_t const* pattern;
        int expected;
        int newEntries;
    } const rows[] = {
        // b.lng's target is a directory: its error is handed on, and c.lng is still merged.
        {"three files", "ref", "old", "new", u"*.lng", BLanguageMap::kMergeCannotCreateTarget, 2},
        {"one file", "ref", "old", "new", u"a.LNG", 0, 2},
        {"no reference directory", "none", "old", "new", u"*.lng",
         BLanguageMap::kMergeNoReferenceDirectory, 0},
    };
    for (Row const& r : rows) {
        int newEntries = -1;
        EXPECT_EQ(BLanguageMap::MergeMapFiles(W(dir.U(r.ref)), W(dir.U(r.old)), W(dir.U(r.target)),
                                              r.pattern, newEntries),
                  r.expected)
            << r.name;
        EXPECT_EQ(newEntries, r.newEntries) << r.name;
    }
    EXPECT_EQ(Text(dir / "new/c.lng"), "$A\ta\tx\n$B\tb\ty\n$C\tc\tz\n");
    int count = 3;
    EXPECT_EQ(BLanguageMap::MergeMapFile(W(dir.U("ref")), W(dir.U("old")), W(dir.U("new")),
                                         u"none.lng", count),
              BLanguageMap::kMergeCannotOpenReference);
    EXPECT_EQ(count, 3);
    EXPECT_FALSE(std::filesystem::exists(dir / "new/none.lng"));
}
