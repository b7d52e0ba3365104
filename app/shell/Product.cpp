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
    return QStringLiteral(ORBIX_VERSION);
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
    return QStringLiteral(ORBIX_MAKER_URL);
}

QString documentationUrl()
{
    return QStringLiteral(ORBIX_DOCUMENTATION_URL);
}

QString updateServerUrl()
{
    return QStringLiteral(ORBIX_UPDATE_SERVER_URL);
}

} // namespace Product
