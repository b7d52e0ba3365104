#include "Viewport.h"

#include <algorithm>

Viewport Viewport::ofTarget(const QSizeF &pixels)
{
    const auto w = static_cast<float>(pixels.width());
    const auto h = static_cast<float>(pixels.height());
    const float smaller = std::min(w, h);
    return {{w, h}, {smaller, smaller}, {std::max(w, h) / h, h / smaller}, w};
}
