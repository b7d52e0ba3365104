#include "EdgePush.h"
#include "FingerPair.h"
#include "HandStage.h"
#include "PointerStep.h"
#include "WarningsFail.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <numeric>

using Change = HandStage::Change;
using Leap::TouchZone;
using Leap::Vector;
using PointerStep::MouseEvent;

namespace {

const Vector kTip(0, 200, 0); ///< the middle of the interaction box

/// A hand of that id whose index finger alone points, its tip there.
HandPose pointingAt(const Vector &tip, int id = 1)
{
    HandPose pose = HandPose().at(tip - Vector(-20, 0, -90)).pointing();
    pose.id = id;
    return pose;
}

HandStage::Hands resting(int)
{
    return {pointingAt(kTip)};
}

void addTool(Leap::FrameData &moment, int id, const Vector &tip)
{
    Leap::PointableData tool;
    tool.id = id;
    tool.isTool = true;
    tool.tipPosition = tip;
    moment.pointables.push_back(tool);
}

void setTouch(HandStage &stage, int age, TouchZone zone)
{
    stage.moment(age).pointables[1].touchZone = zone;
}

/// Compares to a hundredth of a pixel.
bool isAt(const QVector4D &pointer, const QVector4D &place)
{
    return (pointer - place).length() < 0.01F;
}

QByteArray text(const QVector4D &pointer)
{
    QString all;
    QDebug(&all) << pointer;
    return all.toUtf8();
}

} // namespace

Q_DECLARE_METATYPE(TouchZone)

class tst_HandPointer : public WarningsFail
{
    Q_OBJECT

private slots:
    void fingersAndToolsPoint_data();
    void fingersAndToolsPoint();
    void twoFingersLieToEachOther();
    void theBoxIsStretchedOverTheWindow_data();
    void theBoxIsStretchedOverTheWindow();
    void tipsAreMeaned_data();
    void tipsAreMeaned();
    void touchingPresses_data();
    void touchingPresses();
    void thePointerHidesInTheMiddle_data();
    void thePointerHidesInTheMiddle();
    void theEdgePushes_data();
    void theEdgePushes();
};

void tst_HandPointer::fingersAndToolsPoint_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<int>("first"); // ids, -1 for none
    QTest::addColumn<int>("second");
    QTest::addColumn<int>("single");
    const auto row = [](const char *name, const Change &change, int first, int second, int single) {
        QTest::newRow(name) << change << first << second << single;
    };
    const auto extend = [](std::initializer_list<int> fingers) {
        return [all = std::vector<int>(fingers)](HandStage &s) {
            auto &pointables = s.moment(0).pointables;
            for (std::size_t i = 0; i < pointables.size(); ++i)
                pointables[i].isExtended = std::count(all.begin(), all.end(), int(i)) > 0;
        };
    };
    const auto second = [](const Vector &tip) {
        return [tip](HandStage &s) { addHand(s.moment(0), pointingAt(tip, 2)); };
    };
    row("the index finger", extend({0, 1, 2, 3}), 11, -1, 11);
    row("the middle finger", extend({0, 2, 3, 4}), 12, -1, 12);
    row("the ring finger", extend({0, 3, 4}), 13, -1, 13);
    row("not thumb and little finger", extend({0, 4}), -1, -1, -1);
    row("a hand to the right", second({100, 200, 0}), 11, 21, 11);
    row("a hand to the left", second({-100, 200, 0}), 21, 11, 21);
    row(
        "the right of two",
        [=](HandStage &s) {
            second({100, 200, 0})(s);
            s.moment(0).pointables[1].isExtended = false;
        },
        -1, 21, 21);
    row(
        "a tool to the left",
        [](HandStage &s) {
            addTool(s.moment(0), 90, {-50, 200, 0});
        },
        90, 11, 90);
    row(
        "a tool to the right",
        [](HandStage &s) {
            addTool(s.moment(0), 90, {150, 200, 0});
        },
        11, 90, 11);
    row(
        "two tools beside a hand",
        [](HandStage &s) {
            addTool(s.moment(0), 90, {-50, 200, 0});
            addTool(s.moment(0), 91, {50, 200, 0});
        },
        -1, -1, -1);
    row(
        "a tool beside two hands",
        [=](HandStage &s) {
            second({100, 200, 0})(s);
            addTool(s.moment(0), 90, {-50, 200, 0});
        },
        -1, -1, -1);
    const auto tools = [](int count) {
        return [count](HandStage &s) {
            s.moment(0).pointables.clear();
            for (int i = 0; i < count; ++i)
                addTool(s.moment(0), 90 + i, {-10.0F * float(i), 200, 0});
        };
    };
    row("a tool", tools(1), 90, -1, 90);
    row("the outer of three tools", tools(3), 92, 90, 92);
    row("nothing", tools(0), -1, -1, -1);
}

