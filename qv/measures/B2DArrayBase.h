/// \file
/// B2DArrayBase: the abstract two-dimensional array of the measures. BBitArray is its
/// implementation. See docs/measures.md.
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>

class QV_EXPORT B2DArrayBase : public BSmartObj {
public:
    /// The virtual operations in the order of their slots.
    /// Crops and extends in one step: the rectangle (x, y, x + width, y + height) of the old
    /// array becomes the new array, and pixels outside the old extent are 0.
    virtual void ChangeExtent(int x, int y, int width, int height) = 0;
    virtual int Width() const = 0;
    virtual int Height() const = 0;
};
