#include "OrbDisplay.h"

OrbDisplay::OrbDisplay(QObject *parent)
    : QObject(parent)
    , m_message(tr("Other display screen is not supported on this platform."))
{}

void OrbDisplay::setActivated(bool) {}
