// Prints what the runtime's wide and narrow character functions and the code page
// conversions answer on Windows, one line per input.
// Build: x86_64-w64-mingw32-g++ classes_probe.cpp -o classes_probe.exe
// Run:   WINEDEBUG=-all wine classes_probe.exe
#include <cctype>
#include <cstdio>
#include <cwctype>
#include <initializer_list>
#include <windows.h>

int main() {
    unsigned const units[] = {
        0x41,   0x61,   0x7A,   0x30,   0x5F,   0x20,   0x09,   0x0B,   0x1F,   0x7F,
        0x80,   0x85,   0x9F,   0xA0,   0xAA,   0xB2,   0xB5,   0xB9,   0xBA,   0xC0,
        0xD7,   0xDF,   0xE9,   0xF7,   0xFF,   0x130,  0x131,  0x17F,  0x1C5,  0x1E9E,
        0x391,  0x3B1,  0x3C2,  0x3A3,  0x410,  0x430,  0x401,  0x660,  0x966,  0xFF10,
        0x2070, 0x2074, 0x2460, 0x1680, 0x2000, 0x200B, 0x2028, 0x2029, 0x202F, 0x3000,
        0xFEFF, 0x3042, 0x4E2D, 0xAC00, 0xD800, 0xDC00, 0xE000, 0xFFFD, 0xFFFF, 0x0378,
        0x2126, 0x212A, 0x0345, 0x0301, 0x00AD, 0x2160, 0x24B6, 0x02B0};
    for (unsigned u : units) {
        wchar_t c = (wchar_t)u;
        std::printf("U+%04X up=%04X lo=%04X alpha=%d alnum=%d digit=%d print=%d space=%d\n", u,
                    (unsigned)towupper(c), (unsigned)towlower(c), iswalpha(c) ? 1 : 0,
                    iswalnum(c) ? 1 : 0, iswdigit(c) ? 1 : 0, iswprint(c) ? 1 : 0,
                    iswspace(c) ? 1 : 0);
    }
    for (unsigned b : {0x41u, 0x61u, 0xC4u, 0xE4u, 0xE9u, 0xA0u, 0x85u, 0xB2u, 0xDFu, 0xFFu}) {
        std::printf("byte %02X up=%02X lo=%02X alpha=%d digit=%d print=%d space=%d\n", b,
                    toupper((int)b) & 0xFF, tolower((int)b) & 0xFF, isalpha((int)b) ? 1 : 0,
                    isdigit((int)b) ? 1 : 0, isprint((int)b) ? 1 : 0, isspace((int)b) ? 1 : 0);
    }

    std::printf("ACP=%u\n", GetACP());
    for (unsigned b = 0x80; b < 0xA0; ++b) {
        char in = (char)b;
        wchar_t out[4] = {};
        int n = MultiByteToWideChar(1252, 0, &in, 1, out, 4);
        std::printf("1252 %02X -> n=%d U+%04X\n", b, n, (unsigned)out[0]);
    }
    unsigned const wides[] = {0x100,  0x101,  0x2013, 0x20AC, 0x4E2D, 0xD800, 0xDC00, 0x81,
                              0x8D,   0x152,  0x160,  0x17D,  0x2018, 0x201C, 0x2022, 0x2122,
                              0xFF21, 0x2002, 0x00BD, 0x01C4, 0x0394, 0x0431, 0x1E00, 0x0218,
                              0x2260, 0x221E, 0x3000, 0x0107, 0x010D, 0x0141, 0x0142, 0x0110,
                              0x0131, 0x02C6, 0x2039, 0x00A0, 0x2212, 0x2044, 0x0180, 0xFFFD};
    for (unsigned w : wides) {
        wchar_t in[2] = {(wchar_t)w, 0};
        char out[8] = {};
        BOOL used = FALSE;
        int n = WideCharToMultiByte(1252, 0, in, 1, out, 8, 0, &used);
        std::printf("to1252 U+%04X -> n=%d", w, n);
        for (int i = 0; i < n; ++i)
            std::printf(" %02X", (unsigned char)out[i]);
        std::printf(" used=%d\n", used);
        n = WideCharToMultiByte(CP_UTF8, 0, in, 1, out, 8, 0, 0);
        std::printf("toUTF8 U+%04X -> n=%d", w, n);
        for (int i = 0; i < n; ++i)
            std::printf(" %02X", (unsigned char)out[i]);
        std::printf("\n");
    }
    char const* bad[] = {"a\xFF"
                         "b",
                         "\xC3",
                         "\xE4\xB8",
                         "\xED\xA0\x80",
                         "\xF0\x9F\x98\x80",
                         "\xC0\xAF",
                         "\xE4\xB8x"};
    for (char const* s : bad) {
        wchar_t out[16] = {};
        int n = MultiByteToWideChar(CP_UTF8, 0, s, -1, out, 16);
        std::printf("fromUTF8 n=%d:", n);
        for (int i = 0; i < n; ++i)
            std::printf(" %04X", (unsigned)out[i]);
        std::printf("\n");
    }
    // Conventions
    wchar_t w[8];
    char a[8];
    std::printf("MB(-1,size0)=%d MB(len0)=%d MB(small)=%d err=%lu\n",
                MultiByteToWideChar(1252, 0, "abc", -1, 0, 0),
                MultiByteToWideChar(1252, 0, "abc", 0, w, 8),
                MultiByteToWideChar(1252, 0, "abc", -1, w, 2), GetLastError());
    std::printf("WC(-1,size0)=%d WC(small)=%d partial=%.2s\n",
                WideCharToMultiByte(1252, 0, L"abc", -1, 0, 0, 0, 0),
                WideCharToMultiByte(1252, 0, L"abc", -1, a, 2, 0, 0), a);
    return 0;
}
