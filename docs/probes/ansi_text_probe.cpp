// Probe: fgetwc on a file without BOM in "r,ccs=UTF-16LE" and in "rt" (bytes above 0x7F).
// Build with x86_64-w64-mingw32-g++ ansi_text_probe.cpp -o probe.exe, run under Wine.
// Output: "r,ccs=UTF-16LE: 6261 0A0D 8063" and "rt: 0061 0062 000A 0063 0080".
#include <initializer_list>
#include <stdio.h>
#include <wchar.h>
int main() {
    FILE* f = _wfopen(L"nobom2.txt", L"wb");
    fwrite("ab\r\nc\x80", 1, 6, f);
    fclose(f);
    for (const wchar_t* mode : {L"r,ccs=UTF-16LE", L"rt"}) {
        _wfopen_s(&f, L"nobom2.txt", mode);
        wprintf(L"%ls:", mode);
        wint_t c;
        while ((c = fgetwc(f)) != WEOF)
            wprintf(L" %04X", (unsigned)c);
        wprintf(L"\n");
        fclose(f);
    }
}
