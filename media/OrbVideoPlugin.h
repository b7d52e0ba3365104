#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>

class OrbSettingsManager;

/// Knows the video backends, which one is current, and makes the choice last. A choice is written
/// at once and takes effect at the next start. The scene sees it as "orbVideoPlugin". Main thread.
class OrbVideoPlugin : public QObject
{
    Q_OBJECT
    Q_PROPERTY(
        QString currentPlugin READ currentPlugin WRITE setCurrentPlugin NOTIFY currentPluginChanged)

public:
    /// `settings` is not owned.
    explicit OrbVideoPlugin(OrbSettingsManager *settings);

    QString currentPlugin() const { return m_currentPlugin; }
    void setCurrentPlugin(const QString &plugin);

    /// One row a backend: id, label, description, as a string list each.
    Q_INVOKABLE QVariantList pluginsList() const { return m_plugins; }

signals:
    void currentPluginChanged();
    void displayMessage(const QString &message);

private:
    void mirrorHardwareDecoding();

    QVariantList m_plugins;
    QString m_currentPlugin;
    OrbSettingsManager *m_settings;
};
