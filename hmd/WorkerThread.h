#pragma once

#include <QThread>

class OrbOculus;

/// One short run: opens the headset, which may take a while.
class WorkerThread : public QThread
{
    Q_OBJECT

public:
    /// `oculus` is not owned, and outlives the run.
    explicit WorkerThread(OrbOculus *oculus);

protected:
    void run() override;

private:
    OrbOculus *m_oculus;
};
