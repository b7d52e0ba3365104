#include "ReferencePicture.h"

#include "OrbShaderCodeBuilder.h"

#include <algorithm>
#include <cmath>
#include <optional>

using Builder = OrbShaderCodeBuilder;

namespace {

constexpr double kPi = 3.14159265358979323846;

struct Direction
{
    double x;
    double y;
    double z;
};

struct Place ///< in the source; 0 to 1 from its upper left
{
    double x;
    double y;
};

Direction turnedAboutX(const Direction &d, double angle)
{
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return {d.x, c * d.y - s * d.z, s * d.y + c * d.z};
}

Direction turnedAboutY(const Direction &d, double angle)
{
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return {c * d.x + s * d.z, d.y, c * d.z - s * d.x};
}

Direction turnedAboutZ(const Direction &d, double angle)
{
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return {c * d.x - s * d.y, s * d.x + c * d.y, d.z};
}

/// From the camera's axes into the world's: the view first, then how the camera was mounted.
Direction intoWorld(const Direction &ray, const ViewSettings &view)
{
    Direction d = turnedAboutZ(ray, double(view.roll));
    d = turnedAboutX(d, -double(view.pitch));
    d = turnedAboutY(d, -double(view.yaw));
    d = turnedAboutX(d, -double(view.pitchCorrection));
    return turnedAboutZ(d, double(view.rollCorrection));
}

/// How far from the optical axis a projection looks at `radius` from the picture's centre, where 1
/// is half the smaller side. Beyond pi there is nothing to see; none where no ray exists.
std::optional<double> angleFromAxis(int projection, double radius, double fov)
{
    switch (projection) {
    case Builder::RECTILINEAR:
        return std::atan(radius * std::tan(fov / 2));
    case Builder::LITTLE_PLANET: // seen from a quarter of the radius behind the sphere
        return 2 * std::atan(fov * radius / 1.25);
    case Builder::MIRROR_BALL: // a reflected ray turns by twice the tilt of the surface
        if (fov * radius >= 1)
            return {};
        return 2 * std::asin(fov * radius);
    case Builder::FISHEYE:
        return fov * radius / 2;
    default:
        return {};
    }
}

/// Longitude from the front to the right, latitude upwards.
struct OnSphere
{
    double longitude;
    double latitude;
};

OnSphere onSphere(const Direction &d)
{
    return {std::atan2(d.x, -d.z), std::atan2(d.y, std::hypot(d.x, d.z))};
}

/// The part of an equirectangular source that covers the given limits.
Place inEquirectangular(const OnSphere &at, const ViewSettings &view)
{
    const double left = double(view.yawMin);
    const double top = double(view.pitchMax);
    return {(at.longitude - left) / (double(view.yawMax) - left),
            (top - at.latitude) / (top - double(view.pitchMin))};
}

/// An equidistant picture whose edges lie at 119.7 degrees from the lens's axis, either straight up
/// with the right at the right and the front at the bottom, or to the front with the top at the
/// bottom.
Place inFisheyePicture(const OnSphere &at, const ViewSettings &view)
{
    const double right = std::sin(at.longitude) * std::cos(at.latitude);
    const double front = std::cos(at.longitude) * std::cos(at.latitude);
    const double up = std::sin(at.latitude);
    const bool lensLooksAhead = view.rotationSource == 2;
    const double along = lensLooksAhead ? front : up;
    const double down = lensLooksAhead ? up : front;
    const double across = std::hypot(right, down);
    const double radius = std::atan2(across, along) / (1.33 * kPi);
    return {0.5 + radius * right / across, 0.5 + radius * down / across};
}

bool isInside(const Place &place)
{
    return place.x >= 0 && place.x <= 1 && place.y >= 0 && place.y <= 1;
}

/// The eye's half; a window shows the first eye's.
Place halfOfEye(const Place &place, const ViewSettings &view)
{
    const double skipped = view.eye && view.eye->second ? 0.5 : 0;
    if (view.stereoMode == Builder::STEREO_3D_OVERUNDER)
        return {place.x, skipped + place.y / 2};
    if (view.stereoMode == Builder::STEREO_3D_SIDEBYSIDE)
        return {skipped + place.x / 2, place.y};
    return place;
}

/// The ray of a headset's eye through a point, whose distances from the picture's centre are in
/// halves of its smaller side.
Direction eyeRay(double right, double up, const ViewSettings &view)
{
    const EyeSettings &eye = *view.eye;
    const double zoom = std::tan(double(view.fovDeg) * kPi / 360);
    const double x = zoom * right; // -1 to 1 is what the eye's angles enclose
    const double y = zoom * up / eye.scaleCorrector;
    return {((1 + x) * eye.rightTan - (1 - x) * eye.leftTan) / 2,
            ((1 + y) * eye.upTan - (1 - y) * eye.downTan) / 2, -1};
}

/// Linear filtering between the four nearest texel centres; beyond the edge lies the edge's colour.
Colour sample(const QImage &source, const Place &place)
{
    const double x = place.x * source.width() - 0.5;
    const double y = place.y * source.height() - 0.5;
    const int left = static_cast<int>(std::floor(x));
    const int top = static_cast<int>(std::floor(y));
    Colour sum{};
    for (const int dy : {0, 1}) {
        for (const int dx : {0, 1}) {
            const double weight = (dx ? x - left : 1 - (x - left)) * (dy ? y - top : 1 - (y - top));
            const QRgb texel = source.pixel(std::clamp(left + dx, 0, source.width() - 1),
                                            std::clamp(top + dy, 0, source.height() - 1));
            sum[0] += weight * qRed(texel) / 255;
            sum[1] += weight * qGreen(texel) / 255;
            sum[2] += weight * qBlue(texel) / 255;
        }
    }
    return sum;
}

/// What a pixel looks at; its centre is given in pixels from the lower left. None if nothing is
/// defined there; outside 0 to 1 if the source has nothing there.
std::optional<Place> placeInSource(double x, double y, const QSize &size, const ViewSettings &view)
{
    OnSphere at{};
    if (view.projection == Builder::NO_PROJECTION) {
        at = {(x / size.width() - 0.5) * 2 * kPi, (y / size.height() - 0.5) * kPi};
    } else {
        const double unit = std::min(size.width(), size.height()) / 2.0;
        const double right = (x - size.width() / 2.0) / unit;
        const double up = (y - size.height() / 2.0) / unit;
        if (view.eye)
            return inEquirectangular(onSphere(intoWorld(eyeRay(right, up, view), view)), view);
        const double radius = std::hypot(right, up);
        const auto angle = angleFromAxis(view.projection, radius, double(view.fovDeg) * kPi / 180);
        const bool centre = radius == 0;
        if (!angle || (centre && view.projection == Builder::FISHEYE))
            return {};
        if (*angle > kPi)
            return Place{-1, -1};
        const double scale = centre ? 0 : std::sin(*angle) / radius;
        at = onSphere(intoWorld({scale * right, scale * up, -std::cos(*angle)}, view));
    }
    return view.projectionSource == 4 ? inFisheyePicture(at, view) : inEquirectangular(at, view);
}

} // namespace

