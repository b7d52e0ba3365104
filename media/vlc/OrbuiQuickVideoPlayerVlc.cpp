#include "OrbuiQuickVideoPlayerVlc.h"

#include "TexturePainter.h"
#include "VlcInstance.h"
#include "VlcOptions.h"
#include "VlcStream.h"

#include <QDateTime>
#include <QOpenGLContext>
#include <QPainter>

#include <vlc/vlc.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <mutex>

namespace {

constexpr char kChroma[] = "RV32"; // blue, green, red, 255
constexpr int kBytesAPixel = 4;
constexpr float kPercent = 100;
constexpr float kMaxVolume = 10;
constexpr int kDecoderRestMs = 300;
constexpr int kSoundOnlyMs = 1000; // playing this long without a picture, it has none
constexpr int kPlayerEvents[] = {libvlc_MediaPlayerTimeChanged, libvlc_MediaPlayerEncounteredError};
constexpr int kMediaEvents[] = {libvlc_MediaStateChanged, libvlc_MediaParsedChanged};

OrbuiQuickVideoPlayerVlc *itemOf(void *opaque)
{
    return static_cast<OrbuiQuickVideoPlayerVlc *>(opaque);
}

/// libVLC's last words on the calling thread, empty if there are none.
QString errorText()
{
    return QString::fromLatin1(libvlc_errmsg());
}

void showNoFrame(void *, void *) {}

} // namespace

OrbuiQuickVideoPlayerVlc::OrbuiQuickVideoPlayerVlc(QQuickItem *parent)
    : QQuickPaintedItem(parent)
    , m_upload(VlcOptions::process().textureTransfer)
{
    setMipmap(false);
    setRenderTarget(QQuickPaintedItem::InvertedYFramebufferObject);
    setTextureSize({1, 1}); // the item draws nothing of its own until it is told to
    followUpload();
    m_seekRepeat.setSingleShot(true);
    m_seekRepeat.setInterval(kDecoderRestMs);
    connect(&m_seekRepeat, &QTimer::timeout, this, &OrbuiQuickVideoPlayerVlc::repeatPausedSeek);
    if (libvlc_instance_t *instance = vlcInstance())
        m_mediaPlayerHandle = libvlc_media_player_new(instance);
    if (m_mediaPlayerHandle)
        attachPlayer();
}

OrbuiQuickVideoPlayerVlc::~OrbuiQuickVideoPlayerVlc()
{
    if (!m_mediaPlayerHandle)
        return;
    m_upload.cancelWaiting();
    libvlc_event_manager_t *events = libvlc_media_player_event_manager(m_mediaPlayerHandle);
    for (const int type : kPlayerEvents)
        libvlc_event_detach(events, type, eventCallback, this);
    libvlc_media_player_stop(m_mediaPlayerHandle);
    releaseMedia();
    libvlc_media_player_release(m_mediaPlayerHandle);
}

void OrbuiQuickVideoPlayerVlc::attachPlayer()
{
    libvlc_event_manager_t *events = libvlc_media_player_event_manager(m_mediaPlayerHandle);
    for (const int type : kPlayerEvents)
        libvlc_event_attach(events, type, eventCallback, this);
    libvlc_video_set_callbacks(m_mediaPlayerHandle, lockCallback, unlockCallback, showNoFrame,
                               this);
    libvlc_video_set_format_callbacks(m_mediaPlayerHandle, formatCallback, cleanupCallback);
}

void OrbuiQuickVideoPlayerVlc::followUpload()
{
    const auto takeTexture = [this] {
        setTextureId(m_upload.textureId());
        if (m_paintTexture)
            update();
    };
    connect(&m_upload, &FrameUpload::textureIdChanged, this, takeTexture, Qt::QueuedConnection);
    connect(&m_upload, &FrameUpload::started, this, [this, takeTexture] {
        takeTexture();
        emit textureTransferChanged();
    });
    connect(
        &m_upload, &FrameUpload::uploadWanted, this,
        [this] {
            if (m_upload.route() == RouteQueuedSlot)
                updateTexture();
            else
                update();
        },
        Qt::QueuedConnection);
}

float OrbuiQuickVideoPlayerVlc::volume() const
{
    return m_mediaPlayerHandle ? float(libvlc_audio_get_volume(m_mediaPlayerHandle)) / kPercent : 0;
}

