#include "ImageFormatRule.h"

#include <QStringList>

#include <algorithm>
#include <array>

namespace {

constexpr std::array kPhotoshop = {"psb", "psd"};
constexpr std::array kRaw = {".ARW", ".CRW", ".CR2", ".RAF", ".NEF", ".DNG", ".SRF",
                             ".SR2", ".ORF", ".MRW", ".PEF", ".MEF", ".MOS"};
constexpr std::array kHighDynamicRange = {".HDR", ".EXR"};

template <typename Suffixes>
bool endsIn(const QString &path, const Suffixes &suffixes)
{
    return std::any_of(suffixes.begin(), suffixes.end(), [&path](const char *suffix) {
        return path.endsWith(QLatin1String(suffix), Qt::CaseInsensitive);
    });
}

} // namespace

bool ImageFormatRule::isIgnored(const QString &path, const QStringList &suffixes)
{
    return std::any_of(suffixes.cbegin(), suffixes.cend(), [&path](const QString &suffix) {
        return path.endsWith(suffix, Qt::CaseInsensitive);
    });
}

bool ImageFormatRule::isAccepted(const QString &path, const GflFileInformation &information)
{
    const QString description = QString::fromStdString(information.description);
    const int components = information.componentsPerPixel;
    const bool isPhotoshop = endsIn(path, kPhotoshop);
    const bool isFlagged = information.colorModel == GflColorModel::Lab
        || information.colorModel == GflColorModel::Cmyk
        || description.contains(QLatin1String("LAB"), Qt::CaseInsensitive)
        || description.contains(QLatin1String("CMYK"), Qt::CaseInsensitive)
        || description == QLatin1String("TIFF tiled")
        || (components != 3 && components != 4 && !isPhotoshop);
    return !isFlagged || (isPhotoshop && components >= 3);
}

bool ImageFormatRule::isRaw(const QString &path)
{
    return endsIn(path, kRaw);
}

bool ImageFormatRule::isHighDynamicRange(const QString &path)
{
    return endsIn(path, kHighDynamicRange);
}

int ImageFormatRule::reductionFactor(int width, int height, int thumbnailWidth, int thumbnailHeight)
{
    int factor = 32;
    while (factor > 1 && (width / factor < thumbnailWidth || height / factor < thumbnailHeight))
        factor /= 2;
    return factor;
}
