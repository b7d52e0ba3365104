#include "VlcInstance.h"

#include "BackendTable.h"
#include "VlcOptions.h"

#include <QLoggingCategory>

#include <vlc/vlc.h>

namespace {

Q_LOGGING_CATEGORY(lcMedia, "orbix.media")

QByteArray hardwareDecoder()
{
    for (const Backend &backend : backendsOf(buildPlatform())) {
        if (backend.decoder)
            return backend.decoder;
    }
    return "none";
}

libvlc_instance_t *startLibVlc()
{
    const std::vector<QByteArray> arguments = vlcArguments(VlcOptions::process());
    std::vector<const char *> texts;
    texts.reserve(arguments.size());
    for (const QByteArray &argument : arguments)
        texts.push_back(argument.constData());
    libvlc_instance_t *instance = libvlc_new(static_cast<int>(texts.size()), texts.data());
    if (!instance)
        qCWarning(lcMedia, "libVLC does not start; its plug-ins may be missing.");
    return instance;
}

} // namespace

std::vector<QByteArray> vlcArguments(const VlcOptions &options)
{
    std::vector<QByteArray> arguments{"--verbose=2", "--quiet", "--intf", "dummy",
                                      "--ignore-config"};
    if (options.hardwareDecoding)
        arguments.push_back("--avcodec-hw=" + hardwareDecoder());
    if (options.disableAudio)
        arguments.emplace_back("--noaudio");
    return arguments;
}

libvlc_instance_t *vlcInstance()
{
    static libvlc_instance_t *const instance = startLibVlc();
    return instance;
}

QString vlcVersion()
{
    return QString::fromUtf8(libvlc_get_version());
}
