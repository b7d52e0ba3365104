#include "Scenery.h"

#include "Noise.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float kPi = 3.14159265f;

// Longitude -40 and latitude 13 degrees.
constexpr Direction kSun = {-0.62631f, 0.22495f, 0.74641f};

constexpr Colour kZenithSky = {0.13f, 0.30f, 0.58f};
constexpr Colour kMiddleSky = {0.42f, 0.63f, 0.85f};
constexpr Colour kCoolHorizon = {0.74f, 0.83f, 0.91f};
constexpr Colour kWarmHorizon = {0.99f, 0.83f, 0.66f};
constexpr Colour kSunlight = {1.0f, 0.72f, 0.42f};
constexpr Colour kCloudLight = {1.0f, 0.97f, 0.92f};
constexpr Colour kCloudShade = {0.66f, 0.70f, 0.79f};
constexpr std::array<Colour, kRidges> kHills = {
    {{0.43f, 0.52f, 0.66f}, {0.34f, 0.45f, 0.52f}, {0.26f, 0.40f, 0.36f}, {0.24f, 0.37f, 0.22f}}};
constexpr std::array<float, kRidges> kHillHaze = {0.50f, 0.40f, 0.24f, 0.08f};

constexpr Colour kPaleStone = {0.80f, 0.76f, 0.69f};
constexpr Colour kGreyStone = {0.66f, 0.64f, 0.61f};
constexpr Colour kJoint = {0.42f, 0.40f, 0.38f};
constexpr Colour kDarkStone = {0.20f, 0.23f, 0.28f};
constexpr Colour kAccent = {0.95f, 0.29f, 0.10f};
constexpr Colour kMeadow = {0.40f, 0.50f, 0.22f};
constexpr Colour kDryMeadow = {0.58f, 0.58f, 0.30f};

// Metres.
constexpr float kEyeHeight = 1.6f;
constexpr float kTerraceRadius = 16.0f;
constexpr float kRoseRadius = 1.8f;
constexpr float kJointWidth = 0.025f;

/// A point of the ground, in metres east and north of the viewer.
struct GroundPoint
{
    float east;
    float north;
    float distance;
    float eastFootprint; ///< extent of a pixel along each axis
    float northFootprint;
    float footprint; ///< the larger extent of a pixel
};

/// 0 below @p from, 1 above @p to, and a smooth step between.
float smoothStep(float from, float to, float x)
{
    const float t = std::clamp((x - from) / (to - from), 0.0f, 1.0f);
    return t * t * (3.0f - 2.0f * t);
}

