// The same table as compare_probe.cpp, answered by qvcore, for the comparison in
// docs/text-services.md. Build against a dev build:
//   g++ -std=c++20 -I../.. compare_ours.cpp -o /tmp/compare_ours -L../../build/dev -lqvcore
//   LD_LIBRARY_PATH=../../build/dev /tmp/compare_ours
#include "qv/platform/TextServices.h"

#include <cstdio>

using namespace qv::platform;

static void hex(char16_t const* s) {
    std::printf("\"");
    for (; *s; ++s)
        if (*s >= 0x20 && *s < 0x7F)
            std::printf("%c", (char)*s);
        else
            std::printf("\\u%04X", (unsigned)*s);
    std::printf("\"");
}

int main() {
    char16_t const* pairs[][2] = {{u"a", u"A"},
                                  {u"ab", u"Ab"},
                                  {u"ab", u"AB"},
                                  {u"aB", u"Ab"},
                                  {u"Ab", u"ac"},
                                  {u"a_b", u"ab"},
                                  {u"a-b", u"ab"},
                                  {u"a b", u"ab"},
                                  {u"a.b", u"ab"},
                                  {u"a_b", u"a-b"},
                                  {u"a_b", u"a b"},
                                  {u"a_b", u"a.b"},
                                  {u"co-op", u"coop"},
                                  {u"co-op", u"coop2"},
                                  {u"it's", u"its"},
                                  {u"a10", u"a9"},
                                  {u"a1", u"a10"},
                                  {u"a1", u"a9"},
                                  {u"\u00E9", u"e"},
                                  {u"\u00E9", u"f"},
                                  {u"\u00E9", u"E"},
                                  {u"\u00C4b", u"ab"},
                                  {u"\u00C4b", u"\u00E4B"},
                                  {u"\u00DF", u"ss"},
                                  {u"\u00DF", u"st"},
                                  {u"", u""},
                                  {u"", u"a"},
                                  {u"a", u"a\x01"},
                                  {u"_", u"a"},
                                  {u"0", u"a"},
                                  {u" ", u"_"},
                                  {u"Z", u"a"},
                                  {u"a", u"\u0101"},
                                  {u"\u00E6", u"ae"},
                                  {u"Node1", u"node1"},
                                  {u"ABC", u"abd"},
                                  {u"x", u"x "},
                                  {u"1", u"\u00B2"},
                                  // width, compatibility and other third-level differences
                                  {u"\uFF21", u"A"},
                                  {u"\uFF21", u"\uFF41"},
                                  {u"\u00B9", u"1"},
                                  {u"\u00A0", u" "},
                                  {u"\u2160", u"I"},
                                  {u"\u2160", u"\u2170"},
                                  {u"\u0661", u"1"},
                                  {u"\u200B", u""},
                                  {u"a", u"a\u200B"},
                                  {u"e\u0301", u"\u00E9"},
                                  {u"\u24B6", u"A"},
                                  {u"\u3042", u"\u30A2"},
                                  // letters whose case partner does not map back
                                  {u"\u212A", u"k"},
                                  {u"\u212A", u"K"},
                                  {u"\u017F", u"s"},
                                  {u"\u0131", u"i"},
                                  {u"\u0131", u"I"},
                                  {u"\u0130", u"i"},
                                  {u"\u0130", u"I"},
                                  {u"\u03C2", u"\u03C3"},
                                  {u"\u03C2", u"\u03A3"},
                                  {u"\u00B5", u"\u03BC"},
                                  {u"\u01C5", u"\u01C6"},
                                  {u"\u01C5", u"\u01C4"},
                                  {u"\u1E9E", u"\u00DF"},
                                  {u"\u2126", u"\u03C9"},
                                  {u"\u00C5", u"\u212B"}};
    for (auto& p : pairs) {
        hex(p[0]);
        std::printf(" ");
        hex(p[1]);
        std::printf(" lstrcmpW=%d lstrcmpiW=%d StrCmpIW=%d StrCmpNIW2=%d\n", lstrcmpW(p[0], p[1]),
                    lstrcmpiW(p[0], p[1]), StrCmpIW(p[0], p[1]), StrCmpNIW(p[0], p[1], 2));
    }
    char16_t const* eu = u"x\u00DFy\u00C4\u0130\u03A3\u017F";
    char16_t probes[] = {u'\u00E4', u'\u00C4', u'\u1E9E', u'S',      u's',
                         u'i',      u'I',      u'\u03C3', u'\u03C2', u'\u00DF'};
    for (char16_t c : probes) {
        char16_t const* r = StrChrIW(eu, c);
        std::printf("StrChrIW(eu,U+%04X)=%d ", (unsigned)c, r ? (int)(r - eu) : -1);
    }
    std::printf("\n");
    char16_t const* needles[] = {u"\u00E4", u"SS",     u"ss", u"\u00C4\u0069",
                                 u"\u03C3", u"\u03C2", u"S"};
    for (auto n : needles) {
        char16_t const* r = StrStrIW(eu, n);
        hex(n);
        std::printf(" StrStrIW=%d  ", r ? (int)(r - eu) : -1);
    }
    std::printf("\n");
}
