#include "ImageDefCache.h"

#include <QMutexLocker>

ImageDef *ImageDefCache::find(const QString &key)
{
    const QMutexLocker lock(&m_mutex);
    const auto found = m_images.find(key);
    return found == m_images.end() ? nullptr : found->second.get();
}

ImageDef *ImageDefCache::insert(std::unique_ptr<ImageDef> image)
{
    const QString key = image->key();
    const QMutexLocker lock(&m_mutex);
    return m_images.emplace(key, std::move(image)).first->second.get();
}
