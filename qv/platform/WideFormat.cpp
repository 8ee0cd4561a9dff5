#include <algorithm>
#include <bit>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <qv/platform/CodePage.h>
#include <qv/platform/WideFormat.h>
#include <string>

namespace qv::platform {
namespace {

enum class Size { None, Char, Short, Long, LongLong, Int32, Pointer, LongDouble, Wide };

struct Conversion {
    bool left = false, plus = false, space = false, alt = false, zero = false;
    std::size_t width = 0;
    int precision = -1; // -1: none given
    Size size = Size::None;
    char type = 0;
};

// Writes into the caller's buffer up to a limit and notes when something did not fit.
template <class Unit>
class Writer {
public:
    Writer(Unit* buffer, std::size_t limit) : m_buffer(buffer), m_limit(limit) {}

    template <class C>
    void Put(C const* text, std::size_t n) {
        if (n > m_limit - m_count) {
            n = m_limit - m_count;
            m_full = true;
        }
        if constexpr (sizeof(C) == sizeof(Unit)) {
            std::memcpy(m_buffer + m_count, text, n * sizeof(Unit));
        } else {
            for (std::size_t i = 0; i < n; ++i)
                m_buffer[m_count + i] = static_cast<unsigned char>(text[i]);
        }
        m_count += n;
    }
    void Fill(Unit c, std::size_t n) {
        if (n > m_limit - m_count) {
            n = m_limit - m_count;
            m_full = true;
        }
        std::fill_n(m_buffer + m_count, n, c);
        m_count += n;
    }
    bool Full() const { return m_full; }
    std::size_t Count() const { return m_count; }

private:
    Unit* m_buffer;
    std::size_t m_limit;
    std::size_t m_count = 0;
    bool m_full = false;
};

template <class C>
std::size_t BoundedLength(C const* text, std::size_t limit) {
    std::size_t n = 0;
    while (n < limit && text[n])
        ++n;
    return n;
}

// Text of either width in the width of the format, through the ANSI code page when the widths
// differ; limit caps the length of the source.
template <class Unit, class C>
std::basic_string<Unit> ToWidth(C const* text, std::size_t limit) {
    int n = static_cast<int>(std::min<std::size_t>(BoundedLength(text, limit), INT_MAX));
    if constexpr (sizeof(Unit) == sizeof(C)) {
        return std::basic_string<Unit>(text, static_cast<std::size_t>(n));
    } else if constexpr (sizeof(Unit) == 1) {
        std::string out(static_cast<std::size_t>(WideCharToMultiByte(text, n, nullptr, 0)), '\0');
        WideCharToMultiByte(text, n, out.data(), static_cast<int>(out.size()));
        return out;
    } else {
        std::u16string out(static_cast<std::size_t>(MultiByteToWideChar(text, n, nullptr, 0)),
                           u'\0');
        MultiByteToWideChar(text, n, out.data(), static_cast<int>(out.size()));
        return out;
    }
}

template <class Unit>
class Formatter {
public:
    Formatter(Writer<Unit>& out, va_list& args) : m_out(out), m_args(args) {}

    // False when the format is invalid.
    bool Run(Unit const* f) {
        while (*f && !m_out.Full()) {
            Unit const* run = f;
            while (*f && *f != '%')
                ++f;
            m_out.Put(run, static_cast<std::size_t>(f - run));
            if (!*f)
                break;
            Conversion conversion;
            f = ParseConversion(f + 1, conversion);
            if (!f || !Convert(conversion))
                return false;
        }
        return true;
    }

private:
    Unit const* ParseConversion(Unit const* f, Conversion& s) {
        for (;; ++f) {
            if (*f == '-')
                s.left = true;
            else if (*f == '+')
                s.plus = true;
            else if (*f == ' ')
                s.space = true;
            else if (*f == '#')
                s.alt = true;
            else if (*f == '0')
                s.zero = true;
            else
                break;
        }
        if (*f == '*') {
            int w = va_arg(m_args, int);
            s.left |= w < 0;
            s.width = w < 0 ? 0u - static_cast<unsigned>(w) : static_cast<unsigned>(w);
            ++f;
        } else {
            f = Number(f, s.width);
        }
        if (*f == '.') {
            ++f;
            if (*f == '*') {
                int p = va_arg(m_args, int);
                s.precision = p < 0 ? -1 : p;
                ++f;
            } else {
                std::size_t p = 0;
                f = Number(f, p);
                s.precision = static_cast<int>(std::min<std::size_t>(p, 1u << 30));
            }
        }
        f = ParseSize(f, s.size);
        s.type = *f < 0x80 ? static_cast<char>(*f) : '?';
        return *f ? f + 1 : nullptr;
    }

