/// \file
/// BRgba: a colour of four bytes in the memory order alpha, blue, green, red. See
/// docs/measures.md.
#pragma once

#include <qv/measures/BRgb.h>
#include <qv/measures/internal/ColorByte.h>
#include <type_traits>

/// A plain value: copy it freely; threads may share a const one.
class BRgba {
public:
    /// Leaves the bytes unset.
    BRgba() = default;
    constexpr BRgba(unsigned char red, unsigned char green, unsigned char blue,
                    unsigned char alpha) noexcept
        : m_alpha(alpha), m_blue(blue), m_green(green), m_red(red) {}
    /// The colour, opaque.
    constexpr BRgba(BRgb const& c) noexcept : BRgba(c.m_red, c.m_green, c.m_blue, 255) {}
    /// Red, green and blue to the value, opaque.
    constexpr explicit BRgba(unsigned char value) noexcept : BRgba(value, value, value, 255) {}
    constexpr BRgba& operator=(unsigned char value) noexcept { return *this = BRgba(value); }

    /// @name Comparison with a byte: red, green and blue against it; alpha is not looked at.
    constexpr bool operator==(unsigned char v) const noexcept { return Colour() == v; }
    constexpr bool operator<(unsigned char v) const noexcept { return Colour() < v; }
    constexpr bool operator>(unsigned char v) const noexcept { return Colour() > v; }
    /// @name Comparison with a colour: all four channels, alpha included.
    constexpr bool operator==(BRgba const& o) const noexcept {
        return Colour() == o.Colour() && m_alpha == o.m_alpha;
    }
    constexpr bool operator<(BRgba const& o) const noexcept {
        return Colour() < o.Colour() && m_alpha < o.m_alpha;
    }
    constexpr bool operator>(BRgba const& o) const noexcept { return o < *this; }

    /// Adds to red, green and blue, each byte wrapping at 256; alpha is the operand's.
    constexpr BRgba operator+(unsigned char v) const noexcept {
        BRgb const c = Colour() + v;
        return {c.m_red, c.m_green, c.m_blue, m_alpha};
    }
    /// The largest of red, green and blue.
    constexpr unsigned char Intensity() const noexcept { return Colour().Intensity(); }

    /// Each channel as the byte of c * 255.0 truncated: no rounding and no limiting, unlike
    /// BFColor::CastToARGB. A channel of 0.5 gives 127 here.
    static constexpr BRgba FromFloat(float red, float green, float blue, float alpha) noexcept {
        return {qv::detail::ColorByte(red * 255.0), qv::detail::ColorByte(green * 255.0),
                qv::detail::ColorByte(blue * 255.0), qv::detail::ColorByte(alpha * 255.0)};
    }

    unsigned char m_alpha;
    unsigned char m_blue;
    unsigned char m_green;
    unsigned char m_red;

private:
    constexpr BRgb Colour() const noexcept { return {m_red, m_green, m_blue}; }
};
static_assert(sizeof(BRgba) == 4 && std::is_trivially_copyable_v<BRgba>);
