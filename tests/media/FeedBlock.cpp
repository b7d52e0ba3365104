#include "FeedBlock.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

FeedBlock::FeedBlock(const QByteArray &name, int count, const QSize &frame, int padding)
    : m_name(name + '-' + QByteArray::number(::getpid()))
    , m_count(count)
    , m_frame(frame)
    , m_bytesPerLine(4 * frame.width() + padding)
{
    const QByteArray path = '/' + m_name;
    ::shm_unlink(path.constData());
    m_descriptor = ::shm_open(path.constData(), O_RDWR | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR);
    if (m_descriptor < 0 || ::ftruncate(m_descriptor, size()) != 0)
        qFatal("No shared memory for %s", path.constData());
    void *view = ::mmap(nullptr, size_t(size()), PROT_READ | PROT_WRITE, MAP_SHARED, m_descriptor,
                        0);
    if (view == MAP_FAILED)
        qFatal("No view of %s", path.constData());
    m_bytes = static_cast<uchar *>(view);
    setHeader();
}

FeedBlock::~FeedBlock()
{
    ::munmap(m_bytes, size_t(size()));
    ::close(m_descriptor);
    ::shm_unlink(QByteArray('/' + m_name).constData());
}

void FeedBlock::setHeader()
{
    std::memset(m_bytes, 0, size_t(pixelOffset(0)));
    setTag("QXLT_Shared_Memory1.3");
    setSlotCount(quint16(m_count));
}

void FeedBlock::setTag(const QByteArray &tag)
{
    const QByteArray filled = tag.leftJustified(128, '\0', true);
    std::memcpy(m_bytes, filled.constData(), 128);
}

FeedBlock::Record FeedBlock::record(int slot, quint64 stamp) const
{
    Record record;
    record.stamp = stamp;
    record.offset = quint32(pixelOffset(slot));
    record.width = quint16(m_frame.width());
    record.height = quint16(m_frame.height());
    record.bytesPerLine = quint16(m_bytesPerLine);
    return record;
}

void FeedBlock::setRecord(int slot, const Record &record)
{
    const int at = 0x94 + slot * 56;
    put(at + 0x00, record.stamp);
    put(at + 0x10, record.offset);
    put(at + 0x18, record.width);
    put(at + 0x1A, record.height);
    put(at + 0x1C, record.bytesPerLine);
    put(at + 0x1E, record.numerator);
    put(at + 0x20, record.denominator);
    __atomic_store_n(reinterpret_cast<quint16 *>(m_bytes + at + 0x30),
                     qToLittleEndian(record.ready), __ATOMIC_RELEASE);
}

void FeedBlock::fill(int slot, quint32 abgr)
{
    for (int y = 0; y < m_frame.height(); ++y) {
        for (int x = 0; x < m_frame.width(); ++x)
            put(pixelOffset(slot) + y * m_bytesPerLine + 4 * x, abgr);
    }
}

void FeedBlock::resize(int bytes)
{
    if (::ftruncate(m_descriptor, bytes) != 0)
        qFatal("The block %s keeps its size", m_name.constData());
}

int FeedBlock::pixelOffset(int slot) const
{
    return 0x94 + m_count * 56 + slot * m_bytesPerLine * m_frame.height();
}
