#pragma once

#include <QString>

/// What the program is called, which version it is, and the addresses of its maker. All of it is
/// available before `main`. An address that the build did not set is empty.
namespace Product {

/// "Orbix Sight", the name that users see.
QString displayName();

/// "Orbix".
QString organisation();

/// Four numbers, such as "1.4.0.400".
QString version();

/// The display name with the first two numbers of the version, "Orbix Sight 1.4". It names the
/// settings store too, so each major.minor version has settings of its own.
QString softwareName();

/// The product's code on the update server, "oxs".
QString code();

QString makerUrl();
QString documentationUrl();
QString updateServerUrl();

/// The root of the hosting service, ending in "/"; empty in a build that has none.
QString hostingUrl();

} // namespace Product
