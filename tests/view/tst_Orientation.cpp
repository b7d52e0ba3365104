#include "Orientation.h"

#include "RotationInDouble.h"
#include "WarningsFail.h"

#include <QtTest>

#include <cmath>
#include <limits>

using namespace Orientation;

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr float kPiF = 3.14159265F;
constexpr float kHalfPiF = 1.57079633F;
constexpr double kTurn = 6.2831854820251465; // two pi in single precision
constexpr double kHalfUlpOfOne = 5.97e-8;    // rounding an element to single precision
const float kNaN = std::numeric_limits<float>::quiet_NaN();

/// Yaw and roll all around, pitch from pole to pole and beyond.
void addGrid(double largestPitch)
{
    QTest::addColumn<double>("yaw");
    QTest::addColumn<double>("pitch");
    QTest::addColumn<double>("roll");
    for (double yaw : {-3.1, -1.6, -0.4, 0.0, 0.7, 1.5, 2.9}) {
        for (double pitch : {-1.0, -0.6, 0.0, 0.25, 1.0}) {
            for (double roll : {-3.0, -0.8, 0.0, 0.1, 1.7}) {
                QTest::addRow("%.1f, %.2f, %.1f", yaw, pitch * largestPitch, roll)
                    << yaw << pitch * largestPitch << roll;
            }
        }
    }
}

} // namespace

class tst_Orientation : public WarningsFail
{
    Q_OBJECT

private slots:
    void piKeepsItsSign_data();
    void piKeepsItsSign();
    void anyAngleEndsWithinOneTurnAndStaysThere_data();
    void anyAngleEndsWithinOneTurnAndStaysThere();

    void theMatrixIsRollThenPitchThenYaw_data();
    void theMatrixIsRollThenPitchThenYaw();

    void anglesComeBackFromTheirMatrix_data();
    void anglesComeBackFromTheirMatrix();
    void atThePolesPitchTakesTheRemainingAngle_data();
    void atThePolesPitchTakesTheRemainingAngle();
    void aMatrixThatIsNoRotationTakesABranch_data();
    void aMatrixThatIsNoRotationTakesABranch();
};

void tst_Orientation::piKeepsItsSign_data()
{
    QTest::addColumn<float>("angle");
    QTest::newRow("pi") << kPiF;
    QTest::newRow("-pi") << -kPiF;
    QTest::newRow("the last before pi") << std::nextafter(kPiF, 0.0F);
    QTest::newRow("the first after -pi") << std::nextafter(-kPiF, 0.0F);
}

void tst_Orientation::piKeepsItsSign()
{
    QFETCH(float, angle);
    QVERIFY(wrapAngle(double(angle)) == angle);
}

void tst_Orientation::anyAngleEndsWithinOneTurnAndStaysThere_data()
{
    QTest::addColumn<double>("angle");
    const float afterPi = std::nextafter(kPiF, 4.0F);
    const double angles[] = {1.25,      3.2,         double(afterPi),
                             1.5 * kPi, 7.5 * kTurn, 123456.789,
                             4e15,      1e19,        double(std::numeric_limits<float>::max()),
                             1e308};
    for (double angle : angles) {
        QTest::addRow("%g", angle) << angle;
        QTest::addRow("%g", -angle) << -angle;
    }
}

void tst_Orientation::anyAngleEndsWithinOneTurnAndStaysThere()
{
    QFETCH(double, angle);
    const float wrapped = wrapAngle(angle);
    QVERIFY2(std::abs(wrapped) <= kPiF, qPrintable(QString::number(double(wrapped))));
    QVERIFY(wrapAngle(double(wrapped)) == wrapped);
    // IEEE's remainder is exact: the same direction, however many turns are between.
    const double off = std::remainder(std::remainder(angle, kTurn) - double(wrapped), kTurn);
    QVERIFY2(std::abs(off) < 5e-7 + std::abs(angle) * 1e-15, qPrintable(QString::number(off)));
}

void tst_Orientation::theMatrixIsRollThenPitchThenYaw_data()
{
    addGrid(3);
}

