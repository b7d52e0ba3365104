#pragma once

#include <QVariantMap>

class QCoreApplication;

/// The command line as a map: "udp" a string, "oculus" and "demo" whether set, "files" a string
/// list. Empty if there is nothing but the program's name. An unknown option ends the program with
/// a message. Relative files are taken from `startFolder`, the folder that the program was started
/// in.
QVariantMap parseCommandLine(const QCoreApplication &application, const QString &startFolder);
