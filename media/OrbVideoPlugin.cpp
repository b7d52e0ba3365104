#include "OrbVideoPlugin.h"

#include "OrbSettingsManager.h"

#include <QStringList>

namespace {
const QString kVideoPluginKey = QStringLiteral("application/videoPlugin");
const QString kDefaultPlugin = QStringLiteral("gst");
} // namespace

OrbVideoPlugin::OrbVideoPlugin(OrbSettingsManager *settings)
    : m_currentPlugin(settings->string(kVideoPluginKey, kDefaultPlugin))
    , m_settings(settings)
{
    m_plugins.append(QStringList{QStringLiteral("gst"), QStringLiteral("GStreamer"),
                                 tr("This is the Linux native backend.")});
}

void OrbVideoPlugin::setCurrentPlugin(const QString &plugin)
{
    if (plugin == m_currentPlugin)
        return;
    m_currentPlugin = plugin;
    m_settings->write(kVideoPluginKey, plugin);
    emit currentPluginChanged();
    emit displayMessage(tr("You must restart to apply modifications on video plugin."));
}
