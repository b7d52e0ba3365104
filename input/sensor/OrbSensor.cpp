#include "OrbSensor.h"

OrbSensor::OrbSensor(OrbGlobalObject *, QObject *parent)
    : QObject(parent)
    , m_logMessage(tr("Orientation sensor is not supported on this platform.\n"))
{}

void OrbSensor::setActivated(bool activated)
{
    if (!m_available || activated == m_activated)
        return;
    m_activated = activated;
    emit activatedChanged();
}

void OrbSensor::setAvailable(bool available)
{
    if (available == m_available)
        return;
    if (!available)
        setActivated(false);
    m_available = available;
    emit availableChanged();
}
