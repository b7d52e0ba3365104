#pragma once

/// What a picture tells of its lens and sensor; 0 is for what is not known. Pure.
struct FocalLength
{
    /// As a frame of 36 by 24 mm would need it.
    struct In35mm
    {
        double focalLengthMm = 0;
        double scaleFactor = 0; ///< the camera's crop factor
        bool isKnown = false;   ///< false if they are only a guess
    };

    double realMm = 0;
    double in35mmFilmMm = 0;     ///< as the camera itself gives it
    double planeUnitMm = 0;      ///< the unit of the resolutions
    double planeResolutionX = 0; ///< pixels a unit of the sensor
    double planeResolutionY = 0;
    int planeWidth = 0; ///< pixels
    int planeHeight = 0;

    /// `cropFactor` is the one that a table has for the camera, 0 or less if none. Both numbers of
    /// the result are finite if those here are.
    In35mm reduce(double cropFactor) const;

private:
    double cropFactorOfSensor() const;
};
