#include "HandDispatch.h"
#include "HandPose.h"
#include "OrbShaderCodeBuilder.h"

#include <QTest>

namespace {

using Builder = OrbShaderCodeBuilder;

QString nameOf(HandGesture gesture)
{
    // In the order of the enumeration.
    static const QStringList names =
        QStringLiteral("inertia open translation scale circle headset-circle clap next zoom roll "
                       "pointer reset push pull two return rotation tilt close planet-two")
            .split(QLatin1Char(' '));
    return names.value(int(gesture));
}

/// Notes what is asked; one gesture acts.
class Recorder : public HandActions
{
public:
    Recorder(HandState &state, QString acting)
        : m_state(state)
        , m_acting(std::move(acting))
    {}

    bool attempt(HandGesture gesture) override
    {
        m_asked += nameOf(gesture);
        return nameOf(gesture) == m_acting;
    }
    void showProjection(int projection) override { m_state.view.projection = projection; }

    QString asked() const { return m_asked.join(QLatin1Char(' ')); }

private:
    HandState &m_state;
    const QString m_acting;
    QStringList m_asked;
};

} // namespace

/// Which gestures are tried on a frame, and in which order.
class tst_HandDispatch : public QObject
{
    Q_OBJECT

private slots:
    void eachModeAsksItsGestures_data();
    void eachModeAsksItsGestures();
};

void tst_HandDispatch::eachModeAsksItsGestures_data()
{
    // What differs from mode 3, a rectilinear picture, a single closed hand, all switches as at the
    // start, and the last action long ago:
    //   nothing  no fingers            glide  the view glides on     pinch  a pinch is held
    //   pulled   a pull is under way
    //   open, opens, two   one open hand, two open hands, two closed ones
    //   point, points      one finger stretched, one on each of two hands
    //   roll, -fov, -clap, -seek       switches
    //   recent   an action 1.5 s ago   none  the planet's state      steep  a pitch of 0.75
    //   near     a field of view of 14 degrees
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("projection");
    QTest::addColumn<QString>("differences");
    QTest::addColumn<QString>("acting");
    QTest::addColumn<QString>("asked");

    const auto row = [](int mode, int projection, const char *differences, const char *acting,
                        const char *asked) {
        QTest::addRow("mode %d, projection %d, %s; %s", mode, projection, differences, acting)
            << mode << projection << differences << acting << asked;
    };
    row(0, Builder::RECTILINEAR, "nothing", "", "");
    row(0, Builder::RECTILINEAR, "", "", "circle clap");
    row(0, Builder::RECTILINEAR, "open", "", "circle clap translation");
    row(0, Builder::RECTILINEAR, "open -seek -clap", "", "translation");
    row(0, Builder::RECTILINEAR, "open", "circle", "circle");
    row(0, Builder::RECTILINEAR, "open", "clap", "circle clap");
    row(0, Builder::RECTILINEAR, "opens", "", "circle clap scale");
    row(0, Builder::RECTILINEAR, "opens -fov", "", "circle clap");

    row(1, Builder::RECTILINEAR, "nothing", "", "reset");
    row(1, Builder::RECTILINEAR, "", "", "clap");
    row(1, Builder::RECTILINEAR, "point", "", "clap circle pointer push");
    row(1, Builder::RECTILINEAR, "point", "clap", "clap");
    row(1, Builder::RECTILINEAR, "point -clap", "circle", "circle");
    row(1, Builder::RECTILINEAR, "point -seek", "", "clap pointer push");
    row(1, Builder::RECTILINEAR, "points", "", "clap reset zoom");
    row(1, Builder::RECTILINEAR, "points -fov roll", "", "clap reset roll");

    row(2, Builder::RECTILINEAR, "nothing", "", "headset-circle clap next");
    row(2, Builder::LITTLE_PLANET, "open", "headset-circle", "headset-circle");
    row(2, Builder::RECTILINEAR, "open -seek", "clap", "clap");
    row(2, Builder::RECTILINEAR, "-seek -clap", "", "next");

    row(3, Builder::RECTILINEAR, "nothing", "", "");
    row(3, Builder::RECTILINEAR, "nothing glide", "", "inertia circle pull zoom two open clap");
    row(3, Builder::RECTILINEAR, "nothing pinch", "pull", "inertia circle pull");
    row(3, Builder::LITTLE_PLANET, "nothing pulled", "pull", "inertia circle pull");
    row(4, Builder::LITTLE_PLANET, "nothing pulled", "pull", "circle pull");
    row(3, Builder::RECTILINEAR, "", "circle", "inertia circle");
    row(3, Builder::RECTILINEAR, "recent", "", "inertia pull zoom two open clap");
    row(3, Builder::RECTILINEAR, "-seek -fov -clap", "", "inertia pull two open");
    row(3, Builder::RECTILINEAR, "", "zoom", "inertia circle pull zoom two open clap");
    row(3, Builder::RECTILINEAR, "opens", "", "inertia circle pull two open clap");
    row(3, Builder::RECTILINEAR, "", "two", "inertia circle pull zoom two");
    row(3, Builder::RECTILINEAR, "roll", "roll", "inertia circle pull zoom two roll open clap");
    row(3, Builder::RECTILINEAR, "roll opens", "", "inertia circle pull two open clap");
    row(3, Builder::RECTILINEAR, "open", "open", "inertia circle pull zoom two open");
    row(3, Builder::LITTLE_PLANET, "", "",
        "inertia circle pull zoom two return rotation tilt clap");
    row(3, Builder::LITTLE_PLANET, "", "return", "inertia circle pull zoom two return");
    row(3, Builder::LITTLE_PLANET, "none", "", "inertia circle pull zoom two rotation tilt clap");
    row(3, Builder::LITTLE_PLANET, "steep", "rotation", "inertia circle pull zoom two rotation");
    row(3, Builder::LITTLE_PLANET, "steep", "tilt", "inertia circle pull zoom two rotation tilt");
    row(3, Builder::MIRROR_BALL, "roll", "", "inertia circle pull zoom two open clap");
    row(3, Builder::FISHEYE, "", "open", "inertia circle pull zoom two open");
    row(3, Builder::NO_PROJECTION, "open", "", "inertia circle pull zoom two clap");

    row(4, Builder::RECTILINEAR, "nothing", "", "");
    row(4, Builder::RECTILINEAR, "nothing glide", "", "circle pull zoom inertia clap");
    row(4, Builder::RECTILINEAR, "", "pull", "circle pull");
    row(4, Builder::FISHEYE, "near", "", "circle pull zoom inertia close clap");
    row(4, Builder::FISHEYE, "near", "close", "circle pull zoom inertia close");
    row(4, Builder::FISHEYE, "two", "", "circle pull zoom inertia rotation planet-two tilt clap");
    row(4, Builder::FISHEYE, "two", "planet-two", "circle pull zoom inertia rotation planet-two");
    row(5, Builder::RECTILINEAR, "open", "", "");
}

