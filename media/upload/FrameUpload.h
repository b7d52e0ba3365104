#pragma once

#include "FrameLock.h"
#include "FrameTransfer.h"
#include "FrameTurn.h"
#include "StartGate.h"
#include "TransferMode.h"
#include "UploadContexts.h"
#include "VLCTextureWorkerThread.h"

#include <QObject>
#include <QSize>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

/// The way of decoded frames into a texture of the scene: takes the decoder's frames through the
/// transfer and has them uploaded by the route.
///
/// Threads: the object is made and deleted on the main thread, when the decoder has ended. The
/// functions are grouped by the thread that calls them. `frameLock` guards the turn of the buffers
/// and the change of a stream against those who draw the texture; `m_uploadLock` keeps an upload
/// and the change of a stream apart. The decoder waits for an upload only when its stream begins or
/// ends. The signals are sent from the thread of their cause.
class FrameUpload : public QObject
{
    Q_OBJECT

public:
    /// `requestedMode` is 0 to 3, 0 for the best that there is.
    explicit FrameUpload(int requestedMode);
    ~FrameUpload() override;

    /// Main thread, before the first frame: takes this route whatever the scene draws with.
    void forceRoute(UploadRoute route) { m_forcedRoute = route; }

    // --- render thread, the scene's context current ---

    /// Chooses mode and route and makes what they need. Once.
    void start(QOpenGLContext *scene);
    bool isStarted() const { return m_transfer != nullptr; }

    // --- any thread ---

    /// The texture with the newest frame, 0 for none.
    int textureId() const { return m_textureId; }
    TransferMode mode() const { return m_mode; }
    UploadRoute route() const { return m_route; }

    /// libVLC hands a standing picture over again and again: in a pause, frames like the one before
    /// are not uploaded.
    void setPaused(bool paused) { m_paused = paused; }

    /// Ends a wait of the decoder for the scene, and those that would come until it is allowed.
    void cancelWaiting() { m_gate.cancelWaiting(); }
    void allowWaiting() { m_gate.allowWaiting(); }

    // --- decoder thread ---

    /// A stream of frames of this size, which is made smaller if no texture is that large. Waits
    /// for the scene's first frame. False if the wait was cancelled.
    bool openStream(QSize &size);
    void closeStream();

    /// Where the next frame goes to: rows without gaps, 4 bytes a pixel. Never null in a stream.
    void *beginFrame();
    void endFrame();

    // --- the thread of the route ---

    /// Brings the newest frame into the texture, if there is one.
    void upload();

    FrameLock frameLock;

signals:
    void textureIdChanged();

    /// The scene knows mode and texture.
    void started();

    /// On the routes that go through someone else's context: `upload` should be called there.
    void uploadWanted();

private:
    /// Whether the stream has room for its frames: not yet, yes, or none to be had.
    enum class Stream { Announced, Open, Failed };

    bool allocateStream();
    void *mapBuffer();
    void unmapBuffer();
    bool takeFromAside();
    std::optional<GLuint> uploadBuffer(int buffer);
    void finishStart(); ///< main thread: gives the contexts surfaces and lets the decoder go

    StartGate m_gate;
    UploadContexts m_contexts;
    std::unique_ptr<FrameTransfer> m_transfer;
    VLCTextureWorkerThread m_workerThread;
    FrameTurn m_turn;
    std::mutex m_uploadLock;
    std::vector<char> m_aside;    ///< takes a frame that may not go on: none like it, or no room
    std::vector<char> m_standing; ///< the frame that was set aside before
    const int m_requestedMode;
    int m_maxTextureSize = 0;
    QSize m_streamSize;                  ///< decoder thread
    Stream m_stream = Stream::Announced; ///< decoder thread
    std::size_t m_frameBytes = 0;
    int m_fillBuffer = 0;    ///< decoder thread: the buffer that is being filled
    bool m_setAside = false; ///< decoder thread: no buffer is, the frame goes aside
    std::atomic<bool> m_paused{false};
    bool m_surfacesExist = false;
    std::atomic<TransferMode> m_mode{TransferAuto};
    std::optional<UploadRoute> m_forcedRoute;
    std::atomic<UploadRoute> m_route{RouteWorkerThread};
    std::atomic<int> m_textureId{0};
};
