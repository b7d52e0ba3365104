#include "SceneFixture.h"

#include <QScreen>
#include <QTest>
#include <QTimer>

Q_DECLARE_METATYPE(Qt::KeyboardModifiers)

namespace {

const QString kPlayed = QStringLiteral("played");
const QString kFirst = QStringLiteral("first.png");
const QString kSecond = QStringLiteral("octants.png");
const QString kThird = QStringLiteral("third.png");

/// Everything that keys may change, by name.
using Values = QVariantMap;

} // namespace

/// The keyboard: what each key changes, and that it changes nothing else.
class tst_MainWindowKeys : public SceneFixture
{
    Q_OBJECT

private:
    Values values() const;

private slots:
    void initTestCase();
    void aKeyChangesWhatItIsForAndNothingElse_data();
    void aKeyChangesWhatItIsForAndNothingElse();
    void arrowsStepThroughThePlaylist_data();
    void arrowsStepThroughThePlaylist();
    void everyEffectAndThenNoneAgain();
    void everyProjectionAndThenTheFirstAgain();
    void controlAndQEndsTheProgram();
};

void tst_MainWindowKeys::initTestCase()
{
    SceneFixture::initTestCase();
    QVERIFY(dropFiles({media.octants()}));
    QTRY_COMPARE(playerStatus(), QMediaPlayer::BufferedMedia);
}

Values tst_MainWindowKeys::values() const
{
    return {
        {QStringLiteral("yaw"), view()->yaw()},
        {QStringLiteral("pitch"), view()->pitch()},
        {QStringLiteral("fov"), view()->fov()},
        {QStringLiteral("effect"), picture()->effect()},
        {QStringLiteral("projection"), picture()->projection()},
        {QStringLiteral("full screen"), window()->fullScreen()},
        {QStringLiteral("help"), scene(QStringLiteral("orb_help.visible"))},
        {QStringLiteral("state"), state()},
        {kPlayed, title().section(QLatin1Char('/'), -1)},
        {QStringLiteral("headset"), scene(QStringLiteral("orbOculus.activated"))},
        {QStringLiteral("hands"), scene(QStringLiteral("orbLeap.activated"))},
        {QStringLiteral("sensor"), scene(QStringLiteral("orbSensor.activated"))},
    };
}

void tst_MainWindowKeys::aKeyChangesWhatItIsForAndNothingElse_data()
{
    QTest::addColumn<Qt::Key>("pressed");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<Values>("changes");

    const auto row = [](const char *name, Qt::Key pressed, const QString &value = {},
                        const QVariant &becomes = {},
                        Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::newRow(name) << pressed << modifiers
                            << (value.isEmpty() ? Values() : Values{{value, becomes}});
    };
    const QString yaw = QStringLiteral("yaw");
    const QString pitch = QStringLiteral("pitch");
    const QString fov = QStringLiteral("fov");

    row("4", Qt::Key_4, yaw, -0.5F);
    row("6", Qt::Key_6, yaw, 0.5F);
    row("8", Qt::Key_8, pitch, -0.5F);
    row("2", Qt::Key_2, pitch, 0.5F);
    row("minus", Qt::Key_Minus, fov, 93.F);
    row("plus", Qt::Key_Plus, fov, 87.F);
    row("equal", Qt::Key_Equal, fov, 87.F);
    row("E", Qt::Key_E, QStringLiteral("effect"), int(OrbShaderCodeBuilder::SEPIA));
    row("P", Qt::Key_P, QStringLiteral("projection"), int(OrbShaderCodeBuilder::LITTLE_PLANET));
    row("F", Qt::Key_F, QStringLiteral("full screen"), true);
    row("H", Qt::Key_H, QStringLiteral("help"), true);
    row("control and N", Qt::Key_N, QStringLiteral("state"), QStringLiteral("Popup"),
        Qt::ControlModifier);

    row("N alone", Qt::Key_N);
    row("Q alone", Qt::Key_Q);
    row("Alt and N", Qt::Key_N, {}, {}, Qt::AltModifier);
    row("escape in a window", Qt::Key_Escape);
    row("space over a picture", Qt::Key_Space);
    row("O without a headset", Qt::Key_O);
    row("L without a hand tracker", Qt::Key_L);
    row("G without a sensor", Qt::Key_G);
    row("left without a playlist", Qt::Key_Left);
    row("right without a playlist", Qt::Key_Right);
    row("up", Qt::Key_Up);
    row("down", Qt::Key_Down);
    row("control and left over a picture", Qt::Key_Left, {}, {}, Qt::ControlModifier);
    row("Alt and up over a picture", Qt::Key_Up, {}, {}, Qt::AltModifier);
    row("a key without a use", Qt::Key_X);
    row("return", Qt::Key_Return);
}

void tst_MainWindowKeys::aKeyChangesWhatItIsForAndNothingElse()
{
    QFETCH(Qt::Key, pressed);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(Values, changes);

    Values expected = values();
    QCOMPARE(expected.value(QStringLiteral("state")).toString(), QStringLiteral("Video"));
    for (auto change = changes.cbegin(); change != changes.cend(); ++change)
        expected.insert(change.key(), change.value());
    key(pressed, modifiers);
    QTRY_COMPARE(values(), expected);

    if (pressed == Qt::Key_F) {
        QTRY_COMPARE(window()->size(), window()->screen()->size());
        key(Qt::Key_Escape);
        QTRY_VERIFY(!window()->fullScreen());
    }
}

