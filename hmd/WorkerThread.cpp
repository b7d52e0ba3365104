#include "WorkerThread.h"

#include "OrbOculus.h"

WorkerThread::WorkerThread(OrbOculus *oculus)
    : m_oculus(oculus)
{}

void WorkerThread::run()
{
    m_oculus->initDevice();
}
