#include "OrbDebug.h"
#include "SceneFixture.h"

#include <QQmlContext>
#include <QTest>

/// The developer's overlay, which the scene shows for a context object of its name.
class tst_MainWindowDebug : public SceneFixture
{
    Q_OBJECT

private slots:
    void theOverlayComesWithItsObject();

private:
    OrbDebug m_debug;
};

void tst_MainWindowDebug::theOverlayComesWithItsObject()
{
    QVERIFY(!reads(QStringLiteral("0 qml fps")));
    window()->rootContext()->setContextProperty(QStringLiteral("orbDebug"), &m_debug);
    QTRY_VERIFY(reads(QStringLiteral("0 qml fps")));
    for (int ms : {0, 16, 33}) // at 62 and 58 frames a second
        m_debug.framePaintedAt(QTime(12, 0).addMSecs(ms));
    m_debug.computeFps();
    const QQuickItem *rate = itemReading(QStringLiteral("60 qml fps"));
    QVERIFY(rate);
    const QRectF place = rate->parentItem()->mapRectToScene(rate->parentItem()->boundingRect());
    QCOMPARE(place, QRectF(window()->width() - 180, 30, 150, 30));

    view()->setYaw(1.25F);
    view()->setPitch(-0.5F);
    view()->setRoll(0.125F);
    QQuickItem *angles = itemReading(QStringLiteral(" yaw = 1.250 pitch = -0.500 roll = 0.125"));
    QVERIFY(angles);
    QCOMPARE(angles->mapToScene({0, angles->height()}).y(), window()->height() - 50.0);
    drag(place.center().toPoint(), {-20, 0});
    QVERIFY(view()->yaw() != 1.25F);
    keepPicture(QStringLiteral("debug"));
}

int main(int argc, char **argv)
{
    return tst_MainWindowDebug().run(argc, argv);
}

#include "tst_MainWindowDebug.moc"
