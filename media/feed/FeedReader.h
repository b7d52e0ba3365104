#pragma once

#include "FeedFormat.h"

#include <chrono>
#include <functional>
#include <optional>

/// The reader's side of the live feed, without OpenGL: finds the block of a writer, takes its
/// frames in the order of the ring, and copies their pixels.
///
/// The writer is another program and may be broken or worse. A frame that does not stand within the
/// block, or whose lines are shorter than its pixels, is skipped; a block that is cut short has no
/// frames there. Memory outside the block is never touched.
///
/// One thread at a time.
class FeedReader
{
public:
    /// Waits so long; false if the reader is to give up.
    using Pause = std::function<bool(std::chrono::milliseconds)>;

    /// `name` is that of the block.
    explicit FeedReader(QByteArray name = FeedFormat::kName)
        : m_name(std::move(name))
    {}
    ~FeedReader() { release(); }
    Q_DISABLE_COPY(FeedReader)

    /// Looks for the block every 100 ms until there is one of the version that this reader knows. A
    /// block of another version is told so. False if the pause said to give up.
    bool connectToWriter(const Pause &pause);

    /// True from the success of `connectToWriter` on.
    bool feedConnected() const { return m_feedView != nullptr; }

    /// Waits for the ring's first record to be filled, looking every 10 ms, and tells how often to
    /// look for frames, in milliseconds: 0 without a block, none if the pause said to give up.
    std::optional<int> computePollInterval(const Pause &pause) const;

    /// Takes the next frame of the ring if it is ready and no older than the one before. Its pixels
    /// stand within the block as it was mapped.
    std::optional<FeedFormat::SharedFrameRecord> takeFrame();

    /// Copies the pixels of the frame that was taken last, its lines without what may stand between
    /// them. `to` has room for 4 bytes a pixel. False if the writer has come round and overwritten
    /// them, as its record's stamp tells, or the block was cut short.
    bool copyPixels(const FeedFormat::SharedFrameRecord &frame, uchar *to) const;

    /// Lets go of the block.
    void release();

private:
    bool hasVersionTag() const;
    void reject();
    int slotCount() const;
    bool isReady(int slot) const;
    std::optional<FeedFormat::SharedFrameRecord> record(int slot) const;
    quint32 word(int offset) const;
    void setWord(int offset, quint32 value);
    bool isUsable(const FeedFormat::SharedFrameRecord &frame) const;

    const QByteArray m_name;
    uchar *m_feedView = nullptr;
    qint64 m_length = 0; ///< of the view, bytes
    quint64 m_lastStamp = 0;
    int m_nextSlot = 0;
    int m_takenSlot = 0; ///< the one before, when it is being copied
    bool m_saidSkipped = false;
};