void tst_HandPointer::fingersAndToolsPoint()
{
    QFETCH(Change, change);
    QFETCH(int, first);
    QFETCH(int, second);
    HandStage stage(resting);
    change(stage);
    const Leap::Frame &frame = stage.scene().frames.current();
    const PointerSelection::Pointers pointers = PointerSelection::two(frame);
    QCOMPARE(pointers.first.id(), first);
    QCOMPARE(pointers.second.id(), second);
    QCOMPARE(pointers.count(), int(first >= 0) + int(second >= 0));
    QTEST(PointerSelection::one(frame).id(), "single");
    QCOMPARE(fingerPair(pointers).has_value(), first >= 0 && second >= 0);
}

void tst_HandPointer::twoFingersLieToEachOther()
{
    HandStage stage([](int) {
        return HandStage::Hands{pointingAt({30, 200, 10}), pointingAt({-70, 240, 45}, 2)};
    });
    const auto pair = fingerPair(PointerSelection::two(stage.scene().frames.current()));
    QVERIFY(pair);
    QCOMPARE(pair->between, Vector(-100, 40, 35));
    QCOMPARE(pair->spread, 60.0F);
    QCOMPARE(pair->depth, 35.0F);
}

void tst_HandPointer::theBoxIsStretchedOverTheWindow_data()
{
    QTest::addColumn<Vector>("tip");
    QTest::addColumn<double>("stretch");
    QTest::addColumn<QVector4D>("pointer");
    // The box is 235.247 by 235.247 by 147.751 mm about (0, 200, 0), the window 1000 by 500.
    const float tenth = 23.5247F;
    const auto row = [](const char *name, const Vector &from, double stretch,
                        const QVector4D &pointer) {
        QTest::newRow(name) << kTip + from << stretch << pointer;
    };
    row("middle", {0, 0, 0}, 1.2, {500, 250, 0.5F, 1});
    row("right and up", {tenth, tenth, -14.7751F}, 1, {600, 200, 0.4F, 1});
    row("stretched", {tenth, tenth, 0}, 1.2, {620, 190, 0.5F, 1});
    row("at the right edge", {4.16F * tenth, 0, 0}, 1.2, {999.2F, 250, 0.5F, 1});
    row("over the right edge", {4.17F * tenth, 0, 0}, 1.2, {1000, 250, 0.5F, 1});
    row("over the lower left corner", {-100, -100, 0}, 1.2, {0, 500, 0.5F, 1});
    row("over the upper edge", {0, 100, 0}, 1.2, {500, 0, 0.5F, 1});
    row("beside a box made wider", {6 * tenth, 0, 0}, 0.8, {980, 250, 0.5F, 1});
    row("near", {0, 0, 0.39F * 147.751F}, 1.2, {500, 250, 0.89F, 1});
    row("too near", {0, 0, 100}, 1.2, {500, 250, 0.9F, 1});
    row("far", {0, 0, -100}, 1.2, {500, 250, 0, 1});
}

