#include "FrameDeriver.h"
#include "HandMotion.h"
#include "WarningsFail.h"

#include <QtTest>

#include <map>

Q_DECLARE_METATYPE(Leap::GestureType)

/// Each kind of gesture in many noisy variations, and none in what hands do besides.
class tst_LeapGestures : public WarningsFail
{
    Q_OBJECT

private slots:
    void circlesAreFound();
    void swipesAreFound();
    void tapsAreFound_data();
    void tapsAreFound();
    void otherMotionsAreNoGestures_data();
    void otherMotionsAreNoGestures();
    void aSmallQuietTapCounts_data();
    void aSmallQuietTapCounts();
    void aCircleIsToldFrameByFrame();
    void whatIsUnderWayEnds_data();
    void whatIsUnderWayEnds();
    void aCircleOutlastsWhatIsShort_data();
    void aCircleOutlastsWhatIsShort();
    void otherFrameRatesWork_data();
    void otherFrameRatesWork();
};

namespace {

using namespace Leap;

constexpr int kVariations = 50;
constexpr float kNoise = 2; // mm

/// All that is told of one gesture, in order.
using Told = std::vector<GestureData>;

std::map<int, Told> gesturesIn(std::vector<FrameData> frames)
{
    FrameDeriver deriver;
    std::map<int, Told> told;
    for (FrameData &frame : frames) {
        deriver.complete(frame, GestureTypes::all());
        for (const GestureData &gesture : *frame.gestures)
            told[gesture.id].push_back(gesture);
    }
    return told;
}

class Chance
{
public:
    explicit Chance(unsigned seed)
        : m_random(seed)
    {}

    float between(float least, float most)
    {
        return std::uniform_real_distribution<float>(least, most)(m_random);
    }
    bool coin() { return between(0, 1) < 0.5F; }
    QString place()
    {
        return QStringLiteral("at %1 %2 %3 | ")
            .arg(double(between(-80, 80)))
            .arg(double(between(150, 280)))
            .arg(double(between(-40, 60)));
    }
    /// With the sensor's noise, at 90 to 120 frames a second.
    std::vector<FrameData> play(const QString &text)
    {
        return HandMotion(text).frames(between(90, 120), kNoise, m_random);
    }
    std::mt19937 &random() { return m_random; }

private:
    std::mt19937 m_random;
};

QString oneGesture(const std::map<int, Told> &told, GestureType type)
{
    QStringList types;
    for (const auto &[id, gesture] : told)
        types.append(QString::number(int(gesture.front().type)));
    if (types == QStringList(QString::number(int(type))))
        return {};
    return "gestures: " + types.join(' ');
}

QString number(float value)
{
    return QString::number(double(value));
}

} // namespace

void tst_LeapGestures::circlesAreFound()
{
    for (unsigned seed = 0; seed < kVariations; ++seed) {
        Chance chance(seed);
        const float radius = chance.between(15, 60);
        const float turns = chance.between(1.5F, 4) * (chance.coin() ? 1 : -1);
        const float seconds = std::abs(turns) * chance.between(0.4F, 1);
        const QString text = chance.place() + "point in 0 | hold 0.5 | circle r " + number(radius)
            + " turns " + number(turns) + " in " + number(seconds)
            + (chance.coin() ? " steady" : "") + " | hold 0.6";
        const auto told = gesturesIn(chance.play(text));
        const QString what = QString::number(seed) + ": " + text + ": ";
        const QString wrong = oneGesture(told, GestureType::Circle);
        QVERIFY2(wrong.isEmpty(), qPrintable(what + wrong));
        const Told &circle = told.begin()->second;
        QVERIFY2(circle.front().state == GestureState::Start, qPrintable(what));
        QVERIFY2(circle.back().state == GestureState::Stop, qPrintable(what));
        // In the middle of it.
        const GestureData &now = circle[circle.size() / 2];
        const QString got = "r " + number(now.radius) + " normal.z " + number(now.normal.z)
            + " progress " + number(circle.back().progress);
        QVERIFY2(std::abs(now.radius - radius) < 0.1F * radius + 1, qPrintable(what + got));
        // Clockwise circles have the normal along the finger, which points away from the user.
        QVERIFY2(now.normal.dot({0, 0, turns > 0 ? -1.0F : 1.0F}) > 0.95F, qPrintable(what + got));
        QVERIFY2(std::abs(circle.back().progress - std::abs(turns)) < 0.25F,
                 qPrintable(what + got));
        QCOMPARE(now.pointableIds, std::vector<int>{11});
        QCOMPARE(now.handIds, std::vector<int>{1});
    }
}

