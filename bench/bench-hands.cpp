// Times the way of a moment with two hands, from the service's message to what the gestures make of
// it.
#include "AimTable.h"
#include "FrameSource.h"
#include "HandMotion.h"
#include "OrbGlobalObject.h"
#include "OrbLeap.h"
#include "OrbQQuickView.h"
#include "OrbSettingsManager.h"
#include "OrbShaderCodeBuilder.h"
#include "OrbVideoPlugin.h"
#include "ServiceMessage.h"

#include <QGuiApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <random>

namespace {

using Clock = std::chrono::steady_clock;

constexpr float kRate = 120; // frames a second

double us(Clock::duration time)
{
    return std::chrono::duration<double, std::micro>(time).count();
}

class Source : public FrameSource
{
public:
    void start() override {}
};

/// What the scene has for gestures, without a scene.
class Loader : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QObject *mediaPlayer READ self CONSTANT)

public:
    QObject *self() { return this; }
};

/// Two hands over twenty seconds, as the service sends them; the second moment of them has a
/// gesture.
QList<QByteArray> messages()
{
    std::mt19937 random(1);
    std::vector<Leap::FrameData> frames =
        HandMotion(QStringLiteral("both: at 150 200 0 | hold 1 | roll 60 in 3 | roll -60 in 3 | "
                                  "move 50 50 0 in 3 | point | move -50 0 50 in 4 | open | nod 30 "
                                  "in 3 | nod -30 in 3"))
            .frames(kRate, 1, random);
    Leap::GestureData gesture;
    gesture.type = Leap::GestureType::KeyTap;
    gesture.state = Leap::GestureState::Stop;
    frames[60].gestures = {gesture};
    return serviceMessages(frames).trimmed().split('\n');
}

struct Times
{
    std::vector<double> parsing; ///< µs
    std::vector<double> analysing;
};

Times measure(FrameSource &source, const QList<QByteArray> &lines)
{
    Times times;
    for (const QByteArray &line : lines) {
        const auto begin = Clock::now();
        const Leap::ServiceMessage message = Leap::parseServiceMessage(line);
        const auto parsed = Clock::now();
        const auto *frame = std::get_if<Leap::FrameData>(&message);
        if (!frame)
            continue;
        emit source.frameArrived(*frame);
        times.parsing.push_back(us(parsed - begin));
        times.analysing.push_back(us(Clock::now() - parsed));
    }
    for (auto *values : {&times.parsing, &times.analysing})
        std::sort(values->begin(), values->end());
    return times;
}

} // namespace

int main(int argc, char **argv)
{
    const QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    OrbSettingsManager settings(QStringLiteral("orbix-bench"), QStringLiteral("hands"));
    OrbVideoPlugin plugin(&settings);
    OrbGlobalObject state(&settings, &plugin);
    OrbQQuickView view(&settings, true);
    OrbShaderCodeBuilder builder;
    Loader loader;
    state.setMediaLoader(&loader);
    const QList<QByteArray> lines = messages();
    std::atomic<int> tilts{0};
    QObject::connect(
        &state, &OrbGlobalObject::pitchChanged, &state, [&tilts] { ++tilts; },
        Qt::DirectConnection);

    AimTable table;
    for (int i = 0; i < AimTable::repetitions(); ++i) {
        tilts = 0;
        std::atomic<Source *> source{nullptr};
        OrbLeap leap(&state, &view, &builder, [&source] {
            auto made = std::make_unique<Source>();
            source = made.get();
            return made;
        });
        view.resize(1000 + i, 500 + i);
        while (!source)
            std::this_thread::yield();
        QMetaObject::invokeMethod(
            source, [&] { emit source.load()->connectedChanged(true); },
            Qt::BlockingQueuedConnection);
        QCoreApplication::processEvents();
        Times times;
        QMetaObject::invokeMethod(
            source, [&] { measure(*source, lines.mid(0, 100)); }, Qt::BlockingQueuedConnection);
        QCoreApplication::processEvents(); // the media player is found
        QMetaObject::invokeMethod(
            source, [&] { times = measure(*source, lines); }, Qt::BlockingQueuedConnection);
        if (tilts < 100) {
            std::printf("The hands did not tilt the view: nothing was analysed\n");
            return 1;
        }
        const auto at = [](const std::vector<double> &sorted, std::size_t percent) {
            return sorted[sorted.size() * percent / 100];
        };
        table.add(QStringLiteral("parsing"), QStringLiteral("median"), at(times.parsing, 50));
        table.add(QStringLiteral("analysing"), QStringLiteral("median"), at(times.analysing, 50));
        table.add(QStringLiteral("analysing"), QStringLiteral("99th of 100"),
                  at(times.analysing, 99));
        const double busy = at(times.parsing, 50) + at(times.analysing, 50);
        table.add(QStringLiteral("120 a second"), QStringLiteral("share of a core"),
                  busy * double(kRate) / 1e6 * 100);
    }
    AimTable::printHead();
    table.printRow(QStringLiteral("parsing"), "us", QStringLiteral("median"), {}, {});
    table.printRow(QStringLiteral("analysing"), "us", QStringLiteral("median"), {},
                   {AimTable::Aim::AtMost, 50});
    table.printRow(QStringLiteral("analysing"), "us", QStringLiteral("99th of 100"), {}, {});
    table.printRow(QStringLiteral("120 a second"), "%", QStringLiteral("share of a core"), {}, {});
    return table.isComplete() ? 0 : 1;
}

#include "bench-hands.moc"
