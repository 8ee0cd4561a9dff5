// Probe: what the MSVC runtime writes and reads in its "ccs" text modes. Build with
//   x86_64-w64-mingw32-g++ ccs_streams_probe.cpp -o probe.exe
// and run under Wine in an empty directory. It writes the files that the tests compare
// against and prints what the wide reads deliver.
#include <stdio.h>
#include <wchar.h>

static void dump(const wchar_t* name) {
    FILE* f = _wfopen(name, L"rb");
    if (!f) {
        wprintf(L"%ls: cannot open\n", name);
        return;
    }
    wprintf(L"%ls:", name);
    int c;
    while ((c = fgetc(f)) != EOF)
        wprintf(L" %02X", c);
    wprintf(L"\n");
    fclose(f);
}

static void readWide(const wchar_t* name, const wchar_t* mode) {
    FILE* f = nullptr;
    if (_wfopen_s(&f, name, mode)) {
        wprintf(L"read %ls %ls: fail\n", name, mode);
        return;
    }
    wprintf(L"read %ls %ls:", name, mode);
    wint_t c;
    while ((c = fgetwc(f)) != WEOF)
        wprintf(L" %04X", (unsigned)c);
    wprintf(L" end %04X\n", (unsigned)c);
    fclose(f);
}

static void freadWide(const wchar_t* name, const wchar_t* mode) {
    FILE* f = nullptr;
    if (_wfopen_s(&f, name, mode)) {
        wprintf(L"fread %ls %ls: fail\n", name, mode);
        return;
    }
    unsigned char buf[64];
    size_t n = fread(buf, 1, sizeof buf, f);
    wprintf(L"fread %ls %ls (%d):", name, mode, (int)n);
    for (size_t i = 0; i < n; ++i)
        wprintf(L" %02X", buf[i]);
    wprintf(L"\n");
    fclose(f);
}

int main() {
    FILE* f = nullptr;
    // The same content as the tests write: two lines, a non-ASCII character, a percent sign.
    _wfopen_s(&f, L"utf16le_written.txt", L"wt,ccs=UTF-16LE");
    fwprintf(f, L"%ls\t%ls\n", L"$KEY", L"Gr\x00FC\x00DF\x20AC 100%");
    fputws(L"second line\n", f);
    fclose(f);
    dump(L"utf16le_written.txt");

    _wfopen_s(&f, L"unicode_written.txt", L"wt,ccs=UNICODE");
    fputws(L"a\nb", f);
    fclose(f);
    dump(L"unicode_written.txt");

    // Appending: a new file gets a BOM, an existing one does not get a second.
    _wfopen_s(&f, L"appended.txt", L"at,ccs=UNICODE");
    fputws(L"x\n", f);
    fclose(f);
    _wfopen_s(&f, L"appended.txt", L"at,ccs=UNICODE");
    fputws(L"y\n", f);
    fclose(f);
    dump(L"appended.txt");

    // Appending to a file with a UTF-8 BOM, and to one without BOM.
    f = _wfopen(L"utf8bom.txt", L"wb");
    fwrite("\xEF\xBB\xBFu\n", 1, 5, f);
    fclose(f);
    _wfopen_s(&f, L"utf8bom.txt", L"at,ccs=UNICODE");
    fputws(L"\x00FC\n", f);
    fclose(f);
    dump(L"utf8bom.txt");
    f = _wfopen(L"nobom.txt", L"wb");
    fwrite("ab\r\n", 1, 4, f);
    fclose(f);
    _wfopen_s(&f, L"nobom.txt", L"at,ccs=UNICODE");
    fputws(L"c\n", f);
    fclose(f);
    dump(L"nobom.txt");

    // Reading: BOM decides, CR LF folded, lone CR kept; without BOM.
    f = _wfopen(L"crlf16.txt", L"wb");
    fwrite("\xFF\xFE"
           "a\0\r\0\n\0b\0\r\0c\0",
           1, 14, f);
    fclose(f);
    readWide(L"crlf16.txt", L"r,ccs=UTF-16LE");
    readWide(L"crlf16.txt", L"r,ccs=UNICODE");
    freadWide(L"crlf16.txt", L"r,ccs=UTF-16LE");
    readWide(L"crlf16.txt", L"rb");
    readWide(L"utf8bom.txt", L"r,ccs=UTF-16LE");
    freadWide(L"utf8bom.txt", L"r,ccs=UTF-16LE");
    readWide(L"nobom.txt", L"r,ccs=UNICODE");
    readWide(L"nobom.txt", L"rt");
    f = _wfopen(L"ansi.txt", L"wb");
    fwrite("\xE4\r\nz\x1Aq", 1, 6, f);
    fclose(f);
    readWide(L"ansi.txt", L"rt");
    freadWide(L"ansi.txt", L"rt");

    // ANSI text mode writing: LF becomes CR LF.
    _wfopen_s(&f, L"ansi_written.txt", L"wt");
    fputws(L"p\nq", f);
    fputs("\n", f);
    fclose(f);
    dump(L"ansi_written.txt");
    return 0;
}
