#include "Viewport.h"
#include "WarningsFail.h"

#include <QtTest>

class tst_Viewport : public WarningsFail
{
    Q_OBJECT

private slots:
    void theSmallerSideIsTheMeasure_data();
    void theSmallerSideIsTheMeasure();
};

void tst_Viewport::theSmallerSideIsTheMeasure_data()
{
    QTest::addColumn<QSizeF>("pixels");
    QTest::addColumn<float>("smaller");
    QTest::addColumn<float>("ratioX");
    QTest::addColumn<float>("ratioY");
    QTest::newRow("landscape") << QSizeF(1000, 600) << 600.0F << 1.6666666F << 1.0F;
    QTest::newRow("portrait") << QSizeF(600, 1000) << 600.0F << 1.0F << 1.6666666F;
    QTest::newRow("square") << QSizeF(512, 512) << 512.0F << 1.0F << 1.0F;
    QTest::newRow("one pixel wider") << QSizeF(401, 400) << 400.0F << 1.0025F << 1.0F;
    QTest::newRow("one pixel high") << QSizeF(1920, 1) << 1.0F << 1920.0F << 1.0F;
    QTest::newRow("one pixel wide") << QSizeF(1, 1080) << 1.0F << 1.0F << 1080.0F;
    QTest::newRow("half pixels") << QSizeF(150.5, 100.25) << 100.25F << 1.5012469F << 1.0F;
}

void tst_Viewport::theSmallerSideIsTheMeasure()
{
    QFETCH(QSizeF, pixels);
    QFETCH(float, smaller);
    QFETCH(float, ratioX);
    QFETCH(float, ratioY);
    const Viewport viewport = Viewport::ofTarget(pixels);
    QCOMPARE(viewport.size, QVector2D(float(pixels.width()), float(pixels.height())));
    QCOMPARE(viewport.sizeMin, QVector2D(smaller, smaller));
    QCOMPARE(viewport.sizeRatio.x(), ratioX);
    QCOMPARE(viewport.sizeRatio.y(), ratioY);
    QCOMPARE(viewport.width, float(pixels.width()));
}

QTEST_APPLESS_MAIN(tst_Viewport)
#include "tst_Viewport.moc"
