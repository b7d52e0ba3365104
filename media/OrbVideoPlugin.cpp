#include "OrbVideoPlugin.h"

#include "BackendTable.h"
#include "OrbSettingsManager.h"
#include "OrbuiQuickVideoPlayerVlc.h"
#include "VlcInstance.h"
#include "VlcOptions.h"

#include <QCoreApplication>
#include <QQmlEngine>
#include <QStringList>

namespace {

const QString kVideoPluginKey = QStringLiteral("application/videoPlugin");
const QString kHardwareBackend = QStringLiteral("vlc_hw");

} // namespace

OrbVideoPlugin::OrbVideoPlugin(OrbSettingsManager *settings)
    : m_settings(settings)
{
    qmlRegisterType<OrbuiQuickVideoPlayerVlc>("VLCQt", 1, 0, "VlcVideoPlayer");
    m_currentPlugin = settings->string(kVideoPluginKey, defaultBackend(buildPlatform()));
    for (const Backend &backend : backendsOf(buildPlatform())) {
        const QString id = QLatin1String(backend.id);
        QString description = tr(backend.description);
        if (id == QLatin1String("vlc"))
            description = QStringLiteral("%1 '%2'").arg(description, vlcVersion());
        m_plugins.append(QStringList{id, QLatin1String(backend.label), description});
        if (backend.ownServiceFolder && id == m_currentPlugin)
            QCoreApplication::addLibraryPath(
                QStringLiteral("%1/QtPlugins/mediaservice/%2")
                    .arg(QCoreApplication::applicationDirPath(), m_currentPlugin));
    }
    mirrorHardwareDecoding();
}

void OrbVideoPlugin::setCurrentPlugin(const QString &plugin)
{
    if (plugin != m_currentPlugin) {
        m_currentPlugin = plugin;
        m_settings->write(kVideoPluginKey, plugin);
        emit currentPluginChanged();
        emit displayMessage(tr("You must restart to apply modifications on video plugin."));
    }
    mirrorHardwareDecoding();
}

void OrbVideoPlugin::mirrorHardwareDecoding()
{
    VlcOptions::process().hardwareDecoding = m_currentPlugin == kHardwareBackend;
}
