#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

struct VlcOptions;
struct libvlc_instance_t;

/// The arguments that libVLC is started with, one an entry.
std::vector<QByteArray> vlcArguments(const VlcOptions &options);

/// The one libVLC of the process, made at the first call from the process's options; it lives until
/// the process ends. Null if libVLC does not start. Main thread.
libvlc_instance_t *vlcInstance();

/// The version of the library that is loaded, such as "3.0.24 Vetinari".
QString vlcVersion();
