#include "OrbShaderCodeBuilder.h"
#include "WarningsFail.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QtQml>
#include <QtTest>

#include <memory>

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

} // namespace

/// The scene's script files, imported as its components do.
class tst_SceneLibraries : public WarningsFail
{
    Q_OBJECT

private slots:
    void initTestCase();
    void timesAreReadAsClocks_data();
    void timesAreReadAsClocks();
    void theFieldOfViewStaysWithinItsLimits_data();
    void theFieldOfViewStaysWithinItsLimits();

private:
    QVariant call(const char *function, const QVariantList &arguments);

    QQmlEngine m_engine;
    std::unique_ptr<QObject> m_item;
};

void tst_SceneLibraries::initTestCase()
{
    qmlRegisterUncreatableType<OrbShaderCodeBuilder>("OrbixSight", 1, 0, "OrbShaderCodeBuilder",
                                                     QStringLiteral("Enums only"));
    QQmlComponent component(&m_engine);
    component.setData(R"(
        import QtQml 2.2
        import OrbixSight 1.0
        import "lib.js" as Lib
        import "fieldOfView.js" as FieldOfView
        QtObject {
            function formatTime(time) { return Lib.formatTime(time) }
            function allowed(fov, projection, reset) {
                return FieldOfView.allowed(fov, projection, OrbShaderCodeBuilder, reset)
            }
        })",
                      QUrl::fromLocalFile(QStringLiteral(SCENE_DIR "/Test.qml")));
    m_item.reset(component.create());
    QVERIFY2(m_item, qPrintable(component.errorString()));
}

QVariant tst_SceneLibraries::call(const char *function, const QVariantList &arguments)
{
    QVariant result;
    const bool called = QMetaObject::invokeMethod(m_item.get(), function,
                                                  Q_RETURN_ARG(QVariant, result),
                                                  Q_ARG(QVariant, arguments.value(0)),
                                                  arguments.size() > 1
                                                      ? Q_ARG(QVariant, arguments.at(1))
                                                      : QGenericArgument(),
                                                  arguments.size() > 2
                                                      ? Q_ARG(QVariant, arguments.at(2))
                                                      : QGenericArgument());
    return called ? result : QVariant(QStringLiteral("not called"));
}

void tst_SceneLibraries::timesAreReadAsClocks_data()
{
    QTest::addColumn<double>("milliseconds");
    QTest::addColumn<QString>("text");
    const auto row = [](double milliseconds, const char *text) {
        QTest::addRow("%.1f", milliseconds) << milliseconds << QString::fromLatin1(text);
    };
    row(0, "00:00");
    row(-1, "00:00"); // players say so while they do not know
    row(499, "00:00");
    row(500, "00:01");
    row(999.9, "00:01");
    row(9499, "00:09");
    row(9500, "00:10");
    row(59499, "00:59");
    row(59500, "01:00");
    row(60000, "01:00");
    row(599499, "09:59");
    row(3599000, "59:59");
    row(3599499, "59:59");
    row(3599500, "1:00:00");
    row(3600000, "1:00:00");
    row(3661000, "1:01:01");
    row(36000000, "10:00:00");
    row(359999000, "99:59:59");
    row(360000000, "100:00:00");
}

void tst_SceneLibraries::timesAreReadAsClocks()
{
    QFETCH(double, milliseconds);
    QFETCH(QString, text);
    QCOMPARE(call("formatTime", {milliseconds}).toString(), text);
}

void tst_SceneLibraries::theFieldOfViewStaysWithinItsLimits_data()
{
    QTest::addColumn<double>("fov");
    QTest::addColumn<int>("projection");
    QTest::addColumn<double>("nearest");
    QTest::addColumn<double>("orInitial"); ///< where a new projection resets it

    const struct
    {
        const char *name;
        int value;
        double largest;
    } projections[] = {
        {"flat", OrbShaderCodeBuilder::NO_PROJECTION, 180},
        {"rectilinear", OrbShaderCodeBuilder::RECTILINEAR, 130},
        {"little planet", OrbShaderCodeBuilder::LITTLE_PLANET, 360},
        {"mirror ball", OrbShaderCodeBuilder::MIRROR_BALL, 180},
        {"fisheye", OrbShaderCodeBuilder::FISHEYE, 360},
        {"unknown", 4711, 180},
    };
    QCOMPARE(int(std::size(projections)), OrbShaderCodeBuilder::LAST_VALUE_PROJECTION + 1);
    for (const auto &[name, value, largest] : projections) {
        const auto row = [name = name, value = value](double fov, double nearest,
                                                      double orInitial) {
            QTest::addRow("%s, %.3f", name, fov) << fov << value << nearest << orInitial;
        };
        row(9.999, 10, 90);
        row(10, 10, 10);
        row(10.001, 10.001, 10.001);
        row(90, 90, 90);
        row(largest - 0.001, largest - 0.001, largest - 0.001);
        row(largest, largest, largest);
        row(largest + 0.001, largest, 90);
        row(1000, largest, 90);
        row(0, 10, 90);
        row(-1000, 10, 90);
        row(kInfinity, largest, 90);
        row(-kInfinity, 10, 90);
    }
    QTest::addRow("no number") << kNaN << int(OrbShaderCodeBuilder::FISHEYE) << 360.0 << 90.0;
}

void tst_SceneLibraries::theFieldOfViewStaysWithinItsLimits()
{
    QFETCH(double, fov);
    QFETCH(int, projection);
    QFETCH(double, nearest);
    QFETCH(double, orInitial);
    QCOMPARE(call("allowed", {fov, projection, false}).toDouble(), nearest);
    QCOMPARE(call("allowed", {fov, projection, true}).toDouble(), orInitial);
}

QTEST_GUILESS_MAIN(tst_SceneLibraries)
#include "tst_SceneLibraries.moc"