void tst_LeapGestures::swipesAreFound()
{
    for (unsigned seed = 0; seed < kVariations; ++seed) {
        Chance chance(seed);
        const float angle = chance.between(0, 6.28F);
        const Vector way(std::cos(angle), std::sin(angle), chance.between(-0.3F, 0.3F));
        const Vector path = way.normalized() * chance.between(260, 450);
        // Of a minimum-jerk path the greatest speed is 15/8 of the mean.
        const float fastest = chance.between(1500, 3000);
        const float seconds = path.magnitude() * 15 / 8 / fastest;
        const QString text = chance.place() + (chance.coin() ? "open in 0" : "point in 0")
            + " | hold 0.4 | swipe " + number(path.x) + " " + number(path.y) + " " + number(path.z)
            + " in " + number(seconds) + " | hold 0.4";
        const auto told = gesturesIn(chance.play(text));
        const QString what = QString::number(seed) + ": " + text + ": ";
        const QString wrong = oneGesture(told, GestureType::Swipe);
        QVERIFY2(wrong.isEmpty(), qPrintable(what + wrong));
        const Told &swipe = told.begin()->second;
        QVERIFY2(swipe.front().state == GestureState::Start, qPrintable(what));
        QVERIFY2(swipe.back().state == GestureState::Stop, qPrintable(what));
        float most = 0;
        for (const GestureData &now : swipe) {
            QVERIFY2(now.direction.dot(way.normalized()) > 0.95F, qPrintable(what));
            most = std::max(most, now.speed);
        }
        QVERIFY2(std::abs(most / fastest - 1) < 0.15F, qPrintable(what + number(most)));
        const float came = swipe.back().position.distanceTo(swipe.front().startPosition);
        QVERIFY2(came > 150 && came < path.magnitude() + 10, qPrintable(what + number(came)));
        QVERIFY2(std::abs(float(swipe.back().duration) * 1e-6F / seconds - 0.85F) < 0.25F,
                 qPrintable(what + QString::number(swipe.back().duration)));
        QCOMPARE(swipe.front().handIds, std::vector<int>{1});
    }
}

void tst_LeapGestures::tapsAreFound_data()
{
    QTest::addColumn<QString>("verb");
    QTest::addColumn<GestureType>("type");
    QTest::newRow("key tap") << "keytap" << GestureType::KeyTap;
    QTest::newRow("screen tap") << "screentap" << GestureType::ScreenTap;
}

void tst_LeapGestures::tapsAreFound()
{
    QFETCH(const QString, verb);
    QFETCH(const GestureType, type);
    for (unsigned seed = 0; seed < kVariations; ++seed) {
        Chance chance(seed);
        const QString text = chance.place() + "point in 0 | hold 0.5 | " + verb + " "
            + number(chance.between(14, 30)) + " in " + number(chance.between(0.12F, 0.3F))
            + " | hold 0.5";
        const auto told = gesturesIn(chance.play(text));
        const QString what = QString::number(seed) + ": " + text + ": ";
        const QString wrong = oneGesture(told, type);
        QVERIFY2(wrong.isEmpty(), qPrintable(what + wrong));
        QCOMPARE(told.begin()->second.size(), std::size_t(1));
        const GestureData &tap = told.begin()->second.front();
        const Vector way = type == GestureType::KeyTap ? Vector(0, -1, 0) : Vector(0, 0, -1);
        QVERIFY2(tap.direction.dot(way) > 0.9F, qPrintable(what));
        QCOMPARE(tap.pointableIds, std::vector<int>{11});
    }
}

