#include "HeadPose.h"
#include "PoseWatch.h"
#include "WarningsFail.h"

#include <QQuaternion>
#include <QtTest>

#include <cmath>
#include <limits>

Q_DECLARE_METATYPE(ovrQuatf)

namespace {
constexpr double kPi = 3.141592653589793;
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kHalf = 0.70710678F;
} // namespace

class tst_HeadPose : public WarningsFail
{
    Q_OBJECT

private slots:
    void anglesTurnTheAxesAsTheQuaternionDoes_data();
    void anglesTurnTheAxesAsTheQuaternionDoes();
    void onlyPastThePolesIsYawZero();
    void whatIsNoOrientationIsRefused();
    void anUnusualHeadsetIsToldOfOnce();
};

void tst_HeadPose::anglesTurnTheAxesAsTheQuaternionDoes_data()
{
    QTest::addColumn<double>("yaw");
    QTest::addColumn<double>("pitch");
    QTest::addColumn<double>("roll");
    for (const double yaw : {-3.1, -1.0, 0.0, 0.4, 2.2}) {
        for (const double pitch : {-1.5, -0.6, 0.0, 0.9, 1.5}) {
            for (const double roll : {-2.9, 0.0, 1.2})
                QTest::addRow("%g %g %g", yaw, pitch, roll) << yaw << pitch << roll;
        }
    }
}

void tst_HeadPose::anglesTurnTheAxesAsTheQuaternionDoes()
{
    QFETCH(double, yaw);
    QFETCH(double, pitch);
    QFETCH(double, roll);
    const auto about = [](float x, float y, float z, double angle) {
        return QQuaternion::fromAxisAndAngle(x, y, z, static_cast<float>(angle * 180 / kPi));
    };
    const QQuaternion q = about(0, 1, 0, yaw) * about(1, 0, 0, pitch) * about(0, 0, 1, roll);
    const Orientation::Angles angles = HeadPose::angles({q.x(), q.y(), q.z(), q.scalar()});
    constexpr double kSinglePrecision = 2e-5;
    const auto apart = [](float angle, double expected) {
        return std::abs(std::remainder(double(angle) - expected, 2 * kPi));
    };
    QVERIFY(apart(angles.yaw, yaw) < kSinglePrecision);
    QVERIFY(apart(angles.pitch, pitch) < kSinglePrecision);
    QVERIFY(apart(angles.roll, roll) < kSinglePrecision);
}

void tst_HeadPose::onlyPastThePolesIsYawZero()
{
    // A sine of exactly one: 0.5 and 0.5 are what they seem.
    const Orientation::Angles at = HeadPose::angles({0.5F, -0.5F, 0.5F, 0.5F});
    QCOMPARE(at.pitch, 1.5707964F);
    QCOMPARE(at.yaw, float(std::atan2(2 * (-0.25 + 0.25), 0.0)));
    // A little longer than one: past the pole, where all turning is roll.
    const float more = 0.50001F;
    const Orientation::Angles past = HeadPose::angles({more, -more, more, more});
    QCOMPARE(past.pitch, 1.5707964F);
    QCOMPARE(past.yaw, 0.0F);
    QCOMPARE(past.roll, float(kPi / 2));
    const Orientation::Angles below = HeadPose::angles({-more, more, more, more});
    QCOMPARE(below.pitch, -1.5707964F);
    QCOMPARE(below.roll, float(kPi / 2));
}

void tst_HeadPose::whatIsNoOrientationIsRefused()
{
    QVERIFY(!HeadPose::unit({0, 0, 0, 0}));
    QVERIFY(!HeadPose::unit({0, 0, 0, kNan}));
    QVERIFY(!HeadPose::unit({std::numeric_limits<float>::infinity(), 0, 0, 1}));
    const auto unit = HeadPose::unit({0, 3, 0, 3});
    QVERIFY(unit);
    QCOMPARE(unit->y, kHalf);
    QCOMPARE(unit->w, kHalf);
}

void tst_HeadPose::anUnusualHeadsetIsToldOfOnce()
{
    using News = PoseWatch::News;
    struct Step
    {
        int from = 0; ///< tenths of a second
        int to = 0;
        ovrQuatf orientation; ///< turned a little at each look if `moves`
        bool moves = false;
        News news = News::None;
    };
    const Step steps[] = {
        {0, 9, {0, 0, 0, 0}, false, News::None}, // no sample yet
        {10, 100, {0, 0, 0, 1}, true, News::None},
        {100, 140, {0, 0, 0, 1}, false, News::None}, // as still as a head may seem
        {140, 150, {0, 0, 0, 1}, true, News::None},
        {150, 250, {0, 0, 0, 1}, false, News::Still},
        {250, 260, {0, 0, 0, 1}, true, News::Well},
        {260, 269, {kNan, 0, 0, 1}, false, News::None},
        {270, 280, {0, 0, 0, 1}, true, News::None},
        {280, 400, {0, 0, 0, 0}, false, News::Invalid},
        {400, 410, {0, 0, 0, 1}, true, News::Well},
        {410, 500, {0, 0, 0, 2}, true, News::NotUnit},
    };
    PoseWatch watch;
    float turn = 0;
    for (const Step &step : steps) {
        QVector<News> news;
        for (int now = step.from; now < step.to; ++now) {
            ovrQuatf orientation = step.orientation;
            if (step.moves)
                orientation.x = turn += 1e-6F;
            const News heard = watch.seen(orientation, now / 10.0);
            if (heard != News::None)
                news += heard;
        }
        QCOMPARE(news, step.news == News::None ? QVector<News>() : QVector<News>{step.news});
    }
}

QTEST_GUILESS_MAIN(tst_HeadPose)
#include "tst_HeadPose.moc"
