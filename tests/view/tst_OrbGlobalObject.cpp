#include "GlobalObjectFixture.h"

#include "RotationInDouble.h"
#include "WarningsFail.h"

#include <QSignalSpy>
#include <QtTest>

#include <limits>

namespace {

constexpr float kPiF = 3.14159265F;
constexpr double kSinglePrecision = 5e-7; // of the elements of a product of two rotations

RotationInDouble::Matrix view(float yaw, float pitch, float roll)
{
    return RotationInDouble::view(double(yaw), double(pitch), double(roll));
}

} // namespace

/// The camera: angles, limits, the rotation matrix and its correction.
class tst_OrbGlobalObject : public WarningsFail
{
    Q_OBJECT

private slots:
    void anglesAreStoredAndSignalledOnce_data();
    void anglesAreStoredAndSignalledOnce();
    void valuesThatAreNotFiniteAreRefused_data();
    void valuesThatAreNotFiniteAreRefused();
    void theMatrixFollowsTheAngles();
    void theMatrixStaysWhereTheCallerUpdatesIt();
    void theCorrectionTurnsTheRotatedView();
    void everyCorrectionIsAnnounced();
    void aMatrixGivesTheAngles();
    void theSameMatrixChangesNothing();
    void aSourceWithoutAPoseHasNoCorrection_data();
    void aSourceWithoutAPoseHasNoCorrection();
};

void tst_OrbGlobalObject::anglesAreStoredAndSignalledOnce_data()
{
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<float>("value");
    QTest::addColumn<float>("stored");

    for (const char *wrapped : {"yaw", "pitch", "yawCorrection", "pitchCorrection"}) {
        QTest::addRow("%s within a turn", wrapped) << QByteArray(wrapped) << 1.5F << 1.5F;
        QTest::addRow("%s past pi", wrapped) << QByteArray(wrapped) << 3.2F << -3.0831854F;
        QTest::addRow("%s of -pi", wrapped) << QByteArray(wrapped) << -kPiF << -kPiF;
        QTest::addRow("%s of pi", wrapped) << QByteArray(wrapped) << kPiF << kPiF;
    }
    for (const char *plain : {"roll", "rollCorrection", "yawMin", "yawMax", "pitchMin", "pitchMax"})
        QTest::addRow("%s", plain) << QByteArray(plain) << 7.0F << 7.0F;
    QTest::newRow("fov has no limits here") << QByteArray("fov") << 500.0F << 500.0F;
}

void tst_OrbGlobalObject::anglesAreStoredAndSignalledOnce()
{
    QFETCH(QByteArray, property);
    QFETCH(float, value);
    QFETCH(float, stored);
    GlobalObjectFixture f;
    const QByteArray signal = "2" + property + "Changed()";
    QSignalSpy changed(&f.object, signal.constData());

    QVERIFY(f.object.setProperty(property, value));
    QVERIFY2(std::abs(f.object.property(property).toFloat() - stored) < 3e-7F,
             qPrintable(f.object.property(property).toString()));
    QCOMPARE(changed.count(), 1);
    QVERIFY(f.object.setProperty(property, value));
    QCOMPARE(changed.count(), 1);
    // Another name of the same angle, where it is wrapped.
    QVERIFY(f.object.setProperty(property, f.object.property(property)));
    QCOMPARE(changed.count(), 1);
}

void tst_OrbGlobalObject::valuesThatAreNotFiniteAreRefused_data()
{
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<float>("value");
    for (const char *property : {"yaw", "pitch", "roll", "yawMin", "yawMax", "pitchMin", "pitchMax",
                                 "fov", "yawCorrection", "pitchCorrection", "rollCorrection"}) {
        QTest::addRow("%s not a number", property)
            << QByteArray(property) << std::numeric_limits<float>::quiet_NaN();
        QTest::addRow("%s infinite", property) << QByteArray(property) << HUGE_VALF;
        QTest::addRow("%s negative infinite", property) << QByteArray(property) << -HUGE_VALF;
    }
}

void tst_OrbGlobalObject::valuesThatAreNotFiniteAreRefused()
{
    QFETCH(QByteArray, property);
    QFETCH(float, value);
    GlobalObjectFixture f;
    QVERIFY(f.object.setProperty(property, 0.5F));
    const QMatrix4x4 matrix = f.object.rotationMatrix();
    const QByteArray signal = "2" + property + "Changed()";
    QSignalSpy changed(&f.object, signal.constData());

    f.object.setProperty(property, value);
    QCOMPARE(f.object.property(property).toFloat(), 0.5F);
    QCOMPARE(changed.count(), 0);
    QVERIFY(f.object.rotationMatrix() == matrix);
}

