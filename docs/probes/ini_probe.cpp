// Asks the private-profile service what it answers for the rules the ini engine follows.
#include <windows.h>
#include <cstdio>
#include <cwchar>

static void dump(const wchar_t* label, const wchar_t* buf, DWORD n) {
    wprintf(L"%ls n=%lu [", label, (unsigned long)n);
    for (DWORD i = 0; i < n + 1; ++i) {
        if (buf[i] == 0) wprintf(L"|"); else wprintf(L"%lc", buf[i]);
    }
    wprintf(L"]\n");
}

static void writeFile(const wchar_t* path, const char* bytes, size_t n) {
    FILE* f = _wfopen(path, L"wb");
    fwrite(bytes, 1, n, f);
    fclose(f);
}
static void showFile(const wchar_t* path) {
    FILE* f = _wfopen(path, L"rb");
    int c; wprintf(L"FILE<");
    while ((c = fgetc(f)) != EOF) {
        if (c == '\r') wprintf(L"\\r"); else if (c == '\n') wprintf(L"\\n"); else if (c < 32 || c > 126) wprintf(L"\\x%02x", c); else wprintf(L"%c", c);
    }
    wprintf(L">\n");
    fclose(f);
}

int main() {
    const wchar_t* p = L"C:\\probe.ini";
    const char text[] =
        "  [ Sec A ]  trailing\r\n"
        "  key1 =  value one  \r\n"
        "key2=\"quoted\"\r\n"
        "key3='single'\r\n"
        "key4=\"unbalanced\r\n"
        "key5= \" spaced \" \r\n"
        "KEY1=dup\r\n"
        ";comment=x\r\n"
        "# hash=y\r\n"
        "novalue\r\n"
        "empty=\r\n"
        "=noname\r\n"
        "int1= 42abc\r\n"
        "int2=-7\r\n"
        "int3=0x1F\r\n"
        "int4=abc\r\n"
        "int5=\r\n"
        "int6=4294967297\r\n"
        "[sec a]\r\n"
        "key1=second\r\n"
        "extra=fromdup\r\n"
        "[a]b]\r\n"
        "k=v\r\n"
        "[nobracket\r\n"
        "k2=v2\r\n"
        "[]\r\n"
        "ek=ev\r\n"
        "[Last]\r\n"
        "lone\rcr=1\r\n"
        "tab\tkey\t=\tv\t\r\n"
        "nl=x";
    writeFile(p, text, sizeof(text) - 1);
    wchar_t buf[4096];
    DWORD n;
    n = GetPrivateProfileSectionNamesW(buf, 4096, p); dump(L"names", buf, n);
    n = GetPrivateProfileStringW(L"Sec A", NULL, NULL, buf, 4096, p); dump(L"keys SecA", buf, n);
    n = GetPrivateProfileStringW(L"a]b", NULL, NULL, buf, 4096, p); dump(L"keys a]b", buf, n);
    n = GetPrivateProfileStringW(L"a", NULL, NULL, buf, 4096, p); dump(L"keys a", buf, n);
    n = GetPrivateProfileStringW(L"", NULL, NULL, buf, 4096, p); dump(L"keys empty", buf, n);
    n = GetPrivateProfileStringW(L"nobracket", NULL, NULL, buf, 4096, p); dump(L"keys nobracket", buf, n);
    n = GetPrivateProfileStringW(L"Last", NULL, NULL, buf, 4096, p); dump(L"keys Last", buf, n);
    const wchar_t* keys[] = {L"key1", L"key2", L"key3", L"key4", L"key5", L";comment", L"# hash", L"novalue", L"empty", L"", L"int1", L"extra", L"missing"};
    for (auto k : keys) { n = GetPrivateProfileStringW(L"sec a", k, L"def  ", buf, 4096, p); wprintf(L"val(%ls) ", k); dump(L"", buf, n); }
    n = GetPrivateProfileStringW(L"Last", L"tab\tkey", L"def", buf, 4096, p); dump(L"tabkey", buf, n);
    n = GetPrivateProfileStringW(L"Last", L"nl", L"def", buf, 4096, p); dump(L"nl", buf, n);
    n = GetPrivateProfileStringW(L"Last", L"lone", L"def", buf, 4096, p); dump(L"lone", buf, n);
    n = GetPrivateProfileStringW(L"Last", L"cr", L"def", buf, 4096, p); dump(L"cr", buf, n);
    n = GetPrivateProfileStringW(L"", L"ek", L"def", buf, 4096, p); dump(L"ek", buf, n);
    const wchar_t* ints[] = {L"int1", L"int2", L"int3", L"int4", L"int5", L"int6", L"missing", L"key1"};
    for (auto k : ints) wprintf(L"int(%ls)=%u\n", k, GetPrivateProfileIntW(L"Sec A", k, 99, p));
    n = GetPrivateProfileSectionW(L"Sec A", buf, 4096, p); dump(L"section", buf, n);
    // truncation
    n = GetPrivateProfileStringW(L"Sec A", L"key1", L"", buf, 5, p); dump(L"trunc5", buf, 4);
    wprintf(L"trunc5 n=%lu\n", n);
    n = GetPrivateProfileStringW(L"Sec A", L"key1", L"", buf, 10, p); wprintf(L"fit10 n=%lu\n", n);
    n = GetPrivateProfileStringW(L"Sec A", L"key1", L"", buf, 9, p); wprintf(L"cut9 n=%lu\n", n);
    n = GetPrivateProfileStringW(L"Sec A", NULL, NULL, buf, 8, p); dump(L"keystrunc8", buf, 7); wprintf(L"keys8 n=%lu\n", n);
    n = GetPrivateProfileSectionNamesW(buf, 8, p); dump(L"namestrunc8", buf, 7); wprintf(L"names8 n=%lu\n", n);
    n = GetPrivateProfileStringW(L"Sec A", L"key1", L"", buf, 1, p); wprintf(L"size1 n=%lu buf0=%d\n", n, buf[0]);
    n = GetPrivateProfileStringW(L"Sec A", L"key1", L"", buf, 0, p); wprintf(L"size0 n=%lu\n", n);
    n = GetPrivateProfileStringW(L"Sec A", NULL, NULL, buf, 2, p); wprintf(L"keys2 n=%lu b0=%d b1=%d\n", n, buf[0], buf[1]);
    n = GetPrivateProfileStringW(L"Sec A", NULL, NULL, buf, 1, p); wprintf(L"keys1 n=%lu b0=%d\n", n, buf[0]);
    n = GetPrivateProfileStringW(L"Sec A", L"missing", NULL, buf, 10, p); wprintf(L"nulldef n=%lu b0=%d\n", n, buf[0]);
    n = GetPrivateProfileStringW(NULL, NULL, NULL, buf, 4096, p); dump(L"nullsection", buf, n);
    // struct
    unsigned char data[3] = {0x12, 0xAF, 0x00};
    WritePrivateProfileStructW(L"S", L"blob", data, 3, L"C:\\probe2.ini");
    n = GetPrivateProfileStringW(L"S", L"blob", L"", buf, 4096, L"C:\\probe2.ini"); dump(L"struct", buf, n);
    unsigned char back[3] = {};
    wprintf(L"getstruct=%d %02x%02x%02x\n", GetPrivateProfileStructW(L"S", L"blob", back, 3, L"C:\\probe2.ini"), back[0], back[1], back[2]);
    wprintf(L"getstruct2=%d\n", GetPrivateProfileStructW(L"S", L"blob", back, 2, L"C:\\probe2.ini"));
    WritePrivateProfileStringW(L"S", L"low", L"12af0001", L"C:\\probe2.ini");
    wprintf(L"lowercase=%d\n", GetPrivateProfileStructW(L"S", L"low", back, 3, L"C:\\probe2.ini"));
    WritePrivateProfileStructW(L"S", L"zero", data, 0, L"C:\\probe2.ini");
    n = GetPrivateProfileStringW(L"S", L"zero", L"", buf, 4096, L"C:\\probe2.ini"); dump(L"struct0", buf, n);
    showFile(L"C:\\probe2.ini");
    // folding
    const char fold[] = "[\xc4rger]\r\n\xe4pfel=1\r\n";
    writeFile(L"C:\\probe3.ini", fold, sizeof(fold) - 1);
    n = GetPrivateProfileStringW(L"\x00e4rger", L"\x00c4pfel", L"def", buf, 4096, L"C:\\probe3.ini"); dump(L"fold", buf, n);
    // utf16 file with odd byte
    const char u16[] = "\xff\xfe[\0s\0]\0\r\0\n\0k\0=\0v\0\r\0\n\0x";
    writeFile(L"C:\\probe4.ini", u16, sizeof(u16) - 1);
    n = GetPrivateProfileStringW(L"s", L"k", L"def", buf, 4096, L"C:\\probe4.ini"); dump(L"u16", buf, n);
    // write into unicode file
    WritePrivateProfileStringW(L"s", L"new", L"\x20ac", L"C:\\probe4.ini");
    showFile(L"C:\\probe4.ini");
    // write euro into ansi file
    DeleteFileW(L"C:\\probe5.ini");
    WritePrivateProfileStringW(L"s", L"e", L"\x20ac\x4e00", L"C:\\probe5.ini");
    showFile(L"C:\\probe5.ini");
    wprintf(L"del missing section=%d\n", WritePrivateProfileStringW(L"nosuch", NULL, NULL, L"C:\\probe5.ini"));
    wprintf(L"del missing key=%d\n", WritePrivateProfileStringW(L"s", L"nosuch", NULL, L"C:\\probe5.ini"));
    wprintf(L"write nofolder=%d\n", WritePrivateProfileStringW(L"s", L"k", L"v", L"C:\\nofolder\\x.ini"));
    return 0;
}
