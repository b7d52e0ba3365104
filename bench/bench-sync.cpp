// How fast copies follow: from a change of the master's yaw to the slave's frame with that yaw on
// its screen, and what the master's sending costs. The master's socket is that of the player, in
// this process, at its default of 50 datagrams a second; a slave is the player itself, on a screen
// of its own, with a picture whose halves have two colours.
//   bench-sync [SLAVES…]    with so many slaves; with 1, then 2, if not said

#include "AimTable.h"
#include "OrbGlobalObject.h"
#include "OrbSettingsManager.h"
#include "OrbUdpSocket.h"
#include "OrbVideoPlugin.h"
#include "Screen.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QGuiApplication>
#include <QProcess>
#include <QRandomGenerator>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>

#include <sys/resource.h>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

constexpr int kChanges = 300;
constexpr float kYaw = 1; ///< radians to either side
constexpr quint16 kPort = 47755;
constexpr int kDeadlineMs = 20000;
constexpr int kSendingMs = 10000;

/// All copies of this machine hear what goes there.
constexpr char kBroadcast[] = "127.255.255.255";

QString name(int slaves)
{
    return slaves == 1 ? QStringLiteral("1 slave") : QStringLiteral("%1 slaves").arg(slaves);
}

/// The player as a slave that fills a screen of its own.
class Slave
{
public:
    Slave(const QString &folder, int number)
    {
        const QString home = folder + QStringLiteral("/slave%1").arg(number);
        QSettings settings(home + QStringLiteral("/Orbix/Orbix Sight 1.4.conf"),
                           QSettings::IniFormat);
        settings.setValue(QStringLiteral("application/communication/port"), kPort);
        settings.sync();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home);
        m_process.setProcessEnvironment(environment);
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.start(QStringLiteral(PLAYER),
                        {QStringLiteral("--demo"), QStringLiteral("--udp"), QStringLiteral("slave"),
                         folder + QStringLiteral("/halves.png")});
    }

    ~Slave()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    /// Whether the middle shows the half of a positive yaw, the other, or neither.
    int side() const
    {
        const QImage middle = m_screen.grab({QPoint(500, 300), QSize(1, 1)});
        if (middle.isNull())
            return 0;
        const QColor colour = middle.pixelColor(0, 0);
        return colour.red() > 200 ? 1 : colour.blue() > 200 ? -1 : 0;
    }

private:
    Screen m_screen; // has to be there before the player
    QProcess m_process;
};

/// Lets the master send until every slave shows this side; its times to that are added to the
/// table. False if one does not.
bool follow(const std::vector<std::unique_ptr<Slave>> &slaves, int side,
            std::vector<double> *timesMs)
{
    QElapsedTimer time;
    time.start();
    std::vector<bool> done(slaves.size(), false);
    while (std::count(done.begin(), done.end(), false) > 0) {
        if (time.elapsed() > kDeadlineMs)
            return false;
        QCoreApplication::processEvents();
        for (size_t i = 0; i < slaves.size(); ++i) {
            if (done[i] || slaves[i]->side() != side)
                continue;
            done[i] = true;
            if (timesMs)
                timesMs->push_back(double(time.nsecsElapsed()) / 1e6);
        }
    }
    return true;
}

void pause(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

/// A master that sends without a scene's help.
struct Master
{
    explicit Master(OrbSettingsManager *settings)
        : videoPlugin(settings)
        , camera(settings, &videoPlugin)
        , socket(&camera, QStringLiteral("master"))
    {}

    OrbVideoPlugin videoPlugin;
    OrbGlobalObject camera;
    OrbUdpSocket socket;
};

void measureFollowing(AimTable &table, OrbSettingsManager *settings, const QString &folder,
                      int count)
{
    Master master(settings);
    std::vector<std::unique_ptr<Slave>> slaves;
    slaves.reserve(size_t(count));
    for (int i = 0; i < count; ++i)
        slaves.push_back(std::make_unique<Slave>(folder, i));
    master.camera.setYaw(kYaw);
    int side = 1;
    std::vector<double> timesMs;
    bool follows = follow(slaves, side, nullptr);
    pause(2000); // what a start leaves to do
    for (int i = 0; i < kChanges && follows; ++i) {
        pause(80 + QRandomGenerator::global()->bounded(40)); // any time of the send timer
        side = -side;
        master.camera.setYaw(float(side) * kYaw);
        follows = follow(slaves, side, &timesMs);
    }
    if (!follows) {
        table.fail(name(count), QStringLiteral("a slave does not follow"));
        return;
    }
    for (const double timeMs : timesMs)
        table.add(QStringLiteral("yaw to the slave's frame"), name(count), timeMs);
    std::sort(timesMs.begin(), timesMs.end());
    table.add(QStringLiteral("the same, 99th percentile"), name(count),
              timesMs[timesMs.size() * 99 / 100]);
}

double cpuMs()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto ms = [](const timeval &time) { return time.tv_sec * 1e3 + time.tv_usec / 1e3; };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

void measureSending(AimTable &table, OrbSettingsManager *settings)
{
    QObject player;
    player.setProperty("mediaSource", QUrl(QStringLiteral("file:///media/wall/film.mp4")));
    player.setProperty("playbackState", 1);
    player.setProperty("position", 12040);
    QObject loader;
    loader.setProperty("mediaPlayer", QVariant::fromValue(&player));
    Master master(settings);
    master.camera.setMediaLoader(&loader);
    const double before = cpuMs();
    pause(kSendingMs);
    table.add(QStringLiteral("CPU of sending, of a core"), QStringLiteral("master"),
              (cpuMs() - before) / kSendingMs * 100);
}

void writeHalves(const QString &path)
{
    QImage picture(1024, 512, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    for (int y = 0; y < picture.height(); ++y)
        std::fill_n(reinterpret_cast<QRgb *>(picture.scanLine(y)) + 512, 512, qRgb(255, 0, 0));
    picture.save(path);
}

} // namespace

int main(int argc, char **argv)
{
    const QTemporaryDir folder;
    qputenv("XDG_CONFIG_HOME", folder.path().toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    OrbSettingsManager settings(QStringLiteral("Orbix"), QStringLiteral("bench-sync"));
    settings.write(QStringLiteral("application/communication/port"), kPort);
    settings.write(QStringLiteral("application/communication/ipMode"), QStringLiteral("custom"));
    settings.write(QStringLiteral("application/communication/ipCustom"),
                   QString::fromLatin1(kBroadcast));
    writeHalves(folder.filePath(QStringLiteral("halves.png")));

    std::vector<int> counts;
    for (int i = 1; i < argc; ++i) {
        if (const int count = QByteArray(argv[i]).toInt())
            counts.push_back(count);
    }
    if (counts.empty())
        counts = {1, 2};
    AimTable table;
    measureSending(table, &settings);
    for (const int count : counts)
        measureFollowing(table, &settings, folder.path(), count);

    AimTable::printHead();
    table.printRow(QStringLiteral("CPU of sending, of a core"), "%", QStringLiteral("master"), {},
                   {AimTable::Aim::AtMost, 1});
    for (const int count : counts) {
        for (const char *measure : {"yaw to the slave's frame", "the same, 99th percentile"})
            table.printRow(QString::fromUtf8(measure), "ms", name(count), {}, {});
    }
    return table.isComplete() ? 0 : 1;
}
