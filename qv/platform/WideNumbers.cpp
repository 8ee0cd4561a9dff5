#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <locale.h>
#include <qv/platform/TextServices.h>
#include <qv/platform/WideNumbers.h>
#include <string>
#include <type_traits>

namespace qv::platform {
namespace {

bool IsSpace(char c) {
    return IsSpaceA(c);
}
bool IsSpace(char16_t c) {
    // Printable ASCII is never white space under any rule; numbers are made of it.
    if (c == ' ')
        return true;
    if (c > ' ' && c < 0x7F)
        return false;
    // The current runtime's iswspace also takes NEL, which the older one did not.
    return c == 0x85 || IsSpaceW(c);
}

template <class Unit>
Unit const* SkipSpace(Unit const* p) {
    while (*p && IsSpace(*p))
        ++p;
    return p;
}

template <class Unit>
int DigitValue(Unit c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'z')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'Z')
        return c - 'A' + 10;
    return 99;
}

// The zeros of the scripts whose decimal digits _wtoi and wcstoul read besides ASCII:
// Arabic-Indic, extended Arabic-Indic, Devanagari, Bengali, Gurmukhi, Gujarati, Oriya, Telugu,
// Kannada, Malayalam, Thai, Lao, Tibetan, Myanmar, Khmer, Mongolian and full-width. Other
// scripts' digits and superscripts end the number there.
constexpr char16_t kDigitZeros[] = {0x0660, 0x06F0, 0x0966, 0x09E6, 0x0A66, 0x0AE6,
                                    0x0B66, 0x0C66, 0x0CE6, 0x0D66, 0x0E50, 0x0ED0,
                                    0x0F20, 0x1040, 0x17E0, 0x1810, 0xFF10};

// DigitValue, with the decimal digits of those scripts for 16-bit text.
template <class Unit>
int AnyDigitValue(Unit c) {
    if constexpr (sizeof(Unit) == 2) {
        if (c >= kDigitZeros[0]) {
            for (char16_t zero : kDigitZeros)
                if (c >= zero && c <= zero + 9)
                    return c - zero;
            return 99;
        }
    }
    return DigitValue(c);
}

// Case-blind match of an ASCII word at p.
template <class Unit>
bool StartsWithWord(Unit const* p, char const* word) {
    for (; *word; ++p, ++word)
        if (*p == 0 || (*p | 0x20) != *word)
            return false;
    return true;
}

// The characters that can belong to a number, copied as bytes so that std::from_chars can read
// them. A decimal number may mark its exponent with 'd' or 'D' as well as 'e': the copy reads
// it as 'e' (in a hexadecimal number 'd' is a digit and stays).
template <class Unit>
class NumberText {
public:
    NumberText(Unit const* p, bool hex) {
        std::size_t n = 0;
        while (static_cast<std::make_unsigned_t<Unit>>(p[n]) < 0x80 &&
               (DigitValue(p[n]) < 36 || p[n] == '.' || p[n] == '+' || p[n] == '-'))
            ++n;
        char* dst = m_small;
        if (n > sizeof m_small) {
            m_big.resize(n);
            dst = m_big.data();
        }
        for (std::size_t i = 0; i < n; ++i)
            dst[i] = !hex && (p[i] | 0x20) == 'd' ? 'e' : static_cast<char>(p[i]);
        m_data = dst;
        m_size = n;
    }
    char const* begin() const { return m_data; }
    char const* end() const { return m_data + m_size; }

private:
    char m_small[128];
    std::string m_big;
    char const* m_data = nullptr;
    std::size_t m_size = 0;
};

// std::from_chars reports an out-of-range value without one; strtod in the "C" locale gives the
// infinity or the underflowed value that the runtime returns.
template <class F>
F OutOfRange(char const* first, char const* last, bool hex) {
    static locale_t const c_locale = newlocale(LC_ALL_MASK, "C", nullptr);
    std::string text = (hex ? "0x" : "") + std::string(first, last);
    if constexpr (std::is_same_v<F, float>)
        return strtof_l(text.c_str(), nullptr, c_locale);
    else
        return strtod_l(text.c_str(), nullptr, c_locale);
}

