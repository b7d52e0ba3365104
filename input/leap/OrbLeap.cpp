#include "OrbLeap.h"

OrbLeap::OrbLeap(OrbGlobalObject *, OrbQQuickView *, OrbShaderCodeBuilder *, QObject *parent)
    : QThread(parent)
    , m_logMessage(tr("Leap Motion device not found.\n\n"
                      "Warning : Leap Motion SDK must be installed."))
{}

void OrbLeap::setActivated(bool activated)
{
    if (!m_available || activated == m_activated)
        return;
    m_activated = activated;
    emit activatedChanged();
}

void OrbLeap::setPlayerImage(QObject *playerImage)
{
    m_playerImage = playerImage;
}

void OrbLeap::setBar(QObject *bar)
{
    m_bar = bar;
}

void OrbLeap::setAvailable(bool available)
{
    if (available == m_available)
        return;
    if (!available)
        setActivated(false);
    m_available = available;
    emit availableChanged();
}
