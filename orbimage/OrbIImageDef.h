#pragma once

#include <QString>

#include <memory>

class OrbImage;
class QPixmap;

/// The description of an image file. Descriptions do not change once they are made, but for the
/// thumbnail that is handed out; all but thumbnail() may be called from any thread.
class OrbIImageDef
{
public:
    virtual ~OrbIImageDef() = default;

    /// The thumbnail, at the first call; null pixmaps afterwards. GUI thread.
    virtual std::unique_ptr<QPixmap> thumbnail() = 0;

    /// The path as it was opened, the name of the file and its folder.
    virtual QString filePath() const = 0;
    virtual QString fileName() const = 0;
    virtual QString path() const = 0;

    virtual int height() const = 0; ///< pixels
    virtual int width() const = 0;
    virtual int componentsPerPixel() const = 0;
    virtual int bitsPerComponent() const = 0;

    /// Whether the file tells a focal length that can be used. What depends on it is 0 otherwise.
    virtual bool hasCameraData() const = 0;
    virtual bool hasIccProfile() const = 0;
    virtual bool isRaw() const = 0;

    virtual float focalLength35mm() const = 0; ///< mm, of a frame of 36 by 24 mm
    virtual int lensType() const = 0;          ///< 0 normal, 1 fisheye
    virtual qint64 dateTime() const = 0;       ///< seconds since 1970
    virtual float exposureValue() const = 0;

    /// The pixels at a size up to the image's own, in the type and depth in which the
    /// installed reader gives them, for a high dynamic range 8 bits; they stay where they are until
    /// they are released as often as they were acquired. `forWrite` where they may be changed: who
    /// else has them has to know. Throws an OrbException.
    virtual OrbImage &acquireBuffer(int width, int height, bool forWrite) = 0;
    virtual void releaseBuffer(int width, int height, bool forWrite) = 0;

    OrbImage &acquireFullBuffer(bool forWrite)
    {
        return acquireBuffer(width(), height(), forWrite);
    }
    void releaseFullBuffer(bool forWrite) { releaseBuffer(width(), height(), forWrite); }
};
