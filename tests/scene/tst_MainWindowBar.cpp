#include "SceneFixture.h"

#include <QDesktopServices>
#include <QElapsedTimer>
#include <QScreen>
#include <QTest>

/// The control bar over a picture; over a film it is tried with the film.
class tst_MainWindowBar : public SceneFixture
{
    Q_OBJECT

public slots:
    void takeAddress(const QUrl &address) { m_opened += address.toString(); }

private:
    QStringList m_opened; ///< addresses that went to the browser

    QQuickItem *button(const char *name) const
    {
        return imageItem(QStringLiteral("newui/%1_mini_button.png").arg(QLatin1String(name)));
    }
    qreal timelineWidth() const
    {
        return control(QStringLiteral("Timeline"), QAccessible::Slider)->width();
    }

private slots:
    void initTestCase();
    void init();
    void itSlidesInAndOut();
    void itGoesAfterThreeSecondsOfRest();
    void itStaysUnderThePointer();
    void theLogoOpensTheMakersPageOnceReleased();
    void theScreenButtonFillsTheScreenAndEndsIt();
    void twoButtonsChooseTheProjection();
    void arrowsComeWithAPlaylistAndStep();
    void aPressOnTheBarKeepsItAwake();
    void theTimelineOfAPictureStaysAtItsStart();
    void theTimelineTakesWhatIsLeft_data();
    void theTimelineTakesWhatIsLeft();
    void assistiveTechnologySeesAndPressesTheControls();
};

void tst_MainWindowBar::initTestCase()
{
    SceneFixture::initTestCase();
    QDesktopServices::setUrlHandler(QStringLiteral("http"), this, "takeAddress");
}

void tst_MainWindowBar::init()
{
    SceneFixture::init();
    m_opened.clear();
    QVERIFY(dropFiles({media.octants()}));
    QTRY_COMPARE(playerStatus(), QMediaPlayer::BufferedMedia);
    showBar();
    QCOMPARE(state(), QStringLiteral("ControlsPanel"));
}

void tst_MainWindowBar::itSlidesInAndOut()
{
    const QPoint inTheBar(480, 570);
    const QColor under = TestMedia::octant(1, 1);
    // Four fifths of black over the picture.
    QTRY_VERIFY(shows({under.red() / 5, under.green() / 5, under.blue() / 5}, inTheBar));
    hideControls();
    QTRY_VERIFY(shows(under, inTheBar));
    QTRY_VERIFY(shows(under, {480, 598}));
}

void tst_MainWindowBar::itGoesAfterThreeSecondsOfRest()
{
    constexpr int kAlmostMs = 2800;
    QElapsedTimer rest;
    rest.start();
    moveTo(middle());
    QTRY_COMPARE(state(), QStringLiteral("Video"));
    QVERIFY(rest.elapsed() >= kAlmostMs);
    QTRY_VERIFY(bar()->y() >= window()->height());
}

void tst_MainWindowBar::itStaysUnderThePointer()
{
    for (const char *name : {"Pause", "Menu"}) {
        moveTo(control(QLatin1String(name))->mapToScene({20, 20}).toPoint());
        scene(QStringLiteral("timerHideControls.triggered()"));
        QCOMPARE(state(), QStringLiteral("ControlsPanel"));
    }
    moveTo(middle());
    QVERIFY(scene(QStringLiteral("timerHideControls.running")).toBool());
    scene(QStringLiteral("timerHideControls.triggered()"));
    QCOMPARE(state(), QStringLiteral("Video"));
}

void tst_MainWindowBar::theLogoOpensTheMakersPageOnceReleased()
{
    const QQuickItem *logo = control(QStringLiteral("Website"));
    const QPoint point = logo->mapToScene({50, 20}).toPoint();
    QTest::mousePress(window(), Qt::LeftButton, Qt::NoModifier, point);
    QCOMPARE(m_opened, QStringList());
    QTest::mouseRelease(window(), Qt::LeftButton, Qt::NoModifier, point);
    QCOMPARE(m_opened, QStringList(QStringLiteral("http://127.0.0.1:47114/")));
}

