#include "FileSource.h"

#include <QFileInfo>
#include <QLoggingCategory>

#include <algorithm>
#include <chrono>

namespace {

Q_LOGGING_CATEGORY(lcHands, "orbix.hands", QtWarningMsg)

using namespace Leap;
using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr milliseconds kLongestWait = std::chrono::hours(1); // in one go

} // namespace

FileSource::FileSource(const QString &path)
    : m_file(path)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &FileSource::step);
}

void FileSource::start()
{
    // A pipe would make the thread wait, without an end.
    const bool isFile = QFileInfo(m_file).isFile();
    if (!isFile || !m_file.open(QIODevice::ReadOnly)) {
        qCWarning(lcHands, "The script of the simulated hands, \"%s\", cannot be read: %s",
                  qPrintable(m_file.fileName()),
                  isFile ? qPrintable(m_file.errorString()) : "It is no file.");
        return;
    }
    m_clock.start();
    step();
}

/// Plays what is due and reads one line, so that a long file keeps nobody waiting.
void FileSource::step()
{
    if (m_next && dueInUs(*m_next) <= 0)
        play(*std::exchange(m_next, std::nullopt));
    if (!m_next && !m_file.atEnd())
        readLine();
    if (m_next) {
        const microseconds wait(std::max<std::int64_t>(dueInUs(*m_next), 0));
        m_timer.start(std::min(std::chrono::ceil<milliseconds>(wait), kLongestWait));
    } else if (!m_file.atEnd()) {
        m_timer.start(0);
    }
}

/// At most 0 if it is.
std::int64_t FileSource::dueInUs(const FrameData &frame) const
{
    const std::int64_t now = m_clock.nsecsElapsed() / 1000;
    return m_timestamp ? m_due + frame.timestamp - *m_timestamp - now : 0;
}

void FileSource::readLine()
{
    const QByteArray line = m_file.readLine(kMaxMessageBytes + 1);
    if (line.isEmpty()) {
        warnOnce(m_file.errorString());
        m_file.close();
        return;
    }
    const bool isWhole = line.endsWith('\n') || m_file.atEnd();
    const bool isLong = !isWhole || m_isInLongLine;
    if (!m_isInLongLine)
        ++m_line;
    m_isInLongLine = !isWhole;
    if (isLong) {
        warnOnce(QStringLiteral("A message of more than 1 MiB"));
        return;
    }
    const QByteArray json = line.trimmed();
    if (json.isEmpty() || json.startsWith('#'))
        return;
    ServiceMessage message = parseServiceMessage(json);
    if (const auto *error = std::get_if<MessageError>(&message))
        warnOnce(error->reason);
    else if (auto *frame = std::get_if<FrameData>(&message))
        m_next = std::move(*frame);
    else
        play(message);
}

void FileSource::play(const ServiceMessage &message)
{
    const bool wasConnected = m_stream.isConnected();
    const bool isNew = m_stream.take(message);
    if (m_stream.isConnected() != wasConnected)
        emit connectedChanged(!wasConnected);
    const auto *frame = std::get_if<FrameData>(&message);
    if (!frame)
        return;
    if (isNew || !m_timestamp) {
        // Late by a little, the next are due on time all the same; a clock that was set back goes
        // on from now.
        const bool goesOn = m_timestamp && frame->timestamp > *m_timestamp;
        m_due = goesOn ? m_due + frame->timestamp - *m_timestamp : m_clock.nsecsElapsed() / 1000;
        m_timestamp = frame->timestamp;
    }
    if (isNew)
        emit frameArrived(*frame);
}

void FileSource::warnOnce(const QString &reason)
{
    if (m_warnings.contains(reason))
        return;
    m_warnings.insert(reason);
    qCWarning(lcHands, "%s, line %d: %s", qPrintable(m_file.fileName()), m_line,
              qPrintable(reason));
}
