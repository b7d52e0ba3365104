#include "MessageStream.h"

#include "WarningsFail.h"

#include <QtTest>

#include <cmath>

using namespace Leap;

namespace {

/// The message as a frame.
FrameData frameOf(const QByteArray &json)
{
    const ServiceMessage message = parseServiceMessage(json);
    if (const auto *error = std::get_if<MessageError>(&message))
        qCritical("%s", qPrintable(error->reason));
    const auto *frame = std::get_if<FrameData>(&message);
    return frame ? *frame : FrameData();
}

QByteArray withHand(const QByteArray &fields)
{
    return R"({"id": 1, "timestamp": 1, "hands": [{)" + fields + "}]}";
}

QByteArray withFinger(const QByteArray &fields)
{
    return R"({"id": 1, "timestamp": 1, "pointables": [{)" + fields + "}]}";
}

QByteArray withGesture(const QByteArray &fields)
{
    return R"({"id": 1, "timestamp": 1, "gestures": [{"type": "circle", "state": "start", )"
        + fields + "}]}";
}

} // namespace

class tst_LeapServiceMessage : public WarningsFail
{
    Q_OBJECT

private slots:
    void tellsMessagesApart_data();
    void tellsMessagesApart();
    void readsEveryField();
    void readsGestures_data();
    void readsGestures();
    void fillsWhatIsMissing();
    void leavesOutWhatCannotBe_data();
    void leavesOutWhatCannotBe();
    void bringsFiguresIntoTheirRange();
    void keepsSoManyAndNoMore();
    void passesNewFramesOn_data();
    void passesNewFramesOn();
    void knowsWhetherADeviceIsThere_data();
    void knowsWhetherADeviceIsThere();
};

