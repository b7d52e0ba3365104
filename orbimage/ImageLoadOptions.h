#pragma once

#include <QStringList>

/// How a camera's raw file is to be developed, for a reader that can be told: those among the
/// installed readers of Qt go by themselves.
struct RawOptions
{
    bool automaticWhiteBalance = false;
    bool useCameraBalance = true;
    int highlight = 0;
    bool autoBrightness = false;
    double gamma = 2.2;
    double brightness = 2.5;
    double redScale = 1.0;
    double blueScale = 1.0;
};

/// How images are described. One for the process, read by every opening.
struct ImageLoadOptions
{
    enum CameraDataMode {
        FromFile = 0,
        FixedIfMissing = 1, ///< the first fixed lens for a file that tells none
        FixedFisheye = 2,   ///< the second fixed lens always
    };

    int thumbnailWidth = 128; ///< pixels at most
    int thumbnailHeight = 128;
    CameraDataMode cameraDataMode = FromFile;
    double fixedFocalLength1 = 50.0; ///< mm
    int fixedLensType1 = 0;
    double fixedFocalLength2 = 50.0;
    double fixedDistortion1 = 0.0;
    double fixedDistortion2 = 0.0;
    double fixedDistortion3 = 0.0;
    int fixedLensType2 = 0;
    RawOptions raw;
    /// Ends of paths that are refused, in any case.
    QStringList ignoredSuffixes = {QStringLiteral(".THM")};
};
