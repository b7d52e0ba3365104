#include "FocalLength.h"

#include <cmath>

FocalLength::In35mm FocalLength::reduce(double cropFactor) const
{
    if (in35mmFilmMm != 0) {
        const double scale = in35mmFilmMm / realMm;
        return {in35mmFilmMm, std::isfinite(scale) ? scale : 1.0, true};
    }
    if (realMm == 0)
        return {50.0, 1.0, false};
    const double scale = cropFactor > 0 ? cropFactor : cropFactorOfSensor();
    if (scale > 0 && std::isfinite(scale * realMm))
        return {scale * realMm, scale, true};
    return {realMm, 1.0, false};
}

/// 0 if the size of the sensor is not known.
double FocalLength::cropFactorOfSensor() const
{
    if (planeUnitMm == 0 || planeResolutionX == 0 || planeResolutionY == 0 || planeWidth == 0
        || planeHeight == 0)
        return 0;
    const double widthMm = planeWidth * planeUnitMm / planeResolutionX;
    const double heightMm = planeHeight * planeUnitMm / planeResolutionY;
    return std::sqrt(36.0 * 36.0 + 24.0 * 24.0)
        / std::sqrt(widthMm * widthMm + heightMm * heightMm);
}
