#include <gtest/gtest.h>
#include <qv/language/BLanguageMap.h>
#include <qv/language/QVTl.h>
#include <string>
#include <vector>

namespace {

std::string U8(WString const& s) {
    return s.ToUtf8();
}

// An entry given to Add: key, default text, text, replace, useDefault.
struct Entry {
    char16_t const* key;
    char16_t const* defaultText;
    char16_t const* text = u"";
    bool replace = false;
    bool useDefault = false;
};

struct AddCase {
    char const* name;
    int reportMissing;         // 0 or 1
    std::vector<Entry> before; // added first, results not checked
    Entry entry;
    int expected;
    char16_t const* translated = u""; // Translate(entry.key) afterwards
};

constexpr int kInvalid = BLanguageMap::kInvalidId, kNoText = BLanguageMap::kIdWithoutText,
              kNotUnique = BLanguageMap::kIdNotUnique, kTaken = BLanguageMap::kIdNotBiunique;

std::vector<AddCase> const kAddCases = {
    {"lone dollar is a key", 0, {}, {u"$", u"d", u"t"}, 0, u"t"},
    {"no dollar", 0, {}, {u"AB", u"d", u"t"}, kInvalid, u"AB"},
    {"empty default, reported", 1, {}, {u"$A_B", u"", u"t"}, kNoText, u"t"},
    {"empty text takes default", 0, {}, {u"$A_B", u"d", u"", false, true}, 0, u"d"},
    {"empty text kept", 1, {}, {u"$A_B", u"d", u""}, 0, u""},
    {"case-blind duplicate", 0, {{u"$a_b", u"d", u"o"}}, {u"$A_B", u"e", u"n"}, kNotUnique, u"o"},
    {"beyond ASCII", 0, {{u"$\u00E4_b", u"d", u"o"}}, {u"$\u00C4_B", u"e", u"n"}, kNotUnique, u"o"},
    {"duplicate replaced", 0, {{u"$a_b", u"d", u"o"}}, {u"$A_B", u"e", u"n", true}, 0, u"n"},
    {"one-word default taken", 0, {{u"$Open", u"Open it", u"x"}}, {u"$OpenIt", u"OPEN IT"}, kTaken},
    {"in another spelling", 0, {{u"$Open", u"\u00C4rger"}}, {u"$Shut", u"A\u0308RGER"}, kTaken},
    {"underscore keys may share", 0, {{u"$A_X", u"same"}}, {u"$A_Y", u"same", u"y"}, 0, u"y"},
    {"replace counts itself", 0, {{u"$Open", u"Open"}}, {u"$Open", u"Open", u"", true}, kTaken},
    {"replaced frees it", 0, {{u"$Open", u"O"}, {u"$Open", u"2", u"", true}}, {u"$Shut", u"O"}, 0},
    {"biunique beats missing text", 1, {{u"$Open", u""}}, {u"$Shut", u"", u"y"}, kTaken, u"y"},
};

} // namespace

TEST(BLanguageMap, AddAnswersAndLeavesTheMapAsTold) {
    for (AddCase const& c : kAddCases) {
        BLanguageMap map;
        map.SetReportMissingTranslations(c.reportMissing);
        for (Entry const& e : c.before)
            map.Add(e.key, e.defaultText, e.text, e.replace, e.useDefault);
        Entry const& e = c.entry;
        EXPECT_EQ(map.Add(e.key, e.defaultText, e.text, e.replace, e.useDefault), c.expected)
            << c.name;
        EXPECT_EQ(U8(map.Translate(e.key)), U8(c.translated)) << c.name;
    }
}

