/// \file
/// BSize: an extent of the plane in whole units, usable wherever a tagSIZE is taken. See
/// docs/measures.md.
#pragma once

#include <qv/core/Export.h>
#include <qv/measures/internal/Wrap32.h>
#include <qv/platform/WindowsTypes.h>
#include <type_traits>

class BPoint;

/// A width and a height, 32-bit signed, with componentwise arithmetic that wraps in 32 bits.
/// A plain value: copy it freely; threads may share a const one.
class BSize : public tagSIZE {
public:
    /// Leaves both fields unset.
    BSize() = default;
    constexpr BSize(long cx_, long cy_) noexcept
        : tagSIZE{qv::detail::Wrap32(cx_), qv::detail::Wrap32(cy_)} {}
    constexpr BSize(tagSIZE const& size) noexcept : tagSIZE(size) {}

    constexpr int Width() const noexcept { return cx; }
    constexpr int Height() const noexcept { return cy; }

    /// @name Arithmetic, componentwise; a size plus or minus a point is a point.
    constexpr BSize operator+(tagSIZE const& s) const noexcept {
        return {static_cast<long>(cx) + s.cx, static_cast<long>(cy) + s.cy};
    }
    constexpr BSize operator-(tagSIZE const& s) const noexcept {
        return {static_cast<long>(cx) - s.cx, static_cast<long>(cy) - s.cy};
    }
    constexpr BPoint operator+(tagPOINT const& p) const noexcept;
    constexpr BPoint operator-(tagPOINT const& p) const noexcept;
    constexpr BSize& operator+=(tagSIZE const& s) noexcept { return *this = *this + s; }
    constexpr BSize& operator-=(tagSIZE const& s) noexcept { return *this = *this - s; }
    /// The factor and divisor are 32-bit LONGs; division truncates towards zero, and a
    /// divisor of 0 is the caller's to exclude.
    constexpr BSize operator*(long f) const noexcept {
        return {static_cast<long>(cx) * qv::detail::Wrap32(f),
                static_cast<long>(cy) * qv::detail::Wrap32(f)};
    }
    constexpr BSize operator/(long d) const noexcept {
        return {static_cast<long>(cx) / qv::detail::Wrap32(d),
                static_cast<long>(cy) / qv::detail::Wrap32(d)};
    }
    constexpr BSize& operator*=(long f) noexcept { return *this = *this * f; }
    constexpr BSize& operator/=(long d) noexcept { return *this = *this / d; }
    constexpr bool operator==(tagSIZE const& s) const noexcept { return cx == s.cx && cy == s.cy; }
    constexpr bool operator!=(tagSIZE const& s) const noexcept { return !(*this == s); }
    // The same for two BSizes, so that a comparison of a const and a non-const one is
    // not ambiguous with its reversed form.
    constexpr bool operator==(BSize const& o) const noexcept {
        return *this == static_cast<tagSIZE const&>(o);
    }
    constexpr bool operator!=(BSize const& o) const noexcept { return !(*this == o); }

    /// @name Order, true only when the relation holds in both components at once, so two
    /// sizes may be neither greater nor less.
    constexpr bool IsGreater(BSize const& s) const noexcept { return IsGreater(s.cx, s.cy); }
    constexpr bool IsGreater(int w, int h) const noexcept { return cx > w && cy > h; }
    constexpr bool IsGreaterEq(BSize const& s) const noexcept { return IsGreaterEq(s.cx, s.cy); }
    constexpr bool IsGreaterEq(int w, int h) const noexcept { return cx >= w && cy >= h; }
    constexpr bool IsLess(BSize const& s) const noexcept { return IsLess(s.cx, s.cy); }
    constexpr bool IsLess(int w, int h) const noexcept { return cx < w && cy < h; }
    constexpr bool IsLessEq(BSize const& s) const noexcept { return IsLessEq(s.cx, s.cy); }
    constexpr bool IsLessEq(int w, int h) const noexcept { return cx <= w && cy <= h; }

    /// The componentwise larger or smaller size.
    constexpr BSize Maximum(BSize const& s) const noexcept {
        return {cx > s.cx ? cx : s.cx, cy > s.cy ? cy : s.cy};
    }
    constexpr BSize Minimum(BSize const& s) const noexcept {
        return {cx < s.cx ? cx : s.cx, cy < s.cy ? cy : s.cy};
    }
};
static_assert(sizeof(BSize) == sizeof(tagSIZE) && std::is_trivially_copyable_v<BSize>);

// The operations that give a BPoint are defined with BPoint.
#include <qv/measures/BPoint.h>
