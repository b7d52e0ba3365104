#pragma once

#include <QSizeF>
#include <QVector2D>

/// The viewport uniforms of the panorama's shader, in pixels of the target.
struct Viewport
{
    QVector2D size;      ///< width, height
    QVector2D sizeMin;   ///< the smaller side, twice
    QVector2D sizeRatio; ///< max(w, h) / h and h / min(w, h): (w/h, 1) landscape, (1, h/w) portrait
    float width = 0;

    static Viewport ofTarget(const QSizeF &pixels);

    bool operator==(const Viewport &other) const
    {
        return size == other.size && sizeMin == other.sizeMin && sizeRatio == other.sizeRatio
            && width == other.width;
    }
};
