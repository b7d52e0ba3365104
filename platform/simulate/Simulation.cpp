#include "Simulation.h"

#include <QDir>

namespace {

QString &startFolder()
{
    static QString folder = QDir::currentPath();
    return folder;
}

} // namespace

QMap<QString, QString> Simulation::devices(const QString &list, const QString &folder)
{
    QMap<QString, QString> scripts;
    const QStringList entries = list.split(QLatin1Char(','));
    for (const QString &entry : entries) {
        const QString name = entry.section(QLatin1Char(':'), 0, 0).trimmed();
        const QString path = entry.section(QLatin1Char(':'), 1).trimmed();
        if (name.isEmpty())
            continue;
        scripts.insert(name,
                       path.isEmpty() ? QString()
                                      : QDir::cleanPath(QDir(folder).absoluteFilePath(path)));
    }
    return scripts;
}

void Simulation::setFolder(const QString &folder)
{
    startFolder() = folder;
}

std::optional<QString> Simulation::script(const QString &device)
{
    static const QMap<QString, QString> scripts = devices(qEnvironmentVariable("ORBIX_SIMULATE"),
                                                          startFolder());
    const auto found = scripts.constFind(device);
    if (found == scripts.constEnd())
        return std::nullopt;
    return *found;
}
