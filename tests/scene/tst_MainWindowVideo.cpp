#include "ClipWriter.h"
#include "FrameCode.h"
#include "SceneFixture.h"

#include <QTest>

namespace {
constexpr int kFilmMs = 2000;
constexpr int kFrameMs = 40;
constexpr int kPatienceMs = 20000;
constexpr int kColourTolerance = 12; // of the encoder and the change between colour spaces
} // namespace

/// A film through the backend that is chosen without a setting.
class tst_MainWindowVideo : public SceneFixture
{
    Q_OBJECT

private:
    int positionMs() const { return player(QStringLiteral("position")).toInt(); }
    bool comesTo(int ms) const;
    bool plays() const { return playbackState() == QMediaPlayer::PlayingState; }
    int playbackState() const { return player(QStringLiteral("playbackState")).toInt(); }
    QVariant player(const QString &property) const
    {
        return scene(QStringLiteral("orb_mediaLoader.mediaPlayer.") + property);
    }
    bool showsFilmAhead() const;
    void openFilm();
    void seekAndWait(int positionMs);

private slots:
    void init();
    void aFilmPlaysAndShowsItsColours();
    void aDroppedMatroskaFilmShowsItsFramesInTheirColours();
    void aFilmStartsAgainAtItsEnd();
    void spacePausesAndGoesOn();
    void arrowsJumpInTimeAndShowThePosition_data();
    void arrowsJumpInTimeAndShowThePosition();
    void theBarPlaysPausesAndSeeks();
    void theTimelineFollowsADragAndStopsAtItsEnds();
    void theSliderSetsTheVolume_data();
    void theSliderSetsTheVolume();
    void assistiveTechnologyMovesTheSliders();
    void aPictureEndsTheFilmAndAnotherFilmThePicture();
    void aFilmInAPlaylistGoesOnToTheNextEntry();
};

bool tst_MainWindowVideo::showsFilmAhead() const
{
    const QImage image = grab();
    const auto isFilm = [&](const QColor &colour, const QPoint &aside) {
        return isClose(image.pixelColor(middle() + aside), colour, kColourTolerance);
    };
    return isFilm(TestMedia::filmLeft(), {-100, -100}) && isFilm(TestMedia::filmLeft(), {-100, 100})
        && isFilm(TestMedia::filmRight(), {100, -100})
        && isFilm(TestMedia::filmRight(), {100, 100});
}

/// Waits for a position. The service's messages come one a frame where the scene has no thread of
/// its own, so a jump takes its time.
bool tst_MainWindowVideo::comesTo(int ms) const
{
    return QTest::qWaitFor([this, ms] { return qAbs(positionMs() - ms) <= kFrameMs; }, kPatienceMs);
}

void tst_MainWindowVideo::openFilm()
{
    QVERIFY(dropFiles({media.film()}));
    QTRY_VERIFY(plays());
    QTRY_COMPARE(playerStatus(), QMediaPlayer::BufferedMedia);
}

void tst_MainWindowVideo::seekAndWait(int position)
{
    scene(QStringLiteral("orb_mediaLoader.mediaPlayer.seek(%1)").arg(position));
    QVERIFY(comesTo(position));
}

void tst_MainWindowVideo::init()
{
    SceneFixture::init();
    QVERIFY2(!media.film().isEmpty(), "the encoder failed");
    // The state of the film before must not be taken for that of this one.
    QVERIFY(dropFiles({media.octants()}));
    QTRY_VERIFY(scene(QStringLiteral("orb_mediaLoader.children[0].playbackState")).toInt()
                != QMediaPlayer::PlayingState);
    openFilm();
}

