// What the Windows runtime's _vsnwprintf_s(buffer, count, _TRUNCATE, ...) makes of the
// formats Qv::Log passes on. Build with x86_64-w64-mingw32-g++ and run under Wine.
#include <cstdarg>
#include <cstdio>
#include <cwchar>
#include <stdlib.h>
#include <cstdint>

static void Show(size_t count, wchar_t const* format, ...) {
    wchar_t buffer[64] = L"untouched";
    va_list args;
    va_start(args, format);
    int n = _vsnwprintf_s(buffer, count, _TRUNCATE, format, args);
    va_end(args);
    wprintf(L"[%ls] -> %d [%ls]\n", format, n, buffer);
}

static void Ignore(wchar_t const*, wchar_t const*, wchar_t const*, unsigned int, uintptr_t) {}

int main() {
    _set_invalid_parameter_handler(Ignore);
    setvbuf(stdout, nullptr, _IONBF, 0);
    Show(64, L"%s|%5s|%-5s|%05s|%.2s", L"ab", L"ab", L"ab", L"ab", L"abc");
    Show(64, L"%S|%hs|%ls|%ws|%C|%c|%hc", "na", "nb", L"wc", L"wd", 'x', L'y', 'z');
    Show(64, L"%s", (wchar_t const*)nullptr);
    Show(64, L"%S", (char const*)nullptr);
    Show(64, L"%p|%20p|%-20p|", (void*)0x1234, (void*)0x1234, (void*)0x1234);
    Show(64, L"%d|%5.3d|%-+5d|% d|%x|%#X|%o|%u", 42, 7, 3, 4, 255, 255, 8, -1);
    Show(64, L"%hd|%hhd|%ld|%lld|%I64d|%I32d|%Id|%zd", 70000, 300, 5l, -5ll, 6ll, 7, (size_t)8, (size_t)9);
    Show(64, L"%*d|%-*d|%.*s", 4, 1, 4, 2, 1, L"xyz");
    Show(64, L"%f|%.2e|%g|%G|%5.1f", 1.5, 12345.678, 0.0001, 1e20, -2.25);
    Show(64, L"%y");
    Show(64, L"abc%");
    Show(64, L"100%%");
    Show(4, L"abcdef");
    Show(4, L"abc");
    return 0;
}

// Answers under Wine 8.0 (its msvcrt; the library targets the Universal CRT, which differs
// where noted):
// [%s|%5s|%-5s|%05s|%.2s] -> 23 [ab|   ab|ab   |000ab|ab]
// [%S|%hs|%ls|%ws|%C|%c|%hc] -> 17 [na|nb|wc|wd|x|y|z]
// [%s] -> 6 [(null)]                      and the same for %S
// [%p|%20p|%-20p|] -> 59 [0000000000001234|    0000000000001234|0000000000001234    |]
// [%d|%5.3d|%-+5d|% d|%x|%#X|%o|%u] -> 39 [42|  007|+3   | 4|ff|0XFF|10|4294967295]
// [%hd|%hhd|%ld|%lld|%I64d|%I32d|%Id|%zd] -> 21 [4464|300|5|-5|6|7|8|9]
//     (msvcrt lacks hh; the Universal CRT prints 44)
// [%*d|%-*d|%.*s] -> 11 [   1|2   |x]
// [%f|%.2e|%g|%G|%5.1f] -> 38 [1.500000|1.23e+004|0.0001|1E+020| -2.3]
//     (three exponent digits are msvcrt's; the Universal CRT prints two, as glibc does)
// [%y] -> -1 []   [abc%] -> -1 [abc]   [100%%] -> 4 [100%]
// count 4: [abcdef] -> -1 [abc]   [abc] -> 3 [abc]
