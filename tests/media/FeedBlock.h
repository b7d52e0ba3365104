#pragma once

#include <QByteArray>
#include <QSize>
#include <QtEndian>

/// The writer's side of the live feed, for tests: a block of shared memory, filled at offsets of
/// its own. It is as large as its ring and the pixels behind it: those of record i are the i-th.
/// The functions that write fields must not be called while the block is too short for them.
class FeedBlock
{
public:
    struct Record
    {
        quint64 stamp = 0;
        quint32 offset = 0; ///< of the pixels
        quint16 width = 0;
        quint16 height = 0;
        quint16 bytesPerLine = 0;
        quint16 numerator = 30;
        quint16 denominator = 1;
        quint16 ready = 1;
    };

    /// A right block with a ring of empty records. `padding` bytes stand behind each line.
    /// Replaces a block of that name.
    FeedBlock(const QByteArray &name, int count, const QSize &frame, int padding = 0);
    ~FeedBlock();
    Q_DISABLE_COPY(FeedBlock)

    /// The block's name with POSIX is this one behind a "/".
    QByteArray name() const { return m_name; }

    /// A file descriptor of the block.
    int descriptor() const { return m_descriptor; }

    /// As if the block had just been made, but the pixels stay.
    void setHeader();
    /// 128 bytes, filled up with zeros.
    void setTag(const QByteArray &tag);
    void setSlotCount(quint16 count) { put(0x8C, count); }

    /// A right record with this stamp, ready.
    Record record(int slot, quint64 stamp) const;
    /// All but the flag first.
    void setRecord(int slot, const Record &record);
    bool isReady(int slot) const { return get<quint16>(0x94 + slot * 56 + 0x30) != 0; }

    /// Where the lines of this slot stand.
    uchar *pixels(int slot) { return m_bytes + pixelOffset(slot); }
    /// Each pixel of the slot as this one, 0xAABBGGRR.
    void fill(int slot, quint32 abgr);

    /// Bytes of a right block.
    int size() const { return pixelOffset(m_count); }
    /// Cuts the block short or lets it grow again. At most as large as a right one.
    void resize(int bytes);

    template <typename Integer>
    void put(int offset, Integer value)
    {
        qToLittleEndian(value, m_bytes + offset);
    }
    template <typename Integer>
    Integer get(int offset) const
    {
        return qFromLittleEndian<Integer>(m_bytes + offset);
    }

private:
    int pixelOffset(int slot) const;

    const QByteArray m_name;
    const int m_count;
    const QSize m_frame;
    const int m_bytesPerLine;
    int m_descriptor = -1;
    uchar *m_bytes = nullptr;
};
