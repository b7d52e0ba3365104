#include "ClipWriter.h"
#include "Player.h"
#include "TrackingService.h"
#include "WarningsFail.h"

#include <QtTest>

#include <cmath>

namespace {

using Frames = std::vector<Leap::FrameData>;

constexpr int kPlaying = 1; // QMediaPlayer::State
constexpr int kPaused = 2;
constexpr char kPlayer[] = "orb_mediaLoader.mediaPlayer";
constexpr int kRectilinear = 1;
constexpr int kLittlePlanet = 2;
constexpr double kSensitivity = 0.2;
constexpr int kNewFrames = 34; // without effect, after a hand has come

Leap::GestureData published(Leap::GestureType type, Leap::GestureState state)
{
    Leap::GestureData gesture;
    gesture.id = 7;
    gesture.type = type;
    gesture.state = state;
    gesture.duration = 100000;
    gesture.handIds = {1};
    gesture.pointableIds = {HandPose().fingerId(1)};
    return gesture;
}

/// How a view of `fov` degrees turns by the palm's way to the right, as the hand's speed is
/// defined: the mean of ten frames, in mm a frame, that fades by 3 % a frame and ends below 0.3.
double expectedYaw(const Frames &frames, double fov, double width)
{
    double yaw = 0;
    double speed = 0;
    const auto x = [&frames](int i) {
        return double(frames[std::size_t(std::max(i, 0))].hands.front().palmPosition.x);
    };
    for (int i = 0; i < int(frames.size()); ++i) {
        speed *= 0.97;
        yaw += fov * speed / width * kSensitivity;
        if (std::abs(speed) < 0.3)
            speed = 0;
        if (std::abs(x(i) - x(i - 1)) > 0.1)
            speed = (x(i) - x(i - 10)) / 10;
    }
    return yaw;
}

} // namespace

/// The real program with hands over a tracking service.
class tst_Hands : public WarningsFail
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void anOpenHandTurnsTheViewWhichGlidesOn();
    void aClapPausesAFilmAndACircleSeeksInIt_data();
    void aClapPausesAFilmAndACircleSeeksInIt();
    void aClapTakesTheViewBack();
    void aPinchPullsIntoThePlanetWhichBouncesBack();
    void flatHandsSwitchToThePlanetAndBack();
    void theTutorialRunsToItsEnd();
    void theTrackerComesAndGoes();

private:
    void start(const QStringList &arguments = {});
    void openGate();
    QVariant value(const char *object, const char *property)
    {
        return m_player->value(object, property);
    }
    double camera(const char *property) { return value("orbGlobalObject", property).toDouble(); }
    /// Of a film that was just paused, once it stays: it is told ten times a second.
    int restingPosition()
    {
        int before = -1;
        int now = value(kPlayer, "position").toInt();
        while (now != before) {
            QTest::qWait(300);
            before = now;
            now = value(kPlayer, "position").toInt();
        }
        return now;
    }
    int projection() { return value("orbShaderCodeBuilder", "projection").toInt(); }

    std::unique_ptr<TrackingService> m_service;
    std::unique_ptr<Player> m_player;
};

void tst_Hands::init()
{
    WarningsFail::init();
    m_service = std::make_unique<TrackingService>();
    m_player = std::make_unique<Player>();
    m_player->setEnvironment(QStringLiteral("ORBIX_HANDS_SERVICE"), m_service->address());
}

void tst_Hands::cleanup()
{
    if (m_player->isRunning())
        m_player->close();
    const QString ending = m_player->ending();
    m_player.reset();
    m_service.reset();
    QCOMPARE(ending, QStringLiteral("0"));
}

void tst_Hands::start(const QStringList &arguments)
{
    m_player->start(arguments);
    QVERIFY(m_player->waitForState(
        [](const QJsonObject &state) { return state.value(QLatin1String("frames")).toInt() > 0; }));
    QTRY_VERIFY(value("orbLeap", "activated").toBool());
}

/// Nothing works until the first gesture.
void tst_Hands::openGate()
{
    const double before = camera("yaw");
    m_service->play(QStringLiteral("hold 0.5 | move 100 0 0 in 0.3 | to 0 200 0 in 0.3"));
    QCOMPARE(camera("yaw"), before);
    Frames frames = HandMotion(QStringLiteral("hold 0.1")).frames();
    frames[3].gestures = {published(Leap::GestureType::KeyTap, Leap::GestureState::Stop)};
    m_service->play(frames);
}

