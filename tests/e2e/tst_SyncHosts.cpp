#include "Wall.h"
#include "WarningsFail.h"

#include <QtTest>

#include <unistd.h>

namespace {

constexpr int kHosts = 3;

/// Runs a command and tells what it said on standard error, or that it did not run.
QString run(const QString &command)
{
    QProcess process;
    const QStringList words = command.split(QLatin1Char(' '));
    process.start(words.first(), words.mid(1));
    if (!process.waitForFinished())
        return command + QStringLiteral(" does not run");
    const QString said = QString::fromLocal8Bit(process.readAllStandardError());
    return process.exitCode() == 0 ? QString() : command + QStringLiteral(": ") + said;
}

/// Three hosts on a network of their own: namespaces, of which the first holds the switch, and
/// cables from there to each of the others. They go with the object.
class Hosts
{
public:
    /// What went wrong, empty if nothing did.
    QString set()
    {
        QStringList commands;
        for (int i = 0; i < kHosts; ++i)
            commands += QStringLiteral("ip netns add %1").arg(name(i));
        const QString first = QStringLiteral("ip -n %1 ").arg(name(0));
        commands += first + QStringLiteral("link add switch type bridge");
        for (int i = 1; i < kHosts; ++i) {
            commands += first
                + QStringLiteral("link add port%1 type veth peer name net netns %2")
                      .arg(i)
                      .arg(name(i));
            commands += first + QStringLiteral("link set port%1 master switch up").arg(i);
        }
        for (int i = 0; i < kHosts; ++i) {
            const QString device = i == 0 ? QStringLiteral("switch") : QStringLiteral("net");
            for (const char *action :
                 {"address add 10.47.0.%1/24 dev %2", "link set %2 up", "route add default dev %2"})
                commands += QStringLiteral("ip -n %1 ").arg(name(i))
                    + QString::fromLatin1(action)
                          .replace(QLatin1String("%1"), QString::number(i + 1))
                          .replace(QLatin1String("%2"), device);
        }
        for (const QString &command : qAsConst(commands)) {
            const QString fault = run(command);
            if (!fault.isEmpty())
                return fault;
        }
        return {};
    }

    ~Hosts()
    {
        for (int i = 0; i < kHosts; ++i)
            run(QStringLiteral("ip netns delete %1").arg(name(i)));
    }

    static QString name(int host)
    {
        return QStringLiteral("orbix-%1-%2").arg(QCoreApplication::applicationPid()).arg(host);
    }
};

} // namespace

/// A master's broadcast on a network of three hosts.
class tst_SyncHosts : public WarningsFail
{
    Q_OBJECT

private slots:
    void slavesOnOtherHostsHearABroadcast();
};

void tst_SyncHosts::slavesOnOtherHostsHearABroadcast()
{
    if (geteuid() != 0)
        QSKIP("Hosts of its own only root can set up.");
    Hosts hosts;
    const QString fault = hosts.set();
    if (!fault.isEmpty())
        QSKIP(qPrintable(QStringLiteral("This system gives no network namespaces: ") + fault));

    const QTemporaryDir media;
    const QString panorama = media.filePath(QStringLiteral("panorama.png"));
    QVERIFY(Wall::writePanorama(panorama));

    Wall wall;
    for (int i = 0; i < kHosts; ++i) {
        Player &copy = wall.add({{QStringLiteral("ipMode"), QStringLiteral("broadcast")}});
        copy.startBy({QStringLiteral("ip"), QStringLiteral("netns"), QStringLiteral("exec"),
                      Hosts::name(i)});
    }
    for (int i = kHosts - 1; i > 0; --i)
        QVERIFY(wall.start(i, {QStringLiteral("--udp"), QStringLiteral("slave")}));
    QVERIFY(wall.start(0, {QStringLiteral("--udp"), QStringLiteral("master"), panorama}));
    const auto allShow = [&wall](const QImage &wanted) {
        const auto pictures = wall.pictures();
        return std::all_of(pictures.begin(), pictures.end(), [&wanted](const QImage &shown) {
            return Wall::areAlike(shown, wanted);
        });
    };
    QTRY_VERIFY_WITH_TIMEOUT(allShow(wall.pictures()[0]), 20000);
    const QImage before = wall.pictures()[0];
    wall.player(0).order("turn 1 0.2 0.3");
    QTRY_VERIFY(!Wall::areAlike(wall.pictures()[0], before));
    QTRY_VERIFY(allShow(wall.pictures()[0]));
    QCOMPARE(wall.end(), QString());
}

QTEST_MAIN(tst_SyncHosts)
#include "tst_SyncHosts.moc"
