#pragma once

#include <QString>

/// What chooses the pieces of the fragment shader; the numbers are those of OrbShaderCodeBuilder's
/// enumerations.
struct ShaderSettings
{
    int projection = 1;
    int effect = 0;
    int stereoMode = 0;

    /// 1 an equirectangular source, possibly of part of the sphere; 4 a single circular fisheye
    /// picture; any other value maps nothing.
    int projectionSource = 1;

    /// With a fisheye source: 2 takes the lens axis along x, any other value along z.
    int rotationSource = 0;

    /// The texture holds blue, green, red.
    bool invertedColors = false;

    bool flip = false;               ///< turn the texture coordinate upside down
    bool inShaderDistortion = false; ///< lens distortion of a headset within this shader
    bool limits = true;              ///< map the yaw and pitch limits of the source
};

/// The fragment shader that turns fragments into view rays, rays into longitude and latitude, and
/// those into a colour of the panorama. `headset` selects the helpers of a double-width target with
/// one view matrix an eye. An unknown projection gives a text that does not compile.
QString fragmentShaderText(const ShaderSettings &settings, bool headset);
