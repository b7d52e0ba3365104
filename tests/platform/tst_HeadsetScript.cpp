#include "OpenHmdFigures.h"
#include "OrientationPrediction.h"
#include "SimulatedDevice.h"

#include "WarningsFail.h"

#include <QtMath>
#include <QtTest>

#include <cmath>

namespace {

/// Where a headset looks and where its top points, by the rotation matrix of the quaternion.
QVector<double> view(const ovrQuatf &q)
{
    const auto [x, y, z, w] = std::array<double, 4>{q.x, q.y, q.z, q.w};
    return {-2 * (x * z + w * y), -2 * (y * z - w * x),    2 * (x * x + y * y) - 1,
            2 * (x * y - w * z),  1 - 2 * (x * x + z * z), 2 * (y * z + w * x)};
}

bool isClose(const QVector<double> &a, const QVector<double> &b, double tolerance = 1e-5)
{
    const auto isNear = [&](double x, double y) { return std::abs(x - y) < tolerance; };
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), isNear);
}

/// A turn about one axis, 0 to 2.
ovrQuatf turnAbout(int axis, double radians)
{
    std::array<float, 3> v{};
    v.at(static_cast<std::size_t>(axis)) = static_cast<float>(std::sin(radians / 2));
    return {v[0], v[1], v[2], static_cast<float>(std::cos(radians / 2))};
}

QString elements(const ovrQuatf &q)
{
    return QStringLiteral("%1 %2 %3 %4").arg(q.x).arg(q.y).arg(q.z).arg(q.w);
}

double distorted(const LensModel &lens, double r)
{
    const auto &k = lens.polynomial;
    return r * (k[0] + k[1] * r + k[2] * r * r + k[3] * r * r * r + k[4] * r * r * r * r);
}

HeadsetScript parsed(const QByteArray &json)
{
    QString error;
    const auto script = parseHeadsetScript(json, &error);
    if (!script)
        qCritical("%s", qPrintable(error));
    return script.value_or(HeadsetScript());
}

} // namespace

class tst_HeadsetScript : public WarningsFail
{
    Q_OBJECT

private slots:
    void refusesWhatIsNoScript_data();
    void refusesWhatIsNoScript();
    void takesEveryKey();
    void passesBrokenFiguresOn();
    void turnsSteadilyBetweenPoses_data();
    void turnsSteadilyBetweenPoses();
    void lensesAreThoseOfTheDataSheets();
    void playsAFileByItsClock();
    void looksAroundWithoutAScript();
    void saysWhyAFileCannotBeUsed();
    void foretellsASteadySpin();
    void foretellsEvenlyFromUnevenSamples();
    void foretellsNothingFromGarbage();
    void readsTheFiguresOfTheLibrary();
};

void tst_HeadsetScript::refusesWhatIsNoScript_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char *json, const char *reason) {
        QTest::newRow(json) << QByteArray(json) << reason;
    };
    row("", "illegal value");
    row(R"({"type": "DK3"})", "\"type\" must be \"DK1\" or");
    row(R"({"type": 2})", "\"type\" must be a text");
    row(R"({"Poses": []})", "\"Poses\" is no known key");
    row(R"({"notice": 1})", "true or false");
    row(R"({"resolution": [1.5, 1]})", "of whole numbers");
    row(R"({"eyeFov": [[1,1,1,1],[1,1,1,"1"]]})", "of numbers or null");
    row(R"({"poses": [{}]})", "poses[0]: \"atSeconds\"");
    row(R"({"poses": [{"atSeconds": 1}, {"atSeconds": 1}]})",
        "poses[1]: \"atSeconds\" must be later");
    row(R"({"poses": [{"atSeconds": 0, "yaw": 1}]})", "poses[0]: \"yaw\" is no known key");
    row(R"({"poses": [{"atSeconds": 0, "quaternion": [0,0,1]}]})", "poses[0]: \"quaternion\"");
    QTest::newRow("too many poses") << R"({"poses": [0)" + QByteArray(",0").repeated(100'000) + "]}"
                                    << "a list of up to 100000";
    QTest::newRow("too deep") << QByteArray("[").repeated(1'000'000) << "deep";
}

