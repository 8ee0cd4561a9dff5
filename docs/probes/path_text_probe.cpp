// Probe: what shlwapi's path functions and _wsplitpath_s answer. Build with
//   x86_64-w64-mingw32-g++ path_text_probe.cpp -o probe.exe -lshlwapi
// and run under Wine.
#include <shlwapi.h>
#include <stdio.h>
#include <wchar.h>

static void combine(const wchar_t* a, const wchar_t* b) {
    wchar_t out[MAX_PATH] = L"<untouched>";
    wchar_t* r = PathCombineW(out, a, b);
    wprintf(L"PathCombineW [%ls] [%ls] -> %ls [%ls]\n", a ? a : L"(null)", b ? b : L"(null)",
            r ? L"ok" : L"null", out);
}
static void removeSpec(const wchar_t* a) {
    wchar_t buf[MAX_PATH];
    wcscpy(buf, a);
    BOOL r = PathRemoveFileSpecW(buf);
    wprintf(L"PathRemoveFileSpecW [%ls] -> %d [%ls]\n", a, r, buf);
}
static void names(const wchar_t* a) {
    wchar_t buf[MAX_PATH];
    wcscpy(buf, a);
    PathStripPathW(buf);
    wprintf(L"[%ls] FileName [%ls] Extension [%ls] Strip [%ls]\n", a, PathFindFileNameW(a),
            PathFindExtensionW(a), buf);
}
static void split(const wchar_t* a) {
    wchar_t d[8], dir[MAX_PATH], f[MAX_PATH], e[MAX_PATH];
    int r = _wsplitpath_s(a, d, 8, dir, MAX_PATH, f, MAX_PATH, e, MAX_PATH);
    wprintf(L"_wsplitpath_s [%ls] -> %d [%ls] [%ls] [%ls] [%ls]\n", a, r, d, dir, f, e);
}

int main() {
    const wchar_t* pairs[][2] = {
        {L"C:\\a\\b", L"c.txt"},
        {L"C:\\a\\b\\", L"c.txt"},
        {L"C:\\a\\b", L"..\\c"},
        {L"C:\\a", L"..\\..\\..\\c"},
        {L"a\\b", L"..\\..\\..\\c"},
        {L"a", L".\\b"},
        {L"a", L"\\b"},
        {L"C:\\a", L"\\b"},
        {L"C:\\a", L"D:\\b"},
        {L"\\\\srv\\share", L"..\\x"},
        {L"", L"x"},
        {L"x", L""},
        {L"x", nullptr},
        {nullptr, L"x"},
        {L"a\\.\\b\\..", L"c"},
        {L"a", L"b\\"},
        {L"a\\", L"."},
        {L"a", L".."},
        {L"C:", L"x"},
        {L"a/b", L"c"},
        {L"a.", L"b."},
        {L"a\\b", L"...\\c"},
        // a leading "..", UNC shares, empty sides
        {L"..", L"b"},
        {L"", L"..\\c"},
        {L"..\\..", L"b"},
        {L"a", L"..\\..\\c"},
        {L"a\\..\\..", L"b"},
        {L"..\\a", L"..\\b"},
        {L".", L"..\\b"},
        {L"..\\", L"b"},
        {L"\\\\srv\\sh", L"..\\..\\..\\z"},
        {L"\\\\srv\\sh", L"..\\..\\z"},
        {L"\\\\srv\\sh\\a", L"..\\..\\z"},
        {L"\\\\srv", L"..\\z"},
        {L"\\\\srv\\sh", L""},
        {L"\\a", L"..\\..\\c"},
        {L"C:", L""},
        {L"", L""},
        {L"C:\\", L""},
        {L"C:", L"..\\a"},
        {L"C:\\a", L""},
        {L"a", L""},
    };
    for (auto& p : pairs)
        combine(p[0], p[1]);
    wchar_t longDir[300];
    for (int i = 0; i < 255; ++i)
        longDir[i] = L'd';
    longDir[255] = 0;
    combine(longDir, L"abc");  // 259
    combine(longDir, L"abcd"); // 260
    const wchar_t* specs[] = {L"a.txt:stream",
                              L"C:\\d\\a.txt:stream",
                              L"a:b:c",
                              L"ab:",
                              L"x\\a:b",
                              L"C:a",
                              L"C:\\a",
                              L"C:\\a",
                              L"C:\\",
                              L"C:",
                              L"\\a",
                              L"\\",
                              L"a",
                              L"a\\",
                              L"a\\b\\",
                              L"\\\\srv\\share\\a",
                              L"\\\\srv\\share",
                              L"\\\\srv",
                              L"",
                              L"a/b",
                              L"/a",
                              L"/"};
    for (auto s : specs)
        removeSpec(s);
    const wchar_t* ns[] = {
        L"C:\\a\\b.txt",  L"a\\b\\", L"a.b\\c", L".bashrc", L"a.tar.gz", L"a.",
        L"file.a b",      L"C:\\",   L"C:",     L"x/y.z",   L"",         L"a\\b\\\\",
        L"\\\\srv\\share"};
    for (auto s : ns)
        names(s);
    const wchar_t* ss[] = {L"C:\\a\\b.txt", L"a/b.c.d", L"\\\\srv\\share\\x.y", L"noext", L".a",
                           L"dir\\",        L"C:x.y"};
    for (auto s : ss)
        split(s);
    wchar_t d[2];
    int r = _wsplitpath_s(L"C:\\a", d, 2, nullptr, 0, nullptr, 0, nullptr, 0);
    wprintf(L"_wsplitpath_s small drive -> %d\n", r);
    return 0;
}