float dot(Direction a, Direction b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Colour add(Colour a, Colour b, float weight)
{
    return {a.r + b.r * weight, a.g + b.g * weight, a.b + b.b * weight};
}

Colour scaled(Colour a, float factor)
{
    return {a.r * factor, a.g * factor, a.b * factor};
}

/// How much of a pixel lies inside, from the signed distance to an edge, positive inside.
float coverage(float distance, float footprint)
{
    return std::clamp(0.5f + distance / footprint, 0.0f, 1.0f);
}

float eighthPower(float x)
{
    const float square = x * x;
    const float fourth = square * square;
    return fourth * fourth;
}

float fraction(float x)
{
    return x - static_cast<float>(wholeBelow(x));
}

/// Sky without clouds.
Colour clearSky(Direction direction)
{
    const float up = std::max(direction.y, 0.0f);
    const float towardsSun = std::max(dot(direction, kSun), 0.0f);
    const float sunSide = 0.5f + 0.5f * (direction.x * kSun.x + direction.z * kSun.z);
    Colour sky = mix(kCoolHorizon, kWarmHorizon, sunSide * sunSide);
    sky = mix(sky, kMiddleSky, smoothStep(0.0f, 0.38f, up));
    sky = mix(sky, kZenithSky, smoothStep(0.12f, 1.0f, up));
    const float haze = eighthPower(towardsSun);
    const float halo = eighthPower(haze);
    return add(sky, kSunlight, 0.18f * haze + 0.12f * halo + 0.3f * eighthPower(halo));
}

/// A layer of clouds on a plane, seen flatter towards the horizon.
Colour withClouds(Colour sky, Direction direction)
{
    const float fade = smoothStep(0.05f, 0.22f, direction.y);
    if (fade <= 0.0f)
        return sky;
    const float reach = 1.9f / (direction.y + 0.16f);
    const float x = direction.x * reach;
    const float z = direction.z * reach;
    const float density = fractalNoise(x + 3.1f, z + 8.6f, 6);
    const float cover = smoothStep(0.53f, 0.74f, density);
    if (cover <= 0.0f)
        return sky;
    const float sunwards = fractalNoise(x + 3.1f + 0.16f * kSun.x, z + 8.6f + 0.16f * kSun.z, 4);
    const float light = std::clamp(0.62f + 3.2f * (density - sunwards), 0.0f, 1.0f);
    Colour cloud = mix(kCloudShade, kCloudLight, light);
    cloud = add(cloud, kSunlight, 0.15f * eighthPower(std::max(dot(direction, kSun), 0.0f)));
    return mix(sky, cloud, 0.9f * cover * fade);
}

/// Snow on what reaches high enough, lower in the gullies.
Colour withSnow(Colour rock, const Azimuth &azimuth, float elevation)
{
    const float gullies = fractalNoise(30.0f * azimuth.sine + 20.0f * elevation,
                                       30.0f * azimuth.cosine, 4);
    const float snow = smoothStep(0.0f, 0.02f, elevation - 0.055f - 0.13f * gullies);
    return mix(rock, {0.97f, 0.97f, 1.0f}, 0.85f * snow);
}

/// Share of stripes of width @p stripe at whole numbers within @p footprint around @p x.
float stripes(float x, float stripe, float footprint)
{
    const auto integral = [stripe](float end) {
        return static_cast<float>(wholeBelow(end)) * stripe + std::min(fraction(end), stripe);
    };
    const float middle = x + 0.5f * stripe;
    const float half = 0.5f * footprint;
    return (integral(middle + half) - integral(middle - half)) / footprint;
}

/// Mean, over a footprint, of a wave that is 1 on even and -1 on odd whole steps.
float alternation(float x, float footprint)
{
    const float half = 0.5f * footprint;
    const float before = std::abs(fraction(0.5f * (x - half)) - 0.5f);
    const float after = std::abs(fraction(0.5f * (x + half)) - 0.5f);
    return 2.0f * (before - after) / footprint;
}

Colour tiles(const GroundPoint &p)
{
    // The viewer stands on the middle of a tile.
    const float east = p.east + 0.5f;
    const float north = p.north + 0.5f;
    const float chequer = alternation(east, p.eastFootprint) * alternation(north, p.northFootprint);
    Colour stone = mix(kGreyStone, kPaleStone, 0.5f + 0.5f * chequer);
    const float detail = 1.0f - smoothStep(0.1f, 0.6f, p.footprint);
    const float tone = latticeValue(wholeBelow(east), wholeBelow(north));
    const float grain = fractalNoise(9.0f * east, 9.0f * north, 4);
    stone = scaled(stone, 1.0f + detail * (0.09f * (tone - 0.5f) + 0.14f * (grain - 0.5f)));
    const float joints = 1.0f
        - (1.0f - stripes(east, kJointWidth, p.eastFootprint))
            * (1.0f - stripes(north, kJointWidth, p.northFootprint));
    return mix(stone, kJoint, joints);
}

Colour meadow(const GroundPoint &p)
{
    const float broad = fractalNoise(0.11f * p.east + 4.0f, 0.11f * p.north, 4);
    const float fine = fractalNoise(3.0f * p.east, 3.0f * p.north, 3) - 0.5f;
    const float detail = 1.0f - smoothStep(0.05f, 0.9f, p.footprint);
    const Colour grass = mix(kMeadow, kDryMeadow, smoothStep(0.3f, 0.7f, broad));
    return scaled(grass, 0.95f + 0.45f * detail * fine);
}

/// Four points of a star, the first to the north, drawn over @p base: each half pale, half dark.
/// The edges run from the tips at @p length to the inner corners, @p waist from each axis.
Colour starPoints(Colour base, float radius, float angle, float length, float waist,
                  float footprint, bool accentNorth)
{
    const float quarter = std::round(angle / (0.5f * kPi));
    const float turned = angle - quarter * 0.5f * kPi;
    const float along = radius * std::cos(turned);
    const float across = radius * std::sin(turned);
    const float slope = waist / (length - waist);
    const float inside = ((length - along) * slope - std::abs(across))
        / std::sqrt(1.0f + slope * slope);
    const bool north = accentNorth && quarter == 0.0f;
    const Colour dark = north ? scaled(kAccent, 0.72f) : kDarkStone;
    const Colour pale = north ? kAccent : mix(kPaleStone, {1.0f, 1.0f, 1.0f}, 0.5f);
    const Colour half = mix(pale, dark, coverage(across, footprint));
    return mix(base, half, coverage(inside, footprint));
}

/// The compass rose that is let into the terrace around the viewer's feet.
Colour withRose(Colour base, const GroundPoint &p)
{
    if (p.distance > kRoseRadius + 0.2f)
        return base;
    const auto ring = [&p](float radius, float width) {
        return coverage(0.5f * width - std::abs(p.distance - radius), p.footprint);
    };
    const float angle = std::atan2(p.east, p.north);
    const float turnedAngle = angle > 0.75f * kPi ? angle - 1.75f * kPi : angle + 0.25f * kPi;
    Colour rose = mix(base, kPaleStone, 0.75f * coverage(kRoseRadius - p.distance, p.footprint));
    rose = mix(rose, kDarkStone, ring(kRoseRadius, 0.06f));
    rose = mix(rose, kDarkStone, ring(kRoseRadius - 0.12f, 0.02f));
    rose = starPoints(rose, p.distance, turnedAngle, 1.15f, 0.30f, p.footprint, false);
    rose = starPoints(rose, p.distance, angle, 1.62f, 0.34f, p.footprint, true);
    rose = mix(rose, kDarkStone, coverage(0.26f - p.distance, p.footprint));
    return mix(rose, kPaleStone, ring(0.24f, 0.02f));
}

} // namespace

