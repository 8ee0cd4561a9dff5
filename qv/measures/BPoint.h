/// \file
/// BPoint: a point of the plane in whole units, usable wherever a tagPOINT is taken. See
/// docs/measures.md.
#pragma once

#include <qv/measures/BSize.h>
#include <qv/measures/internal/Wrap32.h>
#include <qv/platform/WindowsTypes.h>
#include <type_traits>

/// x and y, 32-bit signed, with componentwise arithmetic that wraps in 32 bits. A plain value:
/// copy it freely; threads may share a const one.
class BPoint : public tagPOINT {
public:
    /// Leaves both fields unset.
    BPoint() = default;
    constexpr BPoint(long x_, long y_) noexcept
        : tagPOINT{qv::detail::Wrap32(x_), qv::detail::Wrap32(y_)} {}
    constexpr BPoint(tagPOINT const& point) noexcept : tagPOINT(point) {}

    constexpr int X() const noexcept { return x; }
    constexpr int Y() const noexcept { return y; }
    constexpr std::int32_t& X() noexcept { return x; }
    constexpr std::int32_t& Y() noexcept { return y; }

    /// @name Arithmetic, componentwise, with a point or a size; the result is a point.
    constexpr BPoint operator+(tagPOINT const& p) const noexcept { return Add(p.x, p.y); }
    constexpr BPoint operator-(tagPOINT const& p) const noexcept {
        return Add(-1ll * p.x, -1ll * p.y);
    }
    constexpr BPoint operator+(tagSIZE const& s) const noexcept { return Add(s.cx, s.cy); }
    constexpr BPoint operator-(tagSIZE const& s) const noexcept {
        return Add(-1ll * s.cx, -1ll * s.cy);
    }
    constexpr BPoint& operator+=(tagPOINT const& p) noexcept { return *this = *this + p; }
    constexpr BPoint& operator-=(tagPOINT const& p) noexcept { return *this = *this - p; }
    constexpr BPoint& operator+=(tagSIZE const& s) noexcept { return *this = *this + s; }
    constexpr BPoint& operator-=(tagSIZE const& s) noexcept { return *this = *this - s; }
    /// The factor and divisor are 32-bit LONGs; division truncates towards zero, and a
    /// divisor of 0 is the caller's to exclude.
    constexpr BPoint operator*(long f) const noexcept {
        return {static_cast<long>(x) * qv::detail::Wrap32(f),
                static_cast<long>(y) * qv::detail::Wrap32(f)};
    }
    constexpr BPoint operator/(long d) const noexcept {
        return {static_cast<long>(x) / qv::detail::Wrap32(d),
                static_cast<long>(y) / qv::detail::Wrap32(d)};
    }
    constexpr BPoint& operator*=(long f) noexcept { return *this = *this * f; }
    constexpr BPoint& operator/=(long d) noexcept { return *this = *this / d; }
    constexpr bool operator==(tagPOINT const& p) const noexcept { return x == p.x && y == p.y; }
    constexpr bool operator!=(tagPOINT const& p) const noexcept { return !(*this == p); }
    // The same for two BPoints, so that a comparison of a const and a non-const one is
    // not ambiguous with its reversed form.
    constexpr bool operator==(BPoint const& o) const noexcept {
        return *this == static_cast<tagPOINT const&>(o);
    }
    constexpr bool operator!=(BPoint const& o) const noexcept { return !(*this == o); }

    /// True when left <= x < right and top <= y < bottom.
    constexpr bool InRect(tagRECT const& r) const noexcept {
        return r.left <= x && x < r.right && r.top <= y && y < r.bottom;
    }

private:
    constexpr BPoint Add(long long dx, long long dy) const noexcept {
        return {static_cast<long>(x + dx), static_cast<long>(y + dy)};
    }
};
static_assert(sizeof(BPoint) == sizeof(tagPOINT) && std::is_trivially_copyable_v<BPoint>);

constexpr BPoint BSize::operator+(tagPOINT const& p) const noexcept {
    return BPoint(p) + *this;
}
constexpr BPoint BSize::operator-(tagPOINT const& p) const noexcept {
    return {static_cast<long>(cx) - p.x, static_cast<long>(cy) - p.y};
}
