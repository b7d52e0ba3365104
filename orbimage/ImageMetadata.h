#pragma once

#include <QString>

/// What the EXIF data of an image tell of the camera and the moment. A number that is not known is
/// 0, or kUnknownPlace where 0 has a meaning; none is ever infinite or "not a number".
struct ImageMetadata
{
    static constexpr double kUnknownPlace = -9999.0;

    QString maker;
    QString model;
    double scaleFactor = 0; ///< the camera's crop factor
    double focalLength35mm = 0;
    double distortion1 = 0;
    double distortion2 = 0;
    double distortion3 = 0;
    double exposureTime = 0; ///< seconds
    double fNumber = 0;
    int iso = 0;
    int orientation = 0;
    double exposureBias = 0;
    double exposureValue = 0;
    qint64 dateTime = 0; ///< seconds since 1970
    int imageWidth = 0;
    int imageHeight = 0;
    QString lensId;
    double horizontalFieldOfView = 0; ///< the fields of view as the user's comment gives them
    double verticalFieldOfView = 0;
    double thirdFieldOfView = 0;
    double latitude = kUnknownPlace; ///< degrees, without the sign that the reference stands for
    double longitude = kUnknownPlace;
    double altitude = kUnknownPlace;
    double imageDirection = kUnknownPlace; ///< degrees
    QString latitudeReference = QStringLiteral("North");
    QString longitudeReference = QStringLiteral("East");
    QString directionReference;
    double zenithPitch = 0; ///< degrees
    double zenithRoll = 0;  ///< degrees
};
