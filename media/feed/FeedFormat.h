#pragma once

#include <QByteArray>
#include <QtGlobal>

/// The memory that a live feed's writer and its readers share: a header, and behind it a ring of
/// frame records. All integers are little-endian, all offsets count from the start of the block in
/// bytes; docs/live-feed.md describes it for writers. Pure.
namespace FeedFormat {

constexpr char kName[] = "QXLT_Shared_Memory";          ///< of the block, "/" before it with POSIX
constexpr char kVersionTag[] = "QXLT_Shared_Memory1.3"; ///< at 0, ended by a zero

constexpr int kOwnerHandle = 0x80;    ///< u32
constexpr int kReaderHandle = 0x84;   ///< u32
constexpr int kSlotCount = 0x8C;      ///< u16, records in the ring
constexpr int kReaderRejected = 0x90; ///< u32, 1 from a reader that knows another version only
constexpr int kRecords = 0x94;
constexpr int kRecordBytes = 56;
constexpr int kFrameReady = 0x30; ///< within a record, u16

constexpr int kBytesPerPixel = 4; ///< red, green, blue, alpha

/// A frame of the ring, as its record describes it.
struct SharedFrameRecord
{
    quint64 frameStamp = 0;  ///< rises from frame to frame
    quint32 pixelOffset = 0; ///< 0: there are none
    quint16 frameWidth = 0;  ///< pixels
    quint16 frameHeight = 0;
    quint16 bytesPerLine = 0; ///< from the start of a line to that of the next
    quint16 frameRateNumerator = 0;
    quint16 frameRateDenominator = 0;

    /// Of the pixels, in bytes.
    quint64 size() const { return quint64(bytesPerLine) * frameHeight; }
};

/// From and into the kRecordBytes of a record. What no field holds stays as it is, the flag
/// `frameReady` too.
SharedFrameRecord decode(const uchar *record);
void encode(const SharedFrameRecord &frame, uchar *record);

/// Where a record of the ring begins.
constexpr qint64 recordOffset(int slot)
{
    return kRecords + qint64(slot) * kRecordBytes;
}

/// How often a reader looks for a new frame: twice in the time of one, in milliseconds, at least
/// every 1. A rate with a zero counts as about 30 a second.
int pollIntervalMs(const SharedFrameRecord &frame);

} // namespace FeedFormat
