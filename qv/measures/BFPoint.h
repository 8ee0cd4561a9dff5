/// \file
/// BFPoint: a point of the plane in float coordinates. See docs/measures.md.
#pragma once

#include <cmath>
#include <qv/measures/BPoint.h>
#include <qv/platform/WindowsTypes.h>
#include <type_traits>

class BFRect;

/// x and y as 32-bit floats with componentwise arithmetic. A plain value: copy it freely;
/// threads may share a const one.
class BFPoint {
public:
    /// Leaves both fields unset.
    BFPoint() = default;
    constexpr BFPoint(float x_, float y_) noexcept : x(x_), y(y_) {}
    constexpr BFPoint(tagPOINT const& p) noexcept
        : x(static_cast<float>(p.x)), y(static_cast<float>(p.y)) {}

    constexpr float X() const noexcept { return x; }
    constexpr float Y() const noexcept { return y; }
    constexpr float& X() noexcept { return x; }
    constexpr float& Y() noexcept { return y; }

    /// @name Arithmetic, componentwise.
    constexpr BFPoint operator+(BFPoint const& p) const noexcept { return {x + p.x, y + p.y}; }
    constexpr BFPoint operator-(BFPoint const& p) const noexcept { return {x - p.x, y - p.y}; }
    constexpr BFPoint& operator+=(BFPoint const& p) noexcept { return *this = *this + p; }
    constexpr BFPoint& operator-=(BFPoint const& p) noexcept { return *this = *this - p; }
    constexpr BFPoint operator*(float f) const noexcept { return {x * f, y * f}; }
    constexpr BFPoint operator/(float d) const noexcept { return {x / d, y / d}; }
    constexpr BFPoint& operator*=(float f) noexcept { return *this = *this * f; }
    constexpr BFPoint& operator/=(float d) noexcept { return *this = *this / d; }
    /// Exact comparison of both components.
    constexpr bool operator==(BFPoint const& p) const noexcept { return x == p.x && y == p.y; }
    constexpr bool operator!=(BFPoint const& p) const noexcept { return !(*this == p); }

    /// @name Whole points through ceilf, floorf and roundf; Round sends halves away from zero.
    /// Coordinates beyond the 32-bit range are the caller's to exclude.
    BPoint Ceil() const noexcept { return Whole(std::ceil(x), std::ceil(y)); }
    BPoint Floor() const noexcept { return Whole(std::floor(x), std::floor(y)); }
    BPoint Round() const noexcept { return Whole(std::round(x), std::round(y)); }

    /// The distance from the origin, in float.
    float Length() const noexcept { return std::sqrt(x * x + y * y); }
    float Distance(BFPoint const& p) const noexcept { return (*this - p).Length(); }
    /// The sum of the products, x * p.x + y * p.y, despite the name: callers rely on it.
    constexpr float CrossProduct(BFPoint const& p) const noexcept { return x * p.x + y * p.y; }

    /// True when left <= x < right and top <= y < bottom.
    constexpr bool InRect(BFRect const& r) const noexcept;
    /// The same, with the bounds converted to float first.
    constexpr bool InRect(tagRECT const& r) const noexcept {
        return static_cast<float>(r.left) <= x && x < static_cast<float>(r.right) &&
               static_cast<float>(r.top) <= y && y < static_cast<float>(r.bottom);
    }

    float x;
    float y;

private:
    static BPoint Whole(float wx, float wy) noexcept {
        return {static_cast<long>(wx), static_cast<long>(wy)};
    }
};
static_assert(sizeof(BFPoint) == 8 && std::is_trivially_copyable_v<BFPoint>);

// InRect with a BFRect is defined with BFRect.
#include <qv/measures/BFRect.h>
