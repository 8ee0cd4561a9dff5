// Prints what Windows answers for the comparison and search services.
// Build: x86_64-w64-mingw32-g++ -municode compare_probe.cpp -o compare_probe.exe -lshlwapi
// Run:   WINEDEBUG=-all wine compare_probe.exe
#include <cstdio>
#include <shlwapi.h>
#include <windows.h>

static void hex(const wchar_t* s) {
    if (!s) {
        std::printf("NULL");
        return;
    }
    std::printf("\"");
    for (; *s; ++s)
        if (*s >= 0x20 && *s < 0x7F)
            std::printf("%c", (char)*s);
        else
            std::printf("\\u%04X", (unsigned)*s);
    std::printf("\"");
}

int wmain() {
    const wchar_t* pairs[][2] = {{L"a", L"A"},
                                 {L"ab", L"Ab"},
                                 {L"ab", L"AB"},
                                 {L"aB", L"Ab"},
                                 {L"Ab", L"ac"},
                                 {L"a_b", L"ab"},
                                 {L"a-b", L"ab"},
                                 {L"a b", L"ab"},
                                 {L"a.b", L"ab"},
                                 {L"a_b", L"a-b"},
                                 {L"a_b", L"a b"},
                                 {L"a_b", L"a.b"},
                                 {L"co-op", L"coop"},
                                 {L"co-op", L"coop2"},
                                 {L"it's", L"its"},
                                 {L"a10", L"a9"},
                                 {L"a1", L"a10"},
                                 {L"a1", L"a9"},
                                 {L"\u00E9", L"e"},
                                 {L"\u00E9", L"f"},
                                 {L"\u00E9", L"E"},
                                 {L"\u00C4b", L"ab"},
                                 {L"\u00C4b", L"\u00E4B"},
                                 {L"\u00DF", L"ss"},
                                 {L"\u00DF", L"st"},
                                 {L"", L""},
                                 {L"", L"a"},
                                 {L"a", L"a\x01"},
                                 {L"_", L"a"},
                                 {L"0", L"a"},
                                 {L" ", L"_"},
                                 {L"Z", L"a"},
                                 {L"a", L"\u0101"},
                                 {L"\u00E6", L"ae"},
                                 {L"Node1", L"node1"},
                                 {L"ABC", L"abd"},
                                 {L"x", L"x "},
                                 {L"1", L"\u00B2"},
                                 // width, compatibility and other third-level differences
                                 {L"\uFF21", L"A"},
                                 {L"\uFF21", L"\uFF41"},
                                 {L"\u00B9", L"1"},
                                 {L"\u00A0", L" "},
                                 {L"\u2160", L"I"},
                                 {L"\u2160", L"\u2170"},
                                 {L"\u0661", L"1"},
                                 {L"\u200B", L""},
                                 {L"a", L"a\u200B"},
                                 {L"e\u0301", L"\u00E9"},
                                 {L"\u24B6", L"A"},
                                 {L"\u3042", L"\u30A2"},
                                 // letters whose case partner does not map back
                                 {L"\u212A", L"k"},
                                 {L"\u212A", L"K"},
                                 {L"\u017F", L"s"},
                                 {L"\u0131", L"i"},
                                 {L"\u0131", L"I"},
                                 {L"\u0130", L"i"},
                                 {L"\u0130", L"I"},
                                 {L"\u03C2", L"\u03C3"},
                                 {L"\u03C2", L"\u03A3"},
                                 {L"\u00B5", L"\u03BC"},
                                 {L"\u01C5", L"\u01C6"},
                                 {L"\u01C5", L"\u01C4"},
                                 {L"\u1E9E", L"\u00DF"},
                                 {L"\u2126", L"\u03C9"},
                                 {L"\u00C5", L"\u212B"}};
    for (auto& p : pairs) {
        hex(p[0]);
        std::printf(" ");
        hex(p[1]);
        std::printf(" lstrcmpW=%d lstrcmpiW=%d StrCmpIW=%d StrCmpNIW2=%d\n", lstrcmpW(p[0], p[1]),
                    lstrcmpiW(p[0], p[1]), StrCmpIW(p[0], p[1]), StrCmpNIW(p[0], p[1], 2));
    }
    std::printf("null: lstrcmpW(0,0)=%d (0,\"\")=%d (\"\",0)=%d lstrcmpiW(0,a)=%d "
                "lstrcmpA(0,\"\")=%d lstrcmpiA(a,0)=%d\n",
                lstrcmpW(0, 0), lstrcmpW(0, L""), lstrcmpW(L"", 0), lstrcmpiW(0, L"a"),
                lstrcmpA(0, ""), lstrcmpiA("a", 0));
    std::printf("StrCmpIW(0,a)=%d StrCmpIW(a,0)=%d StrCmpIW(0,0)=%d StrCmpNIW(ab,ac,0)=%d\n",
                StrCmpIW(0, L"a"), StrCmpIW(L"a", 0), StrCmpIW(0, 0), StrCmpNIW(L"ab", L"ac", 0));
    char const* narrow[][2] = {{"\xB9", "1"},   {"\xA0", " "},    {"\xAA", "a"},
                               {"\xBD", "1/2"}, {"\xC4", "\xE4"}, {"a", "a\x01"}};
    for (auto& p : narrow)
        std::printf("A %02X %02X lstrcmpA=%d lstrcmpiA=%d\n", (unsigned char)p[0][0],
                    (unsigned char)p[1][0], lstrcmpA(p[0], p[1]), lstrcmpiA(p[0], p[1]));
    std::printf("lstrcmpA e/\\xE9=%d lstrcmpiA \\xC4/\\xE4=%d lstrcmpA a_b/a-b=%d coop=%d\n",
                lstrcmpA("e", "\xE9"), lstrcmpiA("\xC4", "\xE4"), lstrcmpA("a_b", "a-b"),
                lstrcmpA("co-op", "coop"));

    const wchar_t* s = L"Hello World";
    std::printf("StrStrW(s,\"\")=%s StrStrIW(s,\"\")=%s StrStrA(s,\"\")=%s StrStrIA(s,\"\")=%s\n",
                StrStrW(s, L"") == 0 ? "NULL" : (StrStrW(s, L"") == s ? "s" : "other"),
                StrStrIW(s, L"") == 0 ? "NULL" : (StrStrIW(s, L"") == s ? "s" : "other"),
                StrStrA("ab", "") == 0 ? "NULL" : "s", StrStrIA("ab", "") == 0 ? "NULL" : "s");
    std::printf(
        "StrStrW(0,a)=%p StrStrW(s,0)=%p StrChrW(0,a)=%p StrChrW(s,0)=%s StrRChrW(s,0,0)=%s\n",
        (void*)StrStrW(0, L"a"), (void*)StrStrW(s, 0), (void*)StrChrW(0, L'a'),
        StrChrW(s, 0) == 0 ? "NULL" : "nonnull", StrRChrW(s, 0, 0) == 0 ? "NULL" : "nonnull");
    std::printf("StrRChrW(s,s+5,o)=%d StrRChrW(s,NULL,o)=%d\n", (int)(StrRChrW(s, s + 5, L'o') - s),
                (int)(StrRChrW(s, 0, L'o') - s));
    const wchar_t* eu = L"x\u00DFy\u00C4\u0130\u03A3\u017F";
    wchar_t probes[] = {L'\u00E4', L'\u00C4', L'\u1E9E', L'S',      L's',
                        L'i',      L'I',      L'\u03C3', L'\u03C2', L'\u00DF'};
    for (wchar_t c : probes) {
        const wchar_t* r = StrChrIW(eu, c);
        std::printf("StrChrIW(eu,U+%04X)=%d ", (unsigned)c, r ? (int)(r - eu) : -1);
    }
    std::printf("\n");
    const wchar_t* needles[] = {L"\u00E4", L"SS",     L"ss", L"\u00C4\u0069",
                                L"\u03C3", L"\u03C2", L"S"};
    for (auto n : needles) {
        const wchar_t* r = StrStrIW(eu, n);
        hex(n);
        std::printf(" StrStrIW=%d  ", r ? (int)(r - eu) : -1);
    }
    const char* xay = "xAy";
    std::printf("\nStrChrIA(\"xAy\",'a')=%d StrStrIA(\"x\\xC4y\",\"\\xE4\")=%d "
                "StrChrIA(\"x\\xC4\",0xE4)=%d\n",
                (int)(StrChrIA(xay, 'a') - xay), StrStrIA("x\xC4y", "\xE4") ? 1 : 0,
                StrChrIA("x\xC4", 0xE4) ? 1 : 0);
    std::printf(
        "_wcsnicmp(\\xC4,\\xE4)=%d _strnicmp(_,A)=%d _stricmp(\\xE9,z)=%d wcsncmp(FFFF,a)=%d\n",
        _wcsnicmp(L"\u00C4", L"\u00E4", 1), _strnicmp("_", "A", 1), _stricmp("\xE9", "z"),
        wcsncmp(L"\uFFFF", L"a", 1));
    return 0;
}
