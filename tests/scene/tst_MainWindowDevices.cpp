#include "SceneFixture.h"

#include <QTest>

/// The input devices on the control bar, as if their layers had found them.
class tst_MainWindowDevices : public SceneFixture
{
    Q_OBJECT

private:
    static QStringList devices()
    {
        return {QStringLiteral("orbSensor"), QStringLiteral("orbOculus"), QStringLiteral("orbLeap"),
                QStringLiteral("orbRealSense")};
    }
    /// Not in use yet, which only the hand tracker would be by itself.
    void setAvailable(const QString &device, bool available) const
    {
        if (device != QLatin1String("orbLeap")) {
            scene(QStringLiteral("%1.setAvailable(%2)").arg(device).arg(available));
        } else if (scene(QStringLiteral("orbLeap.available")).toBool() != available) {
            scene(QStringLiteral("orbLeap.activated = false"));
            scene(QStringLiteral("orbLeap.leapConnected(%1)").arg(available));
            scene(QStringLiteral("orbLeap.activated = false"));
        }
    }
    void makeAllAvailable() const;
    QStringList activated() const;
    qreal timelineWidth() const
    {
        return control(QStringLiteral("Timeline"), QAccessible::Slider)->width();
    }

    void watchPitch()
    {
        m_hasRisen = m_hasRisen || view()->pitch() > m_lastPitch;
        m_lastPitch = view()->pitch();
    }

    bool m_hasRisen = false;
    float m_lastPitch = 0;

private slots:
    void init();
    void cleanup();
    void aButtonComesAndGoesWithItsDevice_data();
    void aButtonComesAndGoesWithItsDevice();
    void devicesExcludeOneAnother_data();
    void devicesExcludeOneAnother();
    void allButtonsStandInOneRowWithNames();
    void theHelpNamesTheDevicesThatAreThere();
    void theViewBouncesBackToItsRest_data();
    void theViewBouncesBackToItsRest();
};

void tst_MainWindowDevices::init()
{
    SceneFixture::init();
    QVERIFY(dropFiles({media.octants()}));
    QTRY_VERIFY(showsOctantsAhead());
    showBar();
}

void tst_MainWindowDevices::cleanup()
{
    const QStringList all = devices();
    for (const QString &device : all)
        setAvailable(device, false);
    scene(QStringLiteral("orbShaderCodeBuilder.oculusMode = false"));
    scene(QStringLiteral("orbLeap.cameraMode = 3"));
    SceneFixture::cleanup();
}

void tst_MainWindowDevices::makeAllAvailable() const
{
    const QStringList all = devices();
    for (const QString &device : all)
        setAvailable(device, true);
    // The strip is laid out with the next frame.
    const auto edge = [this](const char *name, qreal x) {
        return control(QLatin1String(name))->mapToScene({x, 0}).x();
    };
    QTRY_COMPARE(edge("Depth camera", 50), edge("Rectilinear projection", 0));
    QTRY_COMPARE(edge("Menu", 80), qreal(window()->width()));
}

QStringList tst_MainWindowDevices::activated() const
{
    QStringList active;
    const QStringList all = devices();
    for (const QString &device : all) {
        if (scene(device + QStringLiteral(".activated")).toBool())
            active += device;
    }
    return active;
}

void tst_MainWindowDevices::aButtonComesAndGoesWithItsDevice_data()
{
    QTest::addColumn<QString>("device");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("switchingKey"); // 0 for none
    QTest::addColumn<QString>("offImage");
    QTest::addColumn<QString>("onImage");
    QTest::addColumn<bool>("separated");

    QTest::newRow("sensor") << "orbSensor"
                            << "Orientation sensor" << int(Qt::Key_G) << "gyro_off"
                            << "gyro_on" << true;
    QTest::newRow("headset") << "orbOculus"
                             << "Headset" << int(Qt::Key_O) << "oculus_off"
                             << "oculus_on" << true;
    QTest::newRow("hand tracker") << "orbLeap"
                                  << "Hand tracker" << int(Qt::Key_L) << "leap_off"
                                  << "leap_on" << true;
    QTest::newRow("depth camera") << "orbRealSense"
                                  << "Depth camera" << 0 << "intelRealSense_off"
                                  << "intelRealSense" << false;
}

