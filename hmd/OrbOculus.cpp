#include "OrbOculus.h"

#include "OrbGlobalObject.h"
#include "OrbQQuickView.h"
#include "Orientation.h"

#include <cmath>

namespace {
const QString kRuntimeVersion = QStringLiteral("0.4.4");
}

OrbOculus::OrbOculus(OrbQQuickView *view, OrbGlobalObject *state, OrbShaderCodeBuilder *,
                     OrbTextureProvider *, QObject *parent)
    : QObject(parent)
    , m_logMessage(tr("Scan in progress...\n"))
    , m_view(view)
    , m_state(state)
{
    connect(view, &QQuickWindow::afterRendering, this, &OrbOculus::initOvr, Qt::DirectConnection);
}

void OrbOculus::setActivated(bool activated)
{
    if (!m_available || activated == m_activated)
        return;
    m_activated = activated;
    emit activatedChanged();
}

void OrbOculus::setShiftYaw(float shiftYaw)
{
    if (!std::isfinite(shiftYaw))
        return;
    const float wrapped = Orientation::wrapAngle(shiftYaw);
    if (wrapped == m_shiftYaw)
        return;
    m_shiftYaw = wrapped;
    emit shiftYawChanged();
}

void OrbOculus::initOvr()
{
    disconnect(m_view, &QQuickWindow::afterRendering, this, &OrbOculus::initOvr);
    QMetaObject::invokeMethod(this, &OrbOculus::checkDevice, Qt::QueuedConnection);
}

void OrbOculus::checkDevice()
{
    m_logMessage = tr("Oculus Rift not detected.\n");
    m_state->checkOculusMode(m_available);
    m_logMessage += tr("Oculus Rift initialization failed.\n")
        + tr("Ensure to have installed Oculus Runtime %1.\n").arg(kRuntimeVersion);
    emit logMessageChanged();
}

void OrbOculus::setAvailable(bool available)
{
    if (available == m_available)
        return;
    if (!available)
        setActivated(false);
    m_available = available;
    emit availableChanged();
}