void tst_OrbGlobalObject::theMatrixFollowsTheAngles()
{
    GlobalObjectFixture f;
    QSignalSpy matrixChanged(&f.object, &OrbGlobalObject::rotationMatrixChanged);
    f.object.setYaw(0.5F);
    QVERIFY(RotationInDouble::distance(f.object.rotationMatrix(), view(0.5F, 0, 0))
            < kSinglePrecision);
    f.object.setPitch(-0.75F);
    QVERIFY(RotationInDouble::distance(f.object.rotationMatrix(), view(0.5F, -0.75F, 0))
            < kSinglePrecision);
    f.object.setRoll(7);
    QVERIFY(RotationInDouble::distance(f.object.rotationMatrix(), view(0.5F, -0.75F, 7))
            < kSinglePrecision);
    QCOMPARE(matrixChanged.count(), 3);
    f.object.setYawMin(-1);
    f.object.setYawMax(1);
    f.object.setPitchMin(-1);
    f.object.setPitchMax(1);
    f.object.setFov(20);
    QCOMPARE(matrixChanged.count(), 3);
}

void tst_OrbGlobalObject::theMatrixStaysWhereTheCallerUpdatesIt()
{
    GlobalObjectFixture f;
    QSignalSpy matrixChanged(&f.object, &OrbGlobalObject::rotationMatrixChanged);
    f.object.setYaw(0.5F, false);
    f.object.setPitch(0.25F, false);
    f.object.setRoll(1, false);
    QVERIFY(f.object.rotationMatrix() == QMatrix4x4());
    f.object.setPitchCorrection(0.5F, false);
    f.object.setRollCorrection(0.5F, false);
    QVERIFY(f.object.rotationMatrix() == QMatrix4x4());
    QCOMPARE(matrixChanged.count(), 0);

    f.object.setYaw(0.75F);
    QVERIFY(RotationInDouble::distance(f.object.rotationMatrix(), view(0.75F, 0.25F, 1))
            < kSinglePrecision);
}

void tst_OrbGlobalObject::theCorrectionTurnsTheRotatedView()
{
    GlobalObjectFixture f;
    f.object.setYaw(0.5F);
    f.object.setPitch(0.25F);
    f.object.setRoll(-1);
    f.object.setPitchCorrection(0.375F);
    f.object.setRollCorrection(-0.625F);
    const auto correction = RotationInDouble::product(view(0, 0, -0.625F), view(0, 0.375F, 0));
    const auto expected = RotationInDouble::product(correction, view(0.5F, 0.25F, -1));
    QVERIFY(RotationInDouble::distance(f.object.rotationMatrix(), expected) < kSinglePrecision);
    QVERIFY(f.object.yaw() == 0.5F && f.object.pitch() == 0.25F && f.object.roll() == -1);
}

void tst_OrbGlobalObject::everyCorrectionIsAnnounced()
{
    GlobalObjectFixture f;
    QSignalSpy matrixChanged(&f.object, &OrbGlobalObject::rotationMatrixChanged);
    f.object.setYawCorrection(1);
    QCOMPARE(matrixChanged.count(), 1);
    f.object.setPitchCorrection(0.5F);
    QCOMPARE(matrixChanged.count(), 2);
    f.object.setRollCorrection(0.5F);
    QCOMPARE(matrixChanged.count(), 3);
    f.object.setRollCorrection(0.5F);
    QCOMPARE(matrixChanged.count(), 3);
}

void tst_OrbGlobalObject::aMatrixGivesTheAngles()
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
    QCOMPARE(matrixChanged.count(), 1);
    QCOMPARE(yawChanged.count(), 1);
    QCOMPARE(pitchChanged.count(), 1);
    QCOMPARE(rollChanged.count(), 1);
    const auto expected = RotationInDouble::product(view(0, 0.5F, 0), view(-2.5F, 0.75F, 1.25F));
    QVERIFY(RotationInDouble::distance(f.object.rotationMatrix(), expected) < kSinglePrecision);
}

void tst_OrbGlobalObject::theSameMatrixChangesNothing()
{
    GlobalObjectFixture f;
    f.object.setYaw(0.5F);
    f.object.setRoll(7); // another angle would come out of the matrix
    const QMatrix4x4 matrix = f.object.rotationMatrix();
    QSignalSpy matrixChanged(&f.object, &OrbGlobalObject::rotationMatrixChanged);
    f.object.setRotationMatrix(matrix);
    QCOMPARE(matrixChanged.count(), 0);
    QCOMPARE(f.object.roll(), 7.0F);
}

void tst_OrbGlobalObject::aSourceWithoutAPoseHasNoCorrection_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::newRow("nothing") << QUrl();
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
    QSignalSpy rollChanged(&f.object, &OrbGlobalObject::rollCorrectionChanged);
    f.object.readMetaData(url);
    QVERIFY(f.object.yawCorrection() == 0 && f.object.pitchCorrection() == 0
            && f.object.rollCorrection() == 0);
    QVERIFY(RotationInDouble::distance(f.object.rotationMatrix(), view(0.5F, 0, 0))
            < kSinglePrecision);
    QCOMPARE(rollChanged.count(), 1);
    QCOMPARE(matrixChanged.count(), 1);
    f.object.readMetaData(url);
    QCOMPARE(rollChanged.count(), 1);
    QCOMPARE(matrixChanged.count(), 2);
}

QTEST_MAIN(tst_OrbGlobalObject)
#include "tst_OrbGlobalObject.moc"
