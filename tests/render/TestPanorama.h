#pragma once

#include <QImage>

/// A panorama to measure with: smooth, but with no symmetry and no colour repeated at the same
/// place, and steep enough that a viewing direction which is off by a thousandth of a turn shows.
/// Format_RGBA8888, 512 by 256.
QImage testPanorama();
