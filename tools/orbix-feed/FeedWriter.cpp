#include "FeedWriter.h"

#include "GuardedMemory.h"

#include <QtEndian>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <limits>
#include <utility>

using FeedFormat::SharedFrameRecord;

namespace {

constexpr int kNewSlots = 3;                   // one is written, one is read, one waits
constexpr qint64 kReachable = qint64(1) << 32; // by the offsets of records
constexpr int kLargest = std::numeric_limits<quint16>::max();
constexpr mode_t kForThisUser = S_IRUSR | S_IWUSR;

qint64 alignedUp(qint64 bytes, int alignment)
{
    return (bytes + alignment - 1) / alignment * alignment;
}

QString sizeText(QSize size)
{
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

} // namespace

FeedWriter::FeedWriter(const QByteArray &name)
    : m_path('/' + name)
{}

FeedWriter::~FeedWriter()
{
    if (m_view)
        ::munmap(m_view, std::size_t(pixelOffset(m_slots)));
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

qsizetype FeedWriter::frameBytes() const
{
    return qsizetype(m_format.size.width()) * FeedFormat::kBytesPerPixel * m_format.size.height();
}

/// Behind the last slot: where what this writer uses of the block ends.
qint64 FeedWriter::pixelOffset(int slot) const
{
    return alignedUp(FeedFormat::recordOffset(m_slots), m_alignment)
        + slot * alignedUp(frameBytes(), m_alignment);
}

uchar *FeedWriter::flag(int slot) const
{
    return m_view + FeedFormat::recordOffset(slot) + FeedFormat::kFrameReady;
}

QString FeedWriter::open(const Format &format)
{
    constexpr int kWidest = kLargest / FeedFormat::kBytesPerPixel;
    const QSize size = format.size;
    if (size.isEmpty() || size.width() > kWidest || size.height() > kLargest)
        return QStringLiteral("Frames can have from 1x1 to %1x%2 pixels.")
            .arg(kWidest)
            .arg(kLargest);
    m_format = format;
    QString wrong = lockBlock();
    if (wrong.isEmpty())
        wrong = m_length == 0 ? create() : takeOver();
    return wrong;
}

/// Only one who has to make the block asks for that: where everybody may make files, the system
/// refuses it for those that others have made.
QString FeedWriter::lockBlock()
{
    m_descriptor = ::shm_open(m_path.constData(), O_RDWR, 0);
    if (m_descriptor < 0 && errno == ENOENT)
        m_descriptor = ::shm_open(m_path.constData(), O_RDWR | O_CREAT, kForThisUser);
    if (m_descriptor < 0)
        return QStringLiteral("The shared memory %1 cannot be opened: %2.")
            .arg(QString::fromLatin1(m_path), qt_error_string(errno));
    if (::flock(m_descriptor, LOCK_EX | LOCK_NB) != 0)
        return QStringLiteral("Another writer is running: it has the shared memory %1.")
            .arg(QString::fromLatin1(m_path));
    struct stat status = {};
    if (::fstat(m_descriptor, &status) != 0 || !S_ISREG(status.st_mode))
        return QStringLiteral("%1 is no shared memory.").arg(QString::fromLatin1(m_path));
    m_length = status.st_size;
    return {};
}

/// The block gets its size and its memory in one step, so that no reader maps a part of it, and its
/// tag last: whoever looks before takes it for foreign and looks again.
QString FeedWriter::create()
{
    m_slots = kNewSlots;
    QString wrong = map();
    if (!wrong.isEmpty()) {
        ::shm_unlink(m_path.constData());
        return wrong;
    }
    const quint16 count = qToLittleEndian(quint16(m_slots));
    GuardedMemory::write(m_view + FeedFormat::kSlotCount, &count, sizeof(count));
    quint16 start = 0;
    std::memcpy(&start, FeedFormat::kVersionTag, sizeof(start));
    GuardedMemory::write(m_view + sizeof(start), FeedFormat::kVersionTag + sizeof(start),
                         sizeof(FeedFormat::kVersionTag) - sizeof(start));
    GuardedMemory::store(m_view, start);
    takeRejection();
    m_isFirstRejection = true;
    return {};
}

/// Readers keep the block, so its ring stays as it is. What its records tell of goes with the new
/// areas: no reader is to take that. The highest stamp may be that of a frame which its writer only
/// began. So the ring goes on with that very record: readers wait for it, or for the one behind.
QString FeedWriter::takeOver()
{
    const QString remedy = QStringLiteral(
        " Remove it with \"orbix-feed --remove\", and start the players anew that show it.");
    uchar header[FeedFormat::kRecords] = {};
    if (::pread(m_descriptor, header, sizeof(header), 0) != sizeof(header)
        || std::memcmp(header, FeedFormat::kVersionTag, sizeof(FeedFormat::kVersionTag)) != 0)
        return QStringLiteral("The shared memory %1 is there and is no live feed of version %2.")
                   .arg(QString::fromLatin1(m_path), QLatin1String(FeedFormat::kVersionTag))
            + remedy;
    m_slots = qFromLittleEndian<quint16>(header + FeedFormat::kSlotCount);
    if (pixelOffset(m_slots) > m_length)
        m_alignment = FeedFormat::kBytesPerPixel; // as close as its maker may have put them
    const qint64 needed = pixelOffset(m_slots);
    if (m_slots == 0 || needed > m_length)
        return QStringLiteral("The shared memory %1 is too small: %2 frames of %3 need %4 bytes of "
                              "its %5.")
                   .arg(QString::fromLatin1(m_path))
                   .arg(m_slots)
                   .arg(sizeText(m_format.size))
                   .arg(needed)
                   .arg(m_length)
            + remedy;
    QString wrong = map();
    if (!wrong.isEmpty())
        return wrong;
    QSize sizeBefore;
    for (int slot = 0; slot < m_slots; ++slot) {
        uchar bytes[FeedFormat::kRecordBytes] = {};
        GuardedMemory::read(bytes, m_view + FeedFormat::recordOffset(slot), sizeof(bytes));
        GuardedMemory::store(flag(slot), 0);
        const SharedFrameRecord frame = FeedFormat::decode(bytes);
        const QSize size(frame.frameWidth, frame.frameHeight);
        if (!size.isEmpty() && size != m_format.size)
            sizeBefore = size;
        if (frame.frameStamp > m_stamp) {
            m_stamp = frame.frameStamp;
            m_nextSlot = slot;
        }
    }
    if (m_stamp > std::numeric_limits<quint64>::max() / 2)
        return QStringLiteral("The frames of the shared memory %1 have used up the stamps.")
                   .arg(QString::fromLatin1(m_path))
            + remedy;
    if (!sizeBefore.isEmpty())
        m_remark = QStringLiteral("The frames before had %1 pixels. Players that run already will "
                                  "not show those of %2; start them anew.")
                       .arg(sizeText(sizeBefore), sizeText(m_format.size));
    takeRejection();
    return {};
}

/// All that this writer uses, with memory behind it: else a full system would tell so by a fault,
/// in the midst of a frame.
QString FeedWriter::map()
{
    const qint64 bytes = pixelOffset(m_slots);
    if (bytes > kReachable)
        return QStringLiteral("%1 frames of %2 reach beyond 4 GiB, where a live feed ends.")
            .arg(m_slots)
            .arg(sizeText(m_format.size));
    int error = 0;
    do
        error = ::posix_fallocate(m_descriptor, 0, bytes);
    while (error == EINTR);
    void *view = MAP_FAILED;
    if (error == 0) {
        view = ::mmap(nullptr, std::size_t(bytes), PROT_READ | PROT_WRITE, MAP_SHARED, m_descriptor,
                      0);
        error = errno;
    }
    if (view == MAP_FAILED)
        return QStringLiteral("There is no room for the shared memory %1 of %2 bytes: %3.")
            .arg(QString::fromLatin1(m_path))
            .arg(bytes)
            .arg(qt_error_string(error));
    m_view = static_cast<uchar *>(view);
    return {};
}

/// The new stamp before the pixels tells a reader that still copies the old ones.
uchar *FeedWriter::nextFrame()
{
    const quint64 stamp = qToLittleEndian(m_stamp + 1);
    if (!GuardedMemory::store(flag(m_nextSlot), 0)
        || !GuardedMemory::write(m_view + FeedFormat::recordOffset(m_nextSlot), &stamp,
                                 sizeof(stamp)))
        return nullptr;
    std::atomic_thread_fence(std::memory_order_release);
    return m_view + pixelOffset(m_nextSlot);
}

bool FeedWriter::publish()
{
    SharedFrameRecord frame;
    frame.frameStamp = ++m_stamp;
    frame.pixelOffset = quint32(pixelOffset(m_nextSlot));
    frame.frameWidth = quint16(m_format.size.width());
    frame.frameHeight = quint16(m_format.size.height());
    frame.bytesPerLine = quint16(frame.frameWidth * FeedFormat::kBytesPerPixel);
    frame.frameRateNumerator = m_format.rateNumerator;
    frame.frameRateDenominator = m_format.rateDenominator;
    uchar record[FeedFormat::kRecordBytes] = {};
    FeedFormat::encode(frame, record);
    // Up to the flag, which gives all of it to the readers.
    const int slot = m_nextSlot;
    m_nextSlot = (slot + 1) % m_slots;
    return GuardedMemory::write(m_view + FeedFormat::recordOffset(slot), record,
                                FeedFormat::kFrameReady)
        && GuardedMemory::store(flag(slot), 1);
}

bool FeedWriter::takeRejection()
{
    const quint32 none = 0;
    quint32 rejected = 0;
    uchar *const at = m_view + FeedFormat::kReaderRejected;
    if (!GuardedMemory::read(&rejected, at, sizeof(rejected)) || rejected == 0
        || !GuardedMemory::write(at, &none, sizeof(none)))
        return false;
    return !std::exchange(m_isFirstRejection, false);
}

bool FeedWriter::isRemoved() const
{
    struct stat status = {};
    return ::fstat(m_descriptor, &status) == 0 && status.st_nlink == 0;
}

QString FeedWriter::remove(const QByteArray &name)
{
    const QByteArray path = '/' + name;
    if (::shm_unlink(path.constData()) == 0)
        return {};
    if (errno == ENOENT)
        return QStringLiteral("There is no shared memory %1.").arg(QString::fromLatin1(path));
    return QStringLiteral("The shared memory %1 cannot be removed: %2.")
        .arg(QString::fromLatin1(path), qt_error_string(errno));
}
