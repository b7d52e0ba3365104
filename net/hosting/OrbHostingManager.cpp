#include "OrbHostingManager.h"

OrbHostingManager::OrbHostingManager(KernelSettingsWriter *, QObject *parent)
    : QObject(parent)
{}