void tst_MainWindowKeys::arrowsStepThroughThePlaylist_data()
{
    QTest::addColumn<QVector<int>>("keys");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<QString>("played");

    const Qt::KeyboardModifiers none;
    QTest::newRow("right") << QVector<int>{Qt::Key_Right} << none << kSecond;
    QTest::newRow("right twice") << QVector<int>{Qt::Key_Right, Qt::Key_Right} << none << kThird;
    QTest::newRow("round to the right")
        << QVector<int>{Qt::Key_Right, Qt::Key_Right, Qt::Key_Right} << none << kFirst;
    QTest::newRow("round to the left") << QVector<int>{Qt::Key_Left} << none << kThird;
    QTest::newRow("there and back") << QVector<int>{Qt::Key_Right, Qt::Key_Left} << none << kFirst;
    QTest::newRow("control seeks")
        << QVector<int>{Qt::Key_Right} << Qt::KeyboardModifiers(Qt::ControlModifier) << kFirst;
    QTest::newRow("Alt seeks") << QVector<int>{Qt::Key_Left}
                               << Qt::KeyboardModifiers(Qt::AltModifier) << kFirst;
}

void tst_MainWindowKeys::arrowsStepThroughThePlaylist()
{
    QFETCH(QVector<int>, keys);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    const QMap<QString, QColor> colours{{kFirst, {10, 120, 240}},
                                        {kSecond, TestMedia::octant(2, 0)},
                                        {kThird, {240, 120, 10}}};
    QVERIFY(dropFiles({media.flat(kFirst, colours[kFirst]), media.octants(),
                       media.flat(kThird, colours[kThird])}));
    for (int pressed : keys)
        key(Qt::Key(pressed), modifiers);
    QFETCH(QString, played);
    QCOMPARE(values().value(kPlayed).toString(), played);
    QTRY_VERIFY(shows(colours[played], middle() + QPoint(100, -100)));

    dropFiles({media.octants()});
    QTRY_VERIFY(showsOctantsAhead());
}

void tst_MainWindowKeys::everyEffectAndThenNoneAgain()
{
    const QColor plain = TestMedia::octant(2, 0);
    const QPoint point = middle() + QPoint(100, -100);
    QVector<QRgb> seen;
    for (int effect = 1; effect < OrbShaderCodeBuilder::LAST_VALUE_EFFECT; ++effect) {
        QTRY_VERIFY(!seen.contains(colourAt(point).rgb()));
        seen.append(colourAt(point).rgb());
        key(Qt::Key_E);
        QCOMPARE(picture()->effect(), effect);
        if (effect == OrbShaderCodeBuilder::INVERT)
            QTRY_VERIFY(shows({255 - plain.red(), 255 - plain.green(), 255 - plain.blue()}, point));
        if (effect == OrbShaderCodeBuilder::BLACK_AND_WHITE)
            QTRY_COMPARE(colourAt(point).saturation(), 0);
    }
    key(Qt::Key_E);
    QTRY_VERIFY(showsOctantsAhead());
}

void tst_MainWindowKeys::everyProjectionAndThenTheFirstAgain()
{
    const QPoint upLeft(10, 10);
    const QPoint upRight(window()->width() - 10, 10);

    key(Qt::Key_P);
    QCOMPARE(picture()->projection(), int(OrbShaderCodeBuilder::LITTLE_PLANET));
    // What lies behind is around what lies ahead.
    QTRY_VERIFY(shows(TestMedia::octant(0, 0), upLeft));
    QVERIFY(shows(TestMedia::octant(3, 0), upRight));
    QVERIFY(showsOctantsAhead());
    key(Qt::Key_P);
    QCOMPARE(picture()->projection(), int(OrbShaderCodeBuilder::MIRROR_BALL));
    QTRY_VERIFY(shows(Qt::black, upLeft));
    // At 90 degrees the ball is 191 pixels high from its middle; its outer ring mirrors what is
    // behind.
    QVERIFY(shows(TestMedia::octant(1, 0), middle() + QPoint(-50, -50)));
    QVERIFY(shows(TestMedia::octant(0, 0), middle() + QPoint(-115, -115)));
    QVERIFY(shows(TestMedia::octant(3, 1), middle() + QPoint(115, 115)));
    key(Qt::Key_P);
    QCOMPARE(picture()->projection(), int(OrbShaderCodeBuilder::FISHEYE));
    QTRY_VERIFY(shows(TestMedia::octant(1, 0), upLeft));
    QVERIFY(shows(TestMedia::octant(2, 0), upRight));
    key(Qt::Key_P);
    QCOMPARE(picture()->projection(), int(OrbShaderCodeBuilder::NO_PROJECTION));
    // The source as it is, in a window of its size.
    QTRY_COMPARE(window()->size(), QSize(512, 256));
    for (int column = 0; column < 4; ++column) {
        for (int row = 0; row < 2; ++row)
            QTRY_VERIFY(shows(TestMedia::octant(column, row), {64 + 128 * column, 64 + 128 * row}));
    }
    key(Qt::Key_P);
    QCOMPARE(picture()->projection(), int(OrbShaderCodeBuilder::RECTILINEAR));
    QTRY_VERIFY(showsOctantsAhead());
}

void tst_MainWindowKeys::controlAndQEndsTheProgram()
{
    QTimer::singleShot(0, this, [this] { key(Qt::Key_Q, Qt::ControlModifier); });
    QTimer::singleShot(10000, this, [] { QCoreApplication::exit(-1); });
    QCOMPARE(QCoreApplication::exec(), 0);
}

int main(int argc, char **argv)
{
    return tst_MainWindowKeys().run(argc, argv);
}

#include "tst_MainWindowKeys.moc"