    static Unit const* Number(Unit const* f, std::size_t& n) {
        for (; *f >= '0' && *f <= '9'; ++f)
            n = std::min<std::size_t>(n * 10 + (*f - '0'), 1u << 30);
        return f;
    }

    static Unit const* ParseSize(Unit const* f, Size& size) {
        auto is = [&](char const* p) {
            std::size_t i = 0;
            for (; p[i]; ++i)
                if (f[i] != p[i])
                    return false;
            f += i;
            return true;
        };
        if (is("hh"))
            size = Size::Char;
        else if (is("h"))
            size = Size::Short;
        else if (is("ll") || is("I64") || is("j"))
            size = Size::LongLong;
        else if (is("l"))
            size = Size::Long;
        else if (is("I32"))
            size = Size::Int32;
        else if (is("I") || is("z") || is("t"))
            size = Size::Pointer;
        else if (is("L"))
            size = Size::LongDouble;
        else if (is("w"))
            size = Size::Wide;
        return f;
    }

    bool Convert(Conversion const& s) {
        switch (s.type) {
        case 'd':
        case 'i':
            return Signed(s);
        case 'u':
        case 'o':
        case 'x':
        case 'X':
            return Unsigned(s);
        case 'e':
        case 'E':
        case 'f':
        case 'F':
        case 'g':
        case 'G':
        case 'a':
        case 'A':
            return Float(s);
        case 'c':
        case 'C':
            return Char(s);
        case 's':
        case 'S':
            return String(s);
        case 'p':
            return Pointer(s);
        case '%':
            m_out.Put("%", 1);
            return true;
        default: // %n among them: the runtime refuses it
            return false;
        }
    }

    // The other width is asked for by the upper-case letter or by the size prefix.
    bool WantsWide(Conversion const& s) const {
        bool upper = s.type == 'S' || s.type == 'C';
        if (s.size == Size::Short)
            return false;
        if (s.size == Size::Long || s.size == Size::Wide)
            return true;
        return (sizeof(Unit) == 2) != upper;
    }

    template <class Body>
    void Field(Conversion const& s, char const* prefix, std::size_t zeros, std::size_t length,
               bool zeroPad, Body&& body) {
        std::size_t prefixLength = std::strlen(prefix);
        std::size_t total = prefixLength + zeros + length;
        std::size_t pad = s.width > total ? s.width - total : 0;
        if (!s.left && !zeroPad)
            m_out.Fill(' ', pad);
        m_out.Put(prefix, prefixLength);
        if (!s.left && zeroPad)
            m_out.Fill('0', pad);
        m_out.Fill('0', zeros);
        body();
        if (s.left)
            m_out.Fill(' ', pad);
    }

    bool Signed(Conversion const& s) {
        long long v;
        switch (s.size) {
        case Size::Char:
            v = static_cast<signed char>(va_arg(m_args, int));
            break;
        case Size::Short:
            v = static_cast<short>(va_arg(m_args, int));
            break;
        case Size::Long:
            v = va_arg(m_args, long);
            break;
        case Size::LongLong:
        case Size::LongDouble:
            v = va_arg(m_args, long long);
            break;
        case Size::Pointer:
            v = va_arg(m_args, std::ptrdiff_t);
            break;
        default:
            v = va_arg(m_args, int);
        }
        unsigned long long magnitude = v < 0 ? 0ull - static_cast<unsigned long long>(v) : v;
        char const* sign = v < 0 ? "-" : s.plus ? "+" : s.space ? " " : "";
        Integer(s, magnitude, sign, 10);
        return true;
    }

    bool Unsigned(Conversion const& s) {
        unsigned long long v;
        switch (s.size) {
        case Size::Char:
            v = static_cast<unsigned char>(va_arg(m_args, unsigned));
            break;
        case Size::Short:
            v = static_cast<unsigned short>(va_arg(m_args, unsigned));
            break;
        case Size::Long:
            v = va_arg(m_args, unsigned long);
            break;
        case Size::LongLong:
        case Size::LongDouble:
            v = va_arg(m_args, unsigned long long);
            break;
        case Size::Pointer:
            v = va_arg(m_args, std::size_t);
            break;
        default:
            v = va_arg(m_args, unsigned);
        }
        int radix = s.type == 'o' ? 8 : s.type == 'u' ? 10 : 16;
        char const* prefix = s.alt && radix == 16 && v ? (s.type == 'X' ? "0X" : "0x") : "";
        Integer(s, v, prefix, radix);
        return true;
    }

