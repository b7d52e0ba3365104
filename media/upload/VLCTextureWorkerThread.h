#pragma once

#include <QThread>

class FrameUpload;

/// Brings one frame into the texture and ends; started anew for each frame.
class VLCTextureWorkerThread : public QThread
{
    Q_OBJECT

public:
    /// `upload` is not owned.
    explicit VLCTextureWorkerThread(FrameUpload *upload)
        : m_upload(upload)
    {}

protected:
    void run() override;

private:
    FrameUpload *m_upload;
};
