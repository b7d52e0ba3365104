#include "ImageBuffers.h"

#include "OrbException.h"
#include "TemporaryStore.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

/// Of an image in memory, as it was made.
int bitsPerPixel(const GflBitmap &bitmap)
{
    return gflComponents(bitmap.type) * bitmap.bitsPerComponent;
}

} // namespace

ImageBuffers::ImageBuffers(const QString &path, int width, int height, int bitsPerPixel,
                           TemporaryStore &store, std::size_t memoryLimit)
    : m_path(path)
    , m_width(width)
    , m_height(height)
    , m_bitsPerPixel(bitsPerPixel)
    , m_store(store)
    , m_memoryLimit(memoryLimit)
{}

ImageBuffers::~ImageBuffers()
{
    for (const auto &[size, item] : m_items) {
        if (!item.file.isEmpty())
            QFile::remove(item.file);
    }
}

OrbImage &ImageBuffers::acquire(int width, int height, bool forWrite)
{
    if (width <= 0 || height <= 0 || width > m_width || height > m_height) {
        throw OrbException(QCoreApplication::translate("OrbException", "Invalid Parameter"));
    }
    const QFileInfo source(m_path);
    if (!source.exists()) {
        throw OrbException(QCoreApplication::translate("OrbException", "File \"%1\" is not found")
                               .arg(source.absoluteFilePath()));
    }

    const std::lock_guard<std::recursive_mutex> lock(m_mutex);
    auto found = m_items.find({width, height});
    if (found == m_items.end()) {
        OrbImage image = made(width, height);
        found = m_items.try_emplace({width, height}).first;
        found->second.bytes = image.byteCount();
        found->second.image = std::move(image);
    } else if (!found->second.image) {
        makeRoom(found->second.bytes);
        OrbImage image;
        image.ID_Read(found->second.file);
        found->second.image = std::move(image);
    }

    ImageCacheItem &item = found->second;
    if (forWrite && !item.file.isEmpty()) { // soon no more what is in memory
        QFile::remove(item.file);
        item.file.clear();
    }
    ++item.users;
    item.lastUse = ++m_uses;
    return *item.image;
}

void ImageBuffers::release(int width, int height)
{
    const std::lock_guard<std::recursive_mutex> lock(m_mutex);
    const auto found = m_items.find({width, height});
    if (found == m_items.end() || found->second.users == 0)
        return;
    --found->second.users;
    found->second.lastUse = ++m_uses;
}

/// A buffer that is not there yet.
OrbImage ImageBuffers::made(int width, int height)
{
    OrbImage image;
    if (width == m_width && height == m_height) {
        makeRoom(std::size_t(width) * std::size_t(height) * std::size_t(m_bitsPerPixel) / 8);
        image.ID_Read(m_path);
        if (image.bitmap().width != width || image.bitmap().height != height)
            throw OrbException(GflError::FileRead, m_path); // another image by now
        return image;
    }

    /// Holds the larger one in memory.
    struct Larger
    {
        ImageBuffers &buffers;
        const std::pair<int, int> size;
        const OrbImage &image = buffers.acquire(size.first, size.second, false);
        ~Larger() { buffers.release(size.first, size.second); }
    };
    const Larger larger{*this, nextLarger(width, height)};
    const GflBitmap &bitmap = larger.image.bitmap();
    makeRoom(std::size_t(width) * std::size_t(height) * std::size_t(bitsPerPixel(bitmap)) / 8);
    image.reducedCopy(larger.image, width, height, bitmap.type, bitmap.bitsPerComponent);
    return image;
}

/// The smallest that there is, in memory or not, else the image's own size.
std::pair<int, int> ImageBuffers::nextLarger(int width, int height) const
{
    std::pair<int, int> best(m_width, m_height);
    const auto area = [](const std::pair<int, int> &size) {
        return qint64(size.first) * size.second;
    };
    for (const auto &[size, item] : m_items) {
        if (size.first >= width && size.second >= height && area(size) < area(best))
            best = size;
    }
    return best;
}

/// Spills until there are `bytes` below the limit or all that is left is in use.
void ImageBuffers::makeRoom(std::size_t bytes)
{
    std::size_t inMemory = 0;
    for (const auto &[size, item] : m_items)
        inMemory += item.image ? item.bytes : 0;
    while (inMemory + bytes > m_memoryLimit) {
        ImageCacheItem *oldest = nullptr;
        for (auto &[size, item] : m_items) {
            if (item.image && item.users == 0 && (!oldest || item.lastUse < oldest->lastUse))
                oldest = &item;
        }
        if (!oldest)
            return;
        spill(*oldest);
        inMemory -= oldest->bytes;
    }
}

void ImageBuffers::spill(ImageCacheItem &item)
{
    if (item.file.isEmpty()) {
        const GflBitmap &bitmap = item.image->bitmap();
        const QString file = m_store.fileFor(bitmap.width, bitmap.height, bitsPerPixel(bitmap));
        if (file.isEmpty())
            throw OrbException(
                QCoreApplication::translate("OrbException", "No more space in temporary folder"));
        item.image->ID_WriteToCache(file);
        item.file = file;
    }
    item.image.reset();
}
