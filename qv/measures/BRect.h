/// \file
/// BRect: a rectangle of the plane in whole units, usable wherever a tagRECT is taken. Left
/// and top belong to it, right and bottom do not. Intersection and union follow the rules of
/// the platform's IntersectRect and UnionRect, written out here so that the class stands
/// without the platform. See docs/measures.md.
#pragma once

#include <qv/measures/BPoint.h>
#include <qv/measures/BSize.h>
#include <qv/platform/WindowsTypes.h>
#include <type_traits>

/// left, top, right, bottom, 32-bit signed. A plain value: copy it freely; threads may share a
/// const one.
class BRect : public tagRECT {
public:
    /// Leaves all four fields unset.
    BRect() = default;
    constexpr BRect(long l, long t, long r, long b) noexcept
        : tagRECT{qv::detail::Wrap32(l), qv::detail::Wrap32(t), qv::detail::Wrap32(r),
                  qv::detail::Wrap32(b)} {}
    /// From the left-top and the right-bottom corner.
    constexpr BRect(tagPOINT const& lt, tagPOINT const& rb) noexcept
        : tagRECT{lt.x, lt.y, rb.x, rb.y} {}
    /// From the left-top corner and the size.
    constexpr BRect(tagPOINT const& lt, tagSIZE const& s) noexcept
        : BRect(lt.x, lt.y, static_cast<long>(lt.x) + s.cx, static_cast<long>(lt.y) + s.cy) {}
    /// The size with the corner at 0, 0.
    constexpr explicit BRect(tagSIZE const& s) noexcept : tagRECT{0, 0, s.cx, s.cy} {}
    constexpr BRect(tagRECT const& r) noexcept : tagRECT(r) {}

    constexpr int Width() const noexcept { return qv::detail::Wrap32(1ll * right - left); }
    constexpr int Height() const noexcept { return qv::detail::Wrap32(1ll * bottom - top); }
    constexpr BSize Size() const noexcept { return {Width(), Height()}; }

    /// @name The corners; RightBottom is the first point outside at that corner.
    constexpr BPoint LeftTop() const noexcept { return {left, top}; }
    constexpr BPoint RightTop() const noexcept { return {right, top}; }
    constexpr BPoint LeftBottom() const noexcept { return {left, bottom}; }
    constexpr BPoint RightBottom() const noexcept { return {right, bottom}; }
    /// The middle, each coordinate halved with truncation towards zero.
    constexpr BPoint Center() const noexcept {
        return {(1ll * left + right) / 2, (1ll * top + bottom) / 2};
    }

    /// True when right is not above left or bottom is not above top.
    constexpr bool IsEmpty() const noexcept { return right <= left || bottom <= top; }
    /// True when this rectangle lies wholly in r: the intersection equals this. An empty
    /// rectangle is in nothing, unless it is all zeros.
    constexpr bool InRect(tagRECT const& r) const noexcept { return Intersection(r) == *this; }

    /// Grows the rectangle just enough to hold p; an empty one becomes the pixel at p.
    constexpr void Enclose(tagPOINT const& p) noexcept {
        if (IsEmpty()) {
            *this = BRect(p.x, p.y, p.x + 1ll, p.y + 1ll);
            return;
        }
        if (p.x < left)
            left = p.x;
        else if (p.x >= right)
            right = qv::detail::Wrap32(p.x + 1ll);
        if (p.y < top)
            top = p.y;
        else if (p.y >= bottom)
            bottom = qv::detail::Wrap32(p.y + 1ll);
    }
    /// The next point in row order. The end is not looked for: the caller compares y with
    /// bottom.
    constexpr BPoint Successor(BPoint const& p) const noexcept {
        if (p.x + 1ll >= right)
            return {left, p.y + 1ll};
        return {p.x + 1ll, p.y};
    }

    /// @name The rectangle shared with all arguments, folded in order. Two rectangles of
    /// which one is empty or which do not overlap give all zeros.
    constexpr BRect Intersection(tagRECT const& r) const noexcept {
        BRect const o(r);
        if (IsEmpty() || o.IsEmpty() || left >= o.right || o.left >= right || top >= o.bottom ||
            o.top >= bottom)
            return {0, 0, 0, 0};
        return {left > o.left ? left : o.left, top > o.top ? top : o.top,
                right < o.right ? right : o.right, bottom < o.bottom ? bottom : o.bottom};
    }
    constexpr BRect Intersection(tagRECT const& a, tagRECT const& b) const noexcept {
        return Intersection(a).Intersection(b);
    }
    constexpr BRect Intersection(tagRECT const& a, tagRECT const& b,
                                 tagRECT const& c) const noexcept {
        return Intersection(a, b).Intersection(c);
    }
    constexpr BRect Intersection(tagRECT const& a, tagRECT const& b, tagRECT const& c,
                                 tagRECT const& d) const noexcept {
        return Intersection(a, b, c).Intersection(d);
    }

    /// @name The smallest rectangle holding this and all arguments, folded in order. Empty
    /// rectangles do not count; two empty ones give all zeros.
    constexpr BRect Union(tagRECT const& r) const noexcept {
        BRect const o(r);
        if (IsEmpty())
            return o.IsEmpty() ? BRect(0, 0, 0, 0) : o;
        if (o.IsEmpty())
            return *this;
        return {left < o.left ? left : o.left, top < o.top ? top : o.top,
                right > o.right ? right : o.right, bottom > o.bottom ? bottom : o.bottom};
    }
    constexpr BRect Union(tagRECT const& a, tagRECT const& b) const noexcept {
        return Union(a).Union(b);
    }
    constexpr BRect Union(tagRECT const& a, tagRECT const& b, tagRECT const& c) const noexcept {
        return Union(a, b).Union(c);
    }
    constexpr BRect Union(tagRECT const& a, tagRECT const& b, tagRECT const& c,
                          tagRECT const& d) const noexcept {
        return Union(a, b, c).Union(d);
    }

    /// Shift all four fields.
    constexpr BRect& operator+=(BPoint const& p) noexcept {
        return *this = BRect(LeftTop() + p, RightBottom() + p);
    }
    constexpr BRect& operator-=(BPoint const& p) noexcept {
        return *this = BRect(LeftTop() - p, RightBottom() - p);
    }
    constexpr bool operator==(tagRECT const& r) const noexcept {
        return left == r.left && top == r.top && right == r.right && bottom == r.bottom;
    }
    constexpr bool operator!=(tagRECT const& r) const noexcept { return !(*this == r); }
    // The same for two BRects, so that a comparison of a const and a non-const one is
    // not ambiguous with its reversed form.
    constexpr bool operator==(BRect const& o) const noexcept {
        return *this == static_cast<tagRECT const&>(o);
    }
    constexpr bool operator!=(BRect const& o) const noexcept { return !(*this == o); }
};
static_assert(sizeof(BRect) == sizeof(tagRECT) && std::is_trivially_copyable_v<BRect>);
