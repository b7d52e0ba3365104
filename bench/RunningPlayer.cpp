#include "RunningPlayer.h"

#include "BenchClip.h"
#include "Screen.h"

#include <QDir>

#include <pwd.h>
#include <unistd.h>
#include <cmath>

namespace {

constexpr int kRemoteMs = 3000;
constexpr double kPi = 3.14159265358979323846;
constexpr double kFovDeg = 90;  // of the player's first start, over the smaller side
constexpr int kTimelineY = 578; // an edge of the timeline, beside its button's broadest part
constexpr int kLeastRun = 30;   // pixels of one colour in a row, more than any letter has

double widthFovDeg()
{
    const double ratio = double(Screen::kSize.width()) / Screen::kSize.height();
    return 2 * std::atan(std::tan(kFovDeg * kPi / 360) * ratio) * 180 / kPi;
}

QString program(RunningPlayer::Kind kind)
{
    return QStringList{QStringLiteral(PLAYER), QStringLiteral("vlc"), QStringLiteral("mpv"),
                       QStringLiteral("mpv")}
        .at(kind);
}

// VLC starts with 80 degrees over the width; one press of its key adds 1.5.
int vlcZoomPresses()
{
    return int(std::lround((widthFovDeg() - 80) / 1.5));
}

} // namespace

QString RunningPlayer::name(Kind kind)
{
    return QStringList{QStringLiteral("orbixsight"), QStringLiteral("vlc"), QStringLiteral("mpv"),
                       QStringLiteral("mpv, OpenGL")}
        .at(kind);
}

RunningPlayer::RunningPlayer(Kind kind, Screen *screen, const QString &caches)
    : m_kind(kind)
    , m_screen(screen)
    , m_cache(caches + QLatin1Char('/') + name(kind))
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *variable : {"HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"})
        environment.insert(QLatin1String(variable), m_home.path());
    environment.insert(QStringLiteral("XDG_CACHE_HOME"), m_cache);
    QDir().mkpath(m_cache);
    m_process.setProcessEnvironment(environment);
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setStandardErrorFile(QProcess::nullDevice());
    if (m_kind == Vlc)
        m_window = m_screen->addWindow();
}

RunningPlayer::~RunningPlayer()
{
    m_process.kill();
    m_process.waitForFinished();
    if (m_kind == Vlc)
        m_screen->removeWindow(m_window);
}

/// VLC refuses to run as root: then the command runs as "nobody", who gets its folders.
bool RunningPlayer::makeOrdinaryUser(QStringList &command) const
{
    if (::geteuid() != 0)
        return true;
    const passwd *nobody = ::getpwnam("nobody");
    if (!nobody)
        return false;
    for (const QString &folder : {m_home.path(), m_cache}) {
        if (::chown(folder.toLocal8Bit(), nobody->pw_uid, nobody->pw_gid) != 0)
            return false;
    }
    command = QStringLiteral("setpriv --reuid=%1 --regid=%2 --clear-groups")
                  .arg(nobody->pw_uid)
                  .arg(nobody->pw_gid)
                  .split(QLatin1Char(' '))
        + command;
    return true;
}

bool RunningPlayer::start(const QString &media)
{
    const QString remote = m_home.filePath(QStringLiteral("remote"));
    QString line;
    switch (m_kind) {
    case OrbixSight:
        line = QStringLiteral("--demo");
        break;
    case Mpv:
    case MpvGl:
        line = QStringLiteral(
                   "--no-config --fs --no-osc --gpu-sw=yes --vo=%1 --input-ipc-server=%2 "
                   "--vf=lavfi=[v360=input=equirect:output=flat:w=%3:h=%4:h_fov=%5:"
                   "v_fov=%6]")
                   .arg(QLatin1String(m_kind == Mpv ? "x11" : "gpu"), remote)
                   .arg(Screen::kSize.width())
                   .arg(Screen::kSize.height())
                   .arg(widthFovDeg())
                   .arg(kFovDeg);
        break;
    case Vlc:
        line = QStringLiteral("--intf=oldrc --rc-fake-tty --rc-unix=%1 --drawable-xid=%2 --no-dbus "
                              "--no-osd --no-video-title-show --avcodec-hw=none")
                   .arg(remote)
                   .arg(m_window);
        break;
    }
    QStringList words = line.split(QLatin1Char(' ')) << media;
    words.prepend(program(m_kind));
    if (m_kind == Vlc && !makeOrdinaryUser(words))
        return false;
    m_process.start(words.takeFirst(), words);
    return m_process.waitForStarted();
}

bool RunningPlayer::isRunning()
{
    if (m_process.state() != QProcess::NotRunning)
        m_process.waitForFinished(0); // without an event loop it learns of the end only here
    return m_process.state() != QProcess::NotRunning;
}

bool RunningPlayer::takeControl()
{
    if (m_kind == OrbixSight) {
        findTimeline();
        return m_timelineWidth > 0;
    }
    m_remote.connectToServer(m_home.filePath(QStringLiteral("remote")));
    if (!m_remote.waitForConnected(kRemoteMs))
        return false;
    if (m_kind == Vlc)
        command(QByteArray("key key-viewpoint-fov-out\n").repeated(vlcZoomPresses()));
    return true;
}

void RunningPlayer::seek(double seconds)
{
    switch (m_kind) {
    case OrbixSight:
        m_screen->click(
            {m_timelineLeft + int(seconds / BenchClip::kSeconds * m_timelineWidth), kTimelineY});
        break;
    case Mpv:
    case MpvGl:
        command(R"({"command":["seek",)" + QByteArray::number(seconds) + R"(,"absolute+exact"]})"
                + '\n');
        break;
    case Vlc:
        command("seek " + QByteArray::number(seconds * 100 / BenchClip::kSeconds) + "%\n");
        break;
    }
}

/// The timeline is the only thing in its row that has long runs of one colour.
void RunningPlayer::findTimeline()
{
    const QImage row = m_screen->grab({0, kTimelineY, Screen::kSize.width(), 1});
    const auto *pixels = reinterpret_cast<const QRgb *>(row.constBits());
    int first = -1;
    int last = -1;
    for (int x = 0, start = 0; x < row.width(); ++x) {
        if (pixels[x] != pixels[start])
            start = x;
        if (x - start < kLeastRun || qRed(pixels[x]) < 255)
            continue;
        first = first < 0 ? start : first;
        last = x;
    }
    m_timelineLeft = first;
    m_timelineWidth = first < 0 ? 0 : last + 1 - first;
}

void RunningPlayer::command(const QByteArray &line)
{
    m_remote.readAll(); // what it answered before
    m_remote.write(line);
    while (m_remote.bytesToWrite() > 0 && m_remote.waitForBytesWritten(kRemoteMs)) {
    }
}

double RunningPlayer::cpuSeconds() const
{
    // Behind the name in parentheses: state and on (proc(5)), the times at 14 and 15 of the whole.
    const QByteArray line = processFile("stat");
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    if (fields.size() < 13)
        return 0;
    return (fields[11].toDouble() + fields[12].toDouble()) / double(::sysconf(_SC_CLK_TCK));
}

double RunningPlayer::peakMemoryMib() const
{
    const QByteArray status = processFile("status");
    const int at = status.indexOf("VmHWM:");
    return at < 0 ? 0 : status.mid(at + 6, 20).simplified().split(' ').first().toDouble() / 1024;
}

QByteArray RunningPlayer::processFile(const char *name) const
{
    QFile file(QStringLiteral("/proc/%1/%2").arg(m_process.processId()).arg(QLatin1String(name)));
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}
