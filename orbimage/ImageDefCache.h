#pragma once

#include "ImageDef.h"

#include <QMutex>
#include <QString>

#include <memory>
#include <unordered_map>

/// All descriptions that were made, by their keys. Any thread; the mutex guards the table, the
/// descriptions live until the cache's end.
class ImageDefCache
{
public:
    ImageDefCache() { m_images.reserve(256); }

    /// Null for a key that is not there.
    ImageDef *find(const QString &key);

    /// Keeps `image`, unless another thread has brought one of its key meanwhile, and tells which
    /// of them stands there now.
    ImageDef *insert(std::unique_ptr<ImageDef> image);

private:
    struct KeyHash
    {
        std::size_t operator()(const QString &key) const { return qHash(key); }
    };

    QMutex m_mutex;
    std::unordered_map<QString, std::unique_ptr<ImageDef>, KeyHash> m_images;
};
