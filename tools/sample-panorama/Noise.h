#pragma once

#include <cstdint>

/// The largest whole number that is not above @p x. Noise asks for it twice a lattice cell, where
/// std::floor would be a call into the library on processors without an instruction for it.
inline int wholeBelow(float x)
{
    const int whole = static_cast<int>(x);
    return static_cast<float>(whole) > x ? whole - 1 : whole;
}

/// A well mixed number between 0 and 1 for a lattice point.
inline float latticeValue(int x, int y)
{
    std::uint32_t h = static_cast<std::uint32_t>(x) * 0x8da6b343u
        ^ static_cast<std::uint32_t>(y) * 0xd8163841u;
    h = (h ^ (h >> 15)) * 0x2c1b3c6du;
    h = (h ^ (h >> 12)) * 0x297a2d39u;
    h ^= h >> 15;
    return static_cast<float>(h >> 8) * (1.0f / 16777216.0f);
}

/// Smooth value noise between 0 and 1, with lattice points one unit apart.
inline float valueNoise(float x, float y)
{
    const int ix = wholeBelow(x);
    const int iy = wholeBelow(y);
    const float tx = x - static_cast<float>(ix);
    const float ty = y - static_cast<float>(iy);
    const float u = tx * tx * (3.0f - 2.0f * tx);
    const float v = ty * ty * (3.0f - 2.0f * ty);
    const float top = latticeValue(ix, iy) * (1.0f - u) + latticeValue(ix + 1, iy) * u;
    const float bottom = latticeValue(ix, iy + 1) * (1.0f - u) + latticeValue(ix + 1, iy + 1) * u;
    return top * (1.0f - v) + bottom * v;
}

/// Sum of @p octaves of value noise, each half as strong and twice as fine; between 0 and 1.
/// Octaves are turned against one another, so that the lattice does not show.
inline float fractalNoise(float x, float y, int octaves)
{
    float sum = 0.0f;
    float total = 0.0f;
    float weight = 0.5f;
    for (int i = 0; i < octaves; ++i) {
        sum += weight * valueNoise(x, y);
        total += weight;
        weight *= 0.5f;
        const float turned = 1.6f * x + 1.2f * y + 17.3f;
        y = 1.6f * y - 1.2f * x + 5.7f;
        x = turned;
    }
    return sum / total;
}