void tst_MainWindowDevices::aButtonComesAndGoesWithItsDevice()
{
    constexpr int kButton = 50;
    QFETCH(QString, device);
    QFETCH(QString, name);
    QFETCH(int, switchingKey);
    QFETCH(QString, offImage);
    QFETCH(QString, onImage);
    QFETCH(bool, separated);
    const auto shownImage = [this](const QString &image) {
        return imageItem(QStringLiteral("newui/%1_mini_button.png").arg(image)) != nullptr;
    };
    const auto press = [&](bool byKey) {
        if (byKey)
            key(Qt::Key(switchingKey));
        else
            clickOn(control(name));
        return activated() == QStringList(device);
    };
    const qreal wide = timelineWidth();
    QVERIFY(!control(name));
    if (switchingKey)
        QVERIFY(!press(true));

    setAvailable(device, true);
    QCOMPARE(timelineWidth(), wide - kButton);
    QCOMPARE(control(name)->width(), qreal(kButton));
    QVERIFY(shownImage(offImage));
    // Between the group and the button that follows it stands a line, half of white over the bar.
    const QPoint edge =
        control(QStringLiteral("Rectilinear projection"))->mapToScene({-1, 20}).toPoint();
    const QColor barColour = colourAt(edge - QPoint(4, 0));
    const QColor line((255 + barColour.red()) / 2, (255 + barColour.green()) / 2,
                      (255 + barColour.blue()) / 2);
    QTRY_VERIFY(shows(separated ? line : barColour, edge));

    const QRect button =
        control(name)->mapRectToScene({0, 0, kButton - 2., 40}).toAlignedRect(); // without line
    const QImage off = grab().copy(button);
    for (const bool byKey : {false, true}) {
        if (byKey && !switchingKey)
            continue;
        QVERIFY(press(byKey));
        QVERIFY(shownImage(onImage));
        QVERIFY(!shownImage(offImage));
        QTRY_VERIFY(grab().copy(button) != off);
        QVERIFY(!press(byKey));
        QTRY_COMPARE(grab().copy(button), off);
    }

    QVERIFY(press(false));
    setAvailable(device, false);
    QVERIFY(!control(name));
    QCOMPARE(activated(), QStringList());
    QCOMPARE(timelineWidth(), wide);
}

void tst_MainWindowDevices::devicesExcludeOneAnother_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("switchingKey"); // 0 for none
    QTest::addColumn<QStringList>("before");
    QTest::addColumn<QStringList>("after");
    QTest::addColumn<int>("cameraMode"); // 2 before

    const QString sensor = devices().at(0);
    const QString headset = devices().at(1);
    const QString tracker = devices().at(2);
    const QString camera = devices().at(3);
    QTest::newRow("sensor on") << "Orientation sensor" << int(Qt::Key_G)
                               << QStringList{headset, tracker, camera} << QStringList{sensor} << 3;
    QTest::newRow("sensor off") << "Orientation sensor" << int(Qt::Key_G) << devices()
                                << QStringList() << 3;
    QTest::newRow("headset on") << "Headset" << int(Qt::Key_O)
                                << QStringList{sensor, tracker, camera}
                                << QStringList{headset, tracker} << 2;
    QTest::newRow("headset off") << "Headset" << int(Qt::Key_O) << devices() << QStringList{tracker}
                                 << 3;
    QTest::newRow("tracker on") << "Hand tracker" << int(Qt::Key_L)
                                << QStringList{sensor, headset, camera}
                                << QStringList{headset, tracker} << 2;
    QTest::newRow("tracker off") << "Hand tracker" << int(Qt::Key_L) << devices()
                                 << QStringList{headset} << 2;
    QTest::newRow("depth camera on")
        << "Depth camera" << 0 << QStringList{sensor, headset, tracker} << QStringList{camera} << 3;
    QTest::newRow("depth camera off") << "Depth camera" << 0 << devices() << QStringList() << 3;
}