void OrbuiQuickVideoPlayerVlc::setVolume(float volume)
{
    if (!m_mediaPlayerHandle || std::isnan(volume))
        return;
    const float percent = std::clamp(volume, 0.0F, kMaxVolume) * kPercent;
    libvlc_audio_set_volume(m_mediaPlayerHandle, static_cast<int>(percent));
    emit volumeChanged();
}

void OrbuiQuickVideoPlayerVlc::setYaw(float yaw)
{
    if (std::exchange(m_yaw, yaw) != yaw)
        emit yawChanged();
}

void OrbuiQuickVideoPlayerVlc::setPitch(float pitch)
{
    if (std::exchange(m_pitch, pitch) != pitch)
        emit pitchChanged();
}

void OrbuiQuickVideoPlayerVlc::setRoll(float roll)
{
    if (std::exchange(m_roll, roll) != roll)
        emit rollChanged();
}

void OrbuiQuickVideoPlayerVlc::setTextureId(int textureId)
{
    m_textureId = textureId;
    emit textureIdChanged();
}

void OrbuiQuickVideoPlayerVlc::setPaintTexture(bool paintTexture)
{
    if (m_paintTexture.exchange(paintTexture) == paintTexture)
        return;
    setTextureSize(paintTexture ? QSize() : QSize(1, 1));
    emit paintTextureChanged();
    update();
}

QString OrbuiQuickVideoPlayerVlc::textureTransfer() const
{
    return transferModeText(m_upload.mode());
}

// --- control: main thread ---

void OrbuiQuickVideoPlayerVlc::openFile(const QUrl &url)
{
    if (url.isEmpty())
        return;
    m_upload.cancelWaiting();
    releaseMedia();
    m_sourceUrl.clear();
    if (m_mediaPlayerHandle)
        m_mediaHandle = libvlc_media_new_location(vlcInstance(), url.toEncoded());
    if (m_mediaHandle) {
        attachMedia(true);
        libvlc_media_add_option(m_mediaHandle, ":play-and-stop");
        // On a slow machine a late picture is better than the one before again and again.
        libvlc_media_add_option(m_mediaHandle, ":no-drop-late-frames");
        giveMediaToPlayer();
        emit volumeChanged();
        m_sourceUrl = url;
    }
    emit sourceChanged();
    if (!m_mediaPlayerHandle)
        fail(tr("libVLC does not start; its plug-ins may be missing"));
}

void OrbuiQuickVideoPlayerVlc::attachMedia(bool attach)
{
    libvlc_event_manager_t *events = libvlc_media_event_manager(m_mediaHandle);
    for (const int type : kMediaEvents) {
        if (attach)
            libvlc_event_attach(events, type, eventCallback, this);
        else
            libvlc_event_detach(events, type, eventCallback, this);
    }
}

void OrbuiQuickVideoPlayerVlc::giveMediaToPlayer()
{
    m_upload.cancelWaiting();
    // Ends what the player does now, so that its last events belong to the session before.
    libvlc_media_player_set_media(m_mediaPlayerHandle, m_mediaHandle);
    ++m_session;
    m_seekRepeat.stop();
    m_failed = false;
    m_hasVideo = false;
    m_upload.allowWaiting();
    libvlc_media_player_play(m_mediaPlayerHandle);
}

void OrbuiQuickVideoPlayerVlc::releaseMedia()
{
    if (!m_mediaHandle)
        return;
    attachMedia(false);
    libvlc_media_release(m_mediaHandle);
    m_mediaHandle = nullptr;
}

void OrbuiQuickVideoPlayerVlc::close()
{
    stop();
    releaseMedia();
}

void OrbuiQuickVideoPlayerVlc::pause()
{
    if (!m_mediaPlayerHandle)
        return;
    // What cannot be paused, such as some live streams, libVLC would take to its end, from where it
    // starts again.
    if (libvlc_media_player_can_pause(m_mediaPlayerHandle))
        libvlc_media_player_set_pause(m_mediaPlayerHandle, 1);
    else
        stop();
}

