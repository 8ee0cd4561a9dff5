// Behaviour the two string twins share, run on both.
#include "StringTestSupport.h"

#include <functional>
#include <string>

template <class S>
class StringTest : public ::testing::Test {};
TYPED_TEST_SUITE(StringTest, StringTypes);

namespace {
std::string B(bool b) {
    return b ? "1" : "0";
}
std::string N(unsigned long long n) {
    return std::to_string(n);
}
// Whether IncludesPos finds the needle, and the position it leaves (99 before the call).
template <class S>
std::string FoundAt(S const& s, char const* needle) {
    unsigned long long pos = 99;
    bool const found = s.IncludesPos(Lit<S>(needle).c_str(), pos);
    return B(found) + N(pos);
}
// Whether Split splits at c, and the rest it leaves ("old" before the call).
template <class S>
std::string SplitAt(S& s, char c, bool first) {
    S rest = Make<S>("old");
    bool const split = s.Split(rest, UnitOf<S>(c), first);
    return B(split) + Ascii(rest);
}
} // namespace

// Each row edits or asks a string made from `before` and gives its answer as text; the string
// must then hold `after` ("=": unchanged). Every row runs on one of two strings that share
// their block, and the other must stay as it was: a mutator that writes before it unshares
// breaks that.
TYPED_TEST(StringTest, EditsAndQuestions) {
    using S = TypeParam;
    using U = UnitOf<S>;
    static auto const M = [](char const* a) { return Make<S>(a); };
    struct Row {
        char const* name;
        char const* before;
        std::function<std::string(S&)> edit;
        char const* answer;
        char const* after;
    } const rows[] = {
        {"SetAt", "Hello", [](S& s) { return s.SetAt(0, U('J')), ""; }, "", "Jello"},
        {"Append string", "ab", [](S& s) { return s.Append(M("!")), ""; }, "", "ab!"},
        {"Append char", "ab", [](S& s) { return s.Append(U('!')), ""; }, "", "ab!"},
        {"Append itself", "ab", [](S& s) { return s.Append(s), s += s, ""; }, "", "abababab"},
        // The second append goes into spare room of the same block.
        {"Append own text twice", "x",
         [](S& s) { return s.Append(s.CStr()), s.Append(s.CStr()), ""; }, "", "xxxx"},
        {"Prepend", "ab", [](S& s) { return s.Prepend(M(">").CStr()), ""; }, "", ">ab"},
        {"Insert char inside", "abc", [](S& s) { return s.Insert(U('+'), 1), ""; }, "", "a+bc"},
        {"Insert char at the end: no", "abc", [](S& s) { return s.Insert(U('x'), 3), ""; }, "",
         "="},
        {"IReplace char", "aAbA", [](S& s) { return B(s.IReplace(U('a'), U('A'))); }, "1", "AAbA"},
        {"Replace the terminator: no", "ab", [](S& s) { return B(s.Replace(U(0), U('r'))); }, "0",
         "="},
        {"Replace never searches the replacement", "aaa",
         [](S& s) { return B(s.Replace(M("a").CStr(), M("aa").CStr())); }, "1", "aaaaaa"},
        {"Replace by nothing", "abab",
         [](S& s) { return B(s.Replace(M("ab").CStr(), M("").CStr())); }, "1", ""},
        {"ReplaceAt never grows", "abcdef", [](S& s) { return s.ReplaceAt(M("XYZW"), 4), ""; }, "",
         "abcdXY"},
        {"Remove past the end truncates", "03456", [](S& s) { return s.Remove(2, ~0ull), ""; }, "",
         "03"},
        {"Cut the tail", "0123456789", [](S& s) { return Ascii(s.Cut(7)); }, "789", "0123456"},
        {"Cut inside", "0123456", [](S& s) { return Ascii(s.Cut(1, 2)); }, "12", "03456"},
        {"CutAt", "Hello", [](S& s) { return B(s.CutAt(4)); }, "1", "Hell"},
        {"CutAfter", "a.b.c", [](S& s) { return B(s.CutAfter(U('.'))); }, "1", "a."},
        {"CutAfter the last character: no", "a.", [](S& s) { return B(s.CutAfter(U('.'))); }, "0",
         "="},
        {"Split: the separator starts the rest", "dir/sub/file",
         [](S& s) { return SplitAt(s, '/', false); }, "1/file", "dir/sub"},
        {"Split without the separator empties the rest", "dir",
         [](S& s) { return SplitAt(s, '#', true); }, "0", "="},
        {"TrimLeft and TrimRight", " \t value \r\n",
         [](S& s) { return B(s.TrimLeft() && s.TrimRight()); }, "1", "value"},
        {"TrimLeft of the terminator: no", "ab", [](S& s) { return B(s.TrimLeft(U(0))); }, "0",
         "="},
        {"EraseLeadingChars", "xxaxx", [](S& s) { return s.EraseLeadingChars(U('x')), ""; }, "",
         "axx"},
        {"EraseAllChars", "Hello", [](S& s) { return s.EraseAllChars(U('l')), ""; }, "", "Heo"},
        {"ToLower", "MiXeD", [](S& s) { return s.ToLower(), ""; }, "", "mixed"},
        {"ToUpper", "MiXeD", [](S& s) { return s.ToUpper(), ""; }, "", "MIXED"},
        {"Fill", "abc", [](S& s) { return s.Fill(2, U('z')), ""; }, "", "zz"},
        {"TokenCount counts every separator", "a;;b", [](S& s) { return N(s.TokenCount(';')); },
         "3", "="},
        {"a separator last ends a token", "a;", [](S& s) { return N(s.GetTokenCount(';')); }, "2",
         "="},
        {"empty token", "a;;b", [](S& s) { return Ascii(s.Token(1, U(';'))); }, "", "="},
        {"token after a leading separator", ";a", [](S& s) { return Ascii(s.GetToken(1, U(';'))); },
         "a", "="},
        {"IncludesPos", "abcabc", [](S& s) { return FoundAt(s, "ca"); }, "12", "="},
        {"IncludesPos resets pos", "abc", [](S& s) { return FoundAt(s, "x"); }, "00", "="},
        {"no terminator in the text", "abc", [](S& s) { return B(s.Includes(U(0))); }, "0", "="},
    };
    for (Row const& row : rows) {
        S s = M(row.before);
        S const copy = s;
        EXPECT_EQ(row.edit(s), row.answer) << row.name;
        EXPECT_EQ(Ascii(s), row.after == std::string("=") ? row.before : row.after) << row.name;
        EXPECT_EQ(Ascii(copy), row.before) << row.name << ": the copy sharing the block";
    }
}