void tst_LeapServiceMessage::tellsMessagesApart_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("told");
    const auto row = [](const char *name, const QByteArray &json, const char *told) {
        QTest::newRow(name) << json << QString::fromLatin1(told);
    };
    row("version", R"({"serviceVersion": "2.3.1", "version": 6})", "version 6");
    row("odd version", R"({"version": "six"})", "version 0");
    row("event",
        R"({"event": {"type": "deviceEvent", "state":
            {"attached": true, "id": "N7", "streaming": true, "type": "Peripheral"}}})",
        "N7 Peripheral 1 1");
    row("event with a number as id",
        R"({"event": {"type": "deviceEvent", "state": {"attached": true, "id": 12}}})", "12  1 1");
    row("event without a state", R"({"event": {"type": "deviceEvent"}})", "  0 0");
    row("another event", R"({"event": {"type": "policyEvent"}})", "unknown");
    row("no event", R"({"event": 3, "version": 6})", "unknown");
    row("no known key", R"({"focused": true})", "unknown");
    row("frame", R"({"id": 9007199254740992, "timestamp": 0})", "frame 9007199254740992");
    row("hands alone", R"({"hands": []})", "A frame without id or timestamp");
    row("no id", R"({"timestamp": 5})", "A frame without id or timestamp");
    row("id below 0", R"({"id": -1, "timestamp": 5})", "A frame without id or timestamp");
    row("timestamp of no clock", R"({"id": 1, "timestamp": 1e300})",
        "A frame without id or timestamp");
    row("text as timestamp", R"({"id": 1, "timestamp": "5"})", "A frame without id or timestamp");
    row("list", "[1, 2]", "No JSON object");
    row("text", "\"hands\"", "No JSON object");
    row("twice", R"({"version": 6, "x": [[1]], "x": [[2]], "version": 7})", "version 6");
    row("blanks and all kinds",
        "\t{ \"a\" :[ ] ,\r\n\"b\": {},\"c\":[true,false,null,-1.5e3,0],"
        "\"d\":\"\\\"}\\\\\", \"version\" : 6 } ",
        "version 6");
    row("deep enough", R"({"version": 6, "x": )" + QByteArray(31, '[') + QByteArray(31, ']') + '}',
        "version 6");
    for (const char *broken :
         {"",           " ",         "{",     "}",      "{\"a\"",   "{\"a\":",   "{\"a\":1",
          "{\"a\":1,}", "{\"a\" 1}", "{a:1}", "[1,]",   "[1",       "[1 2]",     "[1}",
          "[,]",        "{} {}",     "{}x",   "tru",    "nul",      "[-]",       "[.5]",
          "[inf]",      "[NaN]",     "[+1]",  "\"half", "\"half\\", "\"half\\\""})
        QTest::newRow(broken) << QByteArray(broken) << QStringLiteral("No JSON");
    row("deep", QByteArray(100'000, '['), "No JSON");
    row("deep objects", QByteArray("{\"a\":").repeated(100'000), "No JSON");
    row("large", "{\"x\": \"" + QByteArray(kMaxMessageBytes, 'x') + "\"}",
        "A message of more than 1 MiB");
}

void tst_LeapServiceMessage::tellsMessagesApart()
{
    struct
    {
        QString operator()(const UnknownMessage &) const { return QStringLiteral("unknown"); }
        QString operator()(const ServiceVersion &version) const
        {
            return QStringLiteral("version %1").arg(version.version);
        }
        QString operator()(const DeviceEvent &event) const
        {
            return QStringLiteral("%1 %2 %3 %4")
                .arg(event.id, event.type)
                .arg(event.isAttached)
                .arg(event.isStreaming);
        }
        QString operator()(const FrameData &frame) const
        {
            return QStringLiteral("frame %1").arg(frame.id);
        }
        QString operator()(const MessageError &error) const { return error.reason; }
    } told;
    QFETCH(QByteArray, json);
    QTEST(std::visit(told, parseServiceMessage(json)), "told");
}

void tst_LeapServiceMessage::readsEveryField()
{
    const FrameData frame = frameOf(R"({
        "id": 7, "timestamp": 123456789012, "currentFrameRate": 110.5, "later": {"x": [1]},
        "hands": [{"id": 3, "type": "left", "palmPosition": [1, 2, 3], "palmVelocity": [4, 5, 6],
            "palmNormal": [0, 0, 2], "direction": [3, 4, 0], "palmWidth": 80, "grabStrength": 0.25,
            "pinchStrength": 0.5, "confidence": 0.75, "timeVisible": 2.5, "armWidth": 60,
            "stabilizedPalmPosition": [7, 8, 9],
            "r": [[0, 1, 0], [-1, 0, 0], [0, 0, 1]], "s": 0.5, "t": [200000, -1, -2]}],
        "pointables": [{"id": 31, "handId": 3, "type": 4, "tool": false, "extended": true,
            "length": 50, "width": 18, "timeVisible": 1.5, "direction": [0, -2, 0],
            "tipPosition": [1, 2, 4], "tipVelocity": [1, 2, 5], "carpPosition": [0, 0, 1],
            "mcpPosition": [0, 0, 2], "pipPosition": [0, 0, 3], "dipPosition": [0, 0, 4],
            "btipPosition": [0, 0, 5], "stabilizedTipPosition": [1, 2, 6],
            "touchZone": "hovering", "touchDistance": -0.5}, {"id": 5, "tool": true, "type": 9}],
        "interactionBox": {"center": [1, 190, 2], "size": [200, 201, 202]},
        "r": [[1, 0, 0], [0, 1, 0], [0, 0, 1]], "s": -0.5, "t": [10, 20, 30]})");
    QCOMPARE(frame.id, 7);
    QCOMPARE(frame.timestamp, 123456789012);
    QCOMPARE(frame.currentFrameRate, 110.5F);
    QVERIFY(!frame.gestures);
    QVERIFY(frame.interactionBox->center == Vector(1, 190, 2));
    QVERIFY(frame.interactionBox->size == Vector(200, 201, 202));
    QVERIFY(frame.motion->translation == Vector(10, 20, 30));
    QCOMPARE(frame.motion->scale, -0.5F);

    QCOMPARE(frame.hands.size(), 1U);
    const HandData &hand = frame.hands.front();
    QCOMPARE(hand.id, 3);
    QVERIFY(hand.isLeft);
    QVERIFY(hand.palmPosition == Vector(1, 2, 3));
    QVERIFY(hand.palmVelocity == Vector(4, 5, 6));
    QVERIFY(hand.palmNormal == Vector(0, 0, 1));
    QVERIFY(hand.direction.distanceTo({0.6F, 0.8F, 0}) < 1e-6F);
    QCOMPARE(hand.palmWidth, 80.0F);
    QCOMPARE(hand.grabStrength, 0.25F);
    QCOMPARE(hand.pinchStrength, 0.5F);
    QCOMPARE(hand.confidence, 0.75F);
    QCOMPARE(hand.timeVisible, 2.5F);
    QVERIFY(hand.stabilizedPalmPosition == Vector(7, 8, 9));
    QVERIFY(hand.motion->rotation[1] == Vector(-1, 0, 0));
    QVERIFY(hand.motion->translation == Vector(200000, -1, -2));
    QCOMPARE(hand.motion->scale, 0.5F);

    QCOMPARE(frame.pointables.size(), 2U);
    const PointableData &finger = frame.pointables.front();
    QCOMPARE(finger.id, 31);
    QCOMPARE(finger.handId, 3);
    QCOMPARE(finger.type, 4);
    QVERIFY(!finger.isTool && finger.isExtended);
    QCOMPARE(finger.length, 50.0F);
    QCOMPARE(finger.width, 18.0F);
    QCOMPARE(finger.timeVisible, 1.5F);
    QVERIFY(finger.direction == Vector(0, -1, 0));
    QVERIFY(finger.tipPosition == Vector(1, 2, 4));
    QVERIFY(finger.tipVelocity == Vector(1, 2, 5));
    for (std::size_t i = 0; i < finger.joints.size(); ++i)
        QVERIFY(finger.joints[i] == Vector(0, 0, float(i + 1)));
    QVERIFY(finger.stabilizedTipPosition == Vector(1, 2, 6));
    QVERIFY(finger.touchZone == TouchZone::Hovering);
    QCOMPARE(finger.touchDistance.value_or(0), -0.5F);
    QVERIFY(frame.pointables[1].isTool);
    QCOMPARE(frame.pointables[1].type, 0);
}

void tst_LeapServiceMessage::readsGestures_data()
{
    QTest::addColumn<QByteArray>("names");
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("state");
    const auto row = [](const char *names, GestureType type, GestureState state) {
        QTest::newRow(names) << QByteArray(names) << int(type) << int(state);
    };
    row(R"("type": "circle", "state": "start")", GestureType::Circle, GestureState::Start);
    row(R"("type": "swipe", "state": "update")", GestureType::Swipe, GestureState::Update);
    row(R"("type": "keyTap", "state": "stop")", GestureType::KeyTap, GestureState::Stop);
    row(R"("type": "screenTap", "state": "stop")", GestureType::ScreenTap, GestureState::Stop);
    row(R"("type": "wave", "state": "stop")", GestureType::Invalid, GestureState::Stop);
    row(R"("type": "circle")", GestureType::Circle, GestureState::Invalid);
}

void tst_LeapServiceMessage::readsGestures()
{
    QFETCH(QByteArray, names);
    QFETCH(int, type);
    QFETCH(int, state);
    const FrameData frame = frameOf(
        R"({"id": 1, "timestamp": 1, "gestures": [{"id": 4, "duration": 5000000000,
        "handIds": [3], "pointableIds": [31, -2], "center": [1, 2, 3], "normal": [0, 2, 0],
        "progress": 1.5, "radius": 20, "startPosition": [4, 5, 6], "position": [7, 8, 9],
        "direction": [0, 0, -3], "speed": 1200, )"
        + names + "}]}");
    QVERIFY(frame.gestures);
    if (type < 0 || state < 0) {
        QVERIFY(frame.gestures->empty());
        return;
    }
    QCOMPARE(frame.gestures->size(), 1U);
    const GestureData &gesture = frame.gestures->front();
    QCOMPARE(int(gesture.type), type);
    QCOMPARE(int(gesture.state), state);
    QCOMPARE(gesture.id, 4);
    QCOMPARE(gesture.duration, 5'000'000'000);
    QCOMPARE(gesture.handIds, (std::vector<int>{3}));
    QCOMPARE(gesture.pointableIds, (std::vector<int>{31, -2}));
    QVERIFY(gesture.center == Vector(1, 2, 3));
    QVERIFY(gesture.normal == Vector(0, 1, 0));
    QCOMPARE(gesture.progress, 1.5F);
    QCOMPARE(gesture.radius, 20.0F);
    QVERIFY(gesture.startPosition == Vector(4, 5, 6));
    QVERIFY(gesture.position == Vector(7, 8, 9));
    QVERIFY(gesture.direction == Vector(0, 0, -1));
    QCOMPARE(gesture.speed, 1200.0F);
}

void tst_LeapServiceMessage::fillsWhatIsMissing()
{
    const FrameData frame = frameOf(R"({"id": 1, "timestamp": 1, "gestures": null,
        "hands": [{"palmNormal": [0, 0, 0], "palmWidth": null}], "pointables": [{}]})");
    QCOMPARE(frame.hands.size(), 1U);
    QCOMPARE(frame.pointables.size(), 1U);
    QVERIFY(!frame.gestures && !frame.interactionBox && !frame.motion);
    const HandData &hand = frame.hands.front();
    QVERIFY(hand.palmNormal == HandData().palmNormal && hand.direction == HandData().direction);
    QCOMPARE(hand.palmWidth, HandData().palmWidth);
    QCOMPARE(hand.confidence, 1.0F);
    QVERIFY(!hand.stabilizedPalmPosition && !hand.motion);
    const PointableData &finger = frame.pointables.front();
    QCOMPARE(finger.handId, -1);
    QVERIFY(finger.direction == PointableData().direction);
    QVERIFY(!finger.stabilizedTipPosition && !finger.touchZone && !finger.touchDistance);
}

void tst_LeapServiceMessage::leavesOutWhatCannotBe_data()
{
    QTest::addColumn<QByteArray>("json");
    const auto row = [](const QByteArray &json) { QTest::newRow(json) << json; };
    row(withHand(R"("id": 3000000000)"));
    row(withHand(R"("id": "3")"));
    row(withHand(R"("palmPosition": [0, 100001, 0])"));
    row(withHand(R"("palmPosition": [0, 1])"));
    row(withHand(R"("palmPosition": [0, 1, 2, 3])"));
    row(withHand(R"("palmPosition": [0, null, 2])"));
    row(withHand(R"("palmVelocity": {"x": 1})"));
    row(withHand(R"("palmWidth": 1e300)"));
    row(withHand(R"("palmWidth": -1e999)"));
    row(withHand(R"("palmWidth": true)"));
    row(withHand(R"("grabStrength": "tight")"));
    row(withHand(R"("stabilizedPalmPosition": [1e39, 0, 0])"));
    row(withFinger(R"("type": 5)"));
    row(withFinger(R"("type": -1)"));
    row(withFinger(R"("handId": -3000000000)"));
    row(withFinger(R"("direction": [0, 0, 1e300])"));
    row(withFinger(R"("btipPosition": "tip")"));
    row(withGesture(R"("duration": -1)"));
    row(withGesture(R"("center": [1e6, 0, 0])"));
    row(withGesture(R"("handIds": [1, 1e10])"));
    row(R"({"id": 1, "timestamp": 1, "hands": [5, null, []], "pointables": {"x": {}}})");
    row(R"({"id": 1, "timestamp": 1, "gestures": "none", "interactionBox": {"size": [0, 1, 1]}})");
    row(R"({"id": 1, "timestamp": 1, "interactionBox": [], "r": [[1, 0, 0]], "t": [0, 0, 0]})");
    row(R"({"id": 1, "timestamp": 1, "t": [0, 0, 0], "r": [[9, 0, 0], [0, 9, 0], [0, 0, 9]]})");
}

void tst_LeapServiceMessage::leavesOutWhatCannotBe()
{
    QFETCH(QByteArray, json);
    const FrameData frame = frameOf(json);
    QCOMPARE(frame.id, 1);
    QVERIFY(frame.hands.empty() && frame.pointables.empty());
    QVERIFY(!frame.gestures || frame.gestures->empty());
    QVERIFY(!frame.interactionBox && !frame.motion);
}

void tst_LeapServiceMessage::bringsFiguresIntoTheirRange()
{
    const FrameData frame = frameOf(R"({"id": 1, "timestamp": 1, "currentFrameRate": 1e9,
        "hands": [{"grabStrength": 1.5, "pinchStrength": -2, "confidence": 7, "palmWidth": -80,
            "timeVisible": 1e12, "direction": [1e-30, 0, 0], "r": 1, "t": 1}],
        "pointables": [{"touchDistance": -3, "length": -1, "timeVisible": -1,
            "touchZone": "elsewhere", "direction": [1e5, 1e5, 1e5]}]})");
    QCOMPARE(frame.currentFrameRate, 0.0F);
    QCOMPARE(frame.hands.size(), 1U);
    const HandData &hand = frame.hands.front();
    QCOMPARE(hand.grabStrength, 1.0F);
    QCOMPARE(hand.pinchStrength, 0.0F);
    QCOMPARE(hand.confidence, 1.0F);
    QCOMPARE(hand.palmWidth, 0.0F);
    QVERIFY(hand.timeVisible > 1e6F && std::isfinite(hand.timeVisible));
    QVERIFY(hand.direction == HandData().direction);
    QVERIFY(!hand.motion);
    QCOMPARE(frame.pointables.size(), 1U);
    const PointableData &finger = frame.pointables.front();
    QCOMPARE(finger.touchDistance.value_or(0), -1.0F);
    QCOMPARE(finger.length, 0.0F);
    QCOMPARE(finger.timeVisible, 0.0F);
    QVERIFY(!finger.touchZone);
    QVERIFY(std::abs(finger.direction.magnitude() - 1) < 1e-5F);
}

void tst_LeapServiceMessage::keepsSoManyAndNoMore()
{
    const QByteArray gesture = R"({"type": "circle", "state": "start", "handIds": [1)"
        + QByteArray(",1").repeated(99) + "]},";
    const FrameData frame = frameOf(R"({"id": 1, "timestamp": 1, "hands": [)"
                                    + QByteArray("{},").repeated(99) + R"({}], "pointables": [)"
                                    + QByteArray("{},").repeated(999) + R"({}], "gestures": [)"
                                    + gesture.repeated(999) + "{}]}");
    QCOMPARE(frame.hands.size(), 20U);
    QCOMPARE(frame.pointables.size(), 120U);
    QCOMPARE(frame.gestures->size(), 100U);
    QCOMPARE(frame.gestures->front().handIds.size(), 20U);
}

void tst_LeapServiceMessage::passesNewFramesOn_data()
{
    using Moments = QVector<QPair<int, int>>;
    QTest::addColumn<Moments>("frames");
    QTest::addColumn<QVector<int>>("passed");
    QTest::newRow("rising") << Moments{{1, 5}, {2, 9}, {7, 11}} << QVector<int>{0, 1, 2};
    QTest::newRow("late and twice")
        << Moments{{5, 50}, {4, 40}, {5, 50}, {5, 60}, {6, 50}, {6, 60}} << QVector<int>{0, 5};
    Moments idsAnew{{500, 50}};
    Moments clockAnew{{5, 5000}};
    Moments stuck{{5, 50}};
    for (int i = 1; i <= 12; ++i) {
        idsAnew.append({i, 50 + i});
        clockAnew.append({5 + i, i});
        stuck.append({5, 50});
    }
    QTest::newRow("ids begin anew") << idsAnew << QVector<int>{0, 10, 11, 12};
    QTest::newRow("clock begins anew") << clockAnew << QVector<int>{0, 10, 11, 12};
    QTest::newRow("stuck") << stuck << QVector<int>{0};
}

void tst_LeapServiceMessage::passesNewFramesOn()
{
    using Moments = QVector<QPair<int, int>>;
    QFETCH(Moments, frames);
    MessageStream stream;
    QVector<int> passed;
    for (int i = 0; i < frames.size(); ++i) {
        FrameData frame;
        frame.id = frames.at(i).first;
        frame.timestamp = frames.at(i).second;
        if (stream.take(frame))
            passed.append(i);
    }
    QTEST(passed, "passed");
}

void tst_LeapServiceMessage::knowsWhetherADeviceIsThere_data()
{
    QTest::addColumn<QString>("messages"); // a device with its state, or f for a frame
    QTest::addColumn<QString>("connected");
    const auto row = [](const char *messages, const char *connected) {
        QTest::newRow(messages) << QString::fromLatin1(messages) << QString::fromLatin1(connected);
    };
    row("v f f", "0 1 1");
    row("v A+s f A-", "0 1 1 0");
    row("A+ f A+s f A- f", "0 0 1 1 0 0");
    row("f A+s A- f", "1 1 0 0");
    row("A+s B+s A- B-", "1 1 1 0");
    row("A+s B- A-s", "1 1 0");
}

void tst_LeapServiceMessage::knowsWhetherADeviceIsThere()
{
    QFETCH(QString, messages);
    MessageStream stream;
    QStringList connected;
    FrameData frame;
    const QStringList list = messages.split(QLatin1Char(' '));
    for (const QString &message : list) {
        if (message == QLatin1String("v")) {
            stream.take(ServiceVersion{6});
        } else if (message == QLatin1String("f")) {
            frame.timestamp = ++frame.id;
            const bool isPassedOn = stream.take(frame);
            QCOMPARE(isPassedOn, stream.isConnected());
        } else {
            const bool isAttached = message.contains(QLatin1Char('+'));
            const bool isStreaming = message.contains(QLatin1Char('s'));
            stream.take(DeviceEvent{message.mid(0, 1), {}, isAttached, isStreaming});
        }
        connected.append(QString::number(int(stream.isConnected())));
    }
    QTEST(connected.join(QLatin1Char(' ')), "connected");
}

QTEST_GUILESS_MAIN(tst_LeapServiceMessage)
#include "tst_LeapServiceMessage.moc"