void tst_HeadsetScript::refusesWhatIsNoScript()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, reason);
    QString error;
    QVERIFY(!parseHeadsetScript(json, &error));
    QVERIFY2(error.contains(reason), qPrintable(error));
}

void tst_HeadsetScript::takesEveryKey()
{
    const HeadsetScript script = parsed(R"({"type": "DK1", "productName": "Brille \u00e4",
        "resolution": [640, 400], "windowsPos": [-640, 20], "extendDesktop": true,
        "position": true, "overdrive": true, "hqDistortion": true, "eyeFov": [[1,2,3,4],[5,6,7,8]]})");
    const ovrHmdDesc &description = script.model.description;
    QCOMPARE(QString::fromStdString(script.productName), QStringLiteral("Brille ä"));
    QCOMPARE(QPoint(description.WindowsPos.x, description.WindowsPos.y), QPoint(-640, 20));
    QCOMPARE(description.HmdCaps, 0x32C8U);
    QCOMPARE(description.TrackingCaps, 0x70U);
    QCOMPARE(description.DistortionCaps, 0x18BU);
    QCOMPARE(description.DefaultEyeFov[ovrEye_Right].RightTan, 8.0F);
}

void tst_HeadsetScript::passesBrokenFiguresOn()
{
    const HeadsetScript script = parsed(R"({"resolution": [0, -3],
        "eyeFov": [[null,0,1e300,-1e300],[0,0,0,0]],
        "poses": [{"atSeconds": 0}, {"atSeconds": 2, "quaternion": [0,3,0,4]},
                  {"atSeconds": 4, "quaternion": [null,3,-1e300,4]}]})");
    QCOMPARE(script.model.description.Resolution.h, -3);
    const ovrFovPort &fov = script.model.description.DefaultEyeFov[ovrEye_Left];
    QVERIFY(std::isnan(fov.UpTan) && std::isinf(fov.LeftTan) && fov.RightTan < 0);
    // Between such poses the earlier holds.
    QCOMPARE(elements(script.path.at(1.5)), QStringLiteral("0 0 0 1"));
    QCOMPARE(elements(script.path.at(3)), QStringLiteral("0 3 0 4"));
    QCOMPARE(elements(script.path.at(9)), QStringLiteral("nan 3 -inf 4"));
}

void tst_HeadsetScript::turnsSteadilyBetweenPoses_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QVector<double>>("expected");
    const double s = std::sqrt(0.5);
    const auto row = [](const char *name, const QByteArray &poses, double seconds,
                        const QVector<double> &expected) {
        QTest::newRow(name) << QByteArray("{\"poses\": [" + poses + "}") << seconds << expected;
    };
    const QByteArray yaw = R"({"atSeconds": 1}, {"atSeconds": 3, "yawDeg": 90}])";
    const QByteArray back = R"({"atSeconds": 0, "yawDeg": 170}, {"atSeconds": 1, "yawDeg": 190}])";
    const QByteArray sign = R"({"atSeconds": 0}, {"atSeconds": 1, "quaternion": [0,-0.6,0,-0.8]}])";
    const QByteArray three = R"({"atSeconds": 0, "yawDeg": 90, "pitchDeg": 45, "rollDeg": 90}])";
    row("no poses", "]", 1, {0, 0, -1, 0, 1, 0});
    row("before the first", yaw, 0.5, {0, 0, -1, 0, 1, 0});
    row("between, to the left", yaw, 2, {-s, 0, -s, 0, 1, 0});
    row("periods later", yaw + R"(, "repeat": true)", 302, {-s, 0, -s, 0, 1, 0});
    row("yaw, then pitch, then roll", three, 0, {-s, s, 0, 0, 0, 1});
    row("the shorter way, over the back", back, 0.5, {0, 0, 1, 0, 1, 0});
    row("the shorter way, of the other sign", sign, 0.5, {-0.6, 0, -0.8, 0, 1, 0});
}

