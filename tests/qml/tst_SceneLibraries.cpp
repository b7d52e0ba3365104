#include "OrbShaderCodeBuilder.h"
#include "WarningsFail.h"

#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQmlExpression>
#include <QtQml>
#include <QtTest>

#include <memory>

/// The scene's script files, imported as its components do.
class tst_SceneLibraries : public WarningsFail
{
    Q_OBJECT

private slots:
    void initTestCase();
    void aCallGives_data();
    void aCallGives();

private:
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
            function time(milliseconds) { return Lib.formatTime(milliseconds) }
            function plain(text) { return Lib.asPlainText(text) }
            function allowed(fov, projection, reset) {
                return FieldOfView.allowed(fov, projection, OrbShaderCodeBuilder, reset)
            }
        })",
                      QUrl::fromLocalFile(QStringLiteral(SCENE_DIR "/Test.qml")));
    m_item.reset(component.create());
    QVERIFY2(m_item, qPrintable(component.errorString()));
}

void tst_SceneLibraries::aCallGives_data()
{
    QTest::addColumn<QString>("result");
    const auto row = [](const QString &call, const QString &result) {
        QTest::newRow(qPrintable(call)) << result;
    };
    const auto time = [&](double milliseconds, const char *text) {
        row(QString::asprintf("time(%.1f)", milliseconds), QString::fromLatin1(text));
    };
    time(-1, "00:00"); // players say so while they do not know
    time(499, "00:00");
    time(500, "00:01");
    time(999.9, "00:01");
    time(9500, "00:10");
    time(59499, "00:59");
    time(59500, "01:00");
    time(3599499, "59:59");
    time(3599500, "1:00:00");
    time(3661000, "1:01:01");
    time(359999000, "99:59:59");
    time(360000000, "100:00:00");

    row(QStringLiteral(R"(plain("a & b\nc"))"), QStringLiteral("a & b\nc"));
    row(QStringLiteral(R"(plain("<img src='x'> &lt;\n"))"),
        QStringLiteral("<p>&lt;img src='x'> &amp;lt;<br></p>"));

    const int largest[] = {180, 130, 360, 180, 360, 180}; // of each projection and of no projection
    QCOMPARE(int(std::size(largest)), OrbShaderCodeBuilder::LAST_VALUE_PROJECTION + 1);
    for (int projection = 0; projection <= OrbShaderCodeBuilder::LAST_VALUE_PROJECTION;
         ++projection) {
        const QString limit = QString::number(largest[projection]);
        const auto allowed = [&](const QString &fov, const QString &nearest, bool inside = false) {
            const QString call = QStringLiteral("allowed(%1, %2, ").arg(fov).arg(projection);
            row(call + QStringLiteral("false)"), nearest);
            row(call + QStringLiteral("true)"), inside ? nearest : QStringLiteral("90"));
        };
        allowed(QStringLiteral("9.9"), QStringLiteral("10"));
        allowed(QStringLiteral("10"), QStringLiteral("10"), true);
        allowed(limit, limit, true);
        allowed(limit + QStringLiteral(".1"), limit);
        allowed(QStringLiteral("Infinity"), limit);
        allowed(QStringLiteral("-Infinity"), QStringLiteral("10"));
        allowed(QStringLiteral("NaN"), limit);
    }
}

void tst_SceneLibraries::aCallGives()
{
    QQmlExpression call(qmlContext(m_item.get()), m_item.get(),
                        QString::fromLatin1(QTest::currentDataTag()));
    QTEST(call.evaluate().toString(), "result");
}

QTEST_GUILESS_MAIN(tst_SceneLibraries)
#include "tst_SceneLibraries.moc"