void tst_MainWindowVideo::aFilmPlaysAndShowsItsColours()
{
    QCOMPARE(title(), QStringLiteral("Orbix Sight - ") + fileUrl(media.film()).toString());
    QTRY_VERIFY(showsFilmAhead());
    QTRY_VERIFY(qAbs(player(QStringLiteral("duration")).toInt() - kFilmMs) <= kFrameMs);
    QTRY_VERIFY(positionMs() > 0);
    const int before = positionMs();
    QTRY_VERIFY(positionMs() != before);
    keepPicture(QStringLiteral("film"));
}

void tst_MainWindowVideo::aDroppedMatroskaFilmShowsItsFramesInTheirColours()
{
    constexpr int kCodecTolerance = 6;
    const QString film = media.folder() + QStringLiteral("/dropped.mkv");
    QCOMPARE(ClipWriter::write(film), QString());
    QVERIFY(dropFiles({film}));
    int first = -1;
    QTRY_VERIFY((first = FrameCode::read(grab()).value_or(-1)) >= 0);
    QImage later;
    QTRY_VERIFY(FrameCode::read(later = grab()).value_or(-1) > first);
    QVERIFY(FrameCode::colourError(later, view()->fov()) <= kCodecTolerance);
}

void tst_MainWindowVideo::aFilmStartsAgainAtItsEnd()
{
    scene(QStringLiteral("orb_mediaLoader.mediaPlayer.seek(1600)"));
    QTRY_VERIFY(positionMs() >= 1500);
    QTRY_VERIFY(positionMs() < 1000);
    QTRY_VERIFY(plays());
    QTRY_COMPARE(playerStatus(), QMediaPlayer::BufferedMedia);
    QTRY_VERIFY(positionMs() > 0);
    QTRY_VERIFY(showsFilmAhead());
}

void tst_MainWindowVideo::spacePausesAndGoesOn()
{
    QTRY_VERIFY(showsFilmAhead());
    key(Qt::Key_Space);
    QTRY_COMPARE(playbackState(), int(QMediaPlayer::PausedState));
    QVERIFY(imageItem(QStringLiteral("newui/pause_icon.png")));
    const int before = positionMs();
    QVERIFY(!QTest::qWaitFor([&] { return positionMs() != before; }, 300));
    QVERIFY(showsFilmAhead());
    keepPicture(QStringLiteral("paused"));

    key(Qt::Key_Space);
    QTRY_VERIFY(plays());
    QVERIFY(imageItem(QStringLiteral("newui/play_icon.png")));
    QTRY_VERIFY(positionMs() != before);
    QTRY_VERIFY(!imageItem(QStringLiteral("newui/play_icon.png")));
}

void tst_MainWindowVideo::arrowsJumpInTimeAndShowThePosition_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<Qt::Key>("pressed");
    QTest::addColumn<int>("to");

    QTest::newRow("right") << 400 << Qt::Key_Right << 1400;
    QTest::newRow("left") << 1600 << Qt::Key_Left << 600;
    QTest::newRow("up, a twentieth of the film") << 1000 << Qt::Key_Up << 1100;
    QTest::newRow("down, a twentieth of the film") << 1000 << Qt::Key_Down << 900;
    QTest::newRow("beyond the end") << 1600 << Qt::Key_Right << 0;
    QTest::newRow("before the start") << 600 << Qt::Key_Left << 0;
}

void tst_MainWindowVideo::arrowsJumpInTimeAndShowThePosition()
{
    QFETCH(int, from);
    QFETCH(Qt::Key, pressed);
    QFETCH(int, to);
    for (const auto modifier : {Qt::ControlModifier, Qt::AltModifier}) {
        if (plays())
            key(Qt::Key_Space);
        QTRY_VERIFY(!plays());
        seekAndWait(from);
        key(pressed, modifier);
        QVERIFY2(comesTo(to), qPrintable(QString::number(positionMs())));
        QVERIFY(reads(QStringLiteral("00:00")) || reads(QStringLiteral("00:01")));
    }
}