void OrbuiQuickVideoPlayerVlc::play()
{
    if (!m_mediaPlayerHandle)
        return;
    const libvlc_state_t state = libvlc_media_player_get_state(m_mediaPlayerHandle);
    if (m_failed || state == libvlc_Ended || state == libvlc_Error) {
        restart(); // from here play alone does nothing, or what failed would go on unseen
        return;
    }
    m_upload.allowWaiting();
    libvlc_media_player_play(m_mediaPlayerHandle);
}

void OrbuiQuickVideoPlayerVlc::restart()
{
    if (!m_mediaHandle)
        return;
    const bool hadVideo = m_hasVideo;
    giveMediaToPlayer();
    if (hadVideo)
        m_hasVideo = true; // the next start may reuse the picture's format
}

void OrbuiQuickVideoPlayerVlc::stop()
{
    if (!m_mediaPlayerHandle)
        return;
    m_upload.cancelWaiting();
    libvlc_media_player_stop(m_mediaPlayerHandle);
}

void OrbuiQuickVideoPlayerVlc::seek(int offset)
{
    if (!m_mediaPlayerHandle)
        return;
    libvlc_media_player_set_time(m_mediaPlayerHandle, std::max(offset, 0));
    if (!libvlc_media_player_is_playing(m_mediaPlayerHandle)) {
        emit positionChanged(offset);
        settlePausedSeek(offset);
    }
}

/// In a pause libVLC shows one frame after a seek, and takes for it one from before the seek if its
/// decoder is still busy with that. So a seek soon after the pause or another seek is repeated when
/// the decoder has come to rest.
void OrbuiQuickVideoPlayerVlc::settlePausedSeek(int offset)
{
    m_seekOffset = offset;
    if (m_decoderBusy.isValid() && m_decoderBusy.elapsed() < kDecoderRestMs)
        m_seekRepeat.start();
    m_decoderBusy.start();
}

void OrbuiQuickVideoPlayerVlc::repeatPausedSeek()
{
    if (libvlc_media_player_get_state(m_mediaPlayerHandle) == libvlc_Paused)
        libvlc_media_player_set_time(m_mediaPlayerHandle, std::max(m_seekOffset, 0));
}

// --- events: libVLC's threads, then the main thread ---

void OrbuiQuickVideoPlayerVlc::eventCallback(const libvlc_event_t *event, void *item)
{
    const auto low = [](qint64 value) { return static_cast<int>(value & 0xFFFFFFFF); };
    OrbuiQuickVideoPlayerVlc *player = itemOf(item);
    switch (event->type) {
    case libvlc_MediaPlayerTimeChanged:
        player->post({Event::Position, low(event->u.media_player_time_changed.new_time), {}});
        break;
    case libvlc_MediaPlayerEncounteredError:
        player->post({Event::Failure, 0, errorText()});
        break;
    case libvlc_MediaStateChanged:
        player->post({Event::State, event->u.media_state_changed.new_state, {}});
        if (event->u.media_state_changed.new_state == libvlc_Error)
            player->post({Event::Failure, 0, errorText()});
        break;
    case libvlc_MediaParsedChanged: {
        auto *media = static_cast<libvlc_media_t *>(event->p_obj);
        player->post({Event::Duration, low(libvlc_media_get_duration(media)), {}});
        break;
    }
    default:
        break;
    }
}

void OrbuiQuickVideoPlayerVlc::post(const Event &event)
{
    QMetaObject::invokeMethod(
        this,
        [this, event, session = m_session.load()] {
            if (session == m_session)
                handle(event);
        },
        Qt::QueuedConnection);
}

void OrbuiQuickVideoPlayerVlc::handle(const Event &event)
{
    switch (event.kind) {
    case Event::Position:
        emit positionChanged(event.value);
        failWithoutVideo(event.value);
        break;
    case Event::Duration:
        emit durationChanged(event.value);
        break;
    case Event::State:
        handleState(event.value);
        break;
    case Event::Failure:
        emit errorStringChanged(event.text);
        break;
    }
}

void OrbuiQuickVideoPlayerVlc::handleState(int state)
{
    // libVLC follows an error by the end of the media, which would start it again.
    if (m_failed)
        return;
    if (state == Ended && !m_hasVideo) {
        fail(tr("There is no video in this media"));
        return;
    }
    m_failed = state == Error;
    m_upload.setPaused(state == Paused);
    if (state == Paused)
        m_decoderBusy.start();
    emit vlcStateChanged(state);
}