void tst_Hands::anOpenHandTurnsTheViewWhichGlidesOn()
{
    start();
    openGate();
    const double width = value("orbView", "width").toDouble();
    const Frames frames =
        HandMotion(QStringLiteral("hold 0.2 | move 100 0 0 in 0.5 steady | hold 2")).frames();
    const auto upTo = [&frames](int count) {
        return Frames(frames.begin(), frames.begin() + count);
    };
    m_service->play(upTo(70));
    const double turned = expectedYaw(upTo(70), 90, width);
    QVERIFY2(std::abs(camera("yaw") - turned) < 0.002,
             qPrintable(QStringLiteral("%1, not %2").arg(camera("yaw")).arg(turned)));
    m_service->play(Frames(frames.begin() + 70, frames.end()));
    const double glided = expectedYaw(frames, 90, width);
    QVERIFY(glided > turned * 1.1);
    QVERIFY2(std::abs(camera("yaw") - glided) < 0.002,
             qPrintable(QStringLiteral("%1, not %2").arg(camera("yaw")).arg(glided)));
    QCOMPARE(camera("pitch"), 0.0);
}

void tst_Hands::aClapPausesAFilmAndACircleSeeksInIt_data()
{
    QTest::addColumn<bool>("publishes");
    QTest::newRow("a service with gestures") << true;
    QTest::newRow("a service without gestures") << false;
}

void tst_Hands::aClapPausesAFilmAndACircleSeeksInIt()
{
    QFETCH(bool, publishes);
    Clip film;
    film.framesPerSecond = 10;
    film.frames = 1200;
    film.size = {64, 32};
    const QString path = m_player->folder() + QStringLiteral("/film.mp4");
    QCOMPARE(ClipWriter::write(path, film), QString());
    start({path});
    QTRY_COMPARE(value(kPlayer, "playbackState").toInt(), kPlaying);
    openGate();

    m_service->play(QStringLiteral("both: at 150 200 0 | fist in 0 | hold 0.5 | clap | hold 0.1"));
    QTRY_COMPARE(value(kPlayer, "playbackState").toInt(), kPaused);
    const int before = restingPosition();

    const HandMotion circle(
        QStringLiteral("point in 0 | hold 2 | circle r 10 turns %1 in %1 | hold 0.1")
            .arg(publishes ? 0 : 2));
    if (!publishes) {
        m_service->play(circle.frames());
        // From the first frame that counts as a circle, 50 ms a millimetre and degree... forwards.
        QTRY_VERIFY(value(kPlayer, "position").toInt() > before + 20000);
        QVERIFY(value(kPlayer, "position").toInt() < before + 2 * 10 * 5000);
        return;
    }
    Frames frames = circle.frames();
    for (std::size_t i = 0; i < 3; ++i) {
        auto gesture = published(Leap::GestureType::Circle,
                                 i == 0 ? Leap::GestureState::Start : Leap::GestureState::Update);
        gesture.radius = 10;
        gesture.normal = {0, 0, -1};
        gesture.progress = 1 + 0.1F * float(i);
        frames[frames.size() - 6 + i].gestures = {gesture};
    }
    m_service->play(frames);
    // 10 mm * 0.1 turns * 5000 ms, twice.
    QTRY_COMPARE(value(kPlayer, "position").toInt(), before + 10000);
}

void tst_Hands::aClapTakesTheViewBack()
{
    start();
    openGate();
    // The open hands are seen for 30 frames before they meet, and pull up the planet in the first.
    m_service->play(QStringLiteral("both: at 150 200 0 | hold 0.4"));
    QCOMPARE(projection(), kLittlePlanet);
    m_service->play(QStringLiteral("both: at 150 200 0 | clap in 0.4"));
    QCOMPARE(projection(), kRectilinear);
    QCOMPARE(camera("fov"), 90.0);
}

void tst_Hands::aPinchPullsIntoThePlanetWhichBouncesBack()
{
    start();
    openGate();
    const double height = value("orbView", "height").toDouble();
    m_service->play(QStringLiteral("pinch in 0 | hold 0.5"));
    QCOMPARE(projection(), kLittlePlanet);
    const double planetFov = 90 * 0.2801120448179272 - 5.95;
    QVERIFY(std::abs(camera("fov") - planetFov) < 0.01);

    const Frames pull = HandMotion(QStringLiteral("pinch in 0 | move 0 -50 0 in 0.5 steady"))
                            .frames();
    double pitch = 0;
    double fov = planetFov;
    for (std::size_t i = 1; i < pull.size(); ++i) {
        const double down = double(pull[i - 1].hands.front().palmPosition.y
                                   - pull[i].hands.front().palmPosition.y);
        pitch -= fov * down / height * kSensitivity;
        fov = std::clamp(std::abs(pitch) / 1.5707963267948966 * 90 + planetFov, 10.0, 360.0);
    }
    m_service->play(pull);
    QVERIFY2(std::abs(camera("pitch") - pitch) < 0.01,
             qPrintable(QStringLiteral("%1, not %2").arg(camera("pitch")).arg(pitch)));
    QVERIFY(std::abs(camera("fov") - fov) < 0.5);

    m_service->play(QStringLiteral("at 0 150 0 | open in 0 | hold 0.3"));
    QTRY_COMPARE(projection(), kRectilinear);
    QCOMPARE(camera("pitch"), 0.0);
    QVERIFY(std::abs(camera("fov") - 90) < 0.01);
}