TEST(BLanguageMap, TranslateBackListsMatchesInKeyOrderByPrefix) {
    BLanguageMap map;
    map.Add(u"$ERR_B", u"Same", u"Gleich", false, false);
    map.Add(u"$err_a", u"same", u"x", false, false);
    map.Add(u"$Zeta", u"SAME", u"gleich", false, false);
    map.Add(u"$Alpha", u"same", u"y", false, false);
    map.Add(u"$ERRX_C", u"same", u"z", false, false);
    map.Add(u"$Other", u"different", u"gleich", false, false);
    struct Row {
        char const* name;
        char16_t const* text;
        char16_t const* prefix;
        BLanguageMap::ELanguage language;
        int count;
        char const* keys;
    } const rows[] = {
        {"every key", u"same", u"", BLanguageMap::DEFAULT, 5, "$Alpha,$err_a,$ERR_B,$ERRX_C,$Zeta"},
        {"one-word keys", u"Same", u"$", BLanguageMap::DEFAULT, 2, "$Alpha,$Zeta"},
        {"prefix is case-blind", u"same", u"$err", BLanguageMap::DEFAULT, 2, "$err_a,$ERR_B"},
        {"current map", u"GLEICH", u"", BLanguageMap::CURRENT, 3, "$ERR_B,$Other,$Zeta"},
        {"one-word, no match keeps keys", u"none", u"$", BLanguageMap::DEFAULT, 0, "untouched"},
    };
    for (Row const& r : rows) {
        WString keys(u"untouched");
        EXPECT_EQ(map.TranslateBack(r.text, keys, r.prefix, r.language), r.count) << r.name;
        EXPECT_EQ(U8(keys), r.keys) << r.name;
    }
    // Erased and cleared entries leave the index too.
    map.Add(u"$Zeta", u"other", u"", true, false);
    WString keys;
    EXPECT_EQ(map.TranslateBack(u"same", keys, u"$", BLanguageMap::DEFAULT), 1);
    map.Clear();
    EXPECT_EQ(map.TranslateBack(u"same", keys, u"$", BLanguageMap::DEFAULT), 0);
    EXPECT_FALSE(map.Includes(u"$Alpha"));
}

TEST(BLanguageMap, TranslatesKeysAndSentences) {
    BLanguageMap map;
    map.Add(u"$OPEN", u"Open", u"Öffnen", false, false);
    map.Add(u"$FILE_NAME", u"File name", u"Dateiname", false, false);
    map.Add(u"$MONEY", u"Money", u"costs $5 or $OPEN", false, false);
    map.Add(u"$EMPTY", u"Empty", u"", false, false);
    struct Row {
        char const* name;
        bool testMode;
        bool sentence;
        char16_t const* text;
        char const* expected;
    } const rows[] = {
        {"key", false, false, u"$open", "Öffnen"},
        {"missing key", false, false, u"$CLOSE", "$CLOSE"},
        {"test mode, found", true, false, u"$OPEN", "*Öffnen*"},
        {"punctuation ends a key", false, true, u"($OPEN), $FILE_NAME.", "(Öffnen), Dateiname."},
        {"inserted text not scanned", false, true, u"$MONEY!", "costs $5 or $OPEN!"},
        {"lone dollar", false, true, u"pay $ now $", "pay $ now $"},
        {"empty translation in sentence", false, true, u"[$EMPTY]$OPEN", "[]Öffnen"},
        {"sentence in test mode", true, true, u"$OPEN $NOPE", "*Öffnen* $NOPE"},
    };
    for (Row const& r : rows) {
        map.ActivateTestMode(r.testMode);
        WString const out = r.sentence ? map.TranslateExt(r.text) : map.Translate(r.text);
        EXPECT_EQ(U8(out), r.expected) << r.name;
    }
}

TEST(BLanguageMap, QVTlUsesTheRegisteredMapOnly) {
    SP<BLanguageMap> map = new BLanguageMap;
    map->Add(u"$OPEN", u"Open", u"Öffnen", false, false);
    EXPECT_EQ(U8(QVTl(u"$OPEN")), "$OPEN");
    BLanguageMap::RegisterInstance(map);
    EXPECT_EQ(U8(QVTl(u"$OPEN")), "Öffnen");
    EXPECT_EQ(U8(QVTlExt(u"a $OPEN")), "a Öffnen");
    BLanguageMap::RegisterInstance(nullptr);
    EXPECT_EQ(U8(QVTl(u"$OPEN")), "$OPEN");
}
