#include "OrbSettingsManager.h"

OrbSettingsManager::OrbSettingsManager(const QString &organisation, const QString &application)
    : m_settings(QSettings::UserScope, organisation, application)
{}

void OrbSettingsManager::write(const QString &key, const QVariant &value)
{
    m_settings.setValue(key, value);
}

bool OrbSettingsManager::boolValue(const QString &key, bool fallback) const
{
    return m_settings.value(key, fallback).toBool();
}

int OrbSettingsManager::intValue(const QString &key, int fallback) const
{
    return m_settings.value(key, fallback).toInt();
}

QString OrbSettingsManager::string(const QString &key, const QString &fallback) const
{
    return m_settings.value(key, fallback).toString();
}

QDateTime OrbSettingsManager::dateTime(const QString &key, const QDateTime &fallback) const
{
    return m_settings.value(key, fallback).toDateTime();
}

QString OrbSettingsManager::string(const QString &key)
{
    if (!m_defaultsOnly && m_settings.contains(key))
        return m_settings.value(key).toString();
    return m_defaults[key].toString();
}

QVariant OrbSettingsManager::value(const QString &key, const QVariant &fallback)
{
    if (!m_defaults.contains(key))
        m_defaults.insert(key, fallback);
    return m_settings.value(key, fallback);
}

bool OrbSettingsManager::contains(const QString &key) const
{
    return m_settings.contains(key);
}

void OrbSettingsManager::remove(const QString &key)
{
    m_settings.remove(key);
}

QVariant OrbSettingsManager::seededValue(const QString &key, const QVariant &fallback)
{
    if (!contains(key))
        write(key, fallback);
    return m_settings.value(key, fallback);
}