void tst_HeadsetScript::turnsSteadilyBetweenPoses()
{
    QFETCH(QByteArray, script);
    QFETCH(double, seconds);
    QFETCH(QVector<double>, expected);
    QVERIFY(isClose(view(parsed(script).path.at(seconds)), expected));
}

void tst_HeadsetScript::lensesAreThoseOfTheDataSheets()
{
    const HeadsetModel first = developmentKit1();
    const double edge = first.lens.panelWidth / 2 - first.lens.lensSeparation / 2;
    QCOMPARE(distorted(first.lens, 1), 1.0);
    const auto barrel = [](double metres) {
        const double r = metres / 0.03744;
        return r * (1 + 0.22 * r * r + 0.24 * r * r * r * r);
    };
    QCOMPARE(distorted(first.lens, 0.01 / edge), barrel(0.01) / barrel(edge));
    // 0.04313 m and 0.03175 m, seen from 0.041 m
    QCOMPARE(first.description.DefaultEyeFov[ovrEye_Right].RightTan, 1.0519512F);

    const HeadsetModel second = developmentKit2();
    QCOMPARE(second.lens.warpScale, 0.06288 * 0.501988);
    QCOMPARE(second.lens.tanPerMetre * second.lens.panelHeight, 2 * 1.32928634);
}

