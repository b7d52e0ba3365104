#pragma once

#include "ReferencePicture.h"

#include <QString>

/// How far a drawn picture is from the reference, over the pixels that lie away from borders.
class Comparison
{
public:
    /// The largest difference of a channel that passes, of 255.
    static constexpr double kTolerance = 2;

    /// A size other than the reference's counts as all wrong.
    Comparison(const QImage &drawn, const ReferencePicture &reference);

    /// The parts of the pixels with a colour that were compared, of the compared ones that are
    /// wrong, and the largest difference among these, of 255.
    double comparedShare() const;
    double wrongShare() const;
    double maxError() const { return m_maxError; }
    int comparedPixels() const { return m_compared; }

    QString toString() const;

private:
    int m_defined = 0;
    int m_compared = 0;
    int m_wrong = 0;
    double m_maxError = 0;
    QPoint m_worst;
};
