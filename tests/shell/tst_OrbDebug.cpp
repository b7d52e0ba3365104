#include "OrbDebug.h"

#include "WarningsFail.h"

#include <QtTest>

class tst_OrbDebug : public WarningsFail
{
    Q_OBJECT

private slots:
    void theRateIsTheMeanOfTheLatest_data();
    void theRateIsTheMeanOfTheLatest();
};

void tst_OrbDebug::theRateIsTheMeanOfTheLatest_data()
{
    using Intervals = QVector<int>;
    QTest::addColumn<int>("startMs"); ///< of the day
    QTest::addColumn<Intervals>("intervalsMs");
    QTest::addColumn<double>("fps");

    constexpr int kNoon = 12 * 60 * 60 * 1000;
    QTest::newRow("one frame") << kNoon << Intervals{} << 0.0;
    QTest::newRow("whole rates") << kNoon << Intervals{16, 17} << (62 + 58) / 2.0;
    QTest::newRow("slower than a second") << kNoon << Intervals{1001, 10} << 50.0;
    QTest::newRow("in one millisecond") << kNoon << Intervals{0, 20, 0, 0} << 50.0;
    QTest::newRow("back in time") << kNoon << Intervals{-5, 20} << 50.0;
    QTest::newRow("over midnight") << 24 * 60 * 60 * 1000 - 5 << Intervals{10, 20} << 50.0;
    // Twenty stay and one comes.
    QTest::newRow("the oldest goes")
        << kNoon << (Intervals(22, 10) << 100) << (20 * 100 + 10) / 21.0;
    QTest::newRow("also for a frame without a rate")
        << kNoon << (Intervals(20, 10) << 100 << 0 << 0) << (19 * 100 + 10) / 20.0;
}

void tst_OrbDebug::theRateIsTheMeanOfTheLatest()
{
    QFETCH(int, startMs);
    QFETCH(QVector<int>, intervalsMs);
    OrbDebug debug;
    const QSignalSpy changes(&debug, &OrbDebug::fpsChanged);
    QTime now = QTime::fromMSecsSinceStartOfDay(startMs);
    debug.framePaintedAt(now);
    for (int intervalMs : qAsConst(intervalsMs)) {
        now = now.addMSecs(intervalMs);
        debug.framePaintedAt(now);
    }
    debug.computeFps();
    debug.computeFps();
    QTEST(debug.fps(), "fps");
    QCOMPARE(changes.count(), debug.fps() > 0 ? 1 : 0);
}

QTEST_GUILESS_MAIN(tst_OrbDebug)
#include "tst_OrbDebug.moc"
