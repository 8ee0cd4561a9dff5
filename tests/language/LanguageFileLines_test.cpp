#include "platform/FileTestSupport.h"

#include <gtest/gtest.h>
#include <qv/language/BLanguageMap.h>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct LineCase {
    char const* name;
    std::u16string file;
    std::u16string defaultOfFirst; // the default text of the first key in key order
    char const* errors;            // the report's error lines
};

// The report's lines that name an error.
std::string ErrorLines(WString const& report) {
    std::istringstream in(report.ToUtf8());
    std::string errors;
    for (std::string line; std::getline(in, line);)
        if (line.rfind("Line ", 0) == 0)
            errors += line + "\n";
    return errors;
}

std::u16string Units(char16_t unit, std::size_t n) {
    return std::u16string(n, unit);
}

// Cells longer than the reader keeps at hand, and lines that end at their key, whose default
// text is then empty although the line before had one.
std::vector<LineCase> const kLineCases = {
    {"plain cell of 1500 units", u"$K\t" + Units(u'd', 1500) + u"\tt\n", Units(u'd', 1500), ""},
    {"quoted cell with a doubled quote across unit 512",
     u"$K\t\"" + Units(u'a', 511) + u"\"\"" + Units(u'b', 600) + u"\"\tt\n",
     Units(u'a', 511) + u"\"" + Units(u'b', 600), ""},
    {"one-word key alone on its line", u"$A\tSame\tx\n$B\n$C\t\t\n", u"Same",
     "Line 3 : Error 7358 [$C] [] []\n"},
    {"one-word key alone on the last line", u"$A\t\tx\n$C\tSame\t\n$B", u"",
     "Line 3 : Error 7358 [$B] [] []\n"},
};

} // namespace

TEST(LanguageFileLines, CellsAndKeysOfEachLine) {
    for (LineCase const& c : kLineCases) {
        TempDir dir;
        WriteBytes(dir / "lang.txt", Utf16File(c.file));
        BLanguageMap map;
        WString report;
        map.ImportMapFiles(WString::FromUtf8(dir.Path()), u"lang.txt", &report, false);
        EXPECT_EQ(ErrorLines(report), c.errors) << c.name;
        auto const entries = map.Entries();
        ASSERT_FALSE(entries.empty()) << c.name;
        EXPECT_EQ(entries.front().defaultText.ToUtf8(), WString(c.defaultOfFirst.c_str()).ToUtf8())
            << c.name;
    }
}