void OrbuiQuickVideoPlayerVlc::fail(const QString &message)
{
    m_failed = true;
    emit vlcStateChanged(Error);
    emit errorStringChanged(message);
}

/// Sound alone is nothing that the panorama could show.
void OrbuiQuickVideoPlayerVlc::failWithoutVideo(int positionMs)
{
    if (m_failed || m_hasVideo || positionMs < kSoundOnlyMs
        || libvlc_video_get_track_count(m_mediaPlayerHandle) > 0)
        return;
    fail(tr("There is no video in this media"));
    stop();
}

// --- frames: libVLC's video thread ---

unsigned OrbuiQuickVideoPlayerVlc::formatCallback(void **item, char *chroma, unsigned *width,
                                                  unsigned *height, unsigned *pitches,
                                                  unsigned *lines)
{
    OrbuiQuickVideoPlayerVlc *player = itemOf(*item);
    player->m_hasVideo = true;
    const QSize offered(static_cast<int>(*width), static_cast<int>(*height));
    QSize told = toldVideoSize(player->m_mediaPlayerHandle, offered);
    if (std::exchange(player->m_offerSession, player->m_session.load()) != player->m_offerSession)
        player->m_firstOffer = {};
    if (!told.isValid())
        told = player->m_firstOffer; // later ones add padding
    if (player->m_firstOffer.isEmpty())
        player->m_firstOffer = offered;
    QSize size = sizeWithoutPadding(offered, told);
    if (!player->m_upload.openStream(size))
        return 0;
    std::memcpy(chroma, kChroma, sizeof kChroma - 1);
    *width = static_cast<unsigned>(size.width());
    *height = static_cast<unsigned>(size.height());
    pitches[0] = *width * kBytesAPixel;
    lines[0] = *height;
    QMetaObject::invokeMethod(
        player,
        [player, size] {
            player->m_frameSize = size;
            if (player->m_nativeSize)
                player->resizeToFrame();
        },
        Qt::QueuedConnection);
    return 1;
}

void OrbuiQuickVideoPlayerVlc::cleanupCallback(void *item)
{
    itemOf(item)->m_upload.closeStream();
}

void *OrbuiQuickVideoPlayerVlc::lockCallback(void *item, void **planes)
{
    itemOf(item)->m_hasVideo = true;
    planes[0] = itemOf(item)->m_upload.beginFrame();
    return nullptr;
}

void OrbuiQuickVideoPlayerVlc::unlockCallback(void *item, void *, void *const *)
{
    itemOf(item)->m_firstOffer = {};
    itemOf(item)->computeFps();
    itemOf(item)->m_upload.endFrame();
}

void OrbuiQuickVideoPlayerVlc::computeFps()
{
    const std::optional<int> frames = m_frames.frameShown(QDateTime::currentMSecsSinceEpoch());
    if (!frames)
        return;
    QMetaObject::invokeMethod(
        this,
        [this, count = *frames] {
            m_fps = count;
            emit fpsChanged();
        },
        Qt::QueuedConnection);
}

void OrbuiQuickVideoPlayerVlc::resizeToFrame()
{
    if (!m_frameSize.isEmpty())
        setSize(m_frameSize);
}

// --- drawing: render thread ---

QSGNode *OrbuiQuickVideoPlayerVlc::updatePaintNode(QSGNode *oldNode,
                                                   UpdatePaintNodeData *data) noexcept
{
    QOpenGLContext *context = QOpenGLContext::currentContext();
    if (context && !m_upload.isStarted())
        m_upload.start(context);
    return QQuickPaintedItem::updatePaintNode(oldNode, data);
}

void OrbuiQuickVideoPlayerVlc::paint(QPainter *painter) noexcept
{
    if (m_upload.route() == RouteQueuedPaint) {
        painter->beginNativePainting();
        updateTexture();
        painter->endNativePainting();
    }
    const int texture = m_upload.textureId();
    if (!m_paintTexture || texture == 0)
        return;
    const std::lock_guard lock(m_upload.frameLock);
    painter->beginNativePainting();
    if (!m_texturePainter)
        m_texturePainter = std::make_unique<TexturePainter>();
    m_texturePainter->draw(static_cast<GLuint>(texture));
    painter->endNativePainting();
}
