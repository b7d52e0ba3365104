#include "SceneFixture.h"

#include <QScreen>
#include <QTest>

/// The control bar over a picture; over a film it is tried with the film.
class tst_MainWindowBar : public SceneFixture
{
    Q_OBJECT

private:
    QQuickItem *button(const char *name) const
    {
        return imageItem(QStringLiteral("newui/%1_mini_button.png").arg(QLatin1String(name)));
    }
    qreal timelineWidth() const
    {
        return imageItem(QStringLiteral("button_16.png"))->parentItem()->width();
    }

private slots:
    void init();
    void itSlidesInAndOut();
    void theScreenButtonFillsTheScreenAndEndsIt();
    void twoButtonsChooseTheProjection();
    void arrowsComeWithAPlaylistAndStep();
    void aPressOnTheBarKeepsItAwake();
    void theTimelineOfAPictureStaysAtItsStart();
};

void tst_MainWindowBar::init()
{
    SceneFixture::init();
    QVERIFY(dropFiles({media.octants()}));
    QTRY_COMPARE(playerStatus(), QMediaPlayer::BufferedMedia);
    moveTo({300, 300});
    QCOMPARE(state(), QStringLiteral("ControlsPanel"));
    QTRY_COMPARE(scene(QStringLiteral("orb_bar.y + orb_bar.height - root.height")).toReal(), 0.);
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

void tst_MainWindowBar::theScreenButtonFillsTheScreenAndEndsIt()
{
    clickOn(button("fullscreen_on"));
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
    QVERIFY(imageItem(left)->parentItem()->width() == 0);
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

int main(int argc, char **argv)
{
    return tst_MainWindowBar().run(argc, argv);
}

#include "tst_MainWindowBar.moc"
