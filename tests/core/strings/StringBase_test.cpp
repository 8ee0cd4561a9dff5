// Behaviour the two string twins share, run on both.
#include "StringTestSupport.h"

#include <functional>
#include <vector>

template <class S>
class StringTest : public ::testing::Test {};
TYPED_TEST_SUITE(StringTest, StringTypes);

// Each mutator that writes into the block itself, applied to one of two strings that share
// it, must leave the other alone. (Overloads that only forward to another are left out.)
TYPED_TEST(StringTest, EveryMutatorUnsharesFirst) {
    using S = TypeParam;
    using U = UnitOf<S>;
    auto L = [](char const* a) { return Lit<S>(a); };
    std::vector<std::pair<char const*, std::function<void(S&)>>> mutators = {
        {"SetAt", [](S& s) { s.SetAt(0, U('X')); }},
        {"Append string", [](S& s) { s.Append(Make<S>("!")); }},
        {"Append text", [&](S& s) { s.Append(L("!").c_str()); }},
        {"Append char", [](S& s) { s.Append(U('!')); }},
        {"Prepend", [&](S& s) { s.Prepend(L(">").c_str()); }},
        {"Insert text", [&](S& s) { s.Insert(L("++").c_str(), 3); }},
        {"Insert char", [](S& s) { s.Insert(U('+'), 3); }},
        {"Replace char", [](S& s) { s.Replace(U('l'), U('L')); }},
        {"Replace text", [&](S& s) { s.Replace(L("World").c_str(), L("There").c_str()); }},
        {"ReplaceAt", [&](S& s) { s.ReplaceAt(L("JJ").c_str(), 2); }},
        {"Remove", [](S& s) { s.Remove(1, 2); }},
        {"CutAt", [](S& s) { s.CutAt(4); }},
        {"CutAfter", [](S& s) { s.CutAfter(U(';')); }},
        {"Split",
         [](S& s) {
             S rest;
             s.Split(rest, U(','));
         }},
        {"TrimLeft", [](S& s) { s.TrimLeft(); }},
        {"TrimRight", [](S& s) { s.TrimRight(); }},
        {"EraseAllChars", [](S& s) { s.EraseAllChars(U('l')); }},
        {"ToLower", [](S& s) { s.ToLower(); }},
        {"ToUpper", [](S& s) { s.ToUpper(); }},
        {"Fill", [](S& s) { s.Fill(3, U('z')); }},
        {"Clear", [](S& s) { s.Clear(); }},
        {"assign", [&](S& s) { s = L("other").c_str(); }},
    };
    for (auto& [name, mutate] : mutators) {
        S original = Make<S>("  Hello, World;a;b  ");
        S copy = original;
        mutate(copy);
        EXPECT_EQ(Ascii(original), "  Hello, World;a;b  ") << name;
        EXPECT_NE(Ascii(copy), "  Hello, World;a;b  ") << name;
    }
}

TYPED_TEST(StringTest, NullAndEmptyAreTheSameString) {
    using S = TypeParam;
    S none;
    EXPECT_EQ(none.CStr(), Make<S>("").CStr()) << "both hand out the one static empty text";
    EXPECT_EQ(none.CStr(0), nullptr);
    S cut = Make<S>("abc");
    ASSERT_TRUE(cut.CutAt(0));
    EXPECT_TRUE(cut.IsEmpty());
    EXPECT_NE(cut.CStr(0), nullptr) << "a block with empty text stays a block";
    EXPECT_TRUE(cut == none);
}

TYPED_TEST(StringTest, TokensCountEverySeparator) {
    using S = TypeParam;
    using U = UnitOf<S>;
    U sep = U(';');
    EXPECT_EQ(S().TokenCount(sep), 0u);
    EXPECT_EQ(Make<S>("a;;b").TokenCount(sep), 3u);
    EXPECT_EQ(Make<S>("a;").GetTokenCount(sep), 2u);
    EXPECT_TRUE(Make<S>("a;;b").Token(1, sep).IsEmpty());
    EXPECT_EQ(Ascii(Make<S>("a;;b").Token(2, sep)), "b");
    EXPECT_TRUE(Make<S>("a;").Token(5, sep).IsEmpty());
    EXPECT_EQ(Ascii(Make<S>(";a").GetToken(1, sep)), "a");
}

TYPED_TEST(StringTest, SearchEdges) {
    using S = TypeParam;
    using U = UnitOf<S>;
    auto L = [](char const* a) { return Lit<S>(a); };
    S s = Make<S>("abcabc");
    EXPECT_TRUE(S().Includes(L("").c_str()));
    EXPECT_FALSE(S().Includes(L("a").c_str()));
    EXPECT_EQ(s.Search(L("bc").c_str(), 2), 4u);
    EXPECT_EQ(s.Search(Make<S>("c"), 3), 5u);
    unsigned long long pos = 99;
    EXPECT_TRUE(s.IncludesPos(L("ca").c_str(), pos));
    EXPECT_EQ(pos, 2u);
    pos = 99;
    EXPECT_FALSE(s.IncludesPos(L("x").c_str(), pos));
    EXPECT_EQ(pos, 0u) << "pos is reset before the search";
    EXPECT_TRUE(s.IIncludes(L("BCA").c_str()));
    EXPECT_TRUE(s.IIncludes('C'));
    EXPECT_FALSE(s.Includes('C'));
    EXPECT_FALSE(s.Includes(U(0))) << "the terminator does not occur in the text";
}

