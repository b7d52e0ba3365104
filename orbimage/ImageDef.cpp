#include "ImageDef.h"

#include "CameraProperties.h"
#include "ExifMapping.h"
#include "ImageBuffers.h"
#include "ImageDefCache.h"
#include "ImageFormatRule.h"
#include "ImageLoadOptions.h"
#include "LensIDProperties.h"
#include "OrbException.h"
#include "OrbImageLibrary.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QPixmap>

#include <algorithm>
#include <utility>

namespace {

constexpr double kShortestNormalLens = 16.0; // mm; what is shorter is taken for a fisheye

/// The type that the table of lenses or else the focal length tells; `type` where the lens is
/// neither normal nor a fisheye.
int lensTypeOf(const ImageMetadata &metadata, int type)
{
    enum { Unknown = -1, Normal = 0, Fisheye = 1 };
    const int found = LensIDProperties::instance().type(metadata.maker, metadata.lensId);
    if (found == Normal || found == Fisheye)
        return found;
    if (found > Unknown)
        return type;
    const double focalLength = metadata.focalLength35mm;
    return focalLength != 0 && focalLength < kShortestNormalLens ? Fisheye : Normal;
}

double scaleOf(const QString &maker, const QString &model)
{
    return double(CameraProperties::instance().scale(maker, model));
}

} // namespace

QString ImageDef::keyOf(const QString &path)
{
    QByteArray bytes = path.toUtf8();
    const int end = bytes.indexOf('\0');
    if (end >= 0)
        bytes.truncate(end);
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex());
}

bool ImageDef::open(const QString &path, ImageDef **result, bool thumbnail)
{
    *result = nullptr;
    ImageDefCache *const cache = OrbImageLibrary::cache();
    if (!cache)
        return false;
    *result = cache->find(keyOf(path));
    if (*result)
        return true;
    std::unique_ptr<ImageDef> image = read(path, thumbnail, OrbImageLibrary::loadOptions());
    if (image)
        *result = cache->insert(std::move(image));
    return *result != nullptr;
}

std::unique_ptr<ImageDef> ImageDef::read(const QString &path, bool thumbnail,
                                         const ImageLoadOptions &options)
{
    if (ImageFormatRule::isIgnored(path, options.ignoredSuffixes))
        return nullptr;
    GflFileInformation information;
    if (gflGetFileInformationExUTF8(path.toStdString(), &information) != GflError::None)
        return nullptr;
    if (!ImageFormatRule::isAccepted(path, information)) {
        if (information.componentsPerPixel == 1)
            OrbImageLibrary::appendMessage(QFileInfo(path).fileName()
                                           + tr(": gray pictures are not supported."));
        return nullptr;
    }
    std::unique_ptr<ImageDef> image(new ImageDef(path, information));
    if (thumbnail && !image->readThumbnail(options))
        return nullptr;
    image->readMetadata(options);
    return image;
}

ImageDef::ImageDef(const QString &path, const GflFileInformation &information)
    : m_path(path)
    , m_key(keyOf(path))
    , m_information(information)
    , m_isRaw(ImageFormatRule::isRaw(path))
    , m_isHighDynamicRange(ImageFormatRule::isHighDynamicRange(path))
{}

ImageDef::~ImageDef() = default;

bool ImageDef::readThumbnail(const ImageLoadOptions &options)
{
    const int factor = ImageFormatRule::reductionFactor(width(), height(), options.thumbnailWidth,
                                                        options.thumbnailHeight);
    const QSize reduced(std::max(1, width() / factor), std::max(1, height() / factor));
    GflBitmap bitmap;
    if (gflLoadThumbnailUTF8(m_path.toStdString(), reduced.width(), reduced.height(), &bitmap)
        != GflError::None)
        return false;
    try {
        OrbImage loaded;
        loaded.allocate(bitmap.width, bitmap.height, bitmap.type, bitmap.bitsPerComponent, false,
                        bitmap.data);
        m_thumbnailBuffer = std::make_unique<OrbImage>();
        m_thumbnailBuffer->reducedCopy(loaded, reduced.width(), reduced.height(), kGflRgba, 8);
        const QSize largest(options.thumbnailWidth, options.thumbnailHeight);
        const QSize shown = reduced.scaled(largest.boundedTo(reduced), Qt::KeepAspectRatio);
        m_thumbnail = m_thumbnailBuffer->toImage(shown.expandedTo(QSize(1, 1)));
    } catch (const OrbException &) {
        return false;
    }
    return true;
}

void ImageDef::readMetadata(const ImageLoadOptions &options)
{
    m_blobs = gflLoadMetadataUTF8(m_path.toStdString());
    const ExifMapping::Result mapped = ExifMapping::map(m_blobs.exif, m_blobs.exif2, scaleOf);
    m_metadata = mapped.metadata;
    m_summary = mapped.summary;
    m_hasCameraData = mapped.hasCameraData;
    if (m_hasCameraData)
        m_lensType = lensTypeOf(m_metadata, m_lensType);
    takeFixedLens(options);
}

void ImageDef::takeFixedLens(const ImageLoadOptions &options)
{
    const bool isMissing = options.cameraDataMode == ImageLoadOptions::FixedIfMissing
        && !m_hasCameraData;
    const bool isAlways = options.cameraDataMode == ImageLoadOptions::FixedFisheye;
    if (!isMissing && !isAlways)
        return;
    m_hasCameraData = true;
    m_metadata.scaleFactor = 1.0;
    if (isMissing) {
        m_metadata.focalLength35mm = options.fixedFocalLength1;
        m_lensType = options.fixedLensType1;
        return;
    }
    m_metadata.focalLength35mm = options.fixedFocalLength2;
    m_metadata.distortion1 = options.fixedDistortion1;
    m_metadata.distortion2 = options.fixedDistortion2;
    m_metadata.distortion3 = options.fixedDistortion3;
    m_lensType = options.fixedLensType2;
}

std::unique_ptr<QPixmap> ImageDef::thumbnail()
{
    return std::make_unique<QPixmap>(QPixmap::fromImage(std::exchange(m_thumbnail, QImage())));
}

QString ImageDef::fileName() const
{
    return QFileInfo(m_path).fileName();
}

QString ImageDef::path() const
{
    return QFileInfo(m_path).path();
}

float ImageDef::focalLength35mm() const
{
    return m_hasCameraData ? float(m_metadata.focalLength35mm) : 0;
}

qint64 ImageDef::dateTime() const
{
    return m_hasCameraData ? m_metadata.dateTime : 0;
}

float ImageDef::exposureValue() const
{
    return m_hasCameraData ? float(m_metadata.exposureValue) : 0;
}

OrbImage &ImageDef::acquireBuffer(int width, int height, bool forWrite)
{
    std::call_once(m_buffersMade, [this] {
        m_buffers = std::make_unique<ImageBuffers>(m_path, m_information.width,
                                                   m_information.height,
                                                   componentsPerPixel() * bitsPerComponent(),
                                                   OrbImageLibrary::temporaryStore());
    });
    return m_buffers->acquire(width, height, forWrite);
}

void ImageDef::releaseBuffer(int width, int height, bool)
{
    if (m_buffers)
        m_buffers->release(width, height);
}
