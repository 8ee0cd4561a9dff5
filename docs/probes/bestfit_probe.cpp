// Lists every BMP character that WideCharToMultiByte(1252, 0, ...) writes as something other
// than the default character without being one of the code page's own characters: Windows'
// best-fit mappings. The output, one "XXXX YY" line each, is the table in CodePage.cpp.
// Build: x86_64-w64-mingw32-g++ bestfit_probe.cpp -o bestfit_probe.exe
// Run:   WINEDEBUG=-all wine bestfit_probe.exe
#include <cstdio>
#include <windows.h>

int main() {
    bool direct[0x10000] = {};
    for (unsigned b = 0; b < 256; ++b) {
        char in = (char)b;
        wchar_t out = 0;
        if (MultiByteToWideChar(1252, 0, &in, 1, &out, 1) == 1)
            direct[out] = true;
    }
    for (unsigned u = 1; u < 0x10000; ++u) {
        if (direct[u] || (u >= 0xD800 && u <= 0xDFFF))
            continue;
        wchar_t in = (wchar_t)u;
        char out[4] = {};
        BOOL used = FALSE;
        int n = WideCharToMultiByte(1252, 0, &in, 1, out, 4, 0, &used);
        if (n == 1 && !used)
            std::printf("%04X %02X\n", u, (unsigned char)out[0]);
        else if (n != 1 || out[0] != '?')
            std::printf("%04X odd n=%d\n", u, n);
    }
    return 0;
}
