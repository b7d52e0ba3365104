#pragma once

#include "ImageMetadata.h"
#include "OrbIImageDef.h"
#include "OrbImage.h"
#include "gfl.h"

#include <QImage>
#include <QObject>

#include <memory>
#include <mutex>

class ImageBuffers;
struct ImageLoadOptions;

/// What an image file tells of itself without its pixels being decoded, and its thumbnail.
class ImageDef : public QObject, public OrbIImageDef
{
    Q_OBJECT

public:
    /// Describes the file at `path`, local and in any character set. A path that was opened before
    /// gives the description of then, whatever has become of the file. False, with a null `result`,
    /// for a file that cannot be read or has colours that the library does not know. A description
    /// belongs to the library and lives until its stop. Any thread, between the library's start and
    /// stop.
    static bool open(const QString &path, ImageDef **result, bool thumbnail);

    /// The name under which the description of a path is kept: the MD5 of its bytes in UTF-8, in
    /// which the file is opened too, hexadecimal.
    static QString keyOf(const QString &path);

    ~ImageDef() override;

    std::unique_ptr<QPixmap> thumbnail() override;
    QString filePath() const override { return m_path; }
    QString fileName() const override;
    QString path() const override;
    int height() const override { return m_information.height; }
    int width() const override { return m_information.width; }
    int componentsPerPixel() const override { return m_information.componentsPerPixel; }
    int bitsPerComponent() const override { return m_information.bitsPerComponent; }
    bool hasCameraData() const override { return m_hasCameraData; }
    bool hasIccProfile() const override { return !m_blobs.iccProfile.empty(); }
    bool isRaw() const override { return m_isRaw; }
    float focalLength35mm() const override;
    int lensType() const override { return m_lensType; }
    qint64 dateTime() const override;
    float exposureValue() const override;
    OrbImage &acquireBuffer(int width, int height, bool forWrite) override;
    void releaseBuffer(int width, int height, bool forWrite) override;

    bool hasIptc() const { return !m_blobs.iptc.empty(); }
    bool hasXmp() const { return !m_blobs.xmp.empty(); }
    bool isHighDynamicRange() const { return m_isHighDynamicRange; }

    const ImageMetadata &metadata() const { return m_metadata; }

    /// The EXIF items for people, a line an item.
    QString summary() const { return m_summary; }

    /// The metadata as they stand in the file.
    const GflMetadata &blobs() const { return m_blobs; }

    /// Null unless a thumbnail was asked for.
    const OrbImage *thumbnailBuffer() const { return m_thumbnailBuffer.get(); }

    QString key() const { return m_key; }

private:
    ImageDef(const QString &path, const GflFileInformation &information);

    static std::unique_ptr<ImageDef> read(const QString &path, bool thumbnail,
                                          const ImageLoadOptions &options);
    bool readThumbnail(const ImageLoadOptions &options);
    void readMetadata(const ImageLoadOptions &options);
    void takeFixedLens(const ImageLoadOptions &options);

    const QString m_path;
    const QString m_key;
    const GflFileInformation m_information;
    const bool m_isRaw;
    const bool m_isHighDynamicRange;
    bool m_hasCameraData = false;
    ImageMetadata m_metadata;
    QString m_summary;
    GflMetadata m_blobs;
    int m_lensType = 0;
    QImage m_thumbnail;
    std::unique_ptr<OrbImage> m_thumbnailBuffer;
    std::once_flag m_buffersMade;
    std::unique_ptr<ImageBuffers> m_buffers; ///< Made when pixels are first asked for.
};
