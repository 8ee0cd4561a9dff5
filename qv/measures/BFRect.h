/// \file
/// BFRect: a rectangle of the plane in float coordinates. Left and top belong to it, right and
/// bottom do not. See docs/measures.md.
#pragma once

#include <qv/measures/BFPoint.h>
#include <qv/measures/BRect.h>
#include <type_traits>

/// left, top, right, bottom as 32-bit floats. A plain value: copy it freely; threads may share
/// a const one.
class BFRect {
public:
    /// Leaves all four fields unset.
    BFRect() = default;
    constexpr BFRect(float l, float t, float r, float b) noexcept
        : left(l), top(t), right(r), bottom(b) {}
    /// From the left-top and the right-bottom corner.
    constexpr BFRect(BFPoint const& lt, BFPoint const& rb) noexcept
        : BFRect(lt.x, lt.y, rb.x, rb.y) {}
    constexpr BFRect(BRect const& r) noexcept
        : BFRect(static_cast<float>(r.left), static_cast<float>(r.top), static_cast<float>(r.right),
                 static_cast<float>(r.bottom)) {}

    constexpr float Width() const noexcept { return right - left; }
    constexpr float Height() const noexcept { return bottom - top; }
    constexpr BFPoint LeftTop() const noexcept { return {left, top}; }
    constexpr BFPoint RightTop() const noexcept { return {right, top}; }
    constexpr BFPoint LeftBottom() const noexcept { return {left, bottom}; }
    constexpr BFPoint RightBottom() const noexcept { return {right, bottom}; }
    constexpr bool IsEmpty() const noexcept { return right <= left || bottom <= top; }
    constexpr BFPoint Center() const noexcept {
        return {(left + right) * 0.5f, (top + bottom) * 0.5f};
    }

    /// The corners by i modulo 4 with the sign of i: 0 left-top, 1 left-bottom, 2 right-bottom,
    /// any other remainder (3, and the negative ones) right-top.
    constexpr BFPoint Vertex(int i) const noexcept {
        switch (i % 4) {
        case 0:
            return LeftTop();
        case 1:
            return LeftBottom();
        case 2:
            return RightBottom();
        default:
            return RightTop();
        }
    }

    /// The overlap, which never collapses to zeros: without overlap the result is an empty
    /// rectangle of width or height 0 at the edge where the overlap would be.
    constexpr BFRect Intersection(BFRect const& r) const noexcept {
        float const l = left > r.left ? left : r.left;
        float const t = top > r.top ? top : r.top;
        float const rr = right < r.right ? right : r.right;
        float const b = bottom < r.bottom ? bottom : r.bottom;
        return {l, t, l > rr ? l : rr, t > b ? t : b};
    }

    /// Shift all four fields.
    constexpr BFRect& operator+=(BFPoint const& p) noexcept {
        return *this = BFRect(LeftTop() + p, RightBottom() + p);
    }
    constexpr BFRect& operator-=(BFPoint const& p) noexcept {
        return *this = BFRect(LeftTop() - p, RightBottom() - p);
    }
    /// Exact comparison of all four fields.
    constexpr bool operator==(BFRect const& r) const noexcept {
        return left == r.left && top == r.top && right == r.right && bottom == r.bottom;
    }
    constexpr bool operator!=(BFRect const& r) const noexcept { return !(*this == r); }

    float left;
    float top;
    float right;
    float bottom;
};
static_assert(sizeof(BFRect) == 16 && std::is_trivially_copyable_v<BFRect>);

constexpr bool BFPoint::InRect(BFRect const& r) const noexcept {
    return r.left <= x && x < r.right && r.top <= y && y < r.bottom;
}
