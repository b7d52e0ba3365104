#include "OrbImageLibrary.h"

#include <QDir>

namespace {
const QString kDataPrefix = QStringLiteral("Data");
}

void OrbImageLibrary::start()
{
    QDir::setSearchPaths(kDataPrefix, {QStringLiteral(":/Data")});
}

void OrbImageLibrary::stop()
{
    QDir::setSearchPaths(kDataPrefix, {});
}