TYPED_TEST(StringTest, PrefixAndSuffixRules) {
    using S = TypeParam;
    using U = UnitOf<S>;
    auto L = [](char const* a) { return Lit<S>(a); };
    U const* null = nullptr;
    S none;
    S emptyBlock = Make<S>("x");
    emptyBlock.CutAt(0);
    EXPECT_TRUE(none.StartsWith(null));
    EXPECT_FALSE(none.StartsWith(L("").c_str())) << "a null string starts with nothing";
    EXPECT_TRUE(emptyBlock.StartsWith(L("").c_str()));
    EXPECT_FALSE(none.EndsWith(L("").c_str()));
    S s = Make<S>("Sensor.INI");
    EXPECT_TRUE(s.IStartsWith(L("sensor").c_str()));
    EXPECT_FALSE(s.StartsWith(L("sensor").c_str()));
    EXPECT_TRUE(s.IEndsWith(L(".ini").c_str()));
    EXPECT_FALSE(s.EndsWith(L(".ini").c_str()));
    EXPECT_FALSE(s.EndsWith(L("longer than Sensor.INI").c_str()));
}

TYPED_TEST(StringTest, CuttingAndSplitting) {
    using S = TypeParam;
    using U = UnitOf<S>;
    S path = Make<S>("dir/sub/file");
    S rest;
    EXPECT_TRUE(path.Split(rest, U('/'), false));
    EXPECT_EQ(Ascii(path), "dir/sub");
    EXPECT_EQ(Ascii(rest), "/file") << "the separator starts the rest";
    EXPECT_FALSE(path.Split(rest, U('#')));
    EXPECT_TRUE(rest.IsEmpty());

    S after = Make<S>("a.b.c");
    EXPECT_TRUE(after.CutAfter(U('.')));
    EXPECT_EQ(Ascii(after), "a.");
    EXPECT_FALSE(after.CutAfter(U('.'))) << "the separator is the last character";

    S s = Make<S>("0123456789");
    EXPECT_EQ(Ascii(s.Cut(7)), "789");
    EXPECT_EQ(Ascii(s.Cut(1, 2)), "12");
    EXPECT_EQ(Ascii(s), "03456");
    s.Remove(2, ~0ull);
    EXPECT_EQ(Ascii(s), "03") << "a count past the end truncates";
    EXPECT_EQ(Ascii(Make<S>("abc").Sub(1, ~0ull)), "bc");
    EXPECT_EQ(Ascii(Make<S>("key=value").SubCh(0, U('='))), "key");
    EXPECT_TRUE(Make<S>("=value").SubCh(0, U('=')).IsEmpty());
}

TYPED_TEST(StringTest, InsertingAndReplacing) {
    using S = TypeParam;
    using U = UnitOf<S>;
    auto L = [](char const* a) { return Lit<S>(a); };
    S s = Make<S>("abc");
    s.Insert(U('x'), 3);
    EXPECT_EQ(Ascii(s), "abc") << "a character cannot be inserted at the end";
    s.Insert(L("xy").c_str(), 3);
    EXPECT_EQ(Ascii(s), "abcxy") << "text can";
    S none;
    none.Insert(L("new").c_str(), 0);
    EXPECT_EQ(Ascii(none), "new");

    S as = Make<S>("aaa");
    EXPECT_TRUE(as.Replace(L("a").c_str(), L("aa").c_str()));
    EXPECT_EQ(Ascii(as), "aaaaaa") << "the replacement is never searched again";
    S mixed = Make<S>("aAbA");
    EXPECT_TRUE(mixed.IReplace(U('a'), U('A')));
    EXPECT_EQ(Ascii(mixed), "AAbA");
    EXPECT_FALSE(mixed.Replace(U(0), U('r')));
    S removeAll = Make<S>("abab");
    EXPECT_TRUE(removeAll.Replace(L("ab").c_str(), L("").c_str()));
    EXPECT_TRUE(removeAll.IsEmpty());
    S over = Make<S>("abcdef");
    over.ReplaceAt(L("XYZW").c_str(), 4);
    EXPECT_EQ(Ascii(over), "abcdXY") << "ReplaceAt never grows";
}

