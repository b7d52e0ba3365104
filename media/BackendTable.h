#pragma once

#include <QString>

#include <vector>

/// The systems that the program has video backends for.
enum class BackendPlatform { Linux = 1, Windows = 2 };

/// One way of playing video.
struct Backend
{
    const char *id;
    const char *label;
    const char *description; ///< source text of the class OrbVideoPlugin's translations
    unsigned platforms;      ///< the platforms that have it, added up
    bool ownServiceFolder;   ///< its media service lies in a folder of its own
    const char *decoder;     ///< libVLC's name for its hardware decoding; null for none
};

/// Whether the backend plays through libVLC.
bool playsThroughLibVlc(const QString &id);

/// The backends of a platform, in the order in which users see them.
std::vector<Backend> backendsOf(BackendPlatform platform);

/// The backend of a first start.
QString defaultBackend(BackendPlatform platform);

/// The platform that this build is for.
constexpr BackendPlatform buildPlatform()
{
#ifdef Q_OS_WIN
    return BackendPlatform::Windows;
#else
    return BackendPlatform::Linux;
#endif
}
