#include "FilmOnScreen.h"

#include "FrameCode.h"
#include "Player.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QTest>

namespace {

constexpr int kFrames = 3;          ///< to be seen of a film
constexpr int kColourTolerance = 6; ///< of 255, for the codecs and the change of colour space
constexpr double kFovDeg = 90;
constexpr int kDeadlineMs = 20000;
constexpr int kLookAgainMs = 20;

QString words(const QVector<int> &numbers)
{
    QStringList all;
    for (const int number : numbers)
        all += QString::number(number);
    return QStringLiteral("frames ") + all.join(QLatin1Char(' '));
}

} // namespace

QString FilmOnScreen::watch(const Clip &clip)
{
    QVector<int> seen;
    QElapsedTimer waiting;
    waiting.start();
    while (seen.size() < kFrames) {
        if (waiting.elapsed() > kDeadlineMs)
            return words(seen) + QStringLiteral(" and no more of the film");
        QTest::qWait(kLookAgainMs);
        const QImage screen = QGuiApplication::primaryScreen()->grabWindow(0).toImage();
        const int number = FrameCode::read(screen).value_or(-1);
        const bool ofClip = number >= clip.firstNumber && number < clip.firstNumber + clip.frames;
        if (number < 0 || (!seen.isEmpty() && number == seen.last()) || (seen.isEmpty() && !ofClip))
            continue;
        const bool falls = !seen.isEmpty() && number < seen.last();
        seen.append(number);
        if (!ofClip || falls)
            return words(seen);
        const int error = FrameCode::colourError(screen, kFovDeg);
        if (error > kColourTolerance)
            return QStringLiteral("colours wrong by %1 in frame %2").arg(error).arg(number);
    }
    return {};
}

void FilmOnScreen::start(Player &player, const QStringList &arguments)
{
    player.start(QStringList{QStringLiteral("--demo")} + arguments);
    player.waitForState(
        [](const QJsonObject &state) { return state.value(QLatin1String("frames")).toInt() > 0; });
}

QString FilmOnScreen::end(Player &player)
{
    player.exit(0);
    // The platform's media service looks for a sound server.
    return player.ending(QStringLiteral("Warning: \"Failed to connect: Connection refused\""));
}