void tst_HandDispatch::eachModeAsksItsGestures()
{
    QFETCH(int, mode);
    QFETCH(int, projection);
    QFETCH(QString, differences);
    QFETCH(QString, acting);
    const QStringList given = differences.split(QLatin1Char(' '));
    const auto has = [&given](const char *difference) {
        return given.contains(QLatin1String(difference));
    };
    constexpr qint64 kNow = 20000000;

    const HandPose open;
    const HandPose closed = open.fist();
    std::vector<HandPose> hands;
    if (has("point") || has("points"))
        hands.push_back(open.pointing());
    else if (!has("nothing"))
        hands.push_back(has("open") || has("opens") ? open : closed);
    if (has("opens") || has("points") || has("two")) {
        HandPose other = has("opens") ? open : has("points") ? open.pointing() : closed;
        other.id = 2;
        hands.push_back(other.at({150, 200, 0}));
    }
    const FrameHistory frames(
        {Leap::Frame(std::make_shared<const Leap::FrameData>(handFrame(1, kNow, hands)))});
    HandOptions options;
    options.cameraMode = mode;
    const HandScene scene(frames, {}, options);

    HandState state;
    state.view.projection = projection;
    state.view.pitch = has("steep") ? 0.75F : 0.74F;
    state.view.fov = has("near") ? 14.0F : 90.0F;
    state.glide.pitchSpeed = has("glide") ? 1 : 0;
    state.planet.pinchHeld = has("pinch");
    state.planet.pullPitch = has("pulled") ? 0 : Planet::kNoPull;
    state.planet.state = has("none") ? PlanetState::None : PlanetState::Shown;
    state.lastAction = has("recent") ? kNow - 1500000 : kNow - 1500001;
    HandSwitches switches;
    switches.rollMode = has("roll");
    switches.fovMode = !has("-fov");
    switches.playPauseGesture = !has("-clap");
    switches.seekGesture = !has("-seek");

    Recorder recorder(state, acting);
    dispatchHands(scene, state, switches, !has("nothing"), recorder);
    QTEST(recorder.asked(), "asked");
    const bool isForced = mode == CameraMode::kPlanet && !recorder.asked().isEmpty();
    QCOMPARE(state.view.projection, isForced ? int(Builder::LITTLE_PLANET) : projection);
}

QTEST_APPLESS_MAIN(tst_HandDispatch)

#include "tst_HandDispatch.moc"