namespace {

/// A minute of hands that hover and drift, in one shape after the other.
std::vector<FrameData> idle(Chance &chance)
{
    QString text;
    for (const char *hand : {"right: at 80 200 0", "left: at -80 200 0"}) {
        text += QLatin1String(hand);
        for (int i = 0; i < 30; ++i) {
            const std::array<QString, 4> shapes{"open", "point", "fist", "open"};
            text += " | " + shapes[std::size_t(chance.between(0, 3.99F))] + " in 0.5 | hold 0.5"
                + " | move " + number(chance.between(-15, 15)) + " "
                + number(chance.between(-15, 15)) + " " + number(chance.between(-15, 15)) + " in 1";
        }
        text += '\n';
    }
    return chance.play(text);
}

/// A minute of passers-by: their hands swing with the arms, hanging, or are held out.
std::vector<FrameData> walkingBy(Chance &chance)
{
    QString text;
    while (HandMotion(text).duration() < 60) {
        const float way = chance.coin() ? 1 : -1;
        const float stride = chance.between(100, 350) * way;
        text += QStringLiteral("away 1 | at %1 220 100 | open in 0 | ").arg(double(-350 * way));
        if (chance.coin()) {
            // Hanging: it goes on in strides, between which it all but rests.
            text += "nod -80 in 0 | move " + number(stride) + " 20 0 in 0.3 | move "
                + number(2 * stride) + " -30 0 in 0.3 | move " + number(stride)
                + " 0 30 in 0.3 | nod 80 in 0\n";
        } else {
            text += "move " + number(700 * way) + " " + number(chance.between(-60, 60)) + " 0 in "
                + number(chance.between(0.4F, 0.9F)) + " steady\n";
        }
    }
    return chance.play(text);
}

/// A minute of both hands on a keyboard: bent fingers that strike one after the other, while the
/// palm finds its way to the keys.
std::vector<FrameData> typing(Chance &chance)
{
    constexpr float kRate = 110;
    struct Typist
    {
        HandPose pose;
        Vector from;
        Vector to;
        int finger = 1;
        float begin = 0;
        float seconds = 0;
    };
    std::array<Typist, 2> typists;
    typists[1].pose.isLeft = true;
    typists[1].pose.id = 2;
    std::vector<FrameData> frames;
    for (int i = 0; i < int(60 * kRate); ++i) {
        const float now = float(i) / kRate;
        std::vector<HandPose> hands;
        for (Typist &typist : typists) {
            if (now >= typist.begin + typist.seconds) {
                typist.from = typist.to;
                typist.to = Vector(chance.between(-20, 20) + (typist.pose.isLeft ? -90.0F : 90.0F),
                                   chance.between(145, 155), chance.between(-20, 20));
                typist.finger = int(chance.between(0, 4.99F));
                typist.begin = now;
                typist.seconds = chance.between(0.12F, 0.5F);
            }
            const float done = (now - typist.begin) / typist.seconds;
            HandPose pose = typist.pose.at(typist.from + (typist.to - typist.from) * done);
            pose.bend = {0.3F, 0.6F, 0.6F, 0.6F, 0.6F};
            pose.grab = 0.3F;
            pose.tipOffset[std::size_t(typist.finger)].y = -20 * std::sin(3.14159265F * done);
            hands.push_back(pose);
        }
        frames.push_back(handFrame(i, std::llround(double(now) * 1e6), hands));
    }
    addNoise(frames, kNoise, chance.random());
    return frames;
}

} // namespace

void tst_LeapGestures::otherMotionsAreNoGestures_data()
{
    QTest::addColumn<int>("motion");
    QTest::newRow("idle") << 0;
    QTest::newRow("walking by") << 1;
    QTest::newRow("typing") << 2;
}

void tst_LeapGestures::otherMotionsAreNoGestures()
{
    QFETCH(const int, motion);
    for (unsigned seed = 0; seed < 4; ++seed) {
        Chance chance(seed);
        const std::array<std::vector<FrameData> (*)(Chance &), 3> motions{idle, walkingBy, typing};
        const std::vector<FrameData> frames = motions[std::size_t(motion)](chance);
        QVERIFY(frames.size() > 5000);
        const auto told = gesturesIn(frames);
        QStringList found;
        for (const auto &[id, gesture] : told) {
            found.append(QStringLiteral("type %1 after %2 s")
                             .arg(int(gesture.front().type))
                             .arg(double(gesture.front().duration) * 1e-6));
        }
        QVERIFY2(found.isEmpty(), qPrintable(QString::number(seed) + ": " + found.join(", ")));
    }
}

void tst_LeapGestures::aSmallQuietTapCounts_data()
{
    QTest::addColumn<QString>("tap");
    QTest::addColumn<int>("count");
    // The published least ways are 3 and 5 mm, the speed 50 mm/s, the time 0.1 s each way.
    QTest::newRow("key, 4 mm") << "keytap 4 in 0.12" << 1;
    QTest::newRow("key, 2.5 mm") << "keytap 2.5 in 0.1" << 0;
    QTest::newRow("key, slow") << "keytap 4 in 0.5" << 0;
    QTest::newRow("screen, 6 mm") << "screentap 6 in 0.15" << 1;
    QTest::newRow("screen, 4 mm") << "screentap 4 in 0.12" << 0;
    QTest::newRow("there alone") << "move 0 -20 0 in 0.12 | hold 0.3" << 0;
    const QString on = " | keytap 20 in 0.3";
    QTest::newRow("the first of a row") << "keytap 20 in 0.3" + on + on + on + on + on << 1;
    QTest::newRow("of an open hand") << "open in 0 | hold 0.5 | keytap 20" << 0;
}

void tst_LeapGestures::aSmallQuietTapCounts()
{
    QFETCH(const QString, tap);
    QFETCH(const int, count);
    std::mt19937 random(1);
    const HandMotion motion("point in 0 | hold 0.5 | " + tap + " | hold 0.4");
    QCOMPARE(gesturesIn(motion.frames(110, 0.1F, random)).size(), std::size_t(count));
}

