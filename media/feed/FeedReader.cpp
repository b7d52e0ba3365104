#include "FeedReader.h"

#include "GuardedMemory.h"
#include "filemapping.h"

#include <QLoggingCategory>
#include <QtEndian>

#include <algorithm>
#include <atomic>
#include <cstring>

using namespace std::chrono_literals;
using FeedFormat::SharedFrameRecord;

namespace {

Q_LOGGING_CATEGORY(lcMedia, "orbix.media")

constexpr auto kLookForBlock = 100ms;
constexpr auto kLookForFirstFrame = 10ms;

/// The block as it is now; null if there is none, or none that has a header yet.
uchar *mapped(const char *name, quint32 *handle)
{
    *handle = OpenFileMappingA(FILE_MAP_ALL_ACCESS, false, name);
    void *view = *handle == 0 ? nullptr : MapViewOfFile(*handle, FILE_MAP_ALL_ACCESS, 0, 0, 0);
    if (!view)
        CloseHandle(*handle);
    if (viewLength(view) >= FeedFormat::kRecords)
        return static_cast<uchar *>(view);
    UnmapViewOfFile(view);
    return nullptr;
}

} // namespace

bool FeedReader::connectToWriter(const Pause &pause)
{
    bool saidRejected = false;
    while (!m_feedView) {
        quint32 handle = 0;
        m_feedView = mapped(m_name.constData(), &handle);
        if (m_feedView) {
            m_length = static_cast<qint64>(viewLength(m_feedView));
            setWord(FeedFormat::kReaderHandle, handle);
        }
        if (m_feedView && !hasVersionTag()) {
            if (!saidRejected)
                qCWarning(lcMedia, "The shared memory %s is no live feed of version %s.",
                          m_name.constData(), FeedFormat::kVersionTag);
            saidRejected = true;
            reject();
        }
        if (!m_feedView && !pause(kLookForBlock))
            return false;
    }
    return true;
}

bool FeedReader::hasVersionTag() const
{
    char tag[sizeof(FeedFormat::kVersionTag)] = {};
    return GuardedMemory::read(tag, m_feedView, sizeof(tag))
        && std::memcmp(tag, FeedFormat::kVersionTag, sizeof(tag)) == 0;
}

/// What is closed is the handle that the writer names, whatever stands behind that number here.
void FeedReader::reject()
{
    const quint32 owner = word(FeedFormat::kOwnerHandle);
    setWord(FeedFormat::kReaderRejected, 1);
    UnmapViewOfFile(m_feedView);
    CloseHandle(owner);
    m_feedView = nullptr;
}

/// Of the header; 0 if the block has been cut short.
quint32 FeedReader::word(int offset) const
{
    quint32 value = 0;
    GuardedMemory::read(&value, m_feedView + offset, sizeof(value));
    return qFromLittleEndian(value);
}

void FeedReader::setWord(int offset, quint32 value)
{
    value = qToLittleEndian(value);
    GuardedMemory::write(m_feedView + offset, &value, sizeof(value));
}

std::optional<int> FeedReader::computePollInterval(const Pause &pause) const
{
    if (!m_feedView)
        return 0;
    while (!isReady(0)) {
        if (!pause(kLookForFirstFrame))
            return std::nullopt;
    }
    return FeedFormat::pollIntervalMs(record(0).value_or(SharedFrameRecord()));
}

/// Records of the ring that stand within the block.
int FeedReader::slotCount() const
{
    const std::optional<quint16> claimed = GuardedMemory::load(m_feedView + FeedFormat::kSlotCount);
    const qint64 fitting = (m_length - FeedFormat::kRecords) / FeedFormat::kRecordBytes;
    return int(std::min<qint64>(qFromLittleEndian(claimed.value_or(0)), fitting));
}

bool FeedReader::isReady(int slot) const
{
    const qint64 at = FeedFormat::recordOffset(slot);
    return at + FeedFormat::kRecordBytes <= m_length
        && GuardedMemory::load(m_feedView + at + FeedFormat::kFrameReady).value_or(0) != 0;
}

/// As it stands after what was read before, and before what is read next.
std::optional<SharedFrameRecord> FeedReader::record(int slot) const
{
    uchar bytes[FeedFormat::kRecordBytes];
    std::atomic_thread_fence(std::memory_order_acquire);
    if (!GuardedMemory::read(bytes, m_feedView + FeedFormat::recordOffset(slot), sizeof(bytes)))
        return std::nullopt;
    std::atomic_thread_fence(std::memory_order_acquire);
    return FeedFormat::decode(bytes);
}

bool FeedReader::isUsable(const SharedFrameRecord &frame) const
{
    return frame.pixelOffset != 0 && frame.frameWidth != 0 && frame.frameHeight != 0
        && frame.bytesPerLine >= frame.frameWidth * FeedFormat::kBytesPerPixel
        && frame.pixelOffset + frame.size() <= quint64(m_length);
}

std::optional<SharedFrameRecord> FeedReader::takeFrame()
{
    const int records = m_feedView ? slotCount() : 0;
    if (records == 0)
        return std::nullopt;
    m_nextSlot %= records;
    const std::optional<SharedFrameRecord> frame = isReady(m_nextSlot) ? record(m_nextSlot)
                                                                       : std::nullopt;
    // The writer may have begun to fill the record anew, which takes the flag away first.
    if (!frame || !isReady(m_nextSlot) || frame->frameStamp < m_lastStamp)
        return std::nullopt;
    GuardedMemory::store(m_feedView + FeedFormat::recordOffset(m_nextSlot)
                             + FeedFormat::kFrameReady,
                         0);
    m_takenSlot = m_nextSlot;
    m_nextSlot = (m_nextSlot + 1) % records;
    if (!isUsable(*frame)) {
        if (!m_saidSkipped)
            qCWarning(lcMedia, "The live feed holds frames that do not stand within its memory.");
        m_saidSkipped = true;
        return std::nullopt;
    }
    m_lastStamp = frame->frameStamp;
    return frame;
}

bool FeedReader::copyPixels(const SharedFrameRecord &frame, uchar *to) const
{
    const uchar *line = m_feedView + frame.pixelOffset;
    const std::size_t lineBytes = std::size_t(frame.frameWidth) * FeedFormat::kBytesPerPixel;
    if (lineBytes == frame.bytesPerLine) {
        if (!GuardedMemory::read(to, line, frame.size()))
            return false;
    } else {
        for (int y = 0; y < frame.frameHeight; ++y) {
            if (!GuardedMemory::read(to, line, lineBytes))
                return false;
            line += frame.bytesPerLine;
            to += lineBytes;
        }
    }
    const std::optional<SharedFrameRecord> now = record(m_takenSlot);
    return now && now->frameStamp == frame.frameStamp;
}

/// What is closed is the handle that this reader left in the block, as it stands there now.
void FeedReader::release()
{
    if (!m_feedView)
        return;
    const quint32 handle = word(FeedFormat::kReaderHandle);
    UnmapViewOfFile(m_feedView);
    CloseHandle(handle);
    m_feedView = nullptr;
    m_lastStamp = 0;
    m_nextSlot = 0;
}
