#include "ExifMapping.h"

#include "WarningsFail.h"

#include <QtTest>

#include <ctime>

namespace {

constexpr double kUnknown = -9999.0;
constexpr unsigned kMain = GflExifEntry::Main;
constexpr unsigned kGps = GflExifEntry::Gps;
constexpr unsigned kMakerNote = GflExifEntry::MakerNote;

ExifMapping::Result map(const GflExifData &items, double cropFactor = -1)
{
    return ExifMapping::map(items, {}, [cropFactor](const QString &maker, const QString &model) {
        return maker == QLatin1String("Maker") && model == QLatin1String("Model") ? cropFactor : -1;
    });
}

} // namespace

class tst_ExifMapping : public WarningsFail
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qputenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
        tzset();
    }

    void everyItemReachesItsFieldAndTheSummary()
    {
        const ExifMapping::Result result = map({{kMain, 0x10F, "", "Mäker %1"},
                                                {kMain, 0x110, "", "Model"},
                                                {kMain, 0x112, "", "Top-left (6)"},
                                                {kMain, 0x829A, "", "1/2"},
                                                {kMain, 0x829D, "", "4"},
                                                {kMain, 0x8827, "", "100 ISO"},
                                                {kMain, 0x9003, "", "2021:06:15 12:00:00"},
                                                {kMain, 0x9201, "", "1/8"},
                                                {kMain, 0x9204, "", "-3/2"},
                                                {kMain, 0x920A, "", "8 mm"},
                                                {kMain, 0xA002, "", "6000"},
                                                {kMain, 0xA003, "", "4000"},
                                                {kMain, 0xA20E, "", "4000/1"},
                                                {kMain, 0xA20F, "", "4000"},
                                                {kMain, 0xA210, "", "um, per"},
                                                {kMain, 0xA405, "", "12"},
                                                {kMain, 0x1234, "LensID", "not a maker's note"}});
        const ImageMetadata &m = result.metadata;
        QCOMPARE(m.maker, QStringLiteral("Mäker %1"));
        QCOMPARE(m.model, QStringLiteral("Model"));
        QCOMPARE(m.orientation, 6);
        QCOMPARE(m.exposureTime, 0.5);
        QCOMPARE(m.fNumber, 4.0);
        QCOMPARE(m.exposureValue, 3.4657359027997265); // ln 32
        QCOMPARE(m.iso, 100);
        QCOMPARE(m.dateTime, qint64(1623751200));
        QCOMPARE(m.exposureBias, -1.5);
        QCOMPARE(m.imageWidth, 6000);
        QCOMPARE(m.imageHeight, 4000);
        QCOMPARE(m.focalLength35mm, 12.0);
        QCOMPARE(m.scaleFactor, 1.5);
        QCOMPARE(m.lensId, QString());
        QVERIFY(result.hasCameraData);
        QCOMPARE(result.summary,
                 QStringLiteral("Maker: \"Mäker %1\";\nModel: \"Model\";\nExposure time: \"1/2\";\n"
                                "F Number: \"4\";\nISO: \"100 ISO\";\n"
                                "Date Time: \"2021:06:15 12:00:00\";\nShutter speed: \"1/8\";\n"
                                "Exposure bias value: \"-3/2\";\nReal focal length: \"8 mm\";\n"
                                "Width: \"6000\";\nHeight: \"4000\";\n"
                                "Focal plane res X: \"4000/1\";\nFocal plane res Y: \"4000\";\n"
                                "Focal plan res. unit: \"µm\";\n35mm f.length: \"12\";"));
    }

    void aLaterItemOverwritesAnEarlierOneOfAnyDirectory()
    {
        const ExifMapping::Result result = map({{kMain, 0x8827, "", "100"},
                                                {kMain, 0x829A, "", "1/2"},
                                                {kMakerNote, 0x8827, "LensID", "200"},
                                                {kGps, 0x829A, "", "s"},
                                                {kMain, 0x9201, "", "1/8"}});
        QCOMPARE(result.metadata.iso, 200);
        QCOMPARE(result.metadata.lensId, QString()); // its tag was another's
        QCOMPARE(result.metadata.exposureTime, 0.125);
        QCOMPARE(result.summary.count(QLatin1Char('\n')), 4);
    }

    void focalLengths_data()
    {
        // In 35 mm film, real, unit, resolution X and Y, width, height.
        QTest::addColumn<QByteArrayList>("values");
        QTest::addColumn<double>("cropFactor");
        QTest::addColumn<double>("focalLength");
        QTest::addColumn<double>("scale");
        QTest::addColumn<bool>("hasCameraData");
        const auto row = [](const char *name, const char *values) -> QTestData & {
            return QTest::newRow(name) << QByteArray(values).split(',');
        };
        row("given by the camera", "12,8,cm,4000,4000,6000,4000") << 2.0 << 12.0 << 1.5 << true;
        row("no real length", "12,0,,,,,") << 2.0 << 12.0 << 1.0 << true;
        row("ratio beyond range", "1e300,1e-300,,,,,") << 2.0 << 1e300 << 1.0 << true;
        row("none", "0,0,cm,4000,4000,6000,4000") << 2.0 << 50.0 << 1.0 << false;
        row("length beyond range", "0,1e999,,,,,") << 2.0 << 50.0 << 1.0 << false;
        row("camera of the table", "0,8,cm,4000,4000,6000,4000") << 2.0 << 16.0 << 2.0 << true;
        row("factor beyond range", "0,1e308,,,,,") << 2.0 << 1e308 << 1.0 << false;
        row("sensor in cm", "0,10,cm,4000,4000,6000,4000") << -1.0 << 24.0 << 2.4 << true;
        row("factor 0", "0,10,cm,4000,4000,6000,4000") << 0.0 << 24.0 << 2.4 << true;
        // 25.4 mm by 25.4 mm: sqrt(1872) / (25.4 sqrt(2))
        row("in inches", "0,10,Inches,100,200,100,200")
            << -1.0 << 12.044927984864846 << 1.2044927984864846 << true;
        // 36 mm by 24 mm
        row("in um", "0,10,um,1/9,1/6,4000,4000") << -1.0 << 10.0 << 1.0 << true;
        row("unknown unit", "0,10,mm,4000,4000,6000,4000") << -1.0 << 10.0 << 1.0 << false;
        row("no X", "0,10,cm,0,4000,6000,4000") << -1.0 << 10.0 << 1.0 << false;
        row("no Y", "0,10,cm,4000,0,6000,4000") << -1.0 << 10.0 << 1.0 << false;
        row("no width", "0,10,cm,4000,4000,0,4000") << -1.0 << 10.0 << 1.0 << false;
        row("no height", "0,10,cm,4000,4000,6000,0") << -1.0 << 10.0 << 1.0 << false;
    }
    void focalLengths()
    {
        QFETCH(QByteArrayList, values);
        QFETCH(double, cropFactor);
        GflExifData items{{kMain, 0x10F, "", "Maker"}, {kMain, 0x110, "", "Model"}};
        unsigned place = 0;
        for (const unsigned tag : {0xA405U, 0x920AU, 0xA210U, 0xA20EU, 0xA20FU, 0xA002U, 0xA003U})
            items.push_back({kMain, tag, "", values.at(int(place++)).toStdString()});
        const ExifMapping::Result result = map(items, cropFactor);
        QTEST(result.metadata.focalLength35mm, "focalLength");
        QTEST(result.metadata.scaleFactor, "scale");
        QTEST(result.hasCameraData, "hasCameraData");
    }

    void aNegativeExposureHasNoValue()
    {
        const ImageMetadata m = map({{kMain, 0x829A, "", "-1/2"}, {kMain, 0x829D, "", "4"}})
                                    .metadata;
        QCOMPARE(m.exposureTime, -0.5);
        QCOMPARE(m.exposureValue, 0.0);
    }

    void makerNotesGiveTheLensAndTheZenith()
    {
        const ImageMetadata m = map({{kMakerNote, 1, "LensIDNumber", " 8 8 38\n"},
                                     {kMakerNote, 3, "ZenithEs", "3.5 -1.25"},
                                     {kMakerNote, 2, "xLensID", "x"},
                                     {kMakerNote, 3, "ZenithEs2", "7 7"},
                                     {kMain, 3, "ZenithEs", "7 7"},
                                     {kMakerNote, 2, "x", "1° 1' 1\""}})
                                    .metadata;
        QCOMPARE(m.lensId, QStringLiteral("8 8 38"));
        QCOMPARE(m.zenithRoll, 3.5);
        QCOMPARE(m.zenithPitch, -1.25);
        QCOMPARE(m.latitude, kUnknown);
        const ImageMetadata odd = map({{kMakerNote, 3, "ZenithEs", "2 nan"}}).metadata;
        QCOMPARE(odd.zenithRoll, 2.0);
        QCOMPARE(odd.zenithPitch, 0.0);
    }

    void gpsItemsGiveThePlace()
    {
        const ImageMetadata m = map({{kGps, 1, "", "South"},
                                     {kGps, 2, "", "48° 51' 36\""},
                                     {kGps, 3, "", "West"},
                                     {kGps, 4, "", "2° 21' 0\""},
                                     {kGps, 6, "", "35 m"},
                                     {kGps, 16, "", "True"},
                                     {kGps, 17, "", "247/2"},
                                     {kGps, 0x10F, "", "Maker"},
                                     {kMain, 4, "", "9° 0' 0\""}})
                                    .metadata;
        QCOMPARE(m.latitudeReference, QStringLiteral("South"));
        QCOMPARE(m.latitude, 48.86);
        QCOMPARE(m.longitudeReference, QStringLiteral("West"));
        QCOMPARE(m.longitude, 2.35);
        QCOMPARE(m.altitude, 0.0);
        QCOMPARE(m.directionReference, QStringLiteral("True"));
        QCOMPARE(m.imageDirection, 123.5);
        QCOMPARE(m.maker, QStringLiteral("Maker"));
    }

    void userCommentsGiveTheFieldsOfView_data()
    {
        QTest::addColumn<QByteArray>("comment");
        QTest::addColumn<QVector<double>>("expected");
        const auto row = [](const char *text, double h, double v, double third) {
            QTest::addRow("%s", text) << QByteArray(text) << QVector<double>{h, v, third};
        };
        row("FOV: 120 ~ 60 ~ 30", 120, 60, 30);
        row("a FOV:=-1.5e2\tx 60 ~ 30", -150, 60, 30);
        row("FOV: 120 ~ 60 x 30", 120, 60, 0);
        row("FOV: 120 ~ 60", 120, 60, 0);
        row("FOV: 120~60~30", 120, 0, 0);
        row("FOV:120 ~ 60 ~ 30", 20, 60, 30); // the fifth letter is passed over
        row("FOV:", 0, 0, 0);
        row("fov: 120 ~ 60 ~ 30", 0, 0, 0);
        row("FOV: inf ~ 1e999 ~ 30", 0, 0, 30);
        QTest::newRow("after a character code")
            << QByteArray("ASCII\0\0\0FOV: 9 ~ 8 ~ 7", 22) << QVector<double>{9, 8, 7};
    }
    void userCommentsGiveTheFieldsOfView()
    {
        QFETCH(QByteArray, comment);
        const GflExif2Data comments{{0x9286, comment.toStdString()}, {0x9285, "FOV: 1 ~ 1 ~ 1"}};
        const auto unknown = [](const QString &, const QString &) { return -1.0; };
        const ImageMetadata m = ExifMapping::map(GflExifData(1), comments, unknown).metadata;
        QTEST((QVector<double>{m.horizontalFieldOfView, m.verticalFieldOfView, m.thirdFieldOfView}),
              "expected");
        QCOMPARE(ExifMapping::map({}, comments, unknown).metadata.verticalFieldOfView, 0.0);
    }

    void noItemsGiveDefaults()
    {
        const ExifMapping::Result result = map({});
        QCOMPARE(result.metadata.focalLength35mm, 0.0);
        QCOMPARE(result.metadata.latitude, kUnknown);
        QCOMPARE(result.metadata.latitudeReference, QStringLiteral("North"));
        QCOMPARE(result.metadata.longitudeReference, QStringLiteral("East"));
        QVERIFY(!result.hasCameraData);
        QCOMPARE(result.summary, QString());
    }

    void longValuesTakeTimeByTheirLength_data()
    {
        QTest::addColumn<QByteArray>("piece");
        for (const char *piece : {"1", " ", "1 ", "1/", "1.", "1. 1'", "1.  1.1' 1", "\xff"})
            QTest::addRow("%s", piece) << QByteArray(piece);
    }
    void longValuesTakeTimeByTheirLength()
    {
        QFETCH(QByteArray, piece);
        const std::string value = piece.repeated(1000000 / piece.size()).toStdString();
        GflExifData items{{kGps, 2, "", value},
                          {kGps, 17, "", value},
                          {kMakerNote, 3, "ZenithEs", value}};
        for (const unsigned tag : {0x112U, 0x829AU, 0x829DU, 0x8827U, 0x9003U, 0x920AU, 0xA210U})
            items.push_back({kMain, tag, "", value});
        QElapsedTimer timer;
        timer.start();
        map(items);
        QVERIFY(timer.elapsed() < 5000); // milliseconds; tens of them for a time that is linear
    }
};

QTEST_GUILESS_MAIN(tst_ExifMapping)
#include "tst_ExifMapping.moc"
