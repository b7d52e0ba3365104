#pragma once

#include "FeedFormat.h"

#include <QSize>
#include <QString>

/// The writer's side of the live feed: puts frames into the shared block, one record of its ring
/// after the other. It waits for nobody: readers that are too slow miss frames.
///
/// A block stays when its writer ends, since readers do not look for another once they have one; a
/// writer that comes next goes on in it, with higher stamps and where the ring was left. One writer
/// at a time has a block. A new block is for programs of the same user only.
///
/// Whatever another program does with the block, none of the functions below faults.
///
/// One thread at a time.
class FeedWriter
{
public:
    struct Format
    {
        QSize size;                 ///< pixels, from 1x1 to 16383x65535
        quint16 rateNumerator = 30; ///< frames a second, neither 0
        quint16 rateDenominator = 1;
    };

    explicit FeedWriter(const QByteArray &name = FeedFormat::kName);
    ~FeedWriter();
    Q_DISABLE_COPY(FeedWriter)

    /// Takes the block that is there, or makes one. Returns what was wrong, as a sentence for the
    /// user; empty if nothing was. Once only; all that follows needs its success.
    QString open(const Format &format);

    /// What a user should know about the block that was there, such as frames of another size;
    /// empty if there is nothing.
    QString remark() const { return m_remark; }

    /// Bytes of a frame; its lines follow each other without gaps.
    qsizetype frameBytes() const;

    /// Where the next frame's pixels go: no reader looks there until `publish`. Another program may
    /// cut the block short: write through GuardedMemory or a system call. Null if it has been.
    uchar *nextFrame();

    /// Hands what stands in `nextFrame` to the readers. False if the block was cut short.
    bool publish();

    /// Whether a reader of another version has looked at the block since the last call. Of a block
    /// that this writer made the first time is not told: that reader may have looked before there
    /// was anything to read.
    bool takeRejection();

    /// Whether the block has been removed, so that only those see its frames who have it.
    bool isRemoved() const;

    /// Removes the block of this name; programs that have it keep it. Returns what was wrong, as a
    /// sentence for the user; empty if nothing was.
    static QString remove(const QByteArray &name = FeedFormat::kName);

private:
    QString lockBlock();
    QString create();
    QString takeOver();
    QString map();
    qint64 pixelOffset(int slot) const;
    uchar *flag(int slot) const;

    const QByteArray m_path;
    Format m_format;
    QString m_remark;
    int m_descriptor = -1; ///< of the block, with its lock
    qint64 m_length = 0;   ///< of the block as it was found, bytes
    uchar *m_view = nullptr;
    int m_alignment = 64; ///< of pixels, bytes: frames share no cache line
    int m_slots = 0;      ///< records of the ring
    int m_nextSlot = 0;
    quint64 m_stamp = 0;             ///< of the newest frame
    bool m_isFirstRejection = false; ///< the next one is not told
};