TYPED_TEST(StringTest, TrimmingAndCase) {
    using S = TypeParam;
    using U = UnitOf<S>;
    S s = Make<S>(" \t value \r\n");
    EXPECT_TRUE(s.TrimLeft());
    EXPECT_TRUE(s.TrimRight());
    EXPECT_EQ(Ascii(s), "value");
    EXPECT_FALSE(s.TrimLeft(U(0)));
    S blanks = Make<S>("   ");
    EXPECT_TRUE(blanks.TrimRight());
    EXPECT_NE(blanks.CStr(0), nullptr) << "trimming everything on the right keeps a block";
    EXPECT_EQ(Ascii(Make<S>("xxaxx").EraseLeadingChars(U('x'))), "axx");

    S mixed = Make<S>("MiXeD");
    S shared = mixed;
    EXPECT_EQ(Ascii(mixed.Lower()), "mixed");
    EXPECT_EQ(Ascii(mixed), "MiXeD") << "Lower is const";
    S upper = mixed.ToUpper();
    EXPECT_EQ(Ascii(mixed), "MIXED");
    EXPECT_EQ(upper.CStr(), mixed.CStr()) << "ToUpper hands back a copy sharing the result";
    S none;
    none.ToLower();
    EXPECT_EQ(none.CStr(0), nullptr) << "a null string stays null";
}

TYPED_TEST(StringTest, AppendingToItself) {
    using S = TypeParam;
    S self = Make<S>("ab");
    self.Append(self);
    self += self;
    EXPECT_EQ(Ascii(self), "abababab");
    S text = Make<S>("x");
    text.Append(text.CStr());
    EXPECT_EQ(Ascii(text), "xx");
    text.Append(text.CStr()); // now into spare room of the same block
    EXPECT_EQ(Ascii(text), "xxxx");
    EXPECT_EQ(Ascii(Lit<S>("<").c_str() + Make<S>("b")), "<b");
}

TYPED_TEST(StringTest, CharacterClasses) {
    using S = TypeParam;
    auto L = [](char const* a) { return Lit<S>(a); };
    EXPECT_TRUE(S().IsAlpha());
    EXPECT_TRUE(Make<S>("Cam_1").IsAlphaNumUnderscore());
    EXPECT_TRUE(Make<S>("0x1F").IsCharSet(L("0123456789xABCDEF").c_str()));
    EXPECT_FALSE(Make<S>("0x1g").IsCharSet(L("0123456789xABCDEF").c_str()));
}

TYPED_TEST(StringTest, ComparisonOrdersCaseBlindKeysStrictly) {
    using S = TypeParam;
    S a = Make<S>("alpha"), b = Make<S>("Beta"), A = Make<S>("ALPHA");
    EXPECT_LT(a.ICmp(b), 0);
    EXPECT_EQ(a.ICmp(A), 0);
    EXPECT_FALSE(a == A);
}

// The length a block keeps must follow every writer, also writes through handed-out text: each
// row changes a string whose block has spare room (so that writers work in place), and then
// the length and an append must agree with the text's terminator.
TYPED_TEST(StringTest, KeptLengthFollowsEveryWriter) {
    using S = TypeParam;
    using U = UnitOf<S>;
    auto L = [](char const* a) { return Lit<S>(a); };
    struct Row {
        char const* name;
        std::function<void(S&)> change;
        char const* text;
    };
    std::vector<Row> const rows = {
        {"terminator written through Str", [](S& s) { s.Str()[2] = 0; }, "ab"},
        {"Str kept across an append in place",
         [](S& s) {
             U* p = s.Str();
             s.Append(U('h')); // fits the block, so p stays valid
             p[1] = 0;
         },
         "a"},
        {"SetAt a terminator", [](S& s) { s.SetAt(3, U(0)); }, "abc"},
        {"SetAt inside", [](S& s) { s.SetAt(0, U('X')); }, "Xbcdefg"},
        {"Insert a zero character", [](S& s) { s.Insert(U(0), 1); }, "a"},
        {"Append a zero character", [](S& s) { s.Append(U(0)); }, "abcdefg"},
        {"Fill in place, shorter", [](S& s) { s.Fill(2, U('y')); }, "yy"},
        {"Fill with zeros", [](S& s) { s.Fill(4, U(0)); }, ""},
        {"Remove inside", [](S& s) { s.Remove(1, 2); }, "adefg"},
        {"CutAfter", [](S& s) { s.CutAfter(U('c')); }, "abc"},
        {"EraseAllChars", [](S& s) { s.EraseAllChars(U('d')); }, "abcefg"},
        {"ResolveEsc to a zero unit",
         [&](S& s) {
             s = L("a\\x00b").c_str();
             s.Append(U('c'));
             s.ResolveEsc();
         },
         "a"},
        {"ReadLn of a shorter line into the block",
         [&](S& s) {
             auto const units = L("xy\nlonger\n");
             std::FILE* f = std::tmpfile();
             std::fwrite(units.data(), sizeof(U), units.size(), f);
             std::rewind(f);
             s.ReadLn(f);
             std::fclose(f);
         },
         "xy"},
        {"Printf with a zero character", [&](S& s) { s.Printf(L("ab%cd").c_str(), 0); }, "ab"},
    };
    for (auto const& row : rows) {
        S s = Make<S>("abcdef");
        s.Append(U('g'));
        row.change(s);
        EXPECT_EQ(s.Length(), Ascii(s).size()) << row.name;
        s.Append(L("#").c_str());
        EXPECT_EQ(Ascii(s), std::string(row.text) + "#") << row.name;
        EXPECT_EQ(s.View().size(), std::string(row.text).size() + 1) << row.name;
    }
}