void tst_Hands::flatHandsSwitchToThePlanetAndBack()
{
    start();
    openGate();
    const Frames flat = HandMotion(QStringLiteral("both: at 150 200 0 | hold 6")).frames();
    // Each moment as the frames after which it is looked at.
    auto playTo = [this, &flat, sent = 0](int count) mutable {
        m_service->play(Frames(flat.begin() + sent, flat.begin() + count));
        sent = count;
    };
    playTo(kNewFrames);
    QCOMPARE(projection(), kRectilinear);
    playTo(kNewFrames + 1);
    QCOMPARE(projection(), kLittlePlanet);
    // Three seconds later, and held for 17 frames.
    constexpr int back = kNewFrames + 1 + 300 + 17;
    playTo(back - 1);
    QCOMPARE(projection(), kLittlePlanet);
    playTo(back);
    QCOMPARE(projection(), kRectilinear);
    QVERIFY(std::abs(camera("fov") - 90) < 0.01);
    playTo(back + 150);
    QCOMPARE(projection(), kRectilinear);
    playTo(back + 151);
    QCOMPARE(projection(), kLittlePlanet);
}

void tst_Hands::theTutorialRunsToItsEnd()
{
    start();
    openGate();
    m_player->order("set orbLeap tutoState -2");
    const auto lesson = [this] { return value("orbLeap", "tutoState").toInt(); };
    QCOMPARE(lesson(), 0);
    QString sweep = QStringLiteral("hold 0.2");
    for (int i = 0; i < 6; ++i)
        sweep += QStringLiteral(" | to 150 200 0 in 0.4 | to -150 200 0 in 0.4");
    const QPair<QString, int> lessons[] = {
        {sweep, 1},
        {QStringLiteral("point in 0 | hold 0.5 | circle r 30 turns 3 in 2 | hold 2.2"), 2},
        {QStringLiteral("pinch in 0 | hold 0.5 | move 0 -60 0 in 2 | open | hold 1.5"), 3},
        {QStringLiteral("both: at 100 200 0 | point in 0 | hold 0.5 | move 60 0 0 in 0.3 | "
                        "move -60 0 0 in 0.3 | move 60 0 0 in 0.3 | move -60 0 0 in 0.3"),
         4},
        {QStringLiteral("both: at 150 200 0 | fist in 0 | hold 0.5 | clap | hold 0.2 | clap | hold "
                        "0.2"),
         5},
        {QStringLiteral("both: at 150 200 0 | hold 2 | roll -80 in 2 | hold 0.2"), 6},
        {QStringLiteral("hold 0.5 | move 150 0 0 in 0.6 | hold 1 | move -150 0 0 in 0.6 | hold 1"),
         20},
        {QStringLiteral("hold 0.2 | fist | hold 2"), -1},
    };
    for (const auto &[motion, next] : lessons) {
        m_service->play(motion);
        if (next == 3)
            QTRY_COMPARE(projection(), kRectilinear); // the bounce is over
        m_service->play(QStringLiteral("hold 0.1"));
        QTRY_COMPARE(lesson(), next);
    }
    QVERIFY(m_player->waitForState([](const QJsonObject &state) {
        return Player::shows(state, QStringLiteral("End of tutorial"));
    }));
}

void tst_Hands::theTrackerComesAndGoes()
{
    start();
    QCOMPARE(value("orbLeap", "logMessage").toString(),
             QStringLiteral("Leap Motion Device found.\n"));
    openGate();
    const auto shows = [this](const char *text) {
        return m_player->waitForState(
            [text](const QJsonObject &state) { return Player::shows(state, QLatin1String(text)); });
    };
    m_service->attach(false);
    QVERIFY(shows("Leap Motion Controller Disconnected"));
    QVERIFY(!value("orbLeap", "available").toBool());
    m_service->attach(true);
    QVERIFY(shows("Leap Motion Controller Connected"));
    m_service->stop();
    QVERIFY(shows("Leap Motion Controller Disconnected"));
    QVERIFY(value("orbLeap", "logMessage").toString().contains(QLatin1String("not found")));
    m_service->restart();
    QVERIFY(shows("Leap Motion Controller Connected"));
    m_service->play(QStringLiteral("hold 0.5 | move 100 0 0 in 0.3 | hold 0.5"));
    QVERIFY(camera("yaw") > 0.1);
}

QTEST_GUILESS_MAIN(tst_Hands)

#include "tst_Hands.moc"
