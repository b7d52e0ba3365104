#pragma once

#include <array>

using Colour = std::array<double, 3>; ///< red, green, blue; 0 to 1

/// A colour after an effect. Within a piece the effect is continuous.
struct EffectResult
{
    Colour colour{};
    int piece = 0;
};

/// The colour chain in its neutral position: all but a thousandth of the saturation stays.
Colour neutralColourChain(const Colour &colour);

/// `effect` is one of OrbShaderCodeBuilder's. `heightFromBottom` is that of the pixel's centre, in
/// pixels, in a picture `pictureHeight` high: the television has lines.
EffectResult applyEffect(int effect, const Colour &colour, double heightFromBottom,
                         double pictureHeight);