ReferencePicture::ReferencePicture(const QImage &panorama, const ViewSettings &settings,
                                   const QSize &size)
    : m_size(size)
    , m_pixels(std::size_t(size.width()) * std::size_t(size.height()))
{
    auto pixel = m_pixels.begin();
    for (int row = 0; row < size.height(); ++row) {
        const double y = size.height() - row - 0.5;
        for (int column = 0; column < size.width(); ++column, ++pixel) {
            const auto place = placeInSource(column + 0.5, y, size, settings);
            if (!place)
                continue;
            if (!isInside(*place)) {
                *pixel = {OutsideSource, {}};
                continue;
            }
            Colour colour = sample(panorama, halfOfEye(*place, settings));
            if (settings.exchangedColours)
                std::swap(colour[0], colour[2]);
            const EffectResult result = applyEffect(settings.effect, neutralColourChain(colour), y,
                                                    size.height());
            *pixel = {Inside + result.piece, result.colour};
        }
    }
}

const ReferencePicture::Pixel &ReferencePicture::pixel(int column, int row) const
{
    return m_pixels[std::size_t(row) * std::size_t(m_size.width()) + std::size_t(column)];
}

bool ReferencePicture::isAwayFromBorders(int column, int row) const
{
    const int region = pixel(column, row).region;
    if (region == Undefined)
        return false;
    const QRect all(QPoint(), m_size);
    const QRect neighbours = QRect(column - 1, row - 1, 3, 3) & all;
    for (int y = neighbours.top(); y <= neighbours.bottom(); ++y) {
        for (int x = neighbours.left(); x <= neighbours.right(); ++x) {
            if (pixel(x, y).region != region)
                return false;
        }
    }
    return true;
}
