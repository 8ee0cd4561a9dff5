#include <windows.h>
#include <cstdio>
static void dump(const wchar_t* label, const wchar_t* buf, DWORD n) {
    wprintf(L"%ls n=%lu [", label, (unsigned long)n);
    for (DWORD i = 0; i < n + 1; ++i) { if (buf[i] == 0) wprintf(L"|"); else wprintf(L"%lc", buf[i]); }
    wprintf(L"]\n");
}
int main() {
    const wchar_t* p = L"C:\\probe6.ini";
    FILE* f = _wfopen(p, L"wb");
    fputs("[Sec A]\r\nkey1=v1\r\nint1=+5\r\nint2=0X1f\r\nint3=  -0x10\r\nint4=2147483648\r\nint5=\"12\"\r\nq1=\"a\"b\"\r\nq2=\"\r\nq3=''\r\nblob=12af00c1\r\nblob2=12AF00C\r\n", f);
    fclose(f);
    wchar_t buf[256]; DWORD n;
    n = GetPrivateProfileStringW(L" Sec A ", L" key1 ", L"def", buf, 256, p); dump(L"spacedquery", buf, n);
    n = GetPrivateProfileStringW(L"Sec A", L"q1", L"def", buf, 256, p); dump(L"q1", buf, n);
    n = GetPrivateProfileStringW(L"Sec A", L"q2", L"def", buf, 256, p); dump(L"q2", buf, n);
    n = GetPrivateProfileStringW(L"Sec A", L"q3", L"def", buf, 256, p); dump(L"q3", buf, n);
    n = GetPrivateProfileStringW(L"Sec A", L"q3", L" \"x\" ", buf, 256, p); dump(L"q3", buf, n);
    n = GetPrivateProfileStringW(L"Sec A", L"missing", L" \"x\" ", buf, 256, p); dump(L"quoteddef", buf, n);
    n = GetPrivateProfileStringW(L"Sec A", L"missing", L"  lead", buf, 256, p); dump(L"leaddef", buf, n);
    const wchar_t* ints[] = {L"int1", L"int2", L"int3", L"int4", L"int5"};
    for (auto k : ints) wprintf(L"int(%ls)=%u\n", k, GetPrivateProfileIntW(L"Sec A", k, 99, p));
    unsigned char b[3];
    wprintf(L"lowerblob=%d %02x %02x %02x\n", GetPrivateProfileStructW(L"Sec A", L"blob", b, 3, p), b[0], b[1], b[2]);
    wprintf(L"oddblob=%d\n", GetPrivateProfileStructW(L"Sec A", L"blob2", b, 3, p));
    wprintf(L"emptysec write=%d\n", WritePrivateProfileStringW(L"", L"ek", L"ev", p));
    n = GetPrivateProfileStringW(L"", L"ek", L"def", buf, 256, p); dump(L"emptysec read", buf, n);
    n = GetPrivateProfileSectionNamesW(buf, 256, p); dump(L"names", buf, n);
    n = GetPrivateProfileSectionW(L"missing", buf, 256, p); dump(L"missing section", buf, n);
    n = GetPrivateProfileSectionW(L"Sec A", buf, 10, p); dump(L"sectrunc", buf, 9);wprintf(L"n=%lu\n", n);
    wprintf(L"writesection=%d\n", WritePrivateProfileSectionW(L"New", L"a=1\0b = 2\0\0", p));
    n = GetPrivateProfileSectionW(L"New", buf, 256, p); dump(L"newsec", buf, n);
    n = GetPrivateProfileStringW(L"New", L"b", L"def", buf, 256, p); dump(L"newb", buf, n);
    return 0;
}
