#include "VLCTextureWorkerThread.h"

#include "FrameUpload.h"

void VLCTextureWorkerThread::run()
{
    m_upload->upload();
}
