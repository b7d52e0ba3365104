#include "FrameCounter.h"

#include "WarningsFail.h"

#include <QtTest>

class tst_FrameCounter : public WarningsFail
{
    Q_OBJECT

private slots:
    void aNewSecondTellsTheFramesOfTheLast_data();
    void aNewSecondTellsTheFramesOfTheLast();
};

void tst_FrameCounter::aNewSecondTellsTheFramesOfTheLast_data()
{
    QTest::addColumn<QVector<qint64>>("timesMs");
    QTest::addColumn<QVector<int>>("counts"); ///< -1 where nothing is told

    using Times = QVector<qint64>;
    using Counts = QVector<int>;
    QTest::newRow("the first frame") << Times{1500000000123} << Counts{1};
    QTest::newRow("a second with four frames")
        << Times{10900, 11000, 11300, 11600, 11999, 12000} << Counts{1, 1, -1, -1, -1, 4};
    QTest::newRow("the millisecond before the turn")
        << Times{11000, 11999, 12000, 12999, 13000} << Counts{1, -1, 2, -1, 2};
    QTest::newRow("a pause of seconds")
        << Times{11000, 11500, 15000, 15001, 16000} << Counts{1, -1, 2, -1, 2};
    QTest::newRow("one frame a second") << Times{11000, 12000, 13000} << Counts{1, 1, 1};
    QTest::newRow("the clock goes back")
        << Times{20000, 11000, 12000, 20999, 21000} << Counts{1, -1, -1, -1, 4};
}

void tst_FrameCounter::aNewSecondTellsTheFramesOfTheLast()
{
    QFETCH(QVector<qint64>, timesMs);
    QFETCH(QVector<int>, counts);
    FrameCounter counter;
    QVector<int> told;
    for (qint64 timeMs : qAsConst(timesMs))
        told.append(counter.frameShown(timeMs).value_or(-1));
    QCOMPARE(told, counts);
}

QTEST_GUILESS_MAIN(tst_FrameCounter)
#include "tst_FrameCounter.moc"
