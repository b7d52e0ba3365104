#pragma once

#include "GflBitmap.h"

#include <QImage>
#include <QRect>
#include <QString>

#include <cstddef>
#include <utility>

/// A buffer of pixels. Not shared between threads without a lock. Whatever cannot be done throws an
/// OrbException and leaves the buffer as it was.
///
/// Conversions: a gray sample becomes three equal ones; red, green and blue become gray with the
/// weights 0.299, 0.587 and 0.114 (ITU-R BT.601); alpha is opaque where the source has none and is
/// dropped where the target has none. A value keeps its share of its type's range, rounded to the
/// nearest; what lies outside that of an integer is clamped, and "not a number" is black.
class OrbImage
{
public:
    OrbImage() = default;
    OrbImage(OrbImage &&other) noexcept
        : m_bitmap(std::exchange(other.m_bitmap, {}))
    {}
    OrbImage &operator=(OrbImage &&other) noexcept
    {
        m_bitmap = std::exchange(other.m_bitmap, {});
        return *this;
    }

    /// Makes the bitmap. A bitmap of the same width, height, type and depth is kept with its
    /// pixels, which `clear` sets to zero. The lines of a new bitmap begin at multiples of
    /// `padding` bytes. `externalData` are pixels of someone else, who keeps them while this buffer
    /// lives.
    void allocate(int width, int height, unsigned type, int bitsPerComponent, bool clear = false,
                  unsigned char *externalData = nullptr, int padding = 4);

    /// Takes the pixels of `source`, of the same size, in this bitmap's own type and depth.
    void copy(const OrbImage &source);

    /// Takes the pixels of the rectangle `from` of `source` to the place `to` of this bitmap. Both
    /// have to lie inside.
    void copy(const OrbImage &source, const QRect &from, const QPoint &to);

    /// Becomes `source` at a smaller or the same size in the given type and depth: each pixel is
    /// the mean of the area that it covers. `source` is gray, RGB or RGBA (types 2, 16 and 32).
    void reducedCopy(const OrbImage &source, int width, int height, unsigned type,
                     int bitsPerComponent);

    /// Loads the file at its own depth.
    void ID_Read(const QString &path);

    /// Saves as a TIFF from which ID_Read makes the same buffer.
    void ID_WriteToCache(const QString &path) const;

    /// The picture at `size`, three channels of 8 bits.
    QImage toImage(const QSize &size) const;

    /// All zero and null before the first allocation.
    const GflBitmap &bitmap() const { return m_bitmap; }

    std::size_t byteCount() const { return m_bitmap.bytesPerLine * std::size_t(m_bitmap.height); }

private:
    GflBitmap m_bitmap;
};
