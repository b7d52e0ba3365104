#pragma once

#include "PanoramaProgram.h"

/// A panorama to draw, 4096 × 2048: colours without a pattern, so that no shortcut of the driver
/// helps.
namespace NoisePanorama {

/// A texture of the current context.
GLuint texture();

/// Straight ahead into a target of this size.
PanoramaView view(const QSize &size);

} // namespace NoisePanorama
