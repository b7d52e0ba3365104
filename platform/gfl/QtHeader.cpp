#include "FileHeaders.h"

#include <QByteArray>
#include <QImage>
#include <QImageReader>
#include <QPixelFormat>
#include <QSize>
#include <QString>

#include <algorithm>

namespace {

/// Formats that are drawings or documents, or that the other headers know.
bool isForeign(const QByteArray &format)
{
    const auto others = {"jpeg", "jpg", "pdf", "png", "svg", "svgz", "tif", "tiff"};
    return std::any_of(others.begin(), others.end(),
                       [&format](const char *other) { return format == other; });
}

} // namespace

std::optional<GflFileInformation> FileHeaders::other(const std::string &path)
{
    QImageReader reader(QString::fromStdString(path));
    reader.setDecideFormatFromContent(true);
    const QByteArray format = reader.format();
    if (format.isEmpty() || isForeign(format))
        return std::nullopt;
    const QSize size = reader.size();
    if (size.width() <= 0 || size.height() <= 0)
        return std::nullopt;

    GflFileInformation information;
    information.width = size.width();
    information.height = size.height();
    information.componentsPerPixel = 3;
    information.bitsPerComponent = 8;
    information.description = format.toUpper().toStdString();
    const QImage::Format pixels = reader.imageFormat();
    if (pixels != QImage::Format_Invalid) {
        const QPixelFormat form = QImage::toPixelFormat(pixels);
        const bool isGray = form.colorModel() == QPixelFormat::Grayscale;
        information.componentsPerPixel = isGray            ? 1
            : form.alphaUsage() == QPixelFormat::UsesAlpha ? 4
                                                           : 3;
        information.colorModel = isGray ? GflColorModel::Gray : GflColorModel::Rgb;
        if (form.redSize() > 8)
            information.bitsPerComponent = 16;
    }
    if (format == "exr" || format == "hdr")
        information.bitsPerComponent = 32;
    return information;
}
