/// \file
/// BBitArray: a two-dimensional array in which every pixel holds a fixed number of one-bit
/// planes, the planes of a pixel next to each other: the masks of a scan. It is stored in
/// archives; its read function is registered under "class BBitArray" when the library is
/// loaded. See docs/measures.md.
#pragma once

#include <cstddef>
#include <qv/core/Export.h>
#include <qv/measures/B2DArrayBase.h>
#include <qv/measures/internal/Wrap32.h>

class BArchive;

/// Memory layout: row by row from the top, pixel by pixel from the left, PixelBytes() bytes to
/// a pixel; plane p of pixel (x, y) is bit p % 8 (bit 0 the least significant) of byte
/// (width * y + x) * pixel bytes + p / 8. Coordinates and planes are not checked: the caller
/// keeps them in range. Not locked: one thread at a time changes it, any number may read it.
class QV_EXPORT BBitArray : public B2DArrayBase {
public:
    QV_DECLARE_CLASSNAME(BBitArray)

    /// All bits 0. The planes are rounded up to whole bytes. Memory is taken only when width,
    /// height and planes are all at least 1, but the sizes are stored as given. A request that
    /// cannot be met raises std::bad_alloc.
    BBitArray(int planes, int width, int height);
    /// Deep copies of the data and sizes.
    BBitArray(BBitArray const& other);
    BBitArray& operator=(BBitArray const& other);
    ~BBitArray() override;

    void WriteData(BArchive& archive) const override;
    void ChangeExtent(int x, int y, int width, int height) override;
    int Width() const override { return m_width; }
    int Height() const override { return m_height; }

    /// Pixels, not bytes.
    int Size() const { return qv::detail::Wrap32(1ll * m_width * m_height); }
    /// The rounded number of planes: a request for 3 reports 8.
    int Planes() const { return qv::detail::Wrap32(m_pixel_bytes * 8ll); }

    /// @name Single bits, inline: a plane is set or tested without a call.
    bool TestBit(int x, int y, int plane) const { return (Byte(x, y, plane) >> (plane & 7)) & 1; }
    void SetBit(int x, int y, int plane) {
        Byte(x, y, plane) |= static_cast<unsigned char>(1u << (plane & 7));
    }
    void UnsetBit(int x, int y, int plane) {
        Byte(x, y, plane) &= static_cast<unsigned char>(~(1u << (plane & 7)));
    }
    void ChangeBit(int x, int y, int plane, bool value) {
        if (value)
            SetBit(x, y, plane);
        else
            UnsetBit(x, y, plane);
    }

    /// @name Whole planes, a word at a time.
    /// Every byte to 255 or 0, the bits of rounded-up planes included.
    void SetAllBits();
    void UnsetAllBits();
    /// One plane of every pixel to value; the other planes stay.
    void ChangePlane(int plane, bool value);
    /// How many pixels have the plane set.
    unsigned long long CountBits(int plane) const;

    /// The stored form: width, height and pixel bytes as 4-byte numbers, then the bytes of the
    /// data. Null when the data cannot be read whole, so a damaged record never allocates more
    /// than the archive holds. The version is not used.
    static SP<BSmartObj> Read(BArchive& archive, int version);

private:
    // An array that adopts data, which holds the bytes of the given sizes.
    BBitArray(unsigned char* data, int width, int height, int pixelBytes);
    // The bytes the data takes for these sizes; 0 without memory.
    static std::size_t DataBytes(int width, int height, int pixelBytes);
    std::size_t DataBytes() const { return DataBytes(m_width, m_height, m_pixel_bytes); }

    unsigned char& Byte(int x, int y, int plane) const {
        return m_data[(static_cast<std::ptrdiff_t>(m_width) * y + x) * m_pixel_bytes +
                      (plane >> 3)];
    }

    unsigned char* m_data = nullptr;
    int m_width;
    int m_height;
    int m_pixel_bytes;
};
