#pragma once

#include <QColor>
#include <QImage>
#include <QPointF>
#include <QVector>

#include <optional>

/// Frames of an equirectangular test film that can be recognised on a screenshot: in the middle a
/// block of black and white cells with the frame's number, above and below it colour bars. Pure.
namespace FrameCode {

constexpr int kLargestNumber = 65535;

/// A frame of 2:1, at least 512 pixels wide.
QImage frame(const QSize &size, int number);

/// Draws only the block, which stands 30 degrees wide and 20 degrees high around the middle of an
/// equirectangular picture. What lies there is covered.
void draw(QImage &picture, int number);

/// The number of the first whole block that is found on a screenshot of any part of the frame in
/// any scale from 5 pixels a cell on, flat or seen through a perspective of up to about 100
/// degrees with the block in its middle. None if there is no block, or one of several frames.
std::optional<int> read(const QImage &screenshot);

/// A patch of one colour around a place of the sphere, 20 degrees wide and high.
struct Patch
{
    double longitudeDeg; ///< positive to the right of the picture's middle
    double latitudeDeg;  ///< positive upwards
    QColor colour;
};

/// The eight colours of 75 % bars: white to green from left to right above the block, magenta to
/// black below it.
QVector<Patch> patches();

/// Where a place of the sphere lies in a perspective view to the middle of the picture, in pixels
/// from the window's upper left. `fovDeg` spans the window's smaller side. By the gnomonic
/// projection (Snyder, Map Projections: A Working Manual, equations 22-3 to 22-5). The place has to
/// lie less than 90 degrees from the middle.
QPointF onScreen(double longitudeDeg, double latitudeDeg, double fovDeg, const QSize &window);

/// The largest difference between the patches on a screenshot of such a view and their colours, of
/// 255 and over all channels. Looks near the corners of the patches too: a field of view that is
/// 8 degrees off shows.
int colourError(const QImage &screenshot, double fovDeg);

/// The same of a whole frame, as it is.
int flatColourError(const QImage &picture);

} // namespace FrameCode
