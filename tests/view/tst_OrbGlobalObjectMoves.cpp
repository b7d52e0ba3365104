#include "GlobalObjectFixture.h"

#include "WarningsFail.h"

#include <QPropertyAnimation>
#include <QtTest>

#include <algorithm>
#include <limits>

/// Smooth moves of the camera.
class tst_OrbGlobalObjectMoves : public WarningsFail
{
    Q_OBJECT

private slots:
    void aMoveGoesThroughValuesToItsTarget();
    void aSecondMoveStartsWhereTheFirstStands();
    void aMoveOfNothingIsReported_data();
    void aMoveOfNothingIsReported();
};

void tst_OrbGlobalObjectMoves::aMoveGoesThroughValuesToItsTarget()
{
    GlobalObjectFixture f;
    f.object.setFov(100);
    QVector<float> values;
    connect(&f.object, &OrbGlobalObject::fovChanged, &f.object,
            [&] { values.append(f.object.fov()); });
    f.object.interpolateValue("fov", 20);
    QVERIFY(f.object.fov() > 90); // no jump at the start
    QTRY_COMPARE(f.object.fov(), 20.0F);
    QVERIFY(std::is_sorted(values.rbegin(), values.rend()));
    QVERIFY(values.first() <= 100);
    const auto *move = f.object.findChild<QPropertyAnimation *>();
    QVERIFY(move);
    QCOMPARE(move->duration(), 200);
    QCOMPARE(move->easingCurve().type(), QEasingCurve::Linear);
}

void tst_OrbGlobalObjectMoves::aSecondMoveStartsWhereTheFirstStands()
{
    GlobalObjectFixture f;
    f.object.setFov(100);
    f.object.interpolateValue("fov", 20);
    auto *move = f.object.findChild<QPropertyAnimation *>();
    QVERIFY(move);
    // Half the way, then back: from there, not from either end.
    move->setCurrentTime(100);
    QCOMPARE(f.object.fov(), 60.0F);
    f.object.interpolateValue("fov", 180);
    QCOMPARE(f.object.findChildren<QPropertyAnimation *>().size(), 1);
    QCOMPARE(f.object.fov(), 60.0F);
    QCOMPARE(move->startValue().toFloat(), 60.0F);
    QCOMPARE(move->totalDuration(), 200);
    QCOMPARE(move->currentTime(), 0);
    QTRY_COMPARE(f.object.fov(), 180.0F);

    f.object.interpolateValue("fov", 90);
    QCOMPARE(f.object.fov(), 180.0F);
    QTRY_COMPARE(f.object.fov(), 90.0F);
}

void tst_OrbGlobalObjectMoves::aMoveOfNothingIsReported_data()
{
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<float>("value");
    QTest::newRow("no such property") << QByteArray("yawn") << 1.0F;
    QTest::newRow("no name") << QByteArray() << 1.0F;
    QTest::newRow("no target") << QByteArray("yaw") << std::numeric_limits<float>::quiet_NaN();
    QTest::newRow("an infinite target") << QByteArray("yaw") << HUGE_VALF;
}

void tst_OrbGlobalObjectMoves::aMoveOfNothingIsReported()
{
    QFETCH(QByteArray, property);
    QFETCH(float, value);
    GlobalObjectFixture f;
    expectWarning(QStringLiteral("^Cannot move \"%1\"").arg(QString::fromLatin1(property)));
    f.object.interpolateValue(property, value);
    QVERIFY(!f.object.findChild<QPropertyAnimation *>());
}

QTEST_MAIN(tst_OrbGlobalObjectMoves)
#include "tst_OrbGlobalObjectMoves.moc"
