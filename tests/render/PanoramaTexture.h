#pragma once

#include <qopengl.h>

/// A texture of the current context with the pixels of `testPanorama`.
GLuint panoramaTexture();