// Reads a floating-point number at p (after white space). strict is scanf's rule: the text it
// would have taken must be a whole number, so "1e", "0x" and "infin" fail; otherwise strtod's
// rule takes the longest prefix that is one. Returns the end of the number, or null.
template <class F, class Unit>
Unit const* ParseFloat(Unit const* p, F& out, bool strict) {
    bool negative = *p == '-';
    Unit const* s = p + (*p == '-' || *p == '+');
    F value;
    if (StartsWithWord(s, "nan")) {
        value = std::numeric_limits<F>::quiet_NaN();
        s += 3;
        if (!strict && *s == '(') {
            Unit const* close = s + 1;
            while (DigitValue(*close) < 36 || *close == '_')
                ++close;
            if (*close == ')')
                s = close + 1;
        }
    } else if (StartsWithWord(s, "inf")) {
        value = std::numeric_limits<F>::infinity();
        bool whole = StartsWithWord(s, "infinity");
        if (strict && !whole && (*(s + 3) | 0x20) == 'i')
            return nullptr;
        s += whole ? 8 : 3;
    } else {
        bool hex = s[0] == '0' && (s[1] | 0x20) == 'x';
        Unit const* digits = hex ? s + 2 : s;
        if (!(DigitValue(*digits) < (hex ? 16 : 10) ||
              (*digits == '.' && DigitValue(digits[1]) < (hex ? 16 : 10)))) {
            if (!hex || strict)
                return nullptr;
            out = negative ? -F(0) : F(0); // strtod takes the "0" of "0x"
            return s + 1;
        }
        NumberText<Unit> text(digits, hex);
        auto [end, ec] = std::from_chars(text.begin(), text.end(), value,
                                         hex ? std::chars_format::hex : std::chars_format::general);
        if (ec == std::errc::invalid_argument)
            return nullptr;
        if (ec == std::errc::result_out_of_range)
            value = OutOfRange<F>(text.begin(), end, hex);
        s = digits + (end - text.begin());
        Unit const marker = *s | 0x20;
        if (strict && (hex ? marker == 'p' : marker == 'e' || marker == 'd'))
            return nullptr;
    }
    out = negative ? -value : value;
    return s;
}

template <class Unit>
int ToInt(Unit const* text) {
    if (!text)
        return 0;
    Unit const* p = SkipSpace(text);
    bool negative = *p == '-';
    p += (*p == '-' || *p == '+');
    long long value = 0;
    for (int digit; (digit = AnyDigitValue(*p)) < 10; ++p) {
        value = value * 10 + digit;
        if (value > static_cast<long long>(INT_MAX) + 1)
            break;
    }
    value = negative ? -value : value;
    return static_cast<int>(std::clamp<long long>(value, INT_MIN, INT_MAX));
}

unsigned long ToUnsigned32(char16_t const* text, char16_t** end, int base) {
    if (end)
        *end = const_cast<char16_t*>(text);
    if (!text || base < 0 || base == 1 || base > 36) {
        errno = EINVAL;
        return 0;
    }
    char16_t const* p = SkipSpace(text);
    bool const negative = *p == '-';
    p += (*p == '-' || *p == '+');
    bool const prefixed = p[0] == '0' && (p[1] | 0x20) == 'x';
    if (base == 0)
        base = prefixed ? 16 : p[0] == '0' ? 8 : 10;
    if (base == 16 && prefixed)
        p += 2; // and then there must be a digit, or nothing was read at all
    if (AnyDigitValue(*p) >= base)
        return 0;
    std::uint64_t value = 0;
    bool overflow = false;
    for (int digit; (digit = AnyDigitValue(*p)) < base; ++p) {
        value = value * static_cast<unsigned>(base) + static_cast<unsigned>(digit);
        if (value > 0xFFFFFFFFu) {
            overflow = true;
            value = 0xFFFFFFFFu;
        }
    }
    if (end)
        *end = const_cast<char16_t*>(p);
    if (overflow)
        errno = ERANGE;
    // The sign applies to the saturated value too: "-4294967296" gives 1.
    return negative ? (0u - static_cast<std::uint32_t>(value)) : static_cast<std::uint32_t>(value);
}

template <class Unit>
double ToDouble(Unit const* text) {
    double value = 0;
    if (text && ParseFloat(SkipSpace(text), value, false))
        return value;
    return 0;
}

template <class Unit>
int IntToText(long long value, Unit* buffer, std::size_t size, int radix) {
    if (!buffer || size == 0)
        return EINVAL;
    buffer[0] = 0;
    if (radix < 2 || radix > 36)
        return EINVAL;
    char digits[66];
    auto [end, ec] = radix == 10 ? std::to_chars(digits, digits + sizeof digits, value)
                                 : std::to_chars(digits, digits + sizeof digits,
                                                 static_cast<unsigned long long>(value), radix);
    std::size_t n = static_cast<std::size_t>(end - digits);
    if (n + 1 > size)
        return ERANGE;
    for (std::size_t i = 0; i < n; ++i)
        buffer[i] = static_cast<Unit>(digits[i]);
    buffer[n] = 0;
    return 0;
}

// ---- scanning -------------------------------------------------------------------------------

enum class Width { Default, Short, Long, LongLong };

