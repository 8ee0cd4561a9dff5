/// \file
/// BFColor: the working colour, four floats from 0.0 to 1.0 with arithmetic that stays in
/// range, the platform's packed forms, hue, saturation and brightness, a stock palette of 21
/// colours, and its stored form in archives and streams. See docs/measures.md.
#pragma once

#include <cstdio>
#include <qv/core/Export.h>
#include <qv/core/containers/BArray.h>
#include <qv/measures/BRgba.h>
#include <qv/measures/internal/ColorByte.h>
#include <qv/persistence/BArchive.h>
#include <type_traits>

/// Red, green, blue, alpha as 32-bit floats next to each other. Every constructor and operator
/// keeps them within 0.0 to 1.0; only Read from a stream takes values unchanged. A plain value:
/// copy it freely; threads may share a const one.
class QV_EXPORT BFColor {
public:
    /// Black, opaque.
    constexpr BFColor() noexcept : BFColor(0.0f, 0.0f, 0.0f, 1.0f) {}
    /// Each channel limited to 0.0 to 1.0.
    constexpr BFColor(float red, float green, float blue, float alpha = 1.0f) noexcept
        : m_red(Clamp(red)), m_green(Clamp(green)), m_blue(Clamp(blue)), m_alpha(Clamp(alpha)) {}
    /// A packed 0x00BBGGRR, each byte divided by 255; opaque.
    constexpr explicit BFColor(unsigned int packed) noexcept
        : BFColor(Channel(packed), Channel(packed >> 8), Channel(packed >> 16), 1.0f) {}
    /// Each byte divided by 255, alpha included.
    constexpr BFColor(BRgba const& c) noexcept
        : BFColor(Channel(c.m_red), Channel(c.m_green), Channel(c.m_blue), Channel(c.m_alpha)) {}

    constexpr float Red() const noexcept { return m_red; }
    constexpr float Green() const noexcept { return m_green; }
    constexpr float Blue() const noexcept { return m_blue; }
    constexpr float Alpha() const noexcept { return m_alpha; }
    /// The four channels as an array, red first.
    operator float*() noexcept { return &m_red; }

    /// @name Arithmetic on all four channels, alpha included, each result limited.
    constexpr BFColor operator+(BFColor const& c) const noexcept {
        return {m_red + c.m_red, m_green + c.m_green, m_blue + c.m_blue, m_alpha + c.m_alpha};
    }
    constexpr BFColor operator-(BFColor const& c) const noexcept {
        return {m_red - c.m_red, m_green - c.m_green, m_blue - c.m_blue, m_alpha - c.m_alpha};
    }
    constexpr BFColor& operator+=(BFColor const& c) noexcept { return *this = *this + c; }
    constexpr BFColor& operator-=(BFColor const& c) noexcept { return *this = *this - c; }
    constexpr BFColor operator*(float f) const noexcept {
        return {m_red * f, m_green * f, m_blue * f, m_alpha * f};
    }
    constexpr BFColor operator/(float d) const noexcept {
        return {m_red / d, m_green / d, m_blue / d, m_alpha / d};
    }
    /// Exact comparison of all four.
    constexpr bool operator==(BFColor const& c) const noexcept {
        return m_red == c.m_red && m_green == c.m_green && m_blue == c.m_blue &&
               m_alpha == c.m_alpha;
    }
    constexpr bool operator!=(BFColor const& c) const noexcept { return !(*this == c); }

    /// @name Hue, saturation and brightness of red, green and blue.
    /// The largest channel.
    constexpr float Brightness() const noexcept { return Max(); }
    /// 0.0 for black; otherwise (largest - smallest) / largest.
    constexpr float Saturation() const noexcept {
        float const max = Max();
        return max > 0.0f ? (max - Min()) / max : 0.0f;
    }
    /// Degrees from 0 up to 360; 0 for black and for greys.
    float Hue() const noexcept;
    void ConvertToHSB(float& hue, float& saturation, float& brightness) const noexcept;

