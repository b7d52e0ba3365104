#include "GlobalObjectFixture.h"

#include "RotationInDouble.h"
#include "WarningsFail.h"

#include <QPropertyAnimation>
#include <QSignalSpy>
#include <QtTest>

#include <limits>

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

/// The rotation of a view, behind a mounting correction.
RotationInDouble::Matrix view(float yaw, float pitch, float roll, float pitchCorrection = 0,
                              float rollCorrection = 0)
{
    using namespace RotationInDouble;
    const Matrix correction = product(RotationInDouble::view(0, 0, double(rollCorrection)),
                                      RotationInDouble::view(0, double(pitchCorrection), 0));
    return product(correction, RotationInDouble::view(double(yaw), double(pitch), double(roll)));
}

bool isAt(const OrbGlobalObject &object, const RotationInDouble::Matrix &expected)
{
    constexpr double kSinglePrecision = 5e-7; // of the elements of a product of two rotations
    return RotationInDouble::distance(object.rotationMatrix(), expected) < kSinglePrecision;
}

} // namespace

/// The camera: angles, limits, the rotation matrix and its correction, smooth moves.
class tst_OrbGlobalObject : public WarningsFail
{
    Q_OBJECT

private slots:
    void anglesAreFiniteAndSignalledOnce_data();
    void anglesAreFiniteAndSignalledOnce();
    void theMatrixFollowsTheAnglesAndTheirCorrection();
    void theMatrixStaysWhereTheCallerUpdatesIt();
    void aNewMatrixGivesTheAngles();
    void aSourceWithoutAPoseHasNoCorrection_data();
    void aSourceWithoutAPoseHasNoCorrection();
    void aMoveGoesThroughValuesToItsTarget();
    void aSecondMoveStartsWhereTheFirstStands();
    void aMoveOfNothingIsReported_data();
    void aMoveOfNothingIsReported();
};

void tst_OrbGlobalObject::anglesAreFiniteAndSignalledOnce_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<float>("stored");
    for (const char *wrapped : {"yaw", "pitch", "yawCorrection", "pitchCorrection"})
        QTest::newRow(wrapped) << 3.2F << -3.0831854F;
    for (const char *plain :
         {"roll", "rollCorrection", "yawMin", "yawMax", "pitchMin", "pitchMax", "fov"})
        QTest::newRow(plain) << 500.0F << 500.0F;
}

void tst_OrbGlobalObject::anglesAreFiniteAndSignalledOnce()
{
    QFETCH(float, value);
    QFETCH(float, stored);
    GlobalObjectFixture f;
    const char *property = QTest::currentDataTag();
    const QByteArray signal = QByteArray("2") + property + "Changed()";
    QSignalSpy changed(&f.object, signal.constData());

    // The last but three is another name of the same angle, where it is wrapped.
    for (const float next : {value, value, stored, kNaN, HUGE_VALF, -HUGE_VALF}) {
        f.object.setProperty(property, next);
        const float is = f.object.property(property).toFloat();
        QVERIFY2(std::abs(is - stored) < 3e-7F, qPrintable(QString::number(double(is))));
    }
    QCOMPARE(changed.count(), 1);
}

void tst_OrbGlobalObject::theMatrixFollowsTheAnglesAndTheirCorrection()
{
    GlobalObjectFixture f;
    QSignalSpy matrixChanged(&f.object, &OrbGlobalObject::rotationMatrixChanged);
    f.object.setYaw(0.5F);
    QVERIFY(isAt(f.object, view(0.5F, 0, 0)));
    f.object.setPitch(-0.75F);
    QVERIFY(isAt(f.object, view(0.5F, -0.75F, 0)));
    f.object.setRoll(7);
    QVERIFY(isAt(f.object, view(0.5F, -0.75F, 7)));
    f.object.setPitchCorrection(0.375F);
    QVERIFY(isAt(f.object, view(0.5F, -0.75F, 7, 0.375F)));
    f.object.setRollCorrection(-0.625F);
    f.object.setRollCorrection(-0.625F);
    QVERIFY(isAt(f.object, view(0.5F, -0.75F, 7, 0.375F, -0.625F)));
    f.object.setYawCorrection(1);
    QCOMPARE(matrixChanged.count(), 6);
    QVERIFY(f.object.yaw() == 0.5F && f.object.pitch() == -0.75F && f.object.roll() == 7);
    f.object.setYawMin(-1);
    f.object.setYawMax(1);
    f.object.setPitchMin(-1);
    f.object.setPitchMax(1);
    f.object.setFov(20);
    QCOMPARE(matrixChanged.count(), 6);
}

void tst_OrbGlobalObject::theMatrixStaysWhereTheCallerUpdatesIt()
{
    GlobalObjectFixture f;
    QSignalSpy matrixChanged(&f.object, &OrbGlobalObject::rotationMatrixChanged);
    f.object.setYaw(0.5F, false);
    f.object.setPitch(0.25F, false);
    f.object.setRoll(1, false);
    f.object.setPitchCorrection(0.5F, false);
    f.object.setRollCorrection(0.5F, false);
    QVERIFY(f.object.rotationMatrix() == QMatrix4x4());
    QCOMPARE(matrixChanged.count(), 0);
    f.object.setYaw(0.75F);
    QVERIFY(isAt(f.object, view(0.75F, 0.25F, 1)));
}

