#include "OrbQQuickView.h"

#include "OrbSettingsManager.h"
#include "Product.h"
#include "WarningsFail.h"

#include <QQuickItem>
#include <QSignalSpy>
#include <QtTest>

class tst_OrbQQuickView : public WarningsFail
{
    Q_OBJECT

private slots:
    void initTestCase();
    void theTitleNamesProductAndSource_data();
    void theTitleNamesProductAndSource();
    void fullScreenFollowsTheWindow();
    void demoModeStartsFullScreen();
    void withoutOpenGLNothingIsMeasured();
    void framesAreCounted();
    void aCheckWithoutAServerSaysSo();

private:
    OrbSettingsManager m_settings{QStringLiteral("OrbixTests"), QStringLiteral("view window")};
};

void tst_OrbQQuickView::initTestCase()
{
    // The platform without a screen has no size hints.
    ignoreWarning(QStringLiteral("^This plugin does not support propagateSizeHints"));
}

void tst_OrbQQuickView::theTitleNamesProductAndSource_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("title");
    QTest::newRow("nothing plays") << QString() << QStringLiteral("Orbix Sight");
    QTest::newRow("a file") << QStringLiteral("a.jpg") << QStringLiteral("Orbix Sight - a.jpg");
    QTest::newRow("a name with place markers")
        << QStringLiteral("100%1 %L2.jpg") << QStringLiteral("Orbix Sight - 100%1 %L2.jpg");
}

void tst_OrbQQuickView::theTitleNamesProductAndSource()
{
    QFETCH(QString, source);
    QFETCH(QString, title);
    OrbQQuickView view(&m_settings, false);
    view.updateTitle(QStringLiteral("before"));
    view.updateTitle(source);
    QCOMPARE(view.QWindow::title(), title);
}

void tst_OrbQQuickView::fullScreenFollowsTheWindow()
{
    OrbQQuickView view(&m_settings, false);
    QSignalSpy changed(&view, &OrbQQuickView::fullScreenChanged);
    view.show();
    QVERIFY(!view.fullScreen());
    view.fullScreenMode(true);
    QTRY_VERIFY(view.fullScreen());
    QCOMPARE(view.windowState(), Qt::WindowFullScreen);
    QCOMPARE(changed.count(), 1);
    view.fullScreenMode(false);
    QTRY_VERIFY(!view.fullScreen());
    QCOMPARE(view.windowState(), Qt::WindowNoState);
    QCOMPARE(changed.count(), 2);
    // Whoever caused it.
    view.setWindowState(Qt::WindowFullScreen);
    QTRY_VERIFY(view.fullScreen());
    view.setWindowState(Qt::WindowMaximized);
    QTRY_VERIFY(!view.fullScreen());
    view.setWindowState(Qt::WindowMinimized);
    QVERIFY(!view.fullScreen());
    QCOMPARE(changed.count(), 4);
}

void tst_OrbQQuickView::demoModeStartsFullScreen()
{
    OrbQQuickView view(&m_settings, true);
    QVERIFY(view.demoMode());
    QVERIFY(view.fullScreen());
    QSignalSpy changed(&view, &OrbQQuickView::fullScreenChanged);
    view.showFullScreen();
    QCOMPARE(changed.count(), 0);
    view.fullScreenMode(false);
    QTRY_VERIFY(!view.fullScreen());
    QVERIFY(view.demoMode());
}

void tst_OrbQQuickView::withoutOpenGLNothingIsMeasured()
{
    OrbQQuickView view(&m_settings, false);
    QSignalSpy drawn(&view, &QQuickWindow::frameSwapped);
    QSignalSpy sizeChanged(&view, &OrbQQuickView::maxTextureSizeChanged);
    QSignalSpy infoChanged(&view, &OrbQQuickView::gpuInfoChanged);
    view.show();
    QTRY_VERIFY(drawn.count() > 0);
    QCoreApplication::processEvents();
    QCOMPARE(view.maxTextureSize(), QSize(0, 0));
    QCOMPARE(view.gpuInfo(), QStringLiteral("Cannot get GPU version"));
    QCOMPARE(sizeChanged.count() + infoChanged.count(), 0);
}

void tst_OrbQQuickView::framesAreCounted()
{
    OrbQQuickView view(&m_settings, false);
    QVector<int> told;
    connect(&view, &OrbQQuickView::fpsChanged, &view, [&] { told.append(view.fps()); });
    // Each frame asks for another.
    connect(&view, &QQuickWindow::frameSwapped, &view, &QQuickWindow::update);
    QCOMPARE(view.fps(), 0);
    view.show();
    QTRY_VERIFY_WITH_TIMEOUT(!told.isEmpty() && told.last() > 1, 20000);
    QCOMPARE(told.first(), 1); // the first frame opens its second
}

void tst_OrbQQuickView::aCheckWithoutAServerSaysSo()
{
    if (!Product::updateServerUrl().isEmpty())
        QSKIP("This build has an update server; the sanitizers' builds have none.");
    OrbQQuickView view(&m_settings, false);
    QSignalSpy message(&view, &OrbQQuickView::displayMessage);
    view.checkUpdate();
    QCOMPARE(message.count(), 1);
    QVERIFY(message.first().first().toString().contains(QStringLiteral("no update server")));
}

QTEST_MAIN(tst_OrbQQuickView)
#include "tst_OrbQQuickView.moc"