void tst_MainWindowBar::theScreenButtonFillsTheScreenAndEndsIt()
{
    clickOn(control(QStringLiteral("Menu")));
    clickOn(button("fullscreen_on"));
    QCOMPARE(openLists(), QStringList());
    QTRY_COMPARE(window()->size(), window()->screen()->size());
    QTRY_VERIFY(window()->fullScreen());
    QTRY_VERIFY(button("fullscreen_off"));
    QTRY_COMPARE(scene(QStringLiteral("orb_bar.width")).toInt(), window()->width());
    clickOn(button("fullscreen_off"));
    QTRY_VERIFY(!window()->fullScreen());
    QTRY_VERIFY(button("fullscreen_on"));
}

void tst_MainWindowBar::twoButtonsChooseTheProjection()
{
    QVERIFY(button("proj_planar_on"));
    clickOn(button("proj_littleplanet_off"));
    QCOMPARE(picture()->projection(), int(OrbShaderCodeBuilder::LITTLE_PLANET));
    QVERIFY(button("proj_littleplanet_on"));
    QTRY_VERIFY(shows(TestMedia::octant(0, 0), {10, 10}));
    clickOn(button("proj_planar_off"));
    QCOMPARE(picture()->projection(), int(OrbShaderCodeBuilder::RECTILINEAR));
    QVERIFY(button("proj_littleplanet_off"));
    QTRY_VERIFY(shows(TestMedia::octant(1, 0), {10, 10}));
}

void tst_MainWindowBar::arrowsComeWithAPlaylistAndStep()
{
    constexpr int kTwoArrows = 100;
    const QString left = QStringLiteral("newui/arrow_left.png");
    const QString right = QStringLiteral("newui/arrow_right.png");
    const qreal wide = timelineWidth();
    QVERIFY(!imageItem(left));
    QVERIFY(!imageItem(right));
    QVERIFY(!control(QStringLiteral("Previous")));
    QVERIFY(dropFiles({media.octants(), media.flat(QStringLiteral("second.png"), Qt::darkRed)}));
    QCOMPARE(timelineWidth(), wide - kTwoArrows);
    QCOMPARE(imageItem(left)->parentItem()->width(), kTwoArrows / 2.);
    QTRY_VERIFY(showsOctantsAhead());
    keepPicture(QStringLiteral("bar-playlist"));

    clickOn(imageItem(right));
    QCOMPARE(view()->playListIndex(), 1);
    QTRY_VERIFY(shows(Qt::darkRed, middle()));
    clickOn(imageItem(right));
    QCOMPARE(view()->playListIndex(), 0);
    clickOn(imageItem(left));
    QCOMPARE(view()->playListIndex(), 1);
    QTRY_VERIFY(shows(Qt::darkRed, middle()));
}

void tst_MainWindowBar::aPressOnTheBarKeepsItAwake()
{
    QQuickItem *play = button("pause");
    moveTo(play->mapToScene({10, 10}).toPoint());
    scene(QStringLiteral("timerHideControls.stop()"));
    clickAt(play->mapToScene({10, 10}).toPoint());
    QVERIFY(scene(QStringLiteral("timerHideControls.running")).toBool());
    QVERIFY(imageItem(QStringLiteral("newui/pause_icon.png")));
    // A picture never stops.
    QVERIFY(button("pause"));
}

void tst_MainWindowBar::theTimelineOfAPictureStaysAtItsStart()
{
    const QQuickItem *knob = imageItem(QStringLiteral("button_16.png"));
    const QQuickItem *line = knob->parentItem();
    const QPoint half = line->mapToScene({line->width() / 2, line->height() / 2}).toPoint();
    clickAt(half);
    QCOMPARE(knob->x(), -knob->width() / 2);
    QVERIFY(reads(QStringLiteral("00:00")));
    QCOMPARE(playerStatus(), QMediaPlayer::BufferedMedia);
}

