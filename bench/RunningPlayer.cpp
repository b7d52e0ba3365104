#include "RunningPlayer.h"

#include "BenchClip.h"
#include "Screen.h"

#include <QDir>

#include <unistd.h>

namespace {

constexpr int kRemoteMs = 3000;
constexpr int kVlcZoomPresses = 25; // from VLC's 80 degrees over the width, 1.5 each, to about 118
constexpr int kTimelineY = 578;     // an edge of the timeline, beside its button's broadest part
constexpr int kLeastRun = 30;       // pixels of one colour in a row, more than any letter has
constexpr uid_t kNobody = 65534;

// 90 degrees over the height of the screen are 2 atan(1000 / 600) over its width.
constexpr char kMpvArguments[] =
    "--no-config --fs --no-osc --gpu-sw=yes --vo=%2 --input-ipc-server=%1 "
    "--vf=lavfi=[v360=input=equirect:output=flat:w=1000:h=600:h_fov=118.07:v_fov=90]";

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

bool RunningPlayer::start(const QString &media)
{
    const QString remote = m_home.filePath(QStringLiteral("remote"));
    QString line = QStringLiteral(PLAYER " --demo");
    if (m_kind == Vlc) {
        line = QStringLiteral("vlc --intf=oldrc --rc-fake-tty --rc-unix=%1 --drawable-xid=%2 "
                              "--no-dbus --no-osd --no-video-title-show --avcodec-hw=none")
                   .arg(remote)
                   .arg(m_window);
        if (::geteuid() == 0) { // which VLC refuses to be
            line.prepend(
                QStringLiteral("setpriv --reuid=%1 --regid=%1 --clear-groups ").arg(kNobody));
            for (const QString &folder : {m_home.path(), m_cache}) {
                if (::chown(folder.toLocal8Bit(), kNobody, kNobody) != 0)
                    return false;
            }
        }
    } else if (m_kind != OrbixSight) {
        line = QStringLiteral("mpv ")
            + QString::fromLatin1(kMpvArguments)
                  .arg(remote, QLatin1String(m_kind == Mpv ? "x11" : "gpu"));
    }
    QStringList words = line.split(QLatin1Char(' ')) << media;
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
    if (m_kind == OrbixSight)
        return findTimeline();
    m_remote.connectToServer(m_home.filePath(QStringLiteral("remote")));
    if (!m_remote.waitForConnected(kRemoteMs))
        return false;
    if (m_kind == Vlc)
        command(QByteArray("key key-viewpoint-fov-out\n").repeated(kVlcZoomPresses));
    return true;
}

void RunningPlayer::seek(double seconds)
{
    const double share = seconds / BenchClip::kSeconds;
    if (m_kind == OrbixSight)
        m_screen->click({m_timelineLeft + int(share * m_timelineWidth), kTimelineY});
    else if (m_kind == Vlc)
        command("seek " + QByteArray::number(share * 100) + "%\n");
    else
        command(R"({"command":["seek",)" + QByteArray::number(seconds) + ",\"absolute+exact\"]}\n");
}

/// The timeline is the only thing in its row that has long runs of one colour.
bool RunningPlayer::findTimeline()
{
    const QImage row = m_screen->grab({0, kTimelineY, Screen::kSize.width(), 1});
    const auto *pixels = reinterpret_cast<const QRgb *>(row.constBits());
    for (int x = 0, start = 0; x < row.width(); ++x) {
        if (pixels[x] != pixels[start])
            start = x;
        if (x - start < kLeastRun || qRed(pixels[x]) < 255)
            continue;
        if (m_timelineLeft < 0)
            m_timelineLeft = start;
        m_timelineWidth = x + 1 - m_timelineLeft;
    }
    return m_timelineWidth > 0;
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
    return (fields.value(11).toDouble() + fields.value(12).toDouble())
        / double(::sysconf(_SC_CLK_TCK));
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