void tst_MainWindowVideo::theBarPlaysPausesAndSeeks()
{
    showBar();
    QTRY_VERIFY(control(QStringLiteral("Duration 00:02"), QAccessible::StaticText));
    clickOn(imageItem(QStringLiteral("newui/pause_mini_button.png")));
    QTRY_VERIFY(!plays());
    QVERIFY(!imageItem(QStringLiteral("newui/pause_mini_button.png")));

    QQuickItem *knob = imageItem(QStringLiteral("button_16.png"));
    QVERIFY(knob);
    const QQuickItem *bar = knob->parentItem();
    const auto onTimeline = [bar](qreal share) {
        return bar->mapToScene({bar->width() * share, bar->height() / 2}).toPoint();
    };
    clickAt(onTimeline(0.75));
    QVERIFY(comesTo(kFilmMs * 3 / 4));
    QTRY_VERIFY(qAbs(knob->mapToScene({knob->width() / 2, 0}).x() - onTimeline(0.75).x())
                <= bar->width() * kFrameMs / kFilmMs);
    drag(onTimeline(0.5), onTimeline(0.25) - onTimeline(0.5));
    QVERIFY(comesTo(kFilmMs / 4));
    keepPicture(QStringLiteral("film-bar"));

    clickOn(imageItem(QStringLiteral("newui/play_mini_button.png")));
    QTRY_VERIFY(plays());
}

void tst_MainWindowVideo::theTimelineFollowsADragAndStopsAtItsEnds()
{
    showBar();
    key(Qt::Key_Space);
    QTRY_COMPARE(playbackState(), int(QMediaPlayer::PausedState));
    QQuickItem *timeline = control(QStringLiteral("Timeline"), QAccessible::Slider);
    const auto at = [timeline](qreal share) {
        return timeline->mapToScene({timeline->width() * share, 4}).toPoint();
    };
    QTest::mousePress(window(), Qt::LeftButton, Qt::NoModifier, at(0.5));
    QVERIFY(comesTo(kFilmMs / 2));
    for (const qreal share : {0.3, 0.1, 0.6}) {
        moveTo(at(share));
        QVERIFY(comesTo(qRound(kFilmMs * share)));
        const QString text = QStringLiteral("Position 00:0%1").arg(qRound(kFilmMs * share / 1000));
        QVERIFY(control(text, QAccessible::StaticText));
    }
    moveTo(at(-0.2));
    QCOMPARE(timeline->property("newProgression").toReal(), 0.);
    QVERIFY(comesTo(0));
    moveTo(at(1.2));
    QCOMPARE(timeline->property("newProgression").toReal(), 1.);
    moveTo(at(0.25));
    QVERIFY(comesTo(kFilmMs / 4));
    QTest::mouseRelease(window(), Qt::LeftButton, Qt::NoModifier, at(0.25));
}

void tst_MainWindowVideo::theSliderSetsTheVolume_data()
{
    QTest::addColumn<qreal>("share"); // of the slider's height
    QTest::addColumn<qreal>("volume");
    QTest::addColumn<int>("level");

    QTest::newRow("silent") << 0. << 0. << 0;
    QTest::newRow("soft") << 0.25 << 0.25 << 1;
    QTest::newRow("half") << 0.5 << 0.5 << 2;
    QTest::newRow("loud") << 0.9 << 0.9 << 2;
    QTest::newRow("full") << 1. << 1. << 3;
    QTest::newRow("under the slider") << -0.2 << 0. << 0;
    QTest::newRow("over the slider") << 1.2 << 1. << 3;
}

