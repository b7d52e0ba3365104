#pragma once

#include <QImage>
#include <QSize>
#include <QString>

/// The font family of the panorama's labels.
QString panoramaFontFamily();

/// Draws an outdoor scene with a labelled graticule in the equirectangular projection.
///
/// Columns run over longitude from -180 degrees at the left edge to 180 degrees at the right, rows
/// over latitude from 90 degrees at the top to -90 degrees at the bottom. The image's centre looks
/// north, straight ahead; east is at longitude 90. The same size gives the same picture.
///
/// @p size is in pixels, twice as wide as high. Needs a QGuiApplication, for the labels.
QImage drawSamplePanorama(QSize size);
