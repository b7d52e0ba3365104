#include "ImageDef.h"

std::optional<ImageDef> ImageDef::open(const QString &)
{
    return std::nullopt;
}
