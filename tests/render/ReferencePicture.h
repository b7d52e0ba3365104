#pragma once

#include "ReferenceEffects.h"

#include <QImage>
#include <QSize>

#include <optional>
#include <vector>

/// An eye of a headset: tangents of the half angles of its view, all positive.
struct EyeSettings
{
    double upTan = 1;
    double downTan = 1;
    double leftTan = 1;
    double rightTan = 1;
    double scaleCorrector = 1; ///< by which heights are divided
    bool second = false;       ///< looks at the second picture of a stereo source
};

/// All that decides what the panorama looks like. Angles are in radians but the field of view.
struct ViewSettings
{
    int projection = 1; ///< these five numbers are those of OrbShaderCodeBuilder
    int effect = 0;
    int stereoMode = 0;
    int projectionSource = 1;
    int rotationSource = 0;
    bool exchangedColours = false;
    float yaw = 0;
    float pitch = 0;
    float roll = 0;
    float fovDeg = 90;
    float pitchCorrection = 0;
    float rollCorrection = 0;
    float yawMin = -3.1415927F; ///< edges of the part of the sphere that the source covers
    float yawMax = 3.1415927F;
    float pitchMin = -1.5707964F;
    float pitchMax = 1.5707964F;
    std::optional<EyeSettings> eye; ///< none for a window; rectilinear else
};

/// The picture of a panorama by the geometry of its projections, in double precision, one pixel at
/// a time. The viewer looks along -z, with x to the right and y up. A turn by positive yaw is to
/// the right, by positive pitch downwards; positive roll turns the picture clockwise.
class ReferencePicture
{
public:
    enum Region {
        Undefined = -1, ///< the geometry gives no colour
        OutsideSource = 0,
        Inside = 1 ///< and above: the pieces between which an effect jumps
    };

    struct Pixel
    {
        int region = Undefined;
        Colour colour{}; ///< 0 to 1
    };

    ReferencePicture(const QImage &panorama, const ViewSettings &settings, const QSize &size);

    QSize size() const { return m_size; }

    /// Counted from the upper left, as in an image.
    const Pixel &pixel(int column, int row) const;

    /// True if the pixel and its eight neighbours lie in one region that has a colour.
    bool isAwayFromBorders(int column, int row) const;

private:
    QSize m_size;
    std::vector<Pixel> m_pixels;
};
