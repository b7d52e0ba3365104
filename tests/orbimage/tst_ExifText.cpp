#include "ExifText.h"

#include "WarningsFail.h"

#include <QtTest>

#include <ctime>

namespace {

constexpr double kUnknown = -9999.0;

void addTexts(std::initializer_list<std::pair<const char *, double>> rows)
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("expected");
    for (const auto &[text, expected] : rows)
        QTest::addRow("\"%s\"", text) << QString::fromUtf8(text) << expected;
}

} // namespace

class tst_ExifText : public WarningsFail
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qputenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
        tzset();
    }

    void rationals_data()
    {
        addTexts({{"1/250", 0.004},
                  {"0/0", 0},
                  {"0.5", 0.5},
                  {"2", 2},
                  {"-1/4", -0.25},
                  {"1/ 2", 0.5},
                  {"1 /2", 1},
                  {"1.5/3", 0.5},
                  {"10/0.5", 20},
                  {"10/1.5", 10}, // whole numbers are tried first
                  {"5/0", 5},
                  {"1/0.0", 1},
                  {"2,5", 2},
                  {"0,5", 0},
                  {".5", 0.5},
                  {"1.25e2", 125},
                  {" \t+7 s", 7},
                  {"+-7", 0},
                  {"0x10", 0},
                  {"", 0},
                  {"/", 0},
                  {"s", 0},
                  {"2147483648", 0},
                  {"2147483648/4", 536870912},
                  {"-2147483648/-1", 2147483648.0},
                  {"1e39/2.", 1}, // beyond a single-precision number
                  {"nan/1.", 0},
                  {"inf.", 0}});
    }
    void rationals()
    {
        QFETCH(QString, text);
        QTEST(ExifText::parseRational(text.toStdString()), "expected");
    }

    void orientations_data()
    {
        addTexts({{"Top-left (1)", 1},
                  {" a\n ( 8", 8},
                  {"Top left (1)", 0},
                  {"Top-left(1)", 0},
                  {"(1)", 0},
                  {"6", 0},
                  {"", 0}});
    }
    void orientations()
    {
        QFETCH(QString, text);
        QTEST(double(ExifText::orientation(text.toStdString())), "expected");
    }

    // Expected values from date(1).
    void datesAreLocalTime_data()
    {
        addTexts({{"2021:06:15 12:00:00", 1623751200},
                  {"2021:01:32 00:00:01", 1612134001},
                  {"1970:01:01 01:00:01", 1},
                  {"3000:12:31 23:59:59", 32535212399},
                  {"3001:01:02 00:00:00", 0},
                  {"1969:12:31 12:00:00", 0},
                  {"0000:00:00 00:00:00", 0},
                  {"2021:06:15", 0},
                  {"2021-06-15 12:00:00", 0},
                  {"-2147483648:-2147483648:1 0:0:0", 0},
                  {"2147483648:1:1 0:0:0", 0},
                  {"2147483647:2147483647:2147483647 2147483647:2147483647:2147483647", 0}});
    }
    void datesAreLocalTime()
    {
        QFETCH(QString, text);
        QTEST(double(ExifText::secondsOfLocalTime(text.toStdString())), "expected");
    }

    void places_data()
    {
        addTexts({{"48° 51' 36\"", 48.86},
                  {"48d 51' 36\"", 48.86},
                  {"48\n 51' 36\"", 48.86},
                  {"48° 51' 30.5\"", 48.858472222222225},
                  {"N 48° 51' 36\" x", 48.86},
                  {"2° 61/2' 72/2\"", 2.5183333333333333},
                  {"2° 30,5' 36\"", 2.01},
                  {"48 51' 36\"", 4.86}, // the one letter is the 8
                  {"48 deg 51' 36\"", kUnknown},
                  {"48°51' 36\"", kUnknown},
                  {"48° 51' 36", kUnknown},
                  {"48.86", kUnknown},
                  {"", kUnknown},
                  {"1° 1/0' 0\"", kUnknown},
                  {"1° 0/0' 0\"", kUnknown}});
    }
    void places()
    {
        QFETCH(QString, text);
        QTEST(ExifText::latitudeOrLongitude(text), "expected");
    }

    void directions_data()
    {
        addTexts({{"123.5", 123.5},
                  {"247/2", 123.5},
                  {"at 247/2 deg", 123.5},
                  {" 45 ", 45},
                  {"-45", -45},
                  {"90,5", kUnknown},
                  {"N 12.5", kUnknown},
                  {"", kUnknown},
                  {"1/0", kUnknown},
                  {"0/0", kUnknown},
                  {"nan", kUnknown},
                  {"inf", kUnknown},
                  {"1e39", kUnknown}});
    }
    void directions()
    {
        QFETCH(QString, text);
        QTEST(ExifText::imageDirection(text), "expected");
    }

    void anglesAreFoundBehindALongRowOfDigits()
    {
        const QString row(1000000, QLatin1Char('1'));
        QCOMPARE(ExifText::imageDirection(row + QLatin1String("x247/2")), 123.5);
        QCOMPARE(ExifText::latitudeOrLongitude(row + QLatin1String("x 48d 51' 36\"")), 48.86);
    }
};

QTEST_GUILESS_MAIN(tst_ExifText)
#include "tst_ExifText.moc"
