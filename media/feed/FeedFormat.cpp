#include "FeedFormat.h"

#include <QtEndian>

#include <algorithm>

namespace {

// Within a record.
constexpr int kFrameStamp = 0x00;
constexpr int kPixelOffset = 0x10;
constexpr int kFrameWidth = 0x18;
constexpr int kFrameHeight = 0x1A;
constexpr int kBytesPerLine = 0x1C;
constexpr int kFrameRateNumerator = 0x1E;
constexpr int kFrameRateDenominator = 0x20;

constexpr int kUnknownRateMs = 16;

} // namespace

FeedFormat::SharedFrameRecord FeedFormat::decode(const uchar *record)
{
    SharedFrameRecord frame;
    frame.frameStamp = qFromLittleEndian<quint64>(record + kFrameStamp);
    frame.pixelOffset = qFromLittleEndian<quint32>(record + kPixelOffset);
    frame.frameWidth = qFromLittleEndian<quint16>(record + kFrameWidth);
    frame.frameHeight = qFromLittleEndian<quint16>(record + kFrameHeight);
    frame.bytesPerLine = qFromLittleEndian<quint16>(record + kBytesPerLine);
    frame.frameRateNumerator = qFromLittleEndian<quint16>(record + kFrameRateNumerator);
    frame.frameRateDenominator = qFromLittleEndian<quint16>(record + kFrameRateDenominator);
    return frame;
}

void FeedFormat::encode(const SharedFrameRecord &frame, uchar *record)
{
    qToLittleEndian(frame.frameStamp, record + kFrameStamp);
    qToLittleEndian(frame.pixelOffset, record + kPixelOffset);
    qToLittleEndian(frame.frameWidth, record + kFrameWidth);
    qToLittleEndian(frame.frameHeight, record + kFrameHeight);
    qToLittleEndian(frame.bytesPerLine, record + kBytesPerLine);
    qToLittleEndian(frame.frameRateNumerator, record + kFrameRateNumerator);
    qToLittleEndian(frame.frameRateDenominator, record + kFrameRateDenominator);
}

int FeedFormat::pollIntervalMs(const SharedFrameRecord &frame)
{
    if (frame.frameRateNumerator == 0 || frame.frameRateDenominator == 0)
        return kUnknownRateMs;
    return std::max(1, frame.frameRateDenominator * 1000 / frame.frameRateNumerator / 2);
}
