#pragma once

// The native size is told once and followed by nobody. clazy:excludeall=qproperty-without-notify

#include "FrameCounter.h"
#include "FrameUpload.h"

#include <QElapsedTimer>
#include <QQuickPaintedItem>
#include <QTimer>
#include <QUrl>

#include <atomic>
#include <memory>

class TexturePainter;
struct libvlc_event_t;
struct libvlc_media_player_t;
struct libvlc_media_t;

/// A video that libVLC plays into an OpenGL texture; the scene's "VlcVideoPlayer". Opening a source
/// starts it. The texture's first three channels hold blue, green and red.
///
/// Threads: it lives on the main thread, where the scene sets properties and calls methods, and
/// where all its signals are sent. libVLC's video thread runs the format, cleanup, lock, unlock and
/// display callbacks, which touch `m_upload` and `m_frames` alone; libVLC's other threads run
/// `eventCallback`, which posts what came. The render thread runs `updatePaintNode` and `paint`,
/// which let no exception out: past them Qt would catch it, and a crash report would not hold its
/// place. The destructor ends libVLC's threads before anything that they touch goes away.
class OrbuiQuickVideoPlayerVlc : public QQuickPaintedItem
{
    Q_OBJECT
    Q_PROPERTY(QUrl source READ source WRITE openFile NOTIFY sourceChanged)
    Q_PROPERTY(float volume READ volume WRITE setVolume NOTIFY volumeChanged)
    Q_PROPERTY(bool nativeSize READ nativeSize WRITE setNativeSize)
    Q_PROPERTY(float yaw READ yaw WRITE setYaw NOTIFY yawChanged)
    Q_PROPERTY(float pitch READ pitch WRITE setPitch NOTIFY pitchChanged)
    Q_PROPERTY(float roll READ roll WRITE setRoll NOTIFY rollChanged)
    Q_PROPERTY(int textureId READ textureId WRITE setTextureId NOTIFY textureIdChanged)
    Q_PROPERTY(bool paintTexture READ paintTexture WRITE setPaintTexture NOTIFY paintTextureChanged)
    Q_PROPERTY(int fps READ fps NOTIFY fpsChanged)
    Q_PROPERTY(QString textureTransfer READ textureTransfer NOTIFY textureTransferChanged)

public:
    /// The states of libVLC, with its numbers.
    enum VlcState { Idle, Opening, Buffering, Playing, Paused, Stopped, Ended, Error };
    Q_ENUM(VlcState)

    explicit OrbuiQuickVideoPlayerVlc(QQuickItem *parent = nullptr);
    ~OrbuiQuickVideoPlayerVlc() override;

    /// What was opened last; empty if libVLC refused it.
    QUrl source() const { return m_sourceUrl; }

    /// From 0, silent, to 1, the recording's own level; more amplifies.
    float volume() const;
    void setVolume(float volume);

    /// Whether each new format of the video gives the item the size of its frames, in pixels.
    bool nativeSize() const { return m_nativeSize; }
    void setNativeSize(bool nativeSize) { m_nativeSize = nativeSize; }

    /// The camera for those who place sound, radians; the picture does not depend on it.
    float yaw() const { return m_yaw; }
    float pitch() const { return m_pitch; }
    float roll() const { return m_roll; }
    void setYaw(float yaw);
    void setPitch(float pitch);
    void setRoll(float roll);

    /// OpenGL name of the texture with the current frame, in the scene's share group; 0 for none.
    int textureId() const { return m_textureId; }
    void setTextureId(int textureId);

    /// Whether the item itself draws the video.
    bool paintTexture() const { return m_paintTexture; }
    void setPaintTexture(bool paintTexture);

    /// Frames decoded in the last whole second, shown or not.
    int fps() const { return m_fps; }

    /// How frames reach the texture, in words; empty before the scene is drawn.
    QString textureTransfer() const;

    /// Takes this way to the texture whatever the scene draws with. Before the first frame.
    void setUploadRoute(UploadRoute route) { m_upload.forceRoute(route); }

    Q_INVOKABLE void close();

    /// Opens and plays. An empty address changes nothing.
    Q_INVOKABLE void openFile(const QUrl &url);

    /// Streams are opened as files are, by their address.
    Q_INVOKABLE void openStream(const QString &) {}

    Q_INVOKABLE void pause();
    Q_INVOKABLE void play();

    /// Plays the same media from its start.
    Q_INVOKABLE void restart();
    Q_INVOKABLE void stop();

    /// Goes to `offset` milliseconds from the start.
    Q_INVOKABLE void seek(int offset);

    void paint(QPainter *painter) noexcept override;

public slots:
    void onError() {}

    /// Brings the newest frame into the texture, in the context that the route gives.
    void updateTexture() { m_upload.upload(); }
    void resizeToFrame();

    /// Counts a decoded frame. libVLC's video thread.
    void computeFps();

signals:
    void durationChanged(int duration); ///< milliseconds
    void errorStringChanged(const QString &errorString);
    void positionChanged(int position); ///< milliseconds
    void sourceChanged();
    void vlcStateChanged(int vlcState);
    void volumeChanged();
    void yawChanged();
    void pitchChanged();
    void rollChanged();
    void textureIdChanged();
    void paintTextureChanged();
    void fpsChanged();
    void textureTransferChanged();

protected:
    QSGNode *updatePaintNode(QSGNode *oldNode, UpdatePaintNodeData *data) noexcept override;

private:
    /// What libVLC reported, copied on its thread.
    struct Event
    {
        enum Kind { Position, Duration, State, Failure } kind;
        int value = 0;
        QString text;
    };

    static void eventCallback(const libvlc_event_t *event, void *item);
    static unsigned formatCallback(void **item, char *chroma, unsigned *width, unsigned *height,
                                   unsigned *pitches, unsigned *lines);
    static void cleanupCallback(void *item);
    static void *lockCallback(void *item, void **planes);
    static void unlockCallback(void *item, void *picture, void *const *planes);

    void attachPlayer();
    void followUpload();
    void attachMedia(bool attach);
    void giveMediaToPlayer();
    void releaseMedia();
    void post(const Event &event);
    void handle(const Event &event);
    void handleState(int state);
    void fail(const QString &message);
    void failWithoutVideo(int positionMs);
    void settlePausedSeek(int offset);
    void repeatPausedSeek();

    libvlc_media_player_t *m_mediaPlayerHandle = nullptr; ///< null if libVLC does not run
    libvlc_media_t *m_mediaHandle = nullptr;
    FrameUpload m_upload;
    FrameCounter m_frames;  ///< libVLC's video thread
    QSize m_firstOffer;     ///< libVLC's video thread: what it proposed since the last frame
    int m_offerSession = 0; ///< libVLC's video thread: the session of that proposal
    std::unique_ptr<TexturePainter> m_texturePainter;
    QUrl m_sourceUrl;
    QSize m_frameSize;
    bool m_nativeSize = true;
    bool m_failed = false;               ///< this media ended in an error
    std::atomic<bool> m_hasVideo{false}; ///< libVLC has found a picture in this media
    QTimer m_seekRepeat;
    QElapsedTimer m_decoderBusy; ///< since the last pause or seek in a pause
    int m_seekOffset = 0;
    std::atomic<int> m_session{0}; ///< tells events of an earlier start from this one's
    std::atomic<bool> m_paintTexture{false};
    float m_yaw = 0;
    float m_pitch = 0;
    float m_roll = 0;
    int m_textureId = 0;
    int m_fps = 0;
};
