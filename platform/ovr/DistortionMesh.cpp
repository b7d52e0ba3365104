#include "DistortionMesh.h"

#include <cmath>

namespace {

constexpr std::size_t kGreen = 1;

/// Where the colour of this scale comes from at the point of the panel that lies (x, y) metres from
/// the middle of the lens.
PictureCoordinate pictureCoordinate(const LensModel &lens, const ovrFovPort &fov, double x,
                                    double y, double colourScale)
{
    const double r = std::hypot(x, y) / lens.warpScale;
    double scale = 0;
    for (std::size_t power = lens.polynomial.size(); power-- > 0;)
        scale = scale * r + lens.polynomial.at(power);
    scale *= colourScale * lens.tanPerMetre;
    return {static_cast<float>((x * scale + fov.LeftTan) / (fov.LeftTan + fov.RightTan)),
            static_cast<float>((y * scale + fov.DownTan) / (fov.UpTan + fov.DownTan))};
}

} // namespace

DistortionMesh distortionMesh(const LensModel &lens, ovrEyeType eye, const ovrFovPort &fov,
                              bool chromatic, int cells)
{
    const int corners = cells + 1;
    const double left = eye == ovrEye_Right ? 0.5 : 0; // of the panel's width
    const double side = eye == ovrEye_Right ? 0.5 : -0.5;
    const double lensX = lens.panelWidth / 2 + side * lens.lensSeparation;

    DistortionMesh mesh;
    mesh.vertices.reserve(std::size_t(corners) * std::size_t(corners));
    for (int row = 0; row < corners; ++row) {
        for (int column = 0; column < corners; ++column) {
            const double across = left + 0.5 * column / cells;
            const double up = double(row) / cells;
            DistortionVertex vertex;
            vertex.x = static_cast<float>(2 * across - 1);
            vertex.y = static_cast<float>(2 * up - 1);
            for (std::size_t colour = 0; colour < vertex.colours.size(); ++colour)
                vertex.colours.at(
                    colour) = pictureCoordinate(lens, fov, across * lens.panelWidth - lensX,
                                                up * lens.panelHeight - lens.lensHeight,
                                                lens.colourScale.at(chromatic ? colour : kGreen));
            mesh.vertices.push_back(vertex);
        }
    }

    mesh.indices.reserve(std::size_t(cells) * std::size_t(cells) * 6);
    for (int row = 0; row < cells; ++row) {
        for (int column = 0; column < cells; ++column) {
            const int lower = row * corners + column;
            const int upper = lower + corners;
            for (const int corner : {lower, lower + 1, upper, upper, lower + 1, upper + 1})
                mesh.indices.push_back(static_cast<std::uint16_t>(corner));
        }
    }
    return mesh;
}