// Reads an integer of the given radix (0x prefix allowed for 16) and wraps it to 64 bits.
template <class Unit>
Unit const* ParseInteger(Unit const* p, int radix, unsigned long long& out) {
    bool negative = *p == '-';
    p += (*p == '-' || *p == '+');
    if (radix == 16 && p[0] == '0' && (p[1] | 0x20) == 'x')
        p += 2; // the prefix then needs a digit behind it, as the runtime's scanf does
    if (DigitValue(*p) >= radix)
        return nullptr;
    unsigned long long value = 0;
    for (; DigitValue(*p) < radix; ++p)
        value = value * static_cast<unsigned>(radix) + static_cast<unsigned>(DigitValue(*p));
    out = negative ? 0 - value : value;
    return p;
}

void StoreInteger(va_list& args, Width width, unsigned long long value) {
    switch (width) {
    case Width::Short:
        *va_arg(args, short*) = static_cast<short>(value);
        break;
    case Width::Long:
        *va_arg(args, long*) = static_cast<long>(value);
        break;
    case Width::LongLong:
        *va_arg(args, long long*) = static_cast<long long>(value);
        break;
    default:
        *va_arg(args, int*) = static_cast<int>(value);
    }
}

template <class Unit>
Unit const* ScanFloat(Unit const* p, Width width, va_list& args) {
    if (width == Width::Long) {
        double value;
        p = ParseFloat(p, value, true);
        if (p)
            *va_arg(args, double*) = value;
        return p;
    }
    float value;
    p = ParseFloat(p, value, true);
    if (p)
        *va_arg(args, float*) = value;
    return p;
}

template <class Unit>
Width ScanWidth(Unit const*& f) {
    if (*f == 'h') {
        ++f;
        return Width::Short;
    }
    if (f[0] == 'I' && f[1] == '6' && f[2] == '4') {
        f += 3;
        return Width::LongLong;
    }
    if (*f != 'l')
        return Width::Default;
    ++f;
    if (*f != 'l')
        return Width::Long;
    ++f;
    return Width::LongLong;
}

// One conversion at the input position p; the end of what it read, or null when it failed.
template <class Unit>
Unit const* ScanOne(Unit const* p, Unit type, Width width, va_list& args) {
    unsigned long long value;
    switch (type) {
    case 'c':
        if (!*p)
            return nullptr;
        *va_arg(args, Unit*) = *p;
        return p + 1;
    case 'd':
    case 'u':
    case 'x':
    case 'X':
    case 'o': {
        int radix = type == 'o' ? 8 : (type == 'x' || type == 'X') ? 16 : 10;
        p = ParseInteger(p, radix, value);
        if (p)
            StoreInteger(args, width, value);
        return p;
    }
    case 'e':
    case 'f':
    case 'g':
    case 'E':
    case 'G':
        return ScanFloat(p, width, args);
    default:
        return nullptr;
    }
}

template <class Unit>
int Scan(Unit const* text, Unit const* format, va_list& args) {
    if (!text || !format)
        return -1;
    int stored = 0;
    Unit const* p = text;
    for (Unit const* f = format; *f; ++f) {
        if (IsSpace(*f)) {
            p = SkipSpace(p);
            continue;
        }
        if (*f != '%' || f[1] == '%') {
            f += *f == '%';
            if (*p != *f)
                return *p || stored ? stored : -1;
            ++p;
            continue;
        }
        ++f;
        Width width = ScanWidth(f);
        // Every conversion but %c skips white space first. The end of the text before the
        // first conversion is an input failure.
        if (*f != 'c')
            p = SkipSpace(p);
        if (!*p)
            return stored ? stored : -1;
        Unit const* next = ScanOne(p, *f, width, args);
        if (!next)
            return stored;
        p = next;
        ++stored;
    }
    return stored;
}

} // namespace

int atoi(char const* text) {
    return ToInt(text);
}

int _wtoi(char16_t const* text) {
    return ToInt(text);
}

unsigned long wcstoul(char16_t const* text, char16_t** end, int base) {
    return ToUnsigned32(text, end, base);
}

double atof(char const* text) {
    return ToDouble(text);
}

double _wtof(char16_t const* text) {
    return ToDouble(text);
}

int _i64toa_s(long long value, char* buffer, std::size_t size, int radix) {
    return IntToText(value, buffer, size, radix);
}

int _i64tow_s(long long value, char16_t* buffer, std::size_t size, int radix) {
    return IntToText(value, buffer, size, radix);
}

int sscanf(char const* text, char const* format, ...) {
    va_list args;
    va_start(args, format);
    int n = Scan<char>(text, format, args);
    va_end(args);
    return n;
}

int swscanf(char16_t const* text, char16_t const* format, ...) {
    va_list args;
    va_start(args, format);
    int n = Scan<char16_t>(text, format, args);
    va_end(args);
    return n;
}

} // namespace qv::platform
