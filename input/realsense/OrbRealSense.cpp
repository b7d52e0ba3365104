#include "OrbRealSense.h"

OrbRealSense::OrbRealSense(OrbGlobalObject *, QObject *parent)
    : QObject(parent)
    , m_logMessage(tr("Failed to initialize Intel Real Sense Manager.\n"
                      "Ensure you have installed Intel Real Sense drivers.\n"))
{}

void OrbRealSense::setActivated(bool activated)
{
    if (!m_available || activated == m_activated)
        return;
    m_activated = activated;
    emit activatedChanged();
}

void OrbRealSense::setAvailable(bool available)
{
    if (available == m_available)
        return;
    if (!available)
        setActivated(false);
    m_available = available;
    emit availableChanged();
}
