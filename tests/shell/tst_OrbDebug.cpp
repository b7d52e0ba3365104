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
    using Times = QVector<int>;
    QTest::addColumn<Times>("intervalsMs"); ///< the first since midnight
    QTest::addColumn<double>("fps");

    QTest::newRow("one frame") << Times{5} << 0.0;
    QTest::newRow("whole rates") << Times{5, 16, 17} << (62 + 58) / 2.0;
    QTest::newRow("slower than a second") << Times{5, 1001, 10} << 50.0;
    QTest::newRow("in one millisecond") << Times{5, 0, 20, 0, 0} << 50.0;
    QTest::newRow("over midnight") << Times{86399995, 10, 20} << 50.0;
    // Twenty stay and one comes.
    QTest::newRow("the oldest goes") << (Times(23, 10) << 100) << (20 * 100 + 10) / 21.0;
    QTest::newRow("also for a frame without a rate")
        << (Times(21, 10) << 100 << 0 << 0) << (19 * 100 + 10) / 20.0;
}

void tst_OrbDebug::theRateIsTheMeanOfTheLatest()
{
    QFETCH(QVector<int>, intervalsMs);
    OrbDebug debug;
    const QSignalSpy changes(&debug, &OrbDebug::fpsChanged);
    QTime now(0, 0);
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