void tst_MainWindowBar::theTimelineTakesWhatIsLeft_data()
{
    QTest::addColumn<int>("windowWidth");
    QTest::addColumn<bool>("playlist");
    QTest::addColumn<int>("expected");
    QTest::addColumn<QStringList>("outOfView");

    // The rest is 630 wide, with the arrows of a playlist 730.
    QTest::newRow("wide") << 1000 << false << 370 << QStringList();
    QTest::newRow("narrow") << 780 << false << 150 << QStringList();
    QTest::newRow("narrow with a playlist") << 780 << true << 50 << QStringList();
    QTest::newRow("too narrow") << 640 << false << 50 << QStringList{"Menu"};
    QTest::newRow("too narrow with a playlist")
        << 640 << true << 50 << QStringList{"Effect", "Menu"};
}

void tst_MainWindowBar::theTimelineTakesWhatIsLeft()
{
    QFETCH(int, windowWidth);
    QFETCH(bool, playlist);
    QFETCH(int, expected);
    QFETCH(QStringList, outOfView);
    if (playlist)
        QVERIFY(dropFiles({media.octants(), media.octants()}));
    window()->resize(windowWidth, 600);
    QTRY_COMPARE(bar()->width(), qreal(windowWidth));
    QCOMPARE(bar()->height(), 40.);
    QCOMPARE(timelineWidth(), qreal(expected));
    for (const char *name : {"Website", "Rectilinear projection", "Effect", "Menu"}) {
        const QQuickItem *member = control(QLatin1String(name));
        const bool inView = !outOfView.contains(QLatin1String(name));
        QTRY_COMPARE(member->mapToScene({0, 0}).y(), inView ? 560. : 600.);
    }
    keepPicture(QStringLiteral("bar-") + QString::fromLatin1(QTest::currentDataTag()));
}

void tst_MainWindowBar::assistiveTechnologySeesAndPressesTheControls()
{
    using Told = QPair<QString, int>;
    const QVector<Told> expected{{"Website", QAccessible::Button},
                                 {"Pause", QAccessible::Button},
                                 {"Position 00:00", QAccessible::StaticText},
                                 {"Timeline", QAccessible::Slider},
                                 {"Duration 00:00", QAccessible::StaticText},
                                 {"Volume", QAccessible::Button},
                                 {"Full screen", QAccessible::Button},
                                 {"Rectilinear projection", QAccessible::Button},
                                 {"Little planet projection", QAccessible::Button},
                                 {"Effect", QAccessible::Button},
                                 {"Menu", QAccessible::Button}};
    QVector<Told> told;
    const QVector<QAccessibleInterface *> all = accessibles();
    for (const QAccessibleInterface *one : all) {
        const auto *item = qobject_cast<QQuickItem *>(one->object());
        if (item && bar()->isAncestorOf(item))
            told += {one->text(QAccessible::Name), one->role()};
    }
    QCOMPARE(told, expected);

    const auto press = [this](const char *name) {
        QAccessible::queryAccessibleInterface(control(QLatin1String(name)))
            ->actionInterface()
            ->doAction(QAccessibleActionInterface::pressAction());
    };
    press("Little planet projection");
    QCOMPARE(picture()->projection(), int(OrbShaderCodeBuilder::LITTLE_PLANET));
    press("Effect");
    QCOMPARE(openLists(), QStringList(QStringLiteral("Image Effect")));
    press("Website");
    QCOMPARE(m_opened.size(), 1);
    QCOMPARE(openLists(), QStringList());
}

int main(int argc, char **argv)
{
    return tst_MainWindowBar().run(argc, argv);
}

#include "tst_MainWindowBar.moc"
