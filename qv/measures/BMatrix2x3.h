/// \file
/// BMatrix2x3: an affine map of the plane, x' = m00 x + m01 y + m02, y' = m10 x + m11 y + m12.
/// See docs/measures.md.
#pragma once

#include <qv/measures/BFPoint.h>
#include <type_traits>

/// Six floats stored row by row. A plain value: copy it freely; threads may share a const one.
class BMatrix2x3 {
public:
    /// Takes the coefficients column by column, unlike the storage: m00, m10, m01, m11, m02,
    /// m12. The defaults make the identity.
    constexpr BMatrix2x3(float c00 = 1.0f, float c10 = 0.0f, float c01 = 0.0f, float c11 = 1.0f,
                         float c02 = 0.0f, float c12 = 0.0f) noexcept
        : m{{c00, c01, c02}, {c10, c11, c12}} {}

    /// Row 0 or 1, column 0 to 2; other values are the caller's to exclude.
    constexpr float GetCoeff(unsigned int row, unsigned int column) const noexcept {
        return m[row][column];
    }
    constexpr void SetCoeff(unsigned int row, unsigned int column, float value) noexcept {
        m[row][column] = value;
    }

    /// The product as with a third row of 0, 0, 1: in a * b, b is applied first.
    constexpr BMatrix2x3 operator*(BMatrix2x3 const& b) const noexcept {
        BMatrix2x3 r;
        for (int i = 0; i < 2; ++i) {
            for (int j = 0; j < 3; ++j)
                r.m[i][j] = m[i][0] * b.m[0][j] + m[i][1] * b.m[1][j];
            r.m[i][2] += m[i][2];
        }
        return r;
    }

    constexpr BFPoint Transform(BFPoint const& p) const noexcept {
        return {m[0][0] * p.x + m[0][1] * p.y + m[0][2], m[1][0] * p.x + m[1][1] * p.y + m[1][2]};
    }
    /// The inverse map. Without rotation or shear it divides by the scales alone; otherwise by
    /// the determinant. A singular matrix is the caller's to exclude.
    constexpr BFPoint TransformBack(BFPoint const& p) const noexcept {
        if (m[0][1] == 0.0f && m[1][0] == 0.0f)
            return {(p.x - m[0][2]) / m[0][0], (p.y - m[1][2]) / m[1][1]};
        float const dx = m[0][2] - p.x;
        float const dy = m[1][2] - p.y;
        float const d = m[0][0] * m[1][1] - m[1][0] * m[0][1];
        return {-(m[1][1] * dx - m[0][1] * dy) / d, -(m[0][0] * dy - m[1][0] * dx) / d};
    }

    /// Exact comparison of all six.
    constexpr bool operator==(BMatrix2x3 const& o) const noexcept {
        for (int i = 0; i < 2; ++i)
            for (int j = 0; j < 3; ++j)
                if (m[i][j] != o.m[i][j])
                    return false;
        return true;
    }

private:
    float m[2][3];
};
static_assert(sizeof(BMatrix2x3) == 24 && std::is_trivially_copyable_v<BMatrix2x3>);
