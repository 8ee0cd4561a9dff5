/// \file
/// BRectItr: walks a rectangle row by row in steps, and maps each grid position to another
/// coordinate system by an offset and a scale. A walk is Restart, then, while IsValid, use the
/// position and call Next. See docs/measures.md.
#pragma once

#include <qv/measures/BFPoint.h>
#include <qv/measures/BMatrix2x3.h>
#include <qv/measures/BRect.h>
#include <type_traits>

/// A plain value: copy it freely; threads may share a const one. A step of 0 is the caller's
/// to exclude.
class BRectItr {
public:
    /// Position at left-top, step 1.
    constexpr BRectItr(BRect const& rect, BFPoint const& offset, float scaleX,
                       float scaleY) noexcept
        : m_x(rect.left), m_y(rect.top), m_rect(rect), m_offset_x(offset.x), m_offset_y(offset.y),
          m_scale_x(scaleX), m_scale_y(scaleY) {}
    /// Offset m02, m12 and scale m00, m11; m01 and m10 are not used, so the matrix must have
    /// no rotation or shear.
    constexpr BRectItr(BRect const& rect, BMatrix2x3 const& map) noexcept
        : BRectItr(rect, BFPoint(map.GetCoeff(0, 2), map.GetCoeff(1, 2)), map.GetCoeff(0, 0),
                   map.GetCoeff(1, 1)) {}

    /// @name Moving. Restart and GotoLeftTop are one operation.
    constexpr void Restart() noexcept { GotoLeftTop(); }
    constexpr void GotoLeftTop() noexcept {
        m_x = m_rect.left;
        m_y = m_rect.top;
    }
    /// The last pixel, not adjusted to the step.
    constexpr void GotoRightBottom() noexcept {
        m_x = m_rect.right - 1;
        m_y = m_rect.bottom - 1;
    }
    /// One step to the right; past the row's end, back to left and one step down.
    constexpr void Next() noexcept {
        m_x += m_step;
        if (m_x >= m_rect.right) {
            m_x = m_rect.left;
            m_y += m_step;
        }
    }
    constexpr BRectItr& operator++() noexcept {
        Next();
        return *this;
    }
    /// The mapped position before the step.
    constexpr BFPoint operator++(int) noexcept {
        BFPoint const before = PositionF();
        Next();
        return before;
    }
    /// One step to the left; before the row's start, to the last grid position of the row
    /// above.
    constexpr void Previous() noexcept {
        m_x -= m_step;
        if (m_x < m_rect.left) {
            int const w = m_rect.right - m_rect.left - 1;
            m_x = m_rect.left + w - w % m_step;
            m_y -= m_step;
        }
    }
    constexpr BRectItr& operator--() noexcept {
        Previous();
        return *this;
    }
    constexpr BFPoint operator--(int) noexcept {
        BFPoint const before = PositionF();
        Previous();
        return before;
    }
    /// A step down or up; x stays.
    constexpr void NextRow() noexcept { m_y += m_step; }
    constexpr void PreviousRow() noexcept { m_y -= m_step; }

    /// True while top <= y < bottom; x is not looked at.
    constexpr bool IsValid() const noexcept { return m_rect.top <= m_y && m_y < m_rect.bottom; }

    /// @name The position: in the rectangle's own coordinates, in steps, and mapped.
    constexpr BPoint RelativePosition() const noexcept { return {m_x, m_y}; }
    constexpr BPoint StepPosition() const noexcept { return {m_x / m_step, m_y / m_step}; }
    /// The mapped position, each coordinate truncated; it is absolute, not taken relative to
    /// left-top.
    constexpr BPoint Position() const noexcept {
        BFPoint const p = PositionF();
        return {static_cast<long>(p.x), static_cast<long>(p.y)};
    }
    constexpr BFPoint PositionF() const noexcept {
        return {static_cast<float>(m_x) * m_scale_x + m_offset_x,
                static_cast<float>(m_y) * m_scale_y + m_offset_y};
    }

    /// @name The step, in both directions.
    constexpr int GetStep() const noexcept { return m_step; }
    constexpr void SetStep(int step) noexcept { m_step = step; }
    constexpr void MultiplyStep(int factor) noexcept { m_step *= factor; }
    /// Width or height divided by the step, rounded up.
    constexpr int StepCountX() const noexcept { return (m_rect.Width() + m_step - 1) / m_step; }
    constexpr int StepCountY() const noexcept { return (m_rect.Height() + m_step - 1) / m_step; }

    int m_x;
    int m_y;
    int m_step = 1;
    BRect m_rect;
    float m_offset_x;
    float m_offset_y;
    float m_scale_x;
    float m_scale_y;
};
static_assert(std::is_trivially_copyable_v<BRectItr>);
