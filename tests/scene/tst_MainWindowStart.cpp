#include "SceneFixture.h"

#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

namespace {
constexpr QPoint kInThePicture(300, 200);
constexpr int kRestMs = 3000;
constexpr int kShortRestMs = 400;
} // namespace

/// The program without a file: what it shows first, and how its controls come and go.
class tst_MainWindowStart : public SceneFixture
{
    Q_OBJECT

protected:
    bool keepsStartPopup() const override
    {
        return qstrcmp(QTest::currentTestFunction(), "startsWithTheAboutPopup") == 0;
    }

private:
    bool timerRests() const { return !scene(QStringLiteral("timerHideControls.running")).toBool(); }

    void restMs(int ms) { scene(QStringLiteral("timerHideControls.interval = %1").arg(ms)); }

private slots:
    void startsWithTheAboutPopup();
    void tellsWhatToDoWhileNothingPlays();
    void theHelpMarkShowsTheShortcuts();
    void theControlsGoAfterThreeSecondsOfRest();
    void theControlsStayWhileThePointerIsOverTheBar();
    void aPopupKeepsTheControlsAway();
    void closingTheWindowEndsTheProgram();
};

void tst_MainWindowStart::startsWithTheAboutPopup()
{
    QCOMPARE(state(), QStringLiteral("Popup"));
    QCOMPARE(title(), QStringLiteral("Orbix Sight"));
    QCOMPARE(window()->size(), QSize(1000, 600));
    QVERIFY(!cursorHidden());
    QTRY_VERIFY(reads(QStringLiteral("Orbix Sight 1.4.0")));
    const QQuickItem *panel = itemReading(QStringLiteral("Orbix Sight 1.4.0"))->parentItem();
    // The panel swings in beyond its size and back.
    QTRY_COMPARE(panel->mapRectToScene(panel->boundingRect()).center().toPoint(), middle());
    QTRY_COMPARE(panel->mapRectToScene(panel->boundingRect()).width(), panel->width());
    keepPicture(QStringLiteral("about"));

    key(Qt::Key_Escape);
    QCOMPARE(state(), QStringLiteral("Popup"));
    QTRY_COMPARE(state(), QStringLiteral("Video"));
    QVERIFY(cursorHidden());
    QTRY_VERIFY(!reads(QStringLiteral("Orbix Sight 1.4.0")));
}

void tst_MainWindowStart::tellsWhatToDoWhileNothingPlays()
{
    QVERIFY(reads(QStringLiteral("Drop your file(s) here")));
    QTRY_VERIFY(shows(QColor(128, 128, 128), {30, 300}));
    QTRY_VERIFY(shows(QColor(64, 64, 64), middle() + QPoint(0, 60)));
    keepPicture(QStringLiteral("start"));
}

void tst_MainWindowStart::theHelpMarkShowsTheShortcuts()
{
    const auto helpShows = [this] { return scene(QStringLiteral("orb_help.visible")).toBool(); };
    clickOn(imageItem(QStringLiteral("help_24.png")));
    QVERIFY(helpShows());
    keepPicture(QStringLiteral("help"));
    clickOn(imageItem(QStringLiteral("help_24.png")));
    QVERIFY(!helpShows());
}

void tst_MainWindowStart::theControlsGoAfterThreeSecondsOfRest()
{
    moveTo(kInThePicture);
    QCOMPARE(state(), QStringLiteral("ControlsPanel"));
    QVERIFY(!cursorHidden());
    QElapsedTimer clock;
    clock.start();
    moveTo(kInThePicture + QPoint(1, 0));
    QTRY_COMPARE(state(), QStringLiteral("Video"));
    QVERIFY2(clock.elapsed() >= kRestMs - kTimerSlackMs,
             qPrintable(QString::number(clock.elapsed())));
    QVERIFY(cursorHidden());

    moveTo(kInThePicture);
    QCOMPARE(state(), QStringLiteral("ControlsPanel"));
    QVERIFY(!cursorHidden());
}

void tst_MainWindowStart::theControlsStayWhileThePointerIsOverTheBar()
{
    restMs(kShortRestMs);
    moveTo(kInThePicture);
    QTRY_COMPARE(scene(QStringLiteral("orb_bar.y + orb_bar.height - root.height")).toReal(), 0.);
    moveTo({500, 590});
    QVERIFY(scene(QStringLiteral("orb_bar.containsMouse")).toBool());
    QTRY_VERIFY(timerRests());
    QCOMPARE(state(), QStringLiteral("ControlsPanel"));

    moveTo(kInThePicture);
    QVERIFY(!scene(QStringLiteral("orb_bar.containsMouse")).toBool());
    QTRY_COMPARE(state(), QStringLiteral("Video"));
}

void tst_MainWindowStart::aPopupKeepsTheControlsAway()
{
    restMs(kShortRestMs);
    moveTo(kInThePicture);
    key(Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(state(), QStringLiteral("Popup"));
    moveTo(kInThePicture + QPoint(50, 0));
    QCOMPARE(state(), QStringLiteral("Popup"));
    QTRY_VERIFY(timerRests());
    QCOMPARE(state(), QStringLiteral("Popup"));
    QVERIFY(!cursorHidden());
    moveTo(kInThePicture);
    QVERIFY(timerRests());
}

void tst_MainWindowStart::closingTheWindowEndsTheProgram()
{
    QTimer::singleShot(0, window(), &QWindow::close);
    QTimer::singleShot(10000, this, [] { QCoreApplication::exit(-1); });
    QCOMPARE(QCoreApplication::exec(), 0);
}

int main(int argc, char **argv)
{
    return tst_MainWindowStart().run(argc, argv);
}

#include "tst_MainWindowStart.moc"
