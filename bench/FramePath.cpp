#include "FramePath.h"

#include "BenchClip.h"
#include "OrbuiQuickVideoPlayerVlc.h"
#include "VlcInstance.h"

#include <QEventLoop>
#include <QProcess>
#include <QQuickView>
#include <QThread>
#include <QTimer>

#include <sys/resource.h>
#include <vlc/vlc.h>

#include <atomic>
#include <vector>

namespace {

constexpr int kSeconds = 3;
constexpr int kSettleMs = 1000;
constexpr int kDeadlineMs = 20000;

/// Of this process, or of its children that have ended.
double cpuSeconds(__rusage_who who)
{
    rusage usage{};
    ::getrusage(who, &usage);
    const auto seconds = [](const timeval &time) {
        return double(time.tv_sec) + double(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

struct Discard
{
    std::vector<uchar> memory;
    std::atomic<int> frames{0};
};

void *lockMemory(void *opaque, void **planes)
{
    planes[0] = static_cast<Discard *>(opaque)->memory.data();
    return nullptr;
}

void countFrame(void *opaque, void *, void *const *)
{
    ++static_cast<Discard *>(opaque)->frames;
}

} // namespace

double FramePath::ofItem(const QString &clip)
{
    QQuickView window;
    window.resize(64, 64);
    OrbuiQuickVideoPlayerVlc item(window.contentItem());
    window.show();
    item.openFile(QUrl::fromLocalFile(clip));

    // The item tells once a second how many frames it has got; the first seconds are the start.
    int told = 0;
    int frames = 0;
    double before = 0;
    double after = 0;
    QEventLoop loop;
    QObject::connect(&item, &OrbuiQuickVideoPlayerVlc::fpsChanged, &loop, [&] {
        ++told;
        if (told == 2)
            before = cpuSeconds(RUSAGE_SELF);
        if (told <= 2)
            return;
        frames += item.fps();
        after = cpuSeconds(RUSAGE_SELF);
        if (told == 2 + kSeconds)
            loop.quit();
    });
    QTimer::singleShot(kDeadlineMs, &loop, &QEventLoop::quit);
    loop.exec();
    return item.textureId() == 0 || frames == 0 ? 0 : (after - before) / frames;
}

double FramePath::ofLibVlc(const QString &clip, const QSize &size)
{
    libvlc_media_t *media = libvlc_media_new_path(vlcInstance(), clip.toLocal8Bit());
    libvlc_media_player_t *player = media ? libvlc_media_player_new_from_media(media) : nullptr;
    if (!player)
        return 0;
    Discard discard;
    discard.memory.resize(size_t(size.width()) * size_t(size.height()) * 4);
    libvlc_video_set_callbacks(player, lockMemory, countFrame, nullptr, &discard);
    libvlc_video_set_format(player, "RV32", unsigned(size.width()), unsigned(size.height()),
                            unsigned(size.width()) * 4);
    libvlc_media_player_play(player);
    QThread::msleep(kSettleMs);
    const double before = cpuSeconds(RUSAGE_SELF);
    const int framesBefore = discard.frames;
    QThread::sleep(kSeconds);
    const double seconds = cpuSeconds(RUSAGE_SELF) - before;
    const int frames = discard.frames - framesBefore;
    libvlc_media_player_stop(player);
    libvlc_media_player_release(player);
    libvlc_media_release(media);
    return frames == 0 ? 0 : seconds / frames;
}

double FramePath::ofFfmpeg(const QString &clip)
{
    const double before = cpuSeconds(RUSAGE_CHILDREN);
    const QString line = QStringLiteral("-v error -nostdin -threads 2 -t %1 -i %2 -f null -");
    const int status = QProcess::execute(QStringLiteral("ffmpeg"),
                                         line.arg(kSeconds).arg(clip).split(QLatin1Char(' ')));
    const double seconds = cpuSeconds(RUSAGE_CHILDREN) - before;
    return status == 0 ? seconds / (kSeconds * BenchClip::kFramesPerSecond) : 0;
}
