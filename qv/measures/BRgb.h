/// \file
/// BRgb: a colour of three bytes in the memory order blue, green, red, as the platform's
/// bitmaps hold it. See docs/measures.md.
#pragma once

#include <cstdint>
#include <type_traits>

/// A plain value: copy it freely; threads may share a const one.
class BRgb {
public:
    /// Leaves the bytes unset.
    BRgb() = default;
    constexpr BRgb(unsigned char red, unsigned char green, unsigned char blue) noexcept
        : m_blue(blue), m_green(green), m_red(red) {}
    /// All three channels to the value.
    constexpr explicit BRgb(unsigned char value) noexcept : BRgb(value, value, value) {}
    constexpr BRgb& operator=(unsigned char value) noexcept { return *this = BRgb(value); }

    /// @name Comparison, true when the relation holds for all three channels, so two colours
    /// may be neither less nor greater nor equal.
    constexpr bool operator==(BRgb const& o) const noexcept {
        return m_red == o.m_red && m_green == o.m_green && m_blue == o.m_blue;
    }
    constexpr bool operator<(BRgb const& o) const noexcept {
        return m_red < o.m_red && m_green < o.m_green && m_blue < o.m_blue;
    }
    constexpr bool operator>(BRgb const& o) const noexcept { return o < *this; }
    constexpr bool operator==(unsigned char v) const noexcept { return *this == BRgb(v); }
    constexpr bool operator<(unsigned char v) const noexcept { return *this < BRgb(v); }
    constexpr bool operator>(unsigned char v) const noexcept { return *this > BRgb(v); }

    /// Adds to all three channels; each byte wraps at 256 rather than stopping at 255.
    constexpr BRgb operator+(unsigned char v) const noexcept {
        return {static_cast<unsigned char>(m_red + v), static_cast<unsigned char>(m_green + v),
                static_cast<unsigned char>(m_blue + v)};
    }
    /// The largest channel.
    constexpr unsigned char Intensity() const noexcept {
        unsigned char const rg = m_red > m_green ? m_red : m_green;
        return rg > m_blue ? rg : m_blue;
    }
    /// Packed 0x00BBGGRR, and the channels from such a value.
    constexpr unsigned long ColorRef() const noexcept {
        return m_red | (static_cast<unsigned long>(m_green) << 8) |
               (static_cast<unsigned long>(m_blue) << 16);
    }
    constexpr void ColorRef(unsigned long packed) noexcept {
        m_red = static_cast<unsigned char>(packed);
        m_green = static_cast<unsigned char>(packed >> 8);
        m_blue = static_cast<unsigned char>(packed >> 16);
    }

    unsigned char m_blue;
    unsigned char m_green;
    unsigned char m_red;
};
static_assert(sizeof(BRgb) == 3 && std::is_trivially_copyable_v<BRgb>);
