// Probe: what the MSVC runtime (ucrtbase) makes of printf and scanf formats on wide and narrow
// text. Build: x86_64-w64-mingw32-g++ printf_probe.cpp -o printf_probe.exe
// Run: WINEDEBUG=-all wine printf_probe.exe
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <initializer_list>
#include <windows.h>

typedef int(__cdecl* VSW)(unsigned long long, wchar_t*, size_t, wchar_t const*, void*, va_list);
typedef int(__cdecl* VS)(unsigned long long, char*, size_t, char const*, void*, va_list);
typedef int(__cdecl* SCW)(unsigned long long, wchar_t const*, size_t, wchar_t const*, void*,
                          va_list);
static VSW vsw;
static VS vs;
static SCW scw;

static void W(wchar_t const* fmt, ...) {
    wchar_t buf[512];
    va_list ap;
    va_start(ap, fmt);
    // 4: the legacy wide specifiers that MSVC's headers select (%s is wide in wide formats).
    int n = vsw(4, buf, 512, fmt, nullptr, ap);
    va_end(ap);
    printf("W [%ls] -> %d [", fmt, n);
    for (int i = 0; i < n && i < 200; ++i)
        printf(buf[i] < 128 ? "%c" : "\\u%04x", buf[i]);
    printf("]\n");
}
static void N(char const* fmt, ...) {
    char buf[512];
    va_list ap;
    va_start(ap, fmt);
    int n = vs(0, buf, 512, fmt, nullptr, ap);
    va_end(ap);
    printf("N [%s] -> %d [%.*s]\n", fmt, n, n < 0 ? 0 : n, buf);
}
static int Scan(wchar_t const* text, wchar_t const* fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    int r = scw(0, text, wcslen(text), fmt, nullptr, ap);
    va_end(ap);
    return r;
}
static void S(wchar_t const* text, wchar_t const* fmt) {
    double d = -7;
    wchar_t c = 0;
    int i = -7;
    int r;
    if (wcsstr(fmt, L"lg"))
        r = Scan(text, fmt, &d, &c);
    else
        r = Scan(text, fmt, &i, &c);
    printf("S [%ls] [%ls] -> %d d=%g i=%d\n", text, fmt, r, d, i);
}

