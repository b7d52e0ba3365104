// Shows raw frames from standard input in the player, as a live feed.

#include "FeedOptions.h"
#include "FeedWriter.h"
#include "GuardedMemory.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <thread>

namespace {

constexpr int kFailed = 1;
constexpr auto kBetweenRejections = std::chrono::seconds(10); // a reader tells ten a second

void say(const QString &sentence)
{
    std::fprintf(stderr, "orbix-feed: %s\n", qUtf8Printable(sentence));
}

int fail(const QString &sentence)
{
    say(sentence);
    return kFailed;
}

/// What is opened later would take the place of a standard stream that is closed.
void openClosedStreams()
{
    int descriptor = 0;
    do
        descriptor = ::open("/dev/null", O_RDWR);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    ::close(descriptor);
}

/// Waits until standard input has something to read, or an end.
void waitForInput()
{
    pollfd input{STDIN_FILENO, POLLIN, 0};
    ::poll(&input, 1, -1);
}

/// Takes frames from standard input to the block.
class Feed
{
public:
    Feed(FeedWriter &writer, FeedPace pace)
        : m_writer(writer)
        , m_bytes(writer.frameBytes())
        , m_pace(pace)
    {}

    /// Until the input ends. Returns what was wrong, empty if nothing was. The first frame goes out
    /// twice: readers learn the size from one, and show those behind it.
    QString run()
    {
        const QString cutShort = QStringLiteral("Another program has cut the shared memory short.");
        for (;;) {
            uchar *const to = m_writer.nextFrame();
            if (!to)
                return cutShort;
            const qsizetype came = read(to);
            const int error = errno;
            if (came < m_bytes)
                return error == EFAULT ? cutShort : missing(came, error);
            ++m_frames;
            std::this_thread::sleep_until(m_pace.due(FeedPace::Clock::now()));
            tellOfOthers();
            if (!m_writer.publish() || (m_frames == 1 && !repeat(to)))
                return cutShort;
        }
    }

private:
    /// Reads a frame. Returns how many of its bytes came; if not all, `errno` tells why, with 0 for
    /// the end of the input and EFAULT for a block that was cut short.
    qsizetype read(uchar *to) const
    {
        qsizetype done = 0;
        while (done < m_bytes) {
            const ssize_t came = ::read(STDIN_FILENO, to + done, std::size_t(m_bytes - done));
            if (came < 0 && errno == EAGAIN)
                waitForInput();
            if (came < 0 && (errno == EAGAIN || errno == EINTR))
                continue;
            if (came == 0)
                errno = 0;
            if (came <= 0)
                break;
            done += came;
        }
        return done;
    }

    QString missing(qsizetype came, int error) const
    {
        if (error != 0)
            return QStringLiteral("The input cannot be read: %1.").arg(qt_error_string(error));
        if (came == 0)
            return m_frames > 0 ? QString() : QStringLiteral("The input is empty.");
        return QStringLiteral("The input ends in frame %1, after %2 of %3 bytes. Are its frames as "
                              "large as --size says, and RGBA?")
            .arg(m_frames + 1)
            .arg(came)
            .arg(m_bytes);
    }

    void tellOfOthers()
    {
        const auto now = FeedPace::Clock::now();
        if (m_writer.takeRejection() && now >= m_silentUntil) {
            say(QStringLiteral("A reader has rejected the feed: it knows another version of it."));
            m_silentUntil = now + kBetweenRejections;
        }
        if (!m_hasToldRemoval && m_writer.isRemoved()) {
            say(QStringLiteral("The shared memory has been removed: players that are started from "
                               "now on will not see this feed."));
            m_hasToldRemoval = true;
        }
    }

    /// By way of memory that nobody cuts short.
    bool repeat(const uchar *from)
    {
        std::array<uchar, 0x10000> part = {};
        uchar *const to = m_writer.nextFrame();
        for (qsizetype done = 0; done < m_bytes; done += qsizetype(part.size())) {
            const auto bytes = std::min(part.size(), std::size_t(m_bytes - done));
            if (!to || !GuardedMemory::read(part.data(), from + done, bytes)
                || !GuardedMemory::write(to + done, part.data(), bytes))
                return false;
        }
        return m_writer.publish();
    }

    FeedWriter &m_writer;
    const qsizetype m_bytes; ///< of a frame
    FeedPace m_pace;
    qint64 m_frames = 0;                                  ///< that the input gave
    FeedPace::Time m_silentUntil = FeedPace::Time::min(); ///< about rejections
    bool m_hasToldRemoval = false;
};

int feed(const FeedWriter::Format &format)
{
    if (::isatty(STDIN_FILENO) == 1)
        return fail(QStringLiteral("Standard input is a terminal. Give it raw RGBA frames, such as "
                                   "those of: ffmpeg -i FILE -f rawvideo -pix_fmt rgba -"));
    FeedWriter writer;
    const QString wrong = writer.open(format);
    if (!wrong.isEmpty())
        return fail(wrong);
    if (!writer.remark().isEmpty())
        say(writer.remark());
    const QString end = Feed(writer, FeedPace({format.rateNumerator, format.rateDenominator}))
                            .run();
    return end.isEmpty() ? 0 : fail(end);
}

} // namespace

int main(int argc, char *argv[])
{
    openClosedStreams();
    // Else a limit of file sizes ends the program before it can tell.
    std::signal(SIGXFSZ, SIG_IGN);

    const QCoreApplication application(argc, argv);
    const QCommandLineOption helpOption(QStringLiteral("help"), QStringLiteral("Shows this."));
    const QCommandLineOption sizeOption(QStringLiteral("size"), QStringLiteral("Size of a frame."),
                                        QStringLiteral("WIDTHxHEIGHT"));
    const QCommandLineOption
        rateOption(QStringLiteral("rate"),
                   QStringLiteral("Frames a second, such as 25 or 30000/1001; 30 if not given."),
                   QStringLiteral("N[/D]"), QStringLiteral("30"));
    const QCommandLineOption removeOption(QStringLiteral("remove"),
                                          QStringLiteral(
                                              "Removes the shared memory, and does no more."));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Shows raw RGBA frames from standard input in Orbix Sight, as a live feed:\n"
        "ffmpeg -i FILE -f rawvideo -pix_fmt rgba - | orbix-feed --size 3840x1920 --rate 30"));
    parser.addOptions({helpOption, sizeOption, rateOption, removeOption});
    if (!parser.parse(QCoreApplication::arguments()))
        return fail(parser.errorText());
    if (parser.isSet(helpOption))
        parser.showHelp();
    if (!parser.positionalArguments().isEmpty())
        return fail(
            QStringLiteral("\"%1\" is no option.").arg(parser.positionalArguments().constFirst()));
    if (parser.isSet(removeOption)) {
        if (parser.optionNames().size() > 1)
            return fail(QStringLiteral("--remove goes with no other option."));
        const QString wrong = FeedWriter::remove();
        return wrong.isEmpty() ? 0 : fail(wrong);
    }
    const auto size = FeedOptions::parseSize(parser.value(sizeOption));
    if (!size)
        return fail(QStringLiteral("Give the size of the frames, such as: --size 3840x1920"));
    const auto rate = FeedOptions::parseRate(parser.value(rateOption));
    if (!rate)
        return fail(QStringLiteral("\"%1\" is no rate. Give frames a second, such as 25 or "
                                   "30000/1001, with numbers from 1 to 65535.")
                        .arg(parser.value(rateOption)));
    return feed({*size, rate->numerator, rate->denominator});
}