void tst_LeapGestures::aCircleIsToldFrameByFrame()
{
    const auto frames = HandMotion("point in 0 | hold 0.3 | circle r 20 turns 3 in 2.1 steady | "
                                   "hold 0.5")
                            .frames(100);
    const auto told = gesturesIn(frames);
    QCOMPARE(told.size(), std::size_t(1));
    const Told &circle = told.begin()->second;
    // An arc of 1.5 pi is three quarters of the first of three turns.
    QVERIFY(std::abs(double(circle.front().duration) * 1e-6 - 0.525) < 0.1);
    for (std::size_t i = 1; i + 1 < circle.size(); ++i) {
        QCOMPARE(circle[i].state, GestureState::Update);
        QCOMPARE(circle[i].duration - circle[i - 1].duration, std::int64_t(10000));
        const float progress = circle[i].progress - circle[i - 1].progress;
        QVERIFY2(progress >= 0 && progress < 0.03F, qPrintable(number(progress)));
    }
    QVERIFY(circle.back().center.distanceTo({-20, 180, -90}) < 1);
    QVERIFY(std::abs(circle.back().radius - 20) < 0.5F);
}

void tst_LeapGestures::whatIsUnderWayEnds_data()
{
    QTest::addColumn<QString>("text");
    const QString circle = "point in 0 | hold 0.2 | circle r 30 turns 1.5 in 1 steady | ";
    QTest::newRow("gone") << circle + "away 1";
    QTest::newRow("bent") << circle + "fist in 0.05 | hold 1";
    QTest::newRow("hanging") << circle + "nod -80 in 0 | hold 1";
    QTest::newRow("swipe, gone") << "hold 0.2 | swipe 400 0 0 steady | away 1";
    QTest::newRow("swipe, fist") << "hold 0.2 | swipe 400 0 0 steady | fist in 0 | hold 1";
}

void tst_LeapGestures::whatIsUnderWayEnds()
{
    QFETCH(const QString, text);
    const auto told = gesturesIn(HandMotion(text).frames(100));
    QCOMPARE(told.size(), std::size_t(1));
    QCOMPARE(told.begin()->second.back().state, GestureState::Stop);
}

void tst_LeapGestures::aCircleOutlastsWhatIsShort_data()
{
    QTest::addColumn<int>("bent"); // frames, of 10 ms
    QTest::addColumn<int>("lost");
    QTest::addColumn<int>("count");
    QTest::newRow("looks bent for a moment") << 14 << 0 << 1;
    QTest::newRow("is bent") << 17 << 0 << 2;
    QTest::newRow("few frames lost") << 0 << 18 << 1;
    QTest::newRow("many frames lost") << 0 << 21 << 2;
}

void tst_LeapGestures::aCircleOutlastsWhatIsShort()
{
    QFETCH(const int, bent);
    QFETCH(const int, lost);
    QFETCH(const int, count);
    auto frames = HandMotion("point in 0 | hold 0.2 | circle r 30 turns 3 in 3 steady").frames(100);
    for (std::size_t i = 0; i < std::size_t(bent); ++i)
        frames[150 + i].pointables[1].isExtended = false;
    frames.erase(frames.begin() + 150, frames.begin() + 150 + lost);
    QCOMPARE(gesturesIn(frames).size(), std::size_t(count));
}

void tst_LeapGestures::otherFrameRatesWork_data()
{
    QTest::addColumn<float>("rate");
    QTest::newRow("30") << 30.0F;
    QTest::newRow("60") << 60.0F;
    QTest::newRow("200") << 200.0F;
    QTest::newRow("500") << 500.0F;
}

void tst_LeapGestures::otherFrameRatesWork()
{
    QFETCH(const float, rate);
    const std::array<std::pair<QString, GestureType>, 4> motions{{
        {"circle r 30 turns 2 in 1.6", GestureType::Circle},
        {"swipe 350 0 0 in 0.35", GestureType::Swipe},
        {"keytap 20 in 0.25", GestureType::KeyTap},
        {"screentap 20 in 0.25", GestureType::ScreenTap},
    }};
    for (unsigned seed = 0; seed < 10; ++seed) {
        for (const auto &[text, type] : motions) {
            std::mt19937 random(seed);
            auto frames = HandMotion("point in 0 | hold 0.6 | " + text + " | hold 0.5")
                              .frames(rate, 0.5F, random);
            // The service does not send quite regularly.
            std::uniform_real_distribution<double> late(0, 0.3e6 / double(rate));
            for (FrameData &frame : frames)
                frame.timestamp += std::llround(late(random));
            const QString wrong = oneGesture(gesturesIn(frames), type);
            QVERIFY2(wrong.isEmpty(), qPrintable(QString::number(seed) + text + wrong));
        }
    }
}

QTEST_GUILESS_MAIN(tst_LeapGestures)

#include "tst_LeapGestures.moc"