void tst_HandPointer::theBoxIsStretchedOverTheWindow()
{
    QFETCH(Vector, tip);
    QFETCH(double, stretch);
    QFETCH(QVector4D, pointer);
    HandStage stage([tip](int) { return HandStage::Hands{pointingAt(tip)}; });
    stage.options.pointerSensibility = stretch;
    const PointerStep::Result result = PointerStep::step(stage.scene(), {}, false);
    QVERIFY2(isAt(result.state.pointer, pointer), text(result.state.pointer));
}

void tst_HandPointer::tipsAreMeaned_data()
{
    QTest::addColumn<int>("interpolation");
    QTest::addColumn<QVector<int>>("absent"); // ages
    QTest::addColumn<double>("x");            // pixels, -1 for hidden
    QVector<int> young(19);
    std::iota(young.begin(), young.end(), 0);
    QVector<int> all = young;
    all << 19;
    QTest::newRow("none") << 0 << QVector<int>{} << 500.0;
    QTest::newRow("one") << 1 << QVector<int>{} << 500.0;
    QTest::newRow("three") << 3 << QVector<int>{} << 510.0;
    QTest::newRow("three with a gap") << 3 << QVector<int>{1} << 510.0;
    QTest::newRow("four with a gap") << 4 << QVector<int>{2} << 500.0 + 40.0 / 3;
    QTest::newRow("from an older moment") << 2 << QVector<int>{0, 1} << 525.0;
    QTest::newRow("more than there are") << 255 << QVector<int>{} << 695.0;
    QTest::newRow("the oldest that points") << 1 << young << 690.0;
    QTest::newRow("too old") << 1 << all << -1.0;
}

void tst_HandPointer::tipsAreMeaned()
{
    QFETCH(int, interpolation);
    QFETCH(QVector<int>, absent);
    QFETCH(double, x);
    // The tip was 10 pixels further to the right with each age.
    HandStage stage([absent](int age) {
        const HandPose pose = pointingAt({float(age) * 2.35247F, 200, 0});
        return HandStage::Hands{absent.contains(age) ? pose.fist() : pose};
    });
    stage.options.pointerInterpolation = interpolation;
    stage.options.pointerSensibility = 1;
    const PointerStep::Result result = PointerStep::step(stage.scene(), {}, false);
    const QVector4D pointer = x < 0 ? QVector4D(500.1F, 250.1F, 0, -1)
                                    : QVector4D(float(x), 250, 0.5F, 1);
    QVERIFY2(isAt(result.state.pointer, pointer), text(result.state.pointer));
}

void tst_HandPointer::touchingPresses_data()
{
    QTest::addColumn<TouchZone>("before");
    QTest::addColumn<TouchZone>("now");
    QTest::addColumn<bool>("pressed");
    QTest::addColumn<int>("mouse"); // -1 for none
    const auto row = [](const char *name, TouchZone before, TouchZone now, bool pressed,
                        int mouse) { QTest::newRow(name) << before << now << pressed << mouse; };
    row("touches", TouchZone::Hovering, TouchZone::Touching, false, MouseEvent::Press);
    row("touches, pressed", TouchZone::Hovering, TouchZone::Touching, true, -1);
    row("goes on touching", TouchZone::Touching, TouchZone::Touching, true, -1);
    row("touches from afar", TouchZone::None, TouchZone::Touching, false, -1);
    row("leaves", TouchZone::Touching, TouchZone::Hovering, true, MouseEvent::Release);
    row("leaves unpressed", TouchZone::Touching, TouchZone::Hovering, false, MouseEvent::Move);
    row("hovers", TouchZone::Hovering, TouchZone::Hovering, false, MouseEvent::Move);
    row("hovers, pressed", TouchZone::Hovering, TouchZone::Hovering, true, MouseEvent::Move);
    row("goes far", TouchZone::Touching, TouchZone::None, true, -1);
}

