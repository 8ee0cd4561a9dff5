#include <cctype>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <qv/platform/CodePage.h>
#include <qv/platform/WideFormat.h>
#include <type_traits>

namespace qv::platform {

namespace {

// The argument list travels by reference: a va_list cannot portably be passed on by value
// and then used again.
struct Arguments {
    va_list list;
};

enum class Size { Default, Char, Short, Long32, Wide, Int64, LongDouble };

struct Conversion {
    char flags[6] = {};
    int flagCount = 0;
    bool left = false;
    bool zero = false;
    int width = 0;
    int precision = -1;
    Size size = Size::Default;
    char16_t type = 0;

    bool Has(char flag) const { return std::memchr(flags, flag, flagCount) != nullptr; }
};

class Output {
public:
    Output(char16_t* begin, std::size_t count)
        : m_begin(begin), m_p(begin), m_end(begin + count - 1) {}

    void Put(char16_t c) {
        if (m_p < m_end)
            *m_p++ = c;
        else
            m_cut = true;
    }
    void Fill(int n, char16_t c) {
        for (; n > 0; --n)
            Put(c);
    }
    // Room for n more units; when there is none, the text counts as cut.
    char16_t* Reserve(std::size_t n) {
        if (static_cast<std::size_t>(m_end - m_p) >= n)
            return m_p;
        m_cut = true;
        return nullptr;
    }
    void Advance(std::size_t n) { m_p += n; }
    int Finish(bool valid) {
        if (!valid)
            m_p = m_begin;
        *m_p = 0;
        return valid && !m_cut ? static_cast<int>(m_p - m_begin) : -1;
    }

private:
    char16_t* m_begin;
    char16_t* m_p;
    char16_t* m_end;
    bool m_cut = false;
};

bool IsDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

// A width or precision: digits or '*'. Absurd numbers make the format invalid.
bool ParseNumber(char16_t const*& f, Arguments& args, int& value) {
    constexpr int kLimit = 1000000;
    if (*f == u'*') {
        ++f;
        value = va_arg(args.list, int);
        return value >= -kLimit && value <= kLimit;
    }
    long long n = 0;
    for (; IsDigit(*f); ++f) {
        n = n * 10 + (*f - u'0');
        if (n > kLimit)
            return false;
    }
    value = static_cast<int>(n);
    return true;
}

bool StartsWith(char16_t const* f, char const* prefix) {
    for (; *prefix; ++f, ++prefix)
        if (*f != static_cast<char16_t>(*prefix))
            return false;
    return true;
}

Size ParseSize(char16_t const*& f) {
    static constexpr struct {
        char const* text;
        Size size;
    } kSizes[] = {{"I64", Size::Int64}, {"I32", Size::Default}, {"hh", Size::Char},
                  {"ll", Size::Int64},  {"h", Size::Short},     {"l", Size::Long32},
                  {"w", Size::Wide},    {"I", Size::Int64},     {"z", Size::Int64},
                  {"t", Size::Int64},   {"j", Size::Int64},     {"L", Size::LongDouble}};
    for (auto const& s : kSizes)
        if (StartsWith(f, s.text)) {
            f += std::strlen(s.text);
            return s.size;
        }
    return Size::Default;
}

bool Parse(char16_t const*& f, Arguments& args, Conversion& c) {
    for (; *f && *f < 0x80 && std::strchr("-+ 0#", static_cast<char>(*f)); ++f)
        if (c.flagCount < 5 && !c.Has(static_cast<char>(*f)))
            c.flags[c.flagCount++] = static_cast<char>(*f);
    if (!ParseNumber(f, args, c.width))
        return false;
    if (*f == u'.') {
        ++f;
        if (!ParseNumber(f, args, c.precision))
            return false;
    }
    c.left = c.Has('-') || c.width < 0;
    c.width = c.width < 0 ? -c.width : c.width;
    c.zero = c.Has('0') && !c.left;
    c.size = ParseSize(f);
    c.type = *f;
    if (c.type)
        ++f;
    return true;
}

// Integers as the size asks for them, widened to 64 bits. Windows' long has 32 bits: a long
// argument is read at its full width here and cut as the Windows runtime would read it.
long long SignedArgument(Size size, Arguments& args) {
    switch (size) {
    case Size::Char:
        return static_cast<signed char>(va_arg(args.list, int));
    case Size::Short:
        return static_cast<short>(va_arg(args.list, int));
    case Size::Long32:
        return static_cast<std::int32_t>(va_arg(args.list, long));
    case Size::Int64:
        return va_arg(args.list, long long);
    default:
        return va_arg(args.list, int);
    }
}

unsigned long long UnsignedArgument(Size size, Arguments& args) {
    switch (size) {
    case Size::Char:
        return static_cast<unsigned char>(va_arg(args.list, unsigned));
    case Size::Short:
        return static_cast<unsigned short>(va_arg(args.list, unsigned));
    case Size::Long32:
        return static_cast<std::uint32_t>(va_arg(args.list, unsigned long));
    case Size::Int64:
        return va_arg(args.list, unsigned long long);
    default:
        return va_arg(args.list, unsigned);
    }
}

// Numbers go through the C library's narrow printf, whose digits are what the Windows runtime
// prints; the result is ASCII and widens unit by unit. A plain %d, %u, %x or %X, the common
// case in messages, takes the shorter way through std::to_chars.
template <class T>
bool PutNumber(Conversion const& c, char const* length, T value, Output& out) {
    char text[1024];
    int n = 0;
    bool const plain = c.flagCount == 0 && c.width == 0 && c.precision < 0;
    if constexpr (std::is_integral_v<T>) {
        if (plain && c.type != u'o') {
            int const base = c.type == u'x' || c.type == u'X' ? 16 : 10;
            n = static_cast<int>(std::to_chars(text, text + sizeof text, value, base).ptr - text);
            for (int i = 0; c.type == u'X' && i < n; ++i)
                text[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[i])));
        }
    }
    if (n == 0) {
        char spec[24] = "%";
        std::strcat(spec, c.flags);
        std::strcat(spec, "*.*");
        std::strcat(spec, length);
        std::size_t const end = std::strlen(spec);
        spec[end] = static_cast<char>(c.type);
        spec[end + 1] = 0;
        // A negative width is printf's own way of saying "left-justified".
        n = std::snprintf(text, sizeof text, spec, c.left ? -c.width : c.width, c.precision, value);
        if (n < 0 || static_cast<std::size_t>(n) >= sizeof text)
            return false;
    }
    for (int i = 0; i < n; ++i)
        out.Put(static_cast<unsigned char>(text[i]));
    return true;
}

