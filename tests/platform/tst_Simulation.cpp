#include "Simulation.h"

#include "WarningsFail.h"

#include <QtTest>

#include <thread>

using Devices = QMap<QString, QString>;

class tst_Simulation : public WarningsFail
{
    Q_OBJECT

private slots:
    void readsTheListOfDevices_data();
    void readsTheListOfDevices();
    void readsTheEnvironmentOnceFromAnyThread();
};

void tst_Simulation::readsTheListOfDevices_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<Devices>("devices");
    QTest::newRow("nothing") << "" << Devices{};
    QTest::newRow("blanks") << " ,, ,:,  :x.json" << Devices{};
    QTest::newRow("names") << "headset,hands: " << Devices{{"hands", ""}, {"headset", ""}};
    QTest::newRow("scripts") << " headset : a/b.json, hands:/c/d.json "
                             << Devices{{"headset", "/start/a/b.json"}, {"hands", "/c/d.json"}};
    QTest::newRow("a path with colons and blanks")
        << "x:../my file:2.json" << Devices{{"x", "/my file:2.json"}};
    QTest::newRow("unknown names, the last of two")
        << "toaster:1,toaster:2" << Devices{{"toaster", "/start/2"}};
}

void tst_Simulation::readsTheListOfDevices()
{
    QFETCH(QString, list);
    QTEST(Simulation::devices(list, QStringLiteral("/start")), "devices");
}

/// The environment is ORBIX_SIMULATE=headset:a.json,hands
void tst_Simulation::readsTheEnvironmentOnceFromAnyThread()
{
    Simulation::setFolder(QStringLiteral("/start"));
    std::optional<QString> headset;
    std::thread([&headset] { headset = Simulation::script(QStringLiteral("headset")); }).join();
    QCOMPARE(headset, std::optional<QString>(QStringLiteral("/start/a.json")));

    qputenv("ORBIX_SIMULATE", "sensor");
    QCOMPARE(Simulation::script(QStringLiteral("hands")), std::optional<QString>(QString()));
    QVERIFY(!Simulation::script(QStringLiteral("sensor")));
}

QTEST_GUILESS_MAIN(tst_Simulation)
#include "tst_Simulation.moc"