    void Integer(Conversion const& s, unsigned long long v, char const* prefix, int radix) {
        char digits[24];
        std::size_t n = 0;
        if (v || s.precision != 0)
            n = static_cast<std::size_t>(std::to_chars(digits, digits + 24, v, radix).ptr - digits);
        if (s.type == 'X')
            std::transform(digits, digits + n, digits,
                           [](char c) { return c >= 'a' ? c - 32 : c; });
        std::size_t precision = s.precision < 0 ? 0 : static_cast<std::size_t>(s.precision);
        std::size_t zeros = precision > n ? precision - n : 0;
        if (s.alt && radix == 8 && zeros == 0 && (n == 0 || digits[0] != '0'))
            zeros = 1;
        Field(s, prefix, zeros, n, s.zero && s.precision < 0, [&] { m_out.Put(digits, n); });
    }

    bool Pointer(Conversion const& s) {
        auto v = reinterpret_cast<std::uintptr_t>(va_arg(m_args, void*));
        char digits[16];
        for (int i = 15; i >= 0; --i, v >>= 4)
            digits[i] = "0123456789ABCDEF"[v & 15];
        Field(s, "", 0, 16, false, [&] { m_out.Put(digits, 16); });
        return true;
    }

    bool Char(Conversion const& s) {
        int c = va_arg(m_args, int);
        bool const wide = WantsWide(s);
        // The character 0 is written like any other: one zero unit, counted in the result.
        if ((wide ? static_cast<char16_t>(c) : static_cast<char>(c)) == 0) {
            Text(s, std::basic_string<Unit>(1, Unit{0}), true);
        } else if (wide) {
            char16_t unit[1] = {static_cast<char16_t>(c)};
            Text(s, ToWidth<Unit>(unit, 1), true);
        } else {
            char byte[1] = {static_cast<char>(c)};
            Text(s, ToWidth<Unit>(byte, 1), true);
        }
        return true;
    }

    bool String(Conversion const& s) {
        std::size_t limit =
            s.precision < 0 ? ~std::size_t{0} : static_cast<std::size_t>(s.precision);
        void const* p = va_arg(m_args, void const*);
        if (!p)
            Text(s, ToWidth<Unit>("(null)", std::min<std::size_t>(limit, 6)), false);
        else if (WantsWide(s) && sizeof(Unit) == 2)
            Same(s, static_cast<Unit const*>(p), limit);
        else if (!WantsWide(s) && sizeof(Unit) == 1)
            Same(s, static_cast<Unit const*>(p), limit);
        else if (WantsWide(s))
            Text(s, ToWidth<Unit>(static_cast<char16_t const*>(p), limit), false);
        else
            Text(s, ToWidth<Unit>(static_cast<char const*>(p), limit), false);
        return true;
    }

    // Text of the format's own width, read in place.
    void Same(Conversion const& s, Unit const* text, std::size_t limit) {
        std::size_t n = BoundedLength(text, limit);
        Field(s, "", 0, n, s.zero, [&] { m_out.Put(text, n); });
    }

    void Text(Conversion const& s, std::basic_string<Unit> const& text, bool isChar) {
        std::size_t n = text.size();
        if (!isChar && s.precision >= 0)
            n = std::min<std::size_t>(n, static_cast<std::size_t>(s.precision));
        Field(s, "", 0, n, s.zero, [&] { m_out.Put(text.data(), n); });
    }

    bool Float(Conversion const& s) {
        double v = s.size == Size::LongDouble ? static_cast<double>(va_arg(m_args, long double))
                                              : va_arg(m_args, double);
        bool upper = s.type >= 'A' && s.type <= 'Z';
        char lower = static_cast<char>(s.type | 0x20);
        char const* sign = std::signbit(v) ? "-" : s.plus ? "+" : s.space ? " " : "";
        if (!std::isfinite(v)) {
            char const* text = NonFinite(v, upper);
            Field(s, sign, 0, std::strlen(text), false,
                  [&] { m_out.Put(text, std::strlen(text)); });
            return true;
        }
        int precision = s.precision >= 0 ? s.precision : lower == 'a' ? 13 : 6;
        std::size_t capacity = static_cast<std::size_t>(precision) + 400;
        char small[512];
        std::unique_ptr<char[]> big(capacity > sizeof small ? new char[capacity] : nullptr);
        char* digits = big ? big.get() : small;
        std::size_t n = Digits(digits, capacity, std::fabs(v), lower, precision, s.alt);
        if (upper)
            std::transform(digits, digits + n, digits,
                           [](char c) { return c >= 'a' ? c - 32 : c; });
        std::string prefix = sign;
        if (lower == 'a')
            prefix += upper ? "0X" : "0x";
        Field(s, prefix.c_str(), 0, n, s.zero, [&] { m_out.Put(digits, n); });
        return true;
    }