void tst_HandPointer::touchingPresses()
{
    QFETCH(TouchZone, before);
    QFETCH(TouchZone, now);
    QFETCH(bool, pressed);
    QFETCH(int, mouse);
    HandStage stage(resting);
    // The finger is seen three moments ago for the last time.
    for (int age = 0; age < 3; ++age)
        stage.moment(age).pointables[1].isExtended = false;
    setTouch(stage, 4, before);
    setTouch(stage, 3, now);
    const PointerStep::Result result = PointerStep::step(stage.scene(), {QVector4D(), pressed},
                                                         false);
    QCOMPARE(result.mouse ? int(result.mouse->kind) : -1, mouse);
    QCOMPARE(result.mouse ? result.mouse->place : QPointF(500, 250), QPointF(500, 250));
    QCOMPARE(result.state.isPressed,
             mouse == MouseEvent::Press || (pressed && mouse != MouseEvent::Release));
}

void tst_HandPointer::thePointerHidesInTheMiddle_data()
{
    QTest::addColumn<bool>("isMenuOpen");
    QTest::newRow("over the picture") << false;
    QTest::newRow("over the menu") << true;
}

void tst_HandPointer::thePointerHidesInTheMiddle()
{
    QFETCH(bool, isMenuOpen);
    HandOptions options;
    options.width = 1000;
    options.height = 500;
    const PointerStep::State before{{10, 20, 0.3F, 1}, true};
    const PointerStep::Result result = PointerStep::reset(options, before, isMenuOpen);
    QVERIFY2(isAt(result.state.pointer, {500.1F, 250.1F, 0.3F, -1}), text(result.state.pointer));
    QVERIFY(result.state.isPressed);
    QCOMPARE(result.mouse.has_value(), isMenuOpen);
    if (isMenuOpen) {
        QCOMPARE(result.mouse->kind, MouseEvent::Move);
        QCOMPARE(result.mouse->place, result.state.pointer.toPointF());
    }
}

void tst_HandPointer::theEdgePushes_data()
{
    QTest::addColumn<QPointF>("place");
    QTest::addColumn<bool>("pushes");
    QTest::addColumn<double>("yaw"); // shares of the push at the very edge
    QTest::addColumn<double>("pitch");
    const auto row = [](const char *name, const QPointF &place, bool pushes, double yaw,
                        double pitch) { QTest::newRow(name) << place << pushes << yaw << pitch; };
    // The resting ellipse reaches 300 pixels to the sides, 150 up and down.
    row("middle", {500, 250}, false, 0, 0);
    row("in the ellipse", {799, 250}, false, 0, 0);
    row("right of the ellipse", {801, 250}, true, 0.5025, 0);
    row("in the ellipse, low", {500, 399}, false, 0, 0);
    row("below the ellipse", {500, 401}, true, 0, -0.505);
    // 0.7 of both half axes is inside, 0.72 outside.
    row("aslant in the ellipse", {710, 355}, false, 0, 0);
    row("aslant outside the ellipse", {716, 358}, true, 0.29, -0.29);
    row("upper left corner", {0, 0}, true, -1, 1);
    row("lower right corner", {1000, 500}, true, 1, -1);
    row("beside the middle fifth", {100, 300}, true, -0.75, 0);
    row("beyond the middle fifth", {100, 302}, true, -0.75, -0.01);
    row("over the middle fifth", {400, 50}, true, 0, 0.75);
}

void tst_HandPointer::theEdgePushes()
{
    QFETCH(QPointF, place);
    QFETCH(bool, pushes);
    QFETCH(double, yaw);
    QFETCH(double, pitch);
    HandOptions options;
    options.width = 1000;
    options.height = 500;
    HandView view;
    QCOMPARE(edgePush(view, options, place.x(), place.y()), pushes);
    // 90 degrees · 0.2 over 1000 and 500 pixels.
    QVERIFY2(std::abs(double(view.yaw) - yaw * 0.018) < 1e-6,
             qPrintable(QString::number(view.yaw)));
    QVERIFY2(std::abs(double(view.pitch) + pitch * 0.036) < 1e-6,
             qPrintable(QString::number(view.pitch)));
}

QTEST_GUILESS_MAIN(tst_HandPointer)
#include "tst_HandPointer.moc"
