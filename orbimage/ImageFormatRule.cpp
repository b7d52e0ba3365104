#include "ImageFormatRule.h"

#include <QStringList>

#include <algorithm>

namespace {

const QStringList kPhotoshop = {QStringLiteral("psb"), QStringLiteral("psd")};
const QStringList kRaw = {QStringLiteral(".ARW"), QStringLiteral(".CRW"), QStringLiteral(".CR2"),
                          QStringLiteral(".RAF"), QStringLiteral(".NEF"), QStringLiteral(".DNG"),
                          QStringLiteral(".SRF"), QStringLiteral(".SR2"), QStringLiteral(".ORF"),
                          QStringLiteral(".MRW"), QStringLiteral(".PEF"), QStringLiteral(".MEF"),
                          QStringLiteral(".MOS")};
const QStringList kHighDynamicRange = {QStringLiteral(".HDR"), QStringLiteral(".EXR")};

} // namespace

bool ImageFormatRule::endsInOneOf(const QString &path, const QStringList &suffixes)
{
    return std::any_of(suffixes.cbegin(), suffixes.cend(), [&path](const QString &suffix) {
        return path.endsWith(suffix, Qt::CaseInsensitive);
    });
}

bool ImageFormatRule::isAccepted(const QString &path, const GflFileInformation &information)
{
    const QString description = QString::fromStdString(information.description);
    const int components = information.componentsPerPixel;
    const bool isPhotoshop = endsInOneOf(path, kPhotoshop);
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
    return endsInOneOf(path, kRaw);
}

bool ImageFormatRule::isHighDynamicRange(const QString &path)
{
    return endsInOneOf(path, kHighDynamicRange);
}

int ImageFormatRule::reductionFactor(int width, int height, int thumbnailWidth, int thumbnailHeight)
{
    int factor = 32;
    while (factor > 1 && (width / factor < thumbnailWidth || height / factor < thumbnailHeight))
        factor /= 2;
    return factor;
}
