#pragma once

#include <QString>

/// The notices of the libraries that the program uses, a starred header block each.
QString thirdPartyNotices();