void tst_Orientation::theMatrixIsRollThenPitchThenYaw()
{
    QFETCH(double, yaw);
    QFETCH(double, pitch);
    QFETCH(double, roll);
    const double off = RotationInDouble::distance(rotationMatrix(yaw, pitch, roll),
                                                  RotationInDouble::view(yaw, pitch, roll));
    QVERIFY2(off < kHalfUlpOfOne, qPrintable(QString::number(off)));
}

void tst_Orientation::anglesComeBackFromTheirMatrix_data()
{
    addGrid(1.5);
}

void tst_Orientation::anglesComeBackFromTheirMatrix()
{
    QFETCH(double, yaw);
    QFETCH(double, pitch);
    QFETCH(double, roll);
    const Angles angles = anglesFromMatrix(rotationMatrix(yaw, pitch, roll));
    // The cosine of the steepest pitch is 0.07: 6e-8 in an element are up to 1e-6 in an angle.
    QVERIFY2(std::abs(double(angles.yaw) - yaw) < 2e-6, qPrintable(QString::number(angles.yaw)));
    QVERIFY2(std::abs(double(angles.pitch) - pitch) < 2e-6,
             qPrintable(QString::number(angles.pitch)));
    QVERIFY2(std::abs(double(angles.roll) - roll) < 2e-6, qPrintable(QString::number(angles.roll)));
}

void tst_Orientation::atThePolesPitchTakesTheRemainingAngle_data()
{
    QTest::addColumn<double>("yaw");
    QTest::addColumn<double>("pitch");
    QTest::addColumn<double>("roll");
    QTest::addColumn<double>("expectedYaw");
    QTest::addColumn<double>("expectedPitch");

    // Looking straight up, turning by the yaw undoes turning by the roll; straight down, they add.
    QTest::newRow("up") << 0.0 << kPi / 2 << 0.0 << -kPi / 2 << 0.0;
    QTest::newRow("up, turned") << 0.5 << kPi / 2 << 0.2 << -kPi / 2 << -0.3;
    QTest::newRow("up, turned the other way") << -1.0 << kPi / 2 << 1.5 << -kPi / 2 << 2.5;
    QTest::newRow("down") << 0.0 << -kPi / 2 << 0.0 << kPi / 2 << 0.0;
    QTest::newRow("down, turned") << 0.5 << -kPi / 2 << 0.2 << kPi / 2 << 0.7;
    QTest::newRow("down, turned the other way") << -1.0 << -kPi / 2 << -1.5 << kPi / 2 << -2.5;
}

void tst_Orientation::atThePolesPitchTakesTheRemainingAngle()
{
    QFETCH(double, yaw);
    QFETCH(double, pitch);
    QFETCH(double, roll);
    QFETCH(double, expectedYaw);
    QFETCH(double, expectedPitch);
    const Angles angles = anglesFromMatrix(rotationMatrix(yaw, pitch, roll));
    QVERIFY(std::abs(double(angles.yaw) - expectedYaw) < 1e-6);
    QVERIFY2(std::abs(double(angles.pitch) - expectedPitch) < 1e-6,
             qPrintable(QString::number(angles.pitch)));
    QVERIFY(angles.roll == 0);
}

void tst_Orientation::aMatrixThatIsNoRotationTakesABranch_data()
{
    QTest::addColumn<float>("sineOfPitch");
    QTest::addColumn<float>("yaw");
    QTest::newRow("beyond the upper pole") << 1.00001F << -kHalfPiF;
    QTest::newRow("far beyond the upper pole") << HUGE_VALF << -kHalfPiF;
    QTest::newRow("beyond the lower pole") << -1.00001F << kHalfPiF;
    QTest::newRow("not a number") << kNaN << kHalfPiF;
}

void tst_Orientation::aMatrixThatIsNoRotationTakesABranch()
{
    QFETCH(float, sineOfPitch);
    QFETCH(float, yaw);
    QMatrix4x4 matrix;
    matrix(1, 2) = sineOfPitch;
    const Angles angles = anglesFromMatrix(matrix);
    QVERIFY(std::abs(angles.yaw - yaw) < 1e-6F);
    QVERIFY(angles.pitch == 0);
    QVERIFY(angles.roll == 0);
}

QTEST_GUILESS_MAIN(tst_Orientation)
#include "tst_Orientation.moc"
