#include "BackendTable.h"

#include <QtGlobal>

#include <algorithm>
#include <iterator>

namespace {

constexpr unsigned kLinux = unsigned(BackendPlatform::Linux);
constexpr unsigned kWindows = unsigned(BackendPlatform::Windows);

constexpr Backend kBackends[] = {
    {"vlc", "VLC",
     QT_TRANSLATE_NOOP("OrbVideoPlugin",
                       "With VLC backend you should play any video, current version is "),
     kLinux | kWindows, false, nullptr},
    {"vlc_hw", "VLC with DXVA 2",
     QT_TRANSLATE_NOOP("OrbVideoPlugin",
                       "Use VLC backend with hardware decoding DXVA 2. It's not guaranteed to "
                       "work everywhere."),
     kWindows, false, "dxva2"},
    {"vlc_hw", "VLC with VA-API",
     QT_TRANSLATE_NOOP("OrbVideoPlugin",
                       "Use VLC backend with hardware decoding VA-API. It's not guaranteed to "
                       "work everywhere."),
     kLinux, false, "vaapi"},
    {"wmf", "Windows Media Foundation",
     QT_TRANSLATE_NOOP("OrbVideoPlugin", "This is the Windows native backend."), kWindows, true,
     nullptr},
    {"ds", "DirectShow",
     QT_TRANSLATE_NOOP("OrbVideoPlugin",
                       "Use DirectShow filters, try to use this plugin when video failed to start "
                       "with others plugins."),
     kWindows, true, nullptr},
    {"gst", "GStreamer", QT_TRANSLATE_NOOP("OrbVideoPlugin", "This is the Linux native backend."),
     kLinux, false, nullptr},
};

} // namespace

bool playsThroughLibVlc(const QString &id)
{
    return id == QLatin1String("vlc") || id == QLatin1String("vlc_hw");
}

std::vector<Backend> backendsOf(BackendPlatform platform)
{
    std::vector<Backend> backends;
    std::copy_if(std::begin(kBackends), std::end(kBackends), std::back_inserter(backends),
                 [platform](const Backend &backend) {
                     return (backend.platforms & unsigned(platform)) != 0;
                 });
    return backends;
}

QString defaultBackend(BackendPlatform platform)
{
    // The native service is sound from Windows 8 on, the oldest that is looked after.
    return platform == BackendPlatform::Windows ? QStringLiteral("wmf") : QStringLiteral("vlc");
}