    /// Red, green and blue all their mean; opaque, whatever alpha was.
    constexpr BFColor Grey() const noexcept {
        float const mean = static_cast<float>((m_red + m_green + m_blue) / 3.0);
        return {mean, mean, mean, 1.0f};
    }
    /// Each of red, green and blue becomes (c + offset - 0.5) * contrast + 0.5, limited;
    /// opaque, whatever alpha was.
    constexpr BFColor ContrastOffset(float contrast, float offset) const noexcept {
        auto const f = [&](float c) {
            return static_cast<float>((c + offset - 0.5) * contrast + 0.5);
        };
        return {f(m_red), f(m_green), f(m_blue), 1.0f};
    }

    /// Packed 0xAARRGGBB, each channel rounded to the nearest byte.
    constexpr unsigned int CastToARGB() const noexcept {
        return static_cast<unsigned int>(Rounded(m_alpha)) << 24 | Rounded(m_red) << 16 |
               Rounded(m_green) << 8 | Rounded(m_blue);
    }
    /// Packed 0x00BBGGRR with the same rounding; alpha is left out.
    constexpr unsigned int CastToCOLORREF() const noexcept {
        return static_cast<unsigned int>(Rounded(m_blue)) << 16 | Rounded(m_green) << 8 |
               Rounded(m_red);
    }

    /// The stock colours: black, white, the six primaries and secondaries, their half-bright
    /// forms, grey and six mixed tones, always opaque. The application addresses them by index.
    static BFColor const Color[21];
    /// The stock colour at index modulo 21; a negative index counts from the end of the table.
    static constexpr BFColor GetStockColor(int index) noexcept;
    /// The mean of each of the four channels, limited; all four 0.0 for an empty array. The
    /// array must not be null.
    static BFColor Average(BArray<BFColor>* colors);

    /// @name The 16-byte stored form: the four floats in field order, in the machine's byte
    /// order. Read takes the values as they are, unlimited, and leaves the colour unchanged
    /// unless all 16 bytes came; Write's failure shows in the stream's error state.
    void Read(std::FILE* stream);
    void Write(std::FILE* stream) const;

private:
    static constexpr float Clamp(float c) noexcept { return c < 0.0f ? 0.0f : c > 1.0f ? 1.0f : c; }
    static constexpr float Channel(unsigned int byte) noexcept {
        return static_cast<float>((byte & 0xFFu) / 255.0);
    }
    static constexpr unsigned int Rounded(float c) noexcept {
        return qv::detail::ColorByte(c * 255.0 + 0.5);
    }
    constexpr float Max() const noexcept {
        float const rg = m_red > m_green ? m_red : m_green;
        return rg > m_blue ? rg : m_blue;
    }
    constexpr float Min() const noexcept {
        float const rg = m_red < m_green ? m_red : m_green;
        return rg < m_blue ? rg : m_blue;
    }

    float m_red;
    float m_green;
    float m_blue;
    float m_alpha;
};
static_assert(sizeof(BFColor) == 16 && std::is_trivially_copyable_v<BFColor>);

inline constexpr BFColor const BFColor::Color[21] = {{0, 0, 0},
                                                     {1, 1, 1},
                                                     {1, 0, 0},
                                                     {0, 1, 0},
                                                     {0, 0, 1},
                                                     {1, 1, 0},
                                                     {1, 0, 1},
                                                     {0, 1, 1},
                                                     {0.5f, 0, 0},
                                                     {0, 0.5f, 0},
                                                     {0, 0, 0.5f},
                                                     {0.5f, 0.5f, 0},
                                                     {0.5f, 0, 0.5f},
                                                     {0, 0.5f, 0.5f},
                                                     {0.5f, 0.5f, 0.5f},
                                                     {0.75f, 0.5f, 0.25f},
                                                     {0.25f, 0.75f, 0.5f},
                                                     {0.5f, 0.25f, 0.75f},
                                                     {0.25f, 0.5f, 0.75f},
                                                     {0.75f, 0.25f, 0.5f},
                                                     {0.5f, 0.75f, 0.25f}};

constexpr BFColor BFColor::GetStockColor(int index) noexcept {
    int const i = index % 21;
    return Color[i < 0 ? i + 21 : i];
}

/// The stored form in archives: the four floats in field order, no tag. Reading takes each
/// channel under the read guard of plain values (a channel that cannot be read keeps the
/// target's value) and limits the result, so a foreign 2.0 comes back as 1.0.
template <>
QV_EXPORT BArchive& BArchive::operator<<(BFColor const& color);
template <>
QV_EXPORT BArchive& BArchive::operator>>(BFColor& color);
