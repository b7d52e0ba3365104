// Waits until a picture stands on the X screen and saves it.

#include "PictureState.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <QTextStream>
#include <QThread>

namespace {

constexpr qint64 kDefaultTimeoutS = 60;
constexpr unsigned long kGrabIntervalMs = 50;
constexpr qint64 kMovingPictureMs = 2000; // a video never stands still: enough of it was seen then

struct Wait
{
    PictureState lastState = PictureState::Empty;
    QImage picture; ///< null after the timeout
};

Wait waitForPicture(QScreen &screen, qint64 timeoutMs)
{
    Wait wait;
    QImage previous;
    QElapsedTimer sinceStart;
    QElapsedTimer sincePicture;
    sinceStart.start();
    do {
        QImage grab = screen.grabWindow(0).toImage();
        wait.lastState = judge(grab);
        if (wait.lastState != PictureState::Picture) {
            sincePicture.invalidate();
        } else {
            if (!sincePicture.isValid())
                sincePicture.start();
            if (grab == previous || sincePicture.elapsed() >= kMovingPictureMs) {
                wait.picture = grab;
                return wait;
            }
        }
        previous = grab;
        QThread::msleep(kGrabIntervalMs);
    } while (sinceStart.elapsed() < timeoutMs);
    return wait;
}

const char *seenInstead(PictureState state)
{
    switch (state) {
    case PictureState::Empty:
        return "nothing is drawn";
    case PictureState::Placeholder:
        return "the player shows its grey \"no picture\" placeholder";
    case PictureState::Picture:
        return "a picture is drawn that does not stand still yet";
    }
    return "";
}

} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication application(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);

    const QStringList arguments = QGuiApplication::arguments();
    bool timeoutIsNumber = true;
    const qint64 timeoutS = arguments.size() == 3 ? arguments.at(2).toUInt(&timeoutIsNumber)
                                                  : kDefaultTimeoutS;
    if (arguments.size() < 2 || arguments.size() > 3 || !timeoutIsNumber) {
        err << "usage: orbix-first-picture OUT.png [TIMEOUT_S]\n";
        return 2;
    }

    const Wait wait = waitForPicture(*QGuiApplication::primaryScreen(), timeoutS * 1000);
    if (wait.picture.isNull()) {
        err << "After " << timeoutS << " s " << seenInstead(wait.lastState) << ".\n";
        return 1;
    }
    if (!wait.picture.save(arguments.at(1))) {
        err << "Cannot write " << arguments.at(1) << ".\n";
        return 1;
    }
    out << wait.picture.width() << 'x' << wait.picture.height() << '\n';
    return 0;
}