void tst_OrbGlobalObject::aNewMatrixGivesTheAngles()
{
    GlobalObjectFixture source;
    source.object.setYaw(-2.5F);
    source.object.setPitch(0.75F);
    source.object.setRoll(1.25F);

    GlobalObjectFixture f;
    f.object.setPitchCorrection(0.5F);
    QSignalSpy matrixChanged(&f.object, &OrbGlobalObject::rotationMatrixChanged);
    QSignalSpy yawChanged(&f.object, &OrbGlobalObject::yawChanged);
    QSignalSpy pitchChanged(&f.object, &OrbGlobalObject::pitchChanged);
    QSignalSpy rollChanged(&f.object, &OrbGlobalObject::rollChanged);
    f.object.setRotationMatrix(source.object.rotationMatrix());
    QVERIFY(std::abs(f.object.yaw() + 2.5F) < 1e-6F);
    QVERIFY(std::abs(f.object.pitch() - 0.75F) < 1e-6F);
    QVERIFY(std::abs(f.object.roll() - 1.25F) < 1e-6F);
    for (const QSignalSpy *spy : {&matrixChanged, &yawChanged, &pitchChanged, &rollChanged})
        QCOMPARE(spy->count(), 1);
    QVERIFY(isAt(f.object, view(-2.5F, 0.75F, 1.25F, 0.5F)));

    f.object.setRoll(7, false); // another angle would come out of the matrix
    f.object.setRotationMatrix(source.object.rotationMatrix());
    QCOMPARE(matrixChanged.count(), 1);
    QCOMPARE(f.object.roll(), 7.0F);
}

void tst_OrbGlobalObject::aSourceWithoutAPoseHasNoCorrection_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::newRow("a video") << QUrl(QStringLiteral("file:///a.mp4"));
    QTest::newRow("an image that is not there") << QUrl(QStringLiteral("file:///missing.png"));
    QTest::newRow("an image on a server") << QUrl(QStringLiteral("http://host/a.jpg"));
}

void tst_OrbGlobalObject::aSourceWithoutAPoseHasNoCorrection()
{
    QFETCH(QUrl, url);
    GlobalObjectFixture f;
    f.object.setYaw(0.5F);
    f.object.setYawCorrection(1);
    f.object.setPitchCorrection(0.5F);
    f.object.setRollCorrection(-0.5F);
    QSignalSpy matrixChanged(&f.object, &OrbGlobalObject::rotationMatrixChanged);
    f.object.readMetaData(url);
    QVERIFY(f.object.yawCorrection() == 0 && f.object.pitchCorrection() == 0
            && f.object.rollCorrection() == 0);
    QVERIFY(isAt(f.object, view(0.5F, 0, 0)));
    QCOMPARE(matrixChanged.count(), 1);
}

void tst_OrbGlobalObject::aMoveGoesThroughValuesToItsTarget()
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
}

void tst_OrbGlobalObject::aSecondMoveStartsWhereTheFirstStands()
{
    GlobalObjectFixture f;
    f.object.setFov(100);
    f.object.interpolateValue("fov", 20);
    auto *move = f.object.findChild<QPropertyAnimation *>();
    QVERIFY(move);
    QCOMPARE(move->duration(), 200);
    // Half the way, then back: from there, not from either end.
    move->setCurrentTime(100);
    QCOMPARE(f.object.fov(), 60.0F);
    f.object.interpolateValue("fov", 180);
    QCOMPARE(f.object.findChildren<QPropertyAnimation *>().size(), 1);
    QCOMPARE(f.object.fov(), 60.0F);
    QCOMPARE(move->currentTime(), 0);
    QTRY_COMPARE(f.object.fov(), 180.0F);

    f.object.interpolateValue("fov", 90);
    QCOMPARE(f.object.fov(), 180.0F);
    QTRY_COMPARE(f.object.fov(), 90.0F);
}

void tst_OrbGlobalObject::aMoveOfNothingIsReported_data()
{
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<float>("value");
    QTest::newRow("no such property") << QByteArray("yawn") << 1.0F;
    QTest::newRow("no target") << QByteArray("yaw") << kNaN;
}

void tst_OrbGlobalObject::aMoveOfNothingIsReported()
{
    QFETCH(QByteArray, property);
    QFETCH(float, value);
    GlobalObjectFixture f;
    expectWarning(QStringLiteral("^Cannot move \"%1\"").arg(QString::fromLatin1(property)));
    f.object.interpolateValue(property, value);
    QVERIFY(!f.object.findChild<QPropertyAnimation *>());
}

QTEST_MAIN(tst_OrbGlobalObject)
#include "tst_OrbGlobalObject.moc"