TYPED_TEST(StringTest, NullEmptyAndSharedResults) {
    using S = TypeParam;
    using U = UnitOf<S>;
    S none;
    EXPECT_EQ(none.CStr(), Make<S>("").CStr()) << "both hand out the one static empty text";
    EXPECT_EQ(none.CStr(0), nullptr);
    EXPECT_EQ(S().TokenCount(U(';')), 0u);
    EXPECT_TRUE(S().Includes(Lit<S>("").c_str()));
    none.ToLower();
    EXPECT_EQ(none.CStr(0), nullptr) << "a null string stays null";
    none.Insert(Lit<S>("new").c_str(), 0);
    EXPECT_EQ(Ascii(none), "new");

    S cut = Make<S>("abc");
    ASSERT_TRUE(cut.CutAt(0));
    EXPECT_NE(cut.CStr(0), nullptr) << "a block with empty text stays a block";
    EXPECT_TRUE(cut == S());
    EXPECT_TRUE(S().StartsWith(static_cast<U const*>(nullptr)));
    EXPECT_FALSE(S().StartsWith(Lit<S>("").c_str())) << "a null string starts with nothing";
    EXPECT_FALSE(S().EndsWith(Lit<S>("").c_str()));
    EXPECT_TRUE(cut.StartsWith(Lit<S>("").c_str()));
    S blanks = Make<S>("   ");
    EXPECT_TRUE(blanks.TrimRight());
    EXPECT_NE(blanks.CStr(0), nullptr) << "trimming everything on the right keeps a block";

    S mixed = Make<S>("MiXeD");
    S upper = mixed.ToUpper();
    EXPECT_EQ(Ascii(mixed), "MIXED");
    EXPECT_EQ(upper.CStr(), mixed.CStr()) << "ToUpper hands back a copy sharing the result";
    EXPECT_EQ(Ascii(Lit<S>("<").c_str() + Make<S>("b")), "<b");
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
