// Prints, for every BMP unit, what the MSVC runtime (ucrtbase) answers for the wide character
// functions and the digit reading of _wtoi, and what LCMapStringEx makes of the unit in the
// user's locale. One line per unit: hex unit, towupper and towlower in the "C" locale, the same
// after _wsetlocale(LC_ALL, L"English_United States.1252"), LCMAP_UPPERCASE, LCMAP_LOWERCASE,
// then the class bits (alpha digit print space) and _wtoi of the unit followed by "1".
// Build: x86_64-w64-mingw32-g++ unit_tables_probe.cpp -o unit_tables_probe.exe
// Run:   WINEDEBUG=-all wine unit_tables_probe.exe > windows_units.txt
#include <clocale>
#include <cstdio>
#include <windows.h>

typedef wint_t(__cdecl* Map)(wint_t);
typedef int(__cdecl* Class)(wint_t);
typedef int(__cdecl* ToInt)(wchar_t const*);
typedef wchar_t*(__cdecl* SetLocale)(int, wchar_t const*);

int main() {
    HMODULE m = LoadLibraryA("ucrtbase.dll");
    Map up = (Map)GetProcAddress(m, "towupper");
    Map lo = (Map)GetProcAddress(m, "towlower");
    Class alpha = (Class)GetProcAddress(m, "iswalpha");
    Class digit = (Class)GetProcAddress(m, "iswdigit");
    Class print = (Class)GetProcAddress(m, "iswprint");
    Class space = (Class)GetProcAddress(m, "iswspace");
    ToInt wtoi = (ToInt)GetProcAddress(m, "_wtoi");
    SetLocale setlocale = (SetLocale)GetProcAddress(m, "_wsetlocale");
    static unsigned cUp[65536], cLo[65536];
    for (unsigned u = 0; u < 65536; ++u) {
        cUp[u] = up((wint_t)u);
        cLo[u] = lo((wint_t)u);
    }
    setlocale(LC_ALL, L"English_United States.1252");
    for (unsigned u = 0; u < 65536; ++u) {
        wchar_t in[2] = {(wchar_t)u, 0}, mu[4] = {}, ml[4] = {};
        LCMapStringEx(LOCALE_NAME_USER_DEFAULT, LCMAP_UPPERCASE, in, 1, mu, 4, 0, 0, 0);
        LCMapStringEx(LOCALE_NAME_USER_DEFAULT, LCMAP_LOWERCASE, in, 1, ml, 4, 0, 0, 0);
        wchar_t num[3] = {(wchar_t)u, L'1', 0};
        std::printf("%04X %04X %04X %04X %04X %04X %04X %d%d%d%d %d\n", u, cUp[u], cLo[u],
                    (unsigned)up((wint_t)u), (unsigned)lo((wint_t)u), (unsigned)mu[0],
                    (unsigned)ml[0], alpha((wint_t)u) ? 1 : 0, digit((wint_t)u) ? 1 : 0,
                    print((wint_t)u) ? 1 : 0, space((wint_t)u) ? 1 : 0, wtoi(num));
    }
}