Azimuth azimuthAt(float longitude)
{
    Azimuth azimuth = {std::sin(longitude), std::cos(longitude), {}, {}};
    // Noise on a circle joins without a seam.
    const auto ridge = [&azimuth](float radius, float offset, int octaves) {
        return fractalNoise(radius * azimuth.sine + offset, radius * azimuth.cosine - offset,
                            octaves);
    };
    const float peaks = 1.0f - std::abs(2.0f * ridge(3.2f, 11.0f, 7) - 1.0f);
    azimuth.ridges = {0.02f + 0.17f * peaks * peaks, 0.01f + 0.13f * ridge(2.6f, 23.0f, 6),
                      0.10f * ridge(2.2f, 37.0f, 5), -0.012f + 0.07f * ridge(2.9f, 51.0f, 4)};
    azimuth.haze = clearSky({azimuth.sine, 0.0f, azimuth.cosine});
    return azimuth;
}

Colour skyAndHills(const Azimuth &azimuth, Direction direction, float pixelAngle)
{
    Colour colour = clearSky(direction);
    const float disc = smoothStep(0.99965f, 0.99985f, dot(direction, kSun));
    colour = withClouds(colour, direction);
    colour = mix(colour, {1.0f, 1.0f, 1.0f}, disc);
    for (std::size_t i = 0; i < kRidges; ++i) {
        const float covered = coverage(azimuth.ridges[i] - direction.y, 1.5f * pixelAngle);
        if (covered <= 0.0f)
            continue;
        const float depth = std::clamp(1.0f - direction.y / azimuth.ridges[i], 0.0f, 1.0f);
        const float haze = std::min(kHillHaze[i] + 0.3f * depth, 1.0f);
        const Colour hill = i == 0 ? withSnow(kHills[i], azimuth, direction.y) : kHills[i];
        colour = mix(colour, mix(hill, azimuth.haze, haze), covered);
    }
    return colour;
}

Colour ground(const Azimuth &azimuth, Direction direction, float pixelAngle)
{
    const float down = -direction.y;
    const float level = std::sqrt(std::max(1.0f - down * down, 0.0f));
    const float distance = kEyeHeight * level / down;
    const float outwards = kEyeHeight / (down * down) * pixelAngle;
    const float sideways = distance * pixelAngle;
    GroundPoint p = {};
    p.east = distance * azimuth.sine;
    p.north = distance * azimuth.cosine;
    p.distance = distance;
    p.eastFootprint = std::abs(outwards * azimuth.sine) + std::abs(sideways * azimuth.cosine);
    p.northFootprint = std::abs(outwards * azimuth.cosine) + std::abs(sideways * azimuth.sine);
    p.footprint = std::max(outwards, sideways);

    Colour colour = {};
    const float onTerrace = coverage(kTerraceRadius - distance, p.footprint);
    if (onTerrace < 1.0f)
        colour = meadow(p);
    if (onTerrace > 0.0f) {
        Colour stone = withRose(tiles(p), p);
        const float edge = coverage(0.3f - std::abs(kTerraceRadius - 0.3f - distance), p.footprint);
        stone = mix(stone, kPaleStone, edge);
        const Direction mirrored = {direction.x, down, direction.z};
        const float sheen = 0.03f + 0.5f * std::pow(level, 24.0f);
        stone = mix(stone, clearSky(mirrored), sheen);
        colour = mix(colour, stone, onTerrace);
    }
    const float haze = 1.0f - std::exp(-distance / 160.0f);
    return mix(colour, azimuth.haze, 0.75f * haze);
}
