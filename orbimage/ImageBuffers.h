#pragma once

#include "OrbImage.h"

#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <utility>

class TemporaryStore;

/// One size of an image: its pixels are in memory, in a file of the temporary store, or in both
/// while nobody writes.
struct ImageCacheItem
{
    int users = 0;
    std::optional<OrbImage> image;
    QString file;          ///< with the pixels as they were last written; empty for none
    std::size_t bytes = 0; ///< of the pixels
    quint64 lastUse = 0;   ///< larger for a later one
};

/// The buffers of one image, by size. Those that nobody uses go to the temporary store when memory
/// is short, the one that was used the longest time ago first, and come back when they are asked
/// for.
///
/// acquire and release may be called from any thread and do their work, the reading and writing of
/// files too, under one lock. What they do not guard is the pixels: users of one buffer agree among
/// themselves who writes it and when, also with those who acquire a smaller size for the first
/// time, which is made from the next larger one. Released by all before it is destroyed.
class ImageBuffers
{
public:
    /// Of one image, bytes.
    static constexpr std::size_t kMemoryLimit = std::size_t(512) << 20;

    /// The image of `width` times `height` pixels of `bitsPerPixel` in the file `path`.
    /// `memoryLimit` is in bytes and kept whenever a buffer comes into memory, but for what is in
    /// use then. The store outlives this.
    ImageBuffers(const QString &path, int width, int height, int bitsPerPixel,
                 TemporaryStore &store, std::size_t memoryLimit = kMemoryLimit);
    ~ImageBuffers();
    ImageBuffers(const ImageBuffers &) = delete;
    ImageBuffers &operator=(const ImageBuffers &) = delete;

    /// The image at this size, in the type and depth of the file; it stays where it is until it is
    /// released as often as it was acquired. `forWrite` where its pixels may be changed. Throws an
    /// OrbException where the file is missing or no room is left in memory or in the temporary
    /// store; then nothing has changed but which buffers are in memory.
    OrbImage &acquire(int width, int height, bool forWrite);

    /// Does nothing for what is not acquired.
    void release(int width, int height);

private:
    using Items = std::map<std::pair<int, int>, ImageCacheItem>; ///< by width and height

    OrbImage made(int width, int height);
    std::pair<int, int> nextLarger(int width, int height) const;
    void makeRoom(std::size_t bytes);
    void spill(ImageCacheItem &item);

    const QString m_path;
    const int m_width;
    const int m_height;
    const int m_bitsPerPixel;
    TemporaryStore &m_store;
    const std::size_t m_memoryLimit;

    std::recursive_mutex m_mutex; ///< Guards all below.
    Items m_items;
    quint64 m_uses = 0;
};
