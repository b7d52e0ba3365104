#pragma once

#include <QDateTime>
#include <QHash>
#include <QSettings>
#include <QVariant>

/// Something that keeps a value under a key.
class KernelSettingsWriter
{
public:
    virtual ~KernelSettingsWriter() = default;
    virtual void write(const QString &key, const QVariant &value) = 0;
};

/// The single access to persistent settings: on Linux an INI file under the user's configuration
/// folder. Keys are strings with "/" groups. The store is named by the constructor's arguments and
/// not by the application, because the object exists before the application does.
///
/// The values may be read and written from any thread, as QSettings allows; the remembered defaults
/// belong to the main thread.
class OrbSettingsManager : public KernelSettingsWriter
{
public:
    OrbSettingsManager(const QString &organisation, const QString &application);

    void write(const QString &key, const QVariant &value) override;

    bool boolValue(const QString &key, bool fallback) const;
    int intValue(const QString &key, int fallback) const;
    QString string(const QString &key, const QString &fallback) const;
    QDateTime dateTime(const QString &key, const QDateTime &fallback) const;

    /// The stored value, else the default that was first mentioned for the key, else empty.
    QString string(const QString &key);

    /// Remembers the first default mentioned for a key; returns the stored value, else `fallback`.
    QVariant value(const QString &key, const QVariant &fallback);

    bool contains(const QString &key) const;

    void remove(const QString &key);

    /// Writes `fallback` if the store has no such key, then reads it: after a first start the key
    /// stands in the store for the user to edit.
    QVariant seededValue(const QString &key, const QVariant &fallback);

private:
    QSettings m_settings;
    bool m_defaultsOnly = false;
    QHash<QString, QVariant> m_defaults;
};
