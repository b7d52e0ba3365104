#include "OrbImageLibrary.h"

#include <QDir>

namespace {
const QString kDataPrefix = QStringLiteral("Data");
}

// The resource of a static library has to be asked for, outside any namespace.
static void initTables()
{
    Q_INIT_RESOURCE(data);
}

void OrbImageLibrary::start()
{
    initTables();
    QDir::setSearchPaths(kDataPrefix, {QStringLiteral(":/Data")});
}

void OrbImageLibrary::stop()
{
    QDir::setSearchPaths(kDataPrefix, {});
}