void tst_MainWindowDevices::devicesExcludeOneAnother()
{
    QFETCH(QString, name);
    QFETCH(int, switchingKey);
    QFETCH(QStringList, before);
    QFETCH(QStringList, after);
    QFETCH(int, cameraMode);
    makeAllAvailable();
    for (const bool byKey : {false, true}) {
        if (byKey && !switchingKey)
            continue;
        const QStringList all = devices();
        for (const QString &device : all)
            scene(QStringLiteral("%1.activated = %2").arg(device).arg(before.contains(device)));
        scene(QStringLiteral("orbShaderCodeBuilder.oculusMode = orbOculus.activated"));
        scene(QStringLiteral("orbLeap.cameraMode = 2"));
        QCOMPARE(activated(), before);
        if (byKey)
            key(Qt::Key(switchingKey));
        else
            clickOn(control(name));
        QCOMPARE(activated(), after);
        QCOMPARE(picture()->oculusMode(), after.contains(QStringLiteral("orbOculus")));
        QCOMPARE(scene(QStringLiteral("orbLeap.cameraMode")).toInt(), cameraMode);
    }
}

void tst_MainWindowDevices::allButtonsStandInOneRowWithNames()
{
    makeAllAvailable();
    qreal x = control(QStringLiteral("Full screen"))->mapToScene({50, 0}).x();
    for (const char *name : {"Orientation sensor", "Headset", "Hand tracker", "Depth camera",
                             "Rectilinear projection"}) {
        const QQuickItem *button = control(QLatin1String(name));
        QVERIFY2(button, name);
        QCOMPARE(button->mapToScene({0, 0}), QPointF(x, bar()->y()));
        x += button->width();
    }
    QCOMPARE(namelessHotPlaces(), QStringList());
    keepPicture(QStringLiteral("bar-devices"));
}

void tst_MainWindowDevices::theHelpNamesTheDevicesThatAreThere()
{
    key(Qt::Key_H);
    const QString others = QStringLiteral("E : change effect \nF : fullscreen on/off \n%1"
                                          "H : show/hide shortcuts \n%2P : change projection \n");
    const auto helpSays = [this](const QString &text) {
        return item([&text](QQuickItem *candidate) {
                   return candidate->isVisible()
                       && candidate->property("text").toString().contains(text);
               })
            != nullptr;
    };
    const QString fps = QStringLiteral("oculus fps : 0\nvideo decoding fps : ");
    QVERIFY(helpSays(others.arg(QString(), QString())));
    QVERIFY(!helpSays(fps));
    makeAllAvailable();
    QVERIFY(helpSays(others.arg(QStringLiteral("G : gyro on/off \n"),
                                QStringLiteral("O : oculus on/off \nL : leap motion on/off \n"))));
    QVERIFY(helpSays(fps));
    key(Qt::Key_H);
}

void tst_MainWindowDevices::theViewBouncesBackToItsRest_data()
{
    QTest::addColumn<double>("fov");
    QTest::addColumn<QVector<float>>("rest"); // pitch, field of view, roll
    QTest::newRow("the pitch alone") << -1.0 << QVector<float>{0.5F, 40, 0.3F};
    QTest::newRow("all") << 25.0 << QVector<float>{0.5F, 25, 0.1F};
}

/// As after a pull of a hand. What remains bent stays a little planet.
void tst_MainWindowDevices::theViewBouncesBackToItsRest()
{
    QFETCH(double, fov);
    const auto now = [this] {
        return QVector<float>{view()->pitch(), view()->fov(), view()->roll()};
    };
    picture()->setProjection(OrbShaderCodeBuilder::LITTLE_PLANET);
    view()->setPitch(1);
    view()->setFov(40);
    view()->setRoll(0.3F);
    m_hasRisen = false;
    m_lastPitch = view()->pitch();
    const auto watch = connect(view(), &OrbGlobalObject::pitchChanged, this,
                               &tst_MainWindowDevices::watchPitch);
    scene(QStringLiteral("orbLeap.pitchBounce(0.5, %1, 0.1)").arg(fov));
    QTRY_COMPARE(view()->pitch(), 0.5F);
    disconnect(watch);
    QVERIFY(m_hasRisen); // it bounces
    QTRY_VERIFY([&] {
        QFETCH(QVector<float>, rest);
        return now() == rest;
    }());
    QCOMPARE(picture()->projection(), int(OrbShaderCodeBuilder::LITTLE_PLANET));
}

int main(int argc, char **argv)
{
    return tst_MainWindowDevices().run(argc, argv);
}

#include "tst_MainWindowDevices.moc"
