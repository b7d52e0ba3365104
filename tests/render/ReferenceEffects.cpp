#include "ReferenceEffects.h"

#include "OrbShaderCodeBuilder.h"

#include <algorithm>
#include <cmath>

using Builder = OrbShaderCodeBuilder;

namespace {

using Channels = std::array<bool, 3>;

double toUnit(double value)
{
    return std::clamp(value, 0.0, 1.0);
}

/// The cubic that rises from 0 at `low` to 1 at `high`.
double rise(double low, double high, double value)
{
    const double t = toUnit((value - low) / (high - low));
    return t * t * (3 - 2 * t);
}

double grey(const Colour &colour)
{
    return (colour[0] + colour[1] + colour[2]) / 3;
}

/// Brightness by the weights of standard-definition television.
double luma(const Colour &colour)
{
    return 0.3 * colour[0] + 0.59 * colour[1] + 0.11 * colour[2];
}

Colour sepia(const Colour &colour)
{
    const double y = luma(colour);
    return {y + 0.15, y + 0.07, y - 0.12};
}

EffectResult blackAndWhite(const Colour &colour)
{
    if (luma(colour) < 0.5)
        return {{0, 0, 0}, 0};
    return {{1, 1, 1}, 1};
}

/// A tube at time 0: contrast by squaring, dark lines every 2 pi / 1.35 pixels, a greenish tint.
Colour television(const Colour &colour, double heightFromBottom, double pictureHeight)
{
    const double fromMiddle = heightFromBottom - pictureHeight / 2;
    const double linePhase = 1.5 * (pictureHeight / 2 + 0.9 * fromMiddle);
    const double line = 0.92 + 0.08 * std::sin(linePhase);
    const double glow = 1.3 + 0.04 * 1.9; // both flickers at their height
    constexpr Colour kTint{0.95, 1.05, 0.95};
    Colour result;
    for (std::size_t i = 0; i < 3; ++i)
        result[i] = toUnit(toUnit(1.4 * colour[i] * colour[i]) * line * glow * kTint[i]);
    return result;
}

/// Grey, but where the kept channels, half again as strong, stand out over others below a tenth.
EffectResult keepOnly(const Channels &kept, Colour colour)
{
    double strength = 1;
    int piece = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        if (kept[i]) {
            colour[i] = toUnit(1.5 * colour[i]);
            strength *= rise(0.2, 0.8, colour[i]);
        } else if (colour[i] >= 0.1) {
            strength = 0;
            piece |= 1 << i;
        }
    }
    const double mean = grey(colour);
    EffectResult result{{}, piece};
    for (std::size_t i = 0; i < 3; ++i)
        result.colour[i] = kept[i] ? std::max(mean, strength) : mean * (1 - strength);
    return result;
}

} // namespace

Colour neutralColourChain(const Colour &colour)
{
    constexpr double kTowardsGrey = 1 - 1 / 1.001;
    const double mean = grey(colour);
    Colour result;
    for (std::size_t i = 0; i < 3; ++i)
        result[i] = colour[i] + (mean - colour[i]) * kTowardsGrey;
    return result;
}

EffectResult applyEffect(int effect, const Colour &colour, double heightFromBottom,
                         double pictureHeight)
{
    switch (effect) {
    case Builder::SEPIA:
        return {sepia(colour), 0};
    case Builder::BLACK_AND_WHITE:
        return blackAndWhite(colour);
    case Builder::TV:
        return {television(colour, heightFromBottom, pictureHeight), 0};
    case Builder::INVERT:
        return {{1 - colour[0], 1 - colour[1], 1 - colour[2]}, 0};
    case Builder::RED_ONLY:
        return keepOnly({true, false, false}, colour);
    case Builder::YELLOW_ONLY:
        return keepOnly({true, true, false}, colour);
    case Builder::BLUE_ONLY:
        return keepOnly({false, false, true}, colour);
    default:
        return {colour, 0};
    }
}