void tst_MainWindowVideo::theSliderSetsTheVolume()
{
    constexpr qreal kStep = 1 / 130.; // a pixel of the slider
    QFETCH(qreal, share);
    QFETCH(qreal, volume);
    QFETCH(int, level);
    showBar();
    scene(QStringLiteral("orb_mediaLoader.mediaPlayer.volume = 0.7"));
    clickOn(control(QStringLiteral("Volume")));
    QQuickItem *slider = control(QStringLiteral("Volume"), QAccessible::Slider);
    QVERIFY(slider);
    QTRY_COMPARE(slider->mapToScene({0, slider->height()}).y(), bar()->y() - 10);
    const auto at = [slider](qreal part) {
        return slider->mapToScene({4, slider->height() * (1 - part)}).toPoint();
    };
    drag(at(0.7), at(share) - at(0.7));
    QTRY_VERIFY(qAbs(player(QStringLiteral("volume")).toReal() - volume) <= kStep);
    QTRY_VERIFY(imageItem(QStringLiteral("newui/sound_%1_mini_button.png").arg(level)));
    QTRY_VERIFY(qAbs(slider->property("progression").toReal() - volume) <= kStep);
    const QColor red(255, 64, 18);
    // A quarter in from either end of what is filled and what is not.
    QTRY_VERIFY(volume < 0.1 || shows(red, at(volume / 4)));
    QTRY_VERIFY(volume > 0.95 || shows(Qt::white, at(1 - (1 - volume) / 2)));
    keepPicture(QStringLiteral("volume-%1").arg(level));
}

void tst_MainWindowVideo::assistiveTechnologyMovesTheSliders()
{
    constexpr qreal kStep = 0.05;
    showBar();
    key(Qt::Key_Space);
    QTRY_COMPARE(playbackState(), int(QMediaPlayer::PausedState));
    seekAndWait(kFilmMs / 2);
    scene(QStringLiteral("orb_mediaLoader.mediaPlayer.volume = 0.5"));
    clickOn(control(QStringLiteral("Volume")));
    for (const char *name : {"Timeline", "Volume"}) {
        QAccessibleInterface *slider = QAccessible::queryAccessibleInterface(
            control(QLatin1String(name), QAccessible::Slider));
        QAccessibleValueInterface *value = slider->valueInterface();
        const auto comesToShare = [value](qreal share) {
            const qreal tolerance = qreal(kFrameMs) / kFilmMs;
            return QTest::qWaitFor(
                [=] { return qAbs(value->currentValue().toReal() - share) <= tolerance; },
                kPatienceMs);
        };
        QCOMPARE(value->minimumValue().toReal(), 0.);
        QCOMPARE(value->maximumValue().toReal(), 1.);
        QVERIFY(comesToShare(0.5));
        slider->actionInterface()->doAction(QAccessibleActionInterface::increaseAction());
        QVERIFY(comesToShare(0.5 + kStep));
        slider->actionInterface()->doAction(QAccessibleActionInterface::decreaseAction());
        QVERIFY(comesToShare(0.5));
    }
}

void tst_MainWindowVideo::aPictureEndsTheFilmAndAnotherFilmThePicture()
{
    const QObject *film = scene(QStringLiteral("orb_mediaLoader.mediaPlayer")).value<QObject *>();
    QVERIFY(dropFiles({media.octants()}));
    QTRY_VERIFY(showsOctantsAhead());
    QTRY_VERIFY(film->property("playbackState").toInt() != QMediaPlayer::PlayingState);
    QVERIFY(film->property("mediaSource").toUrl().isEmpty());
    openFilm();
    QTRY_VERIFY(showsFilmAhead());
}

void tst_MainWindowVideo::aFilmInAPlaylistGoesOnToTheNextEntry()
{
    QVERIFY(dropFiles({media.film(), media.octants()}));
    QTRY_VERIFY(plays());
    QTRY_COMPARE(playerStatus(), QMediaPlayer::BufferedMedia);
    QCOMPARE(view()->playListIndex(), 0);
    scene(QStringLiteral("orb_mediaLoader.mediaPlayer.seek(1500)"));
    QTRY_COMPARE(view()->playListIndex(), 1);
    QTRY_VERIFY(showsOctantsAhead());
}

int main(int argc, char **argv)
{
    return tst_MainWindowVideo().run(argc, argv);
}

#include "tst_MainWindowVideo.moc"
