#include "OrbSensor.h"

OrbSensor::OrbSensor(OrbGlobalObject *, QObject *parent)
    : QObject(parent)
    , m_logMessage(tr("Orientation sensor is not supported on this platform.\n"))
{}

void OrbSensor::setActivated(bool) {}