    static char const* NonFinite(double v, bool upper) {
        if (std::isinf(v))
            return upper ? "INF" : "inf";
        auto bits = std::bit_cast<std::uint64_t>(v);
        bool quiet = bits & (1ull << 51);
        std::uint64_t payload = bits & ((1ull << 51) - 1);
        if (!quiet)
            return upper ? "NAN(SNAN)" : "nan(snan)";
        // The default NaN of x86 arithmetic (0/0, sqrt(-1)) is negative with an empty payload.
        if (std::signbit(v) && payload == 0)
            return upper ? "NAN(IND)" : "nan(ind)";
        return upper ? "NAN" : "nan";
    }

    // The digits of a finite, non-negative value, as %e, %f, %g or %a (without "0x") print it.
    static std::size_t Digits(char* out, std::size_t capacity, double v, char type, int precision,
                              bool alt) {
        char* end = out + capacity;
        char* last;
        switch (type) {
        case 'f':
            last = std::to_chars(out, end, v, std::chars_format::fixed, precision).ptr;
            break;
        case 'e':
            last = std::to_chars(out, end, v, std::chars_format::scientific, precision).ptr;
            break;
        case 'a':
            last = std::to_chars(out, end, v, std::chars_format::hex, precision).ptr;
            break;
        default:
            return General(out, end, v, precision == 0 ? 1 : precision, alt);
        }
        if (alt && precision == 0)
            last = InsertPoint(out, last, type == 'a' ? 'p' : 'e');
        return static_cast<std::size_t>(last - out);
    }

    // %g; with the # flag trailing zeros stay, so the choice between %e and %f is made here.
    static std::size_t General(char* out, char* end, double v, int precision, bool alt) {
        if (!alt)
            return static_cast<std::size_t>(
                std::to_chars(out, end, v, std::chars_format::general, precision).ptr - out);
        int exponent = 0;
        if (v != 0) {
            char* last =
                std::to_chars(out, end, v, std::chars_format::scientific, precision - 1).ptr;
            char const* digits = std::find(out, last, 'e') + 1;
            std::from_chars(digits + (*digits == '+'), last, exponent);
        }
        char* last;
        if (precision > exponent && exponent >= -4)
            last =
                std::to_chars(out, end, v, std::chars_format::fixed, precision - 1 - exponent).ptr;
        else
            last = std::to_chars(out, end, v, std::chars_format::scientific, precision - 1).ptr;
        if (std::find(out, last, '.') == last)
            last = InsertPoint(out, last, 'e');
        return static_cast<std::size_t>(last - out);
    }

    // Puts a decimal point behind the mantissa, before the exponent letter if there is one.
    static char* InsertPoint(char* out, char* last, char exponentLetter) {
        char* at = std::find(out, last, exponentLetter);
        std::memmove(at + 1, at, static_cast<std::size_t>(last - at));
        *at = '.';
        return last + 1;
    }

    Writer<Unit>& m_out;
    va_list& m_args;
};

template <class Unit>
int Format(Unit* buffer, std::size_t size, std::size_t count, Unit const* format, va_list args) {
    if (!buffer || size == 0 || !format) {
        if (buffer && size)
            buffer[0] = 0;
        errno = EINVAL;
        return -1;
    }
    Writer<Unit> out(buffer, std::min(count, size - 1));
    va_list copy;
    va_copy(copy, args);
    bool valid = Formatter<Unit>(out, copy).Run(format);
    va_end(copy);
    if (!valid) {
        buffer[0] = 0;
        errno = EINVAL;
        return -1;
    }
    buffer[out.Count()] = 0;
    return out.Full() ? -1 : static_cast<int>(out.Count());
}

} // namespace

int vsnprintf_s(char* buffer, std::size_t size, std::size_t count, char const* format,
                va_list args) {
    return Format(buffer, size, count, format, args);
}

int _vsnwprintf_s(char16_t* buffer, std::size_t size, std::size_t count, char16_t const* format,
                  va_list args) {
    return Format(buffer, size, count, format, args);
}

} // namespace qv::platform
