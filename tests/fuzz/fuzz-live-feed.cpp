// The memory that a live feed's writer shares: all of it behind the version tag.

#include "FeedReader.h"

#include <QLoggingCategory>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

namespace {

constexpr int kTagBytes = 0x80;
constexpr int kFrames = 8; ///< that are asked for

/// The block of this process.
struct Block
{
    const QByteArray name = "orbix-fuzz-" + QByteArray::number(::getpid());
    const QByteArray path = '/' + name;
    const int descriptor = ::shm_open(path.constData(), O_RDWR | O_CREAT, 0600);

    ~Block() { ::shm_unlink(path.constData()); }
};

bool giveUp(std::chrono::milliseconds)
{
    return false;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    QLoggingCategory::setFilterRules(QStringLiteral("orbix.media=false"));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const Block block;
    if (::ftruncate(block.descriptor, 0) != 0
        || ::ftruncate(block.descriptor, off_t(kTagBytes + size)) != 0
        || ::pwrite(block.descriptor, FeedFormat::kVersionTag, sizeof(FeedFormat::kVersionTag), 0)
            < 0
        || ::pwrite(block.descriptor, data, size, kTagBytes) < 0)
        std::abort();
    FeedReader reader(block.name);
    if (!reader.connectToWriter(giveUp))
        return 0;
    reader.computePollInterval(giveUp);
    for (int i = 0; i < kFrames; ++i) {
        if (const auto frame = reader.takeFrame()) {
            std::vector<uchar> pixels(std::size_t(frame->frameWidth) * frame->frameHeight
                                      * FeedFormat::kBytesPerPixel);
            reader.copyPixels(*frame, pixels.data());
        }
    }
    return 0;
}