void PutPadded(Conversion const& c, char16_t const* text, std::size_t length, Output& out) {
    int const pad = c.width > static_cast<int>(length) ? c.width - static_cast<int>(length) : 0;
    if (!c.left)
        out.Fill(pad, c.zero ? u'0' : u' ');
    for (std::size_t i = 0; i < length; ++i)
        out.Put(text[i]);
    if (c.left)
        out.Fill(pad, u' ');
}

void PutWideText(Conversion const& c, char16_t const* text, Output& out) {
    if (!text)
        text = u"(null)";
    std::size_t length = 0;
    while (text[length] && (c.precision < 0 || length < static_cast<std::size_t>(c.precision)))
        ++length;
    PutPadded(c, text, length, out);
}

// Narrow text converts from the ANSI code page straight into the output.
void PutNarrowText(Conversion const& c, char const* text, Output& out) {
    if (!text)
        text = "(null)";
    std::size_t length =
        c.precision < 0 ? std::strlen(text) : strnlen(text, static_cast<std::size_t>(c.precision));
    int const srcLength = static_cast<int>(length);
    int const units = length ? MultiByteToWideChar(text, srcLength, nullptr, 0) : 0;
    int const pad = c.width > units ? c.width - units : 0;
    if (!c.left)
        out.Fill(pad, c.zero ? u'0' : u' ');
    if (char16_t* room = out.Reserve(static_cast<std::size_t>(units)); room && units > 0)
        out.Advance(static_cast<std::size_t>(MultiByteToWideChar(text, srcLength, room, units)));
    if (c.left)
        out.Fill(pad, u' ');
}

bool NarrowForm(Conversion const& c) {
    bool const upper = c.type == u'S' || c.type == u'C';
    return c.size == Size::Short || (upper && c.size != Size::Long32 && c.size != Size::Wide);
}

bool Convert(Conversion const& c, Arguments& args, Output& out) {
    switch (c.type) {
    case u'd':
    case u'i':
        return PutNumber(c, "ll", SignedArgument(c.size, args), out);
    case u'o':
    case u'u':
    case u'x':
    case u'X':
        return PutNumber(c, "ll", UnsignedArgument(c.size, args), out);
    case u'e':
    case u'E':
    case u'f':
    case u'F':
    case u'g':
    case u'G':
    case u'a':
    case u'A':
        return PutNumber(c, "",
                         c.size == Size::LongDouble
                             ? static_cast<double>(va_arg(args.list, long double))
                             : va_arg(args.list, double),
                         out);
    case u'p': {
        Conversion pointer;
        pointer.type = u'X';
        pointer.width = c.width;
        pointer.precision = 16;
        if (c.left)
            pointer.flags[pointer.flagCount++] = '-';
        auto const address = reinterpret_cast<std::uintptr_t>(va_arg(args.list, void*));
        return PutNumber(pointer, "ll", static_cast<unsigned long long>(address), out);
    }
    case u'c':
    case u'C': {
        int const value = va_arg(args.list, int);
        char16_t unit = static_cast<char16_t>(value);
        char const narrow = static_cast<char>(value);
        if (NarrowForm(c) && MultiByteToWideChar(&narrow, 1, &unit, 1) != 1)
            unit = u'?';
        PutPadded(c, &unit, 1, out);
        return true;
    }
    case u's':
    case u'S':
        if (NarrowForm(c))
            PutNarrowText(c, va_arg(args.list, char const*), out);
        else
            PutWideText(c, va_arg(args.list, char16_t const*), out);
        return true;
    default: // %n is refused by the Windows runtime; anything unknown is an invalid format.
        return false;
    }
}

} // namespace

int FormatWide(char16_t* buffer, std::size_t count, char16_t const* format, va_list list) noexcept {
    if (!buffer || count == 0)
        return -1;
    Output out(buffer, count);
    Arguments args;
    va_copy(args.list, list);
    bool valid = format != nullptr;
    for (char16_t const* f = format; valid && *f;) {
        if (*f != u'%') {
            out.Put(*f++);
            continue;
        }
        if (*++f == u'%') {
            out.Put(*f++);
            continue;
        }
        Conversion c;
        valid = Parse(f, args, c) && Convert(c, args, out);
    }
    va_end(args.list);
    return out.Finish(valid);
}

} // namespace qv::platform