void tst_HeadsetScript::playsAFileByItsClock()
{
    QFile file(QStringLiteral(TEST_DATA_DIR "/headset/dk1-sweep.json"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    double now = 1000;
    SimulatedDevice device(parsed(file.readAll()), [&now] { return now; });
    QCOMPARE(device.description().ProductName, "Oculus Rift DK1");
    const double s = std::sqrt(0.5);
    const QVector<double> raised{-std::sqrt(0.75), 0.5, 0, 0.5, std::sqrt(0.75), 0};
    QVERIFY(isClose(view(device.pose(0).Orientation), {0, 0, -1, 0, 1, 0}));
    QVERIFY(isClose(view(device.pose(1).Orientation), {-s, 0, -s, 0, 1, 0}));
    now += 3;
    QVERIFY(isClose(view(device.pose(0).Orientation), raised));
    QVERIFY2(isClose(view(device.pose(1).Orientation), raised), "it moves although unplugged");
}

void tst_HeadsetScript::looksAroundWithoutAScript()
{
    std::string error;
    const auto device = SimulatedDevice::open({}, &error);
    QVERIFY(device);
    const auto at = [&](double seconds) { return view(device->pose(seconds).Orientation); };
    QVERIFY(!isClose(at(5), at(15), 0.1));
    QVERIFY(isClose(at(5), at(45), 0.01));
}

void tst_HeadsetScript::saysWhyAFileCannotBeUsed()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    std::string error;
    const auto refused = [&](const QString &path, const QByteArray &json, const char *reason) {
        file.resize(0);
        file.write(json);
        file.flush();
        return !SimulatedDevice::open(path, &error)
            && QString::fromStdString(error).contains(QLatin1String(reason));
    };
    QVERIFY(refused(QStringLiteral("/no/such.json"), {}, "/no/such.json, cannot be used: No such"));
    QVERIFY(refused(file.fileName(), QByteArray(5 << 20, ' '), "More than 4 MiB"));
    QVERIFY(refused(file.fileName(), "{\"unusable\": \"The cable is cut.\"}", "The cable is cut."));
}

void tst_HeadsetScript::foretellsASteadySpin()
{
    for (int run = 0; run < 9; ++run) {
        const double radPerSecond = std::array<double, 3>{-30, -0.1, 4}.at(
            static_cast<std::size_t>(run / 3));
        const auto spun = [&](double seconds) {
            return turnAbout(run % 3, radPerSecond * seconds);
        };
        OrientationPrediction prediction;
        for (int i = 0; i <= 200; ++i)
            prediction.add({5 + i * 0.002, spun(i * 0.002)});
        QCOMPARE(elements(prediction.at(5.401, 0)), elements(spun(0.4)));
        const auto predicts = [&](double now, double ahead, double seconds) {
            return isClose(view(prediction.at(now, ahead)), view(spun(seconds)), 1e-4);
        };
        QVERIFY(predicts(5.4, 0.05, 0.45));
        QVERIFY(predicts(5.41, 0.05, 0.46));
        QVERIFY2(predicts(5.4, 3, 0.5), "not limited");
        QVERIFY2(predicts(6, 0.05, 0.4), "a head that stands still turns on");
    }
}

/// Of a headset that sends every 1.5 ms, what has come is seen every 2 ms.
void tst_HeadsetScript::foretellsEvenlyFromUnevenSamples()
{
    OrientationPrediction prediction;
    for (int i = 0; i < 100; ++i) {
        prediction.add({i * 0.002, turnAbout(1, 4 * 0.0015 * std::floor(i / 0.75))});
        const auto expected = view(turnAbout(1, 4 * (i * 0.002 + 0.05)));
        QVERIFY(i < 10 || isClose(view(prediction.at(i * 0.002, 0.05)), expected, 0.04));
    }
}

void tst_HeadsetScript::foretellsNothingFromGarbage()
{
    const ovrQuatf ahead;
    const auto holdsTheLast = [](const ovrQuatf &before, const ovrQuatf &last, double seconds) {
        OrientationPrediction prediction;
        prediction.add({1, before});
        prediction.add({seconds, last});
        return elements(prediction.at(seconds, 0.05)) == elements(last);
    };
    QCOMPARE(elements(OrientationPrediction().at(1, 0.05)), QStringLiteral("0 0 0 0"));
    QVERIFY(holdsTheLast(ahead, {0, 0, 0, 0}, 1.01));
    QVERIFY(holdsTheLast({0, std::nanf(""), 0, 1}, ahead, 1.01));
    QVERIFY(holdsTheLast(ahead, {0, 3, 0, 4}, 1.01));
    QVERIFY2(holdsTheLast(ahead, {0, 0.6F, 0, 0.8F}, 1.01), "follows a jump");
    QVERIFY2(holdsTheLast(ahead, {0, 0.6F, 0, 0.8F}, 1.5), "follows a turn of long ago");
}

void tst_HeadsetScript::readsTheFiguresOfTheLibrary()
{
    // A frustum of the tangents up 1, down 3, left 3, right 5, as glFrustum defines it.
    OpenHmdFigures figures;
    figures.projections[0] = {2 / 8.0F, 0, 0, 0, 0, 2 / 4.0F, 0, 0, 2 / 8.0F, -2 / 4.0F, -1, -1};
    const ovrFovPort fov = fieldOfView(figures.projections[0]);
    QCOMPARE((QVector<float>{fov.UpTan, fov.DownTan, fov.LeftTan, fov.RightTan}),
             (QVector<float>{1, 3, 3, 5}));

    figures.resolution = {1920, 1080};
    figures.panelWidth = 0.125F;
    figures.panelHeight = 0.07F;
    figures.lensSeparation = figures.lensHeight = 0.06F;
    QVERIFY(isUsable(figures));
    QCOMPARE(lensModel(figures).polynomial.at(0), 1.0);
    QCOMPARE(static_cast<float>(lensModel(figures).tanPerMetre), 4 / 0.07F);

    figures.distortion = {0.247F, -0.145F, 0.103F, 0.795F};
    figures.aberration = {0.985F, 1, 1.015F};
    const LensModel lens = lensModel(figures);
    const LensModel published = developmentKit2().lens;
    QVERIFY(isClose(QVector<double>(lens.polynomial.begin(), lens.polynomial.end()),
                    QVector<double>(published.polynomial.begin(), published.polynomial.end())));

    figures.panelHeight = 0;
    QVERIFY(!isUsable(figures));
    QCOMPARE(headsetType("Oculus VR, Inc. Rift (DK2)"), ovrHmd_DK2);
}

QTEST_GUILESS_MAIN(tst_HeadsetScript)
#include "tst_HeadsetScript.moc"
