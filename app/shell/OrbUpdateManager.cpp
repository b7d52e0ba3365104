#include "OrbUpdateManager.h"

OrbUpdateManager::OrbUpdateManager(KernelSettingsWriter *settings, const QString &serverUrl,
                                   QObject *parent)
    : QThread(parent)
    , m_serverUrl(serverUrl)
    , m_settings(settings)
{}

void OrbUpdateManager::start(const QString &product, const QString &version, const QString &data)
{
    m_product = product;
    m_currentVersion = OrbVersion(version);
    m_userData = data;
}
