#include "Product.h"

#include "OrbVersion.h"

namespace Product {

QString displayName()
{
    return QStringLiteral("Orbix Sight");
}

QString organisation()
{
    return QStringLiteral("Orbix");
}

QString version()
{
    return QString::fromLatin1(ORBIX_VERSION);
}

QString softwareName()
{
    return QStringLiteral("%1 %2").arg(displayName(), OrbVersion(version()).shortText());
}

QString code()
{
    return QStringLiteral("oxs");
}

QString makerUrl()
{
    return QString::fromLatin1(ORBIX_MAKER_URL);
}

QString documentationUrl()
{
    return QString::fromLatin1(ORBIX_DOCUMENTATION_URL);
}

QString updateServerUrl()
{
    return QString::fromLatin1(ORBIX_UPDATE_SERVER_URL);
}

QString hostingUrl()
{
    return QString::fromLatin1(ORBIX_HOSTING_URL);
}

} // namespace Product
