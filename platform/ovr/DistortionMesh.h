#pragma once

#include "LensModel.h"

#include <array>
#include <cstdint>
#include <vector>

/// Coordinates in an eye's picture, from its lower left (0, 0) to its upper right (1, 1). What lies
/// outside, the eye has not seen.
struct PictureCoordinate
{
    float u = 0;
    float v = 0;
};

struct DistortionVertex
{
    float x = 0; ///< normalised device coordinates of the whole panel
    float y = 0;
    std::array<PictureCoordinate, 3> colours; ///< where red, green and blue come from
};

/// An eye's half of the panel in triangles.
struct DistortionMesh
{
    std::vector<DistortionVertex> vertices;
    std::vector<std::uint16_t> indices; ///< three a triangle
};

/// Cells a side. What is interpolated in a cell is at most 0.39 and 0.10 texels from the model, for
/// the lenses of a panel of 1920 × 1080 pixels and a picture as fine as the panel behind the middle
/// of the lens.
constexpr int kMeshCells = 80;
constexpr int kFineMeshCells = 160;

/// The picture that a lens turns into an undistorted one, rendered with the tangents `fov`. Without
/// `chromatic` all colours go the way of green. `cells` is 1 to 254 a side.
DistortionMesh distortionMesh(const LensModel &lens, ovrEyeType eye, const ovrFovPort &fov,
                              bool chromatic, int cells);
