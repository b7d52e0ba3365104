#pragma once

#include <mutex>
#include <optional>

/// Whose turn it is with the two buffers of a transfer. The decoder fills one while the other is
/// uploaded; it never waits, and never gets the buffer that is being uploaded. Of the frames that
/// are completed during an upload the last is kept, and uploaded next: the frame that a pause ends
/// on is always shown.
///
/// One decoder thread and one uploading thread at a time.
class FrameTurn
{
public:
    /// Decoder: the buffer for the next frame.
    int beginFrame();

    /// Decoder: the frame is complete. True if an upload has to be asked for; false if one that was
    /// asked for or is going on will take the frame.
    bool endFrame();

    /// Uploader: the buffer with the newest frame, none if this stream has completed no frame. An
    /// upload that was begun has to be ended.
    std::optional<int> beginUpload();

    /// Uploader: true if a newer frame has come, which is to be uploaded as well.
    bool endUpload();

    /// Between two streams, while nothing is being filled or uploaded: no frame is there.
    void forget();

private:
    std::mutex m_mutex;
    int m_bufferIndex = 0; ///< the buffer last completed, which the decoder leaves alone
    bool m_frameReady = false;
    bool m_frameWaiting = false; ///< the other buffer holds a newer frame
    bool m_uploadAsked = false;
    bool m_uploading = false;
};