int main() {
    HMODULE m = LoadLibraryA("ucrtbase.dll");
    vsw = (VSW)GetProcAddress(m, "__stdio_common_vswprintf");
    vs = (VS)GetProcAddress(m, "__stdio_common_vsprintf");
    scw = (SCW)GetProcAddress(m, "__stdio_common_vswscanf");
    W(L"%05s|%-5s|%.1s|%s", L"ab", L"cd", L"ef", (wchar_t*)nullptr);
    W(L"%S|%hs|%ls|%ws|%C|%c", "nar", "row", L"wi", L"de", 'x', L'y');
    W(L"%p|%10p", (void*)0x1234, (void*)0xab);
    W(L"%e|%E|%g|%G|%a|%A", 1.5, 1e-10, 1e20, 0.0001, 1.0, 0.0);
    W(L"%f|%F|%f|%F|%f", INFINITY, INFINITY, NAN, -NAN, std::sqrt(-1.0));
    W(L"%05f|%05f|%#.0f|%#.0e|%#g|%#x|%#o|%#X", INFINITY, -1.5, 2.0, 3.0, 1.0, 0, 8, 255);
    W(L"%.0d|%.3d|%+d|% d|%-4d|%04d|%-04d|%4.2d", 0, 7, 5, 5, 5, -5, 5, 5);
    W(L"%I64d|%I32d|%lld|%hd|%hhd|%zd|%ld", -1LL << 40, 70000, 1LL << 40, 70000, 300, (size_t)5,
      70000L);
    W(L"%u|%x|%X|%o", -1, -1, 255, 8);
    W(L"%*d|%-*d|%.*f|%.*f", 5, 1, 5, 2, 2, 3.14159, -2, 3.14159);
    W(L"%y|%d", 5, 6);
    W(L"%%|%5%|%c|%5c", 0x263a, L'z');
    W(L"%.3a|%a|%a", 1.0, 0.1, 5e-324);
    W(L"%g|%g|%g|%.0g|%.20g", 100000.0, 1000000.0, 1e-5, 0.5, 0.1);
    N("%s|%S|%ls|%C|%lc", "n", L"w\u00e9", L"x", L'y', L'z');
    N("%5.1f|%-8.3e|%+g", 2.25, 12345.678, 0.0);
    N("%.500f", 1.0);
    // scanning
    S(L" 1.5 ", L" %lg %c");
    S(L"1e", L" %lg %c");
    S(L"1e+", L" %lg %c");
    S(L"inf", L" %lg %c");
    S(L"0x1p3", L" %lg %c");
    S(L"nan(abc)", L" %lg %c");
    S(L"", L" %lg %c");
    S(L"   ", L" %lg %c");
    S(L"1e999", L" %lg %c");
    S(L"- 5", L" %d %c");
    S(L"+5", L" %d %c");
    S(L"3000000000", L" %d %c");
    S(L"-3000000000", L" %d %c");
    S(L"99999999999999999999", L" %d %c");
    S(L"0x1F", L" %x %c");
    S(L"-ff", L" %x %c");
    S(L"ffffffffff", L" %x %c");
    S(L"0x", L" %x %c");
    S(L"1.5", L" %x %c");
    S(L"1.5e", L" %lg %c");
    S(L".", L" %lg %c");
    S(L"-.5", L" %lg %c");
    S(L"+inf", L" %lg %c");
    S(L"infinity", L" %lg %c");
    S(L"infin", L" %lg %c");
    S(L"12 x", L" %d %c");
    S(L"\u00a012", L" %d %c");
    S(L"4294967295", L" %d %c");
    S(L"4294967296", L" %d %c");
    S(L"ffffffff", L" %x %c");
    S(L"100000000", L" %x %c");
    S(L"+0x", L" %x %c");
    S(L"x", L" %x %c");
    typedef int(__cdecl * WTOI)(wchar_t const*);
    typedef double(__cdecl * WTOF)(wchar_t const*);
    WTOI wtoi = (WTOI)GetProcAddress(m, "_wtoi");
    WTOF wtof = (WTOF)GetProcAddress(m, "_wtof");
    printf("wtoi %d %d %d %d %d\n", wtoi(L" \t+42x"), wtoi(L"3000000000"), wtoi(L"-3000000000"),
           wtoi(L"0x10"), wtoi(L"\u00a012"));
    printf("wtof %g %g %g %g %g %g\n", wtof(L" 1.5e3x"), wtof(L"0x1p4"), wtof(L"inf"),
           wtof(L"1e999"), wtof(L"nan"), wtof(L".5"));
    typedef int(__cdecl * I64TOW)(long long, wchar_t*, size_t, int);
    I64TOW i64tow = (I64TOW)GetProcAddress(m, "_i64tow_s");
    wchar_t b[80];
    int e = i64tow(-255, b, 80, 16);
    printf("i64tow -255 r16: %d [%ls]\n", e, b);
    e = i64tow(-255, b, 80, 10);
    printf("i64tow -255 r10: %d [%ls]\n", e, b);
    e = i64tow(35, b, 80, 36);
    printf("i64tow 35 r36: %d [%ls]\n", e, b);
    // the character 0 through every character conversion
    W(L"[%c|%hc|%lc|%C|%wc]", 0, 0, 0, 0, 0);
    W(L"%3c|%-3c|", 0, 0);
    N("[%c|%hc|%lc|%C]", 0, 0, 0, 0);
    // a 'd' exponent, and digits of other scripts
    printf("wtof-d %g %g %g %g %g %g\n", wtof(L"1d3"), wtof(L"1D-2"), wtof(L"1d"), wtof(L"2.5d+1x"),
           wtof(L"\uff11\uff12"), wtof(L"0x1d3"));
    S(L"1d3", L" %lg %c");
    S(L"1D3", L" %lg %c");
    S(L"1d", L" %lg %c");
    S(L"\uff11\uff12", L" %d %c");
    printf("wtoi-digits %d %d %d %d %d\n", wtoi(L"\uff11\uff12"), wtoi(L"\u0661\u0662"),
           wtoi(L"-\u0967\u0968"), wtoi(L"\u00b9"), wtoi(L"1\u07c12"));
    typedef unsigned long(__cdecl * WCSTOUL)(wchar_t const*, wchar_t**, int);
    WCSTOUL wcstoul = (WCSTOUL)GetProcAddress(m, "wcstoul");
    wchar_t const* texts[] = {
        L" 42x", L"-1",     L"4294967295", L"4294967296",   L"-4294967296",
        L"0x1F", L"0x",     L"0xg",        L"017",          L"08",
        L"zz",   L"+",      L"",           L"\uff11\uff12", L"99999999999999999999",
        L"-0",   L"  -  1", L"\u00a07",    L"1\u0661"};
    for (wchar_t const* t : texts)
        for (int base : {0, 10, 16, 36}) {
            wchar_t* end = nullptr;
            unsigned long v = wcstoul(t, &end, base);
            printf("wcstoul [%ls] %d -> %lu end=%d\n", t, base, v, (int)(end - t));
        }
    {
        wchar_t* end = nullptr;
        unsigned long v = wcstoul(L"5", &end, 1);
        printf("wcstoul base1 -> %lu end=%d; base37 -> %lu\n", v, (int)(end - L"5"),
               wcstoul(L"5", nullptr, 37));
    }
    return 0;
}
