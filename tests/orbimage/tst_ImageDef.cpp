#include "ImageDef.h"

#include "ImageFiles.h"
#include "ImageLoadOptions.h"
#include "OrbImageLibrary.h"
#include "WarningsFail.h"

#include <QImageReader>
#include <QTemporaryDir>
#include <QtTest>

#include <ctime>

namespace {

constexpr double kUnknown = -9999.0;
constexpr QSize kSize(64, 32);
constexpr char kGrayMessage[] = ": gray pictures are not supported.\n";

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QByteArray bytes(const GflBytes &blob)
{
    return {reinterpret_cast<const char *>(blob.data()), int(blob.size())};
}

} // namespace

class tst_ImageDef : public WarningsFail
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { OrbImageLibrary::stop(); }

    void theHeaderDecides_data();
    void theHeaderDecides();
    void colourModesOfOneFormat();
    void suffixesDecide();
    void everyTagReachesItsField();
    void allFormatsCarryMetadata_data();
    void allFormatsCarryMetadata();
    void sensorsGiveTheFocalLength_data();
    void sensorsGiveTheFocalLength();
    void blobsAreThoseOfTheFile();
    void lensesHaveATypeOfTheirOwn_data();
    void lensesHaveATypeOfTheirOwn();
    void zenithAnglesComeInTheirOrder();
    void aFileIsDescribedOnce();
    void fixedLensesStandIn();

private:
    QString path(const QString &name) const { return m_folder.filePath(name); }
    static ImageDef *described(const QString &path);
    ImageDef *made(const QString &name, const QByteArray &content);

    /// The description of a file after exiftool has written into it.
    ImageDef *tagged(const QString &name, const QStringList &tags);

    QTemporaryDir m_folder;
    QByteArray m_jpeg;
};

ImageDef *tst_ImageDef::described(const QString &path)
{
    ImageDef *image = nullptr;
    const bool isOpen = ImageDef::open(path, &image, false);
    return isOpen == (image != nullptr) ? image : nullptr;
}

ImageDef *tst_ImageDef::made(const QString &name, const QByteArray &content)
{
    return ImageFiles::write(path(name), content) ? described(path(name)) : nullptr;
}

ImageDef *tst_ImageDef::tagged(const QString &name, const QStringList &tags)
{
    QStringList plasma = words("-size 64x32 -seed 1 plasma:red-blue -depth 8");
    QString error = ImageFiles::run(QStringLiteral("convert"), plasma << path(name));
    if (error.isEmpty())
        error = ImageFiles::run(QStringLiteral("exiftool"),
                                QStringList{QStringLiteral("-n"), path(name)} + tags);
    if (!error.isEmpty())
        qWarning("%s", qPrintable(error));
    return described(path(name));
}

void tst_ImageDef::initTestCase()
{
    qputenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    tzset();
    OrbImageLibrary::start();
    const QString jpeg = path(QStringLiteral("base.jpg"));
    QCOMPARE(ImageFiles::run(QStringLiteral("convert"),
                             words("-size 64x32 -seed 1 plasma:red-blue") << jpeg),
             QString());
    m_jpeg = ImageFiles::read(jpeg);
}

void tst_ImageDef::theHeaderDecides_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("options"); // of ImageMagick; "ffmpeg" for its work
    QTest::addColumn<int>("components");  // 0: refused
    QTest::addColumn<int>("bits");
    QTest::addColumn<bool>("isCalledGray");

    const auto row = [](const char *name, const char *options, int components, int bits = 8,
                        bool isCalledGray = false) {
        QTest::addRow("%s %s", name, options)
            << QString::fromLatin1(name) << QString::fromLatin1(options) << components << bits
            << isCalledGray;
    };
    constexpr auto half = "-alpha on -channel A -evaluate set 50% +channel";
    constexpr auto grayHalf = "-colorspace Gray -alpha on -channel A -evaluate set 50% +channel";
    row("rgb.jpg", "", 3);
    row("progressive.JPG", "-interlace Plane", 3);
    row("gray.jpg", "-colorspace Gray", 0, 8, true);
    row("ycck.jpg", "-colorspace CMYK", 0);
    row("rgb.png", "", 3);
    row("rgb16.png", "-define png:bit-depth=16", 3, 16);
    row("rgba.png", half, 4);
    row("palette.png", "-type Palette -colors 16", 3);
    row("gray.png", "-colorspace Gray", 0, 8, true);
    row("grayalpha.png", grayHalf, 0);
    row("rgb.tif", "", 3);
    row("rgb16.tif", "-depth 16", 3, 16);
    row("big.tif", "-endian MSB", 3);
    row("rgba.tif", half, 4);
    row("gray.tif", "-colorspace Gray", 0, 8, true);
    row("cmyk.tif", "-colorspace CMYK", 0);
    row("lab.tif", "-colorspace Lab", 0);
    row("tiled.tif", "-define tiff:tile-geometry=16x16", 0);
    row("rgb.psd", "", 3);
    row("rgb16.psd", "-depth 16", 3, 16);
    row("cmyk.psd", "-colorspace CMYK", 4);
    row("gray.psd", "-colorspace Gray", 1);
    row("rgb.bmp", "", 3);
    row("rgb.webp", "", 3);
    row("rgb.hdr", "", 3, 32);
    row("rgb.exr", "ffmpeg", 3, 32);
}

void tst_ImageDef::theHeaderDecides()
{
    QFETCH(QString, name);
    QFETCH(QString, options);
    QFETCH(int, components);
    QFETCH(bool, isCalledGray);

    const QString format = name.section(QLatin1Char('.'), -1).toLower();
    if (!QImageReader::supportedImageFormats().contains(format.toLatin1()) && format != "psd")
        QSKIP("Qt has no reader for this format here");
    const QString file = path(name);
    const QString error = options == QLatin1String("ffmpeg")
        ? ImageFiles::run(options,
                          words("-v error -f lavfi -i testsrc=size=64x32 -frames:v 1 -pix_fmt "
                                "gbrpf32le")
                              << file)
        : ImageFiles::run(QStringLiteral("convert"),
                          words("-size 64x32 -seed 1 plasma:red-blue -depth 8")
                              + words(options.toLatin1()) + QStringList(file));
    QCOMPARE(error, QString());

    const int said = OrbImageLibrary::gflLastMessages().size();
    const ImageDef *image = described(file);
    QCOMPARE(OrbImageLibrary::gflLastMessages().mid(said),
             isCalledGray ? name + QLatin1String(kGrayMessage) : QString());
    QCOMPARE(image != nullptr, components > 0);
    if (!image)
        return;
    QCOMPARE(QSize(image->width(), image->height()), kSize);
    QCOMPARE(image->componentsPerPixel(), components);
    QTEST(image->bitsPerComponent(), "bits");
    QCOMPARE(image->isHighDynamicRange(), image->bitsPerComponent() == 32);
    QVERIFY(!image->isRaw());
    QVERIFY(!image->thumbnailBuffer());
    QCOMPARE(image->filePath(), file);
    QCOMPARE(image->fileName(), name);
    QCOMPARE(image->path(), m_folder.path());
}

void tst_ImageDef::colourModesOfOneFormat()
{
    // Adobe's segment says whether four components are CMYK (0) or YCCK (2).
    QByteArray jpeg = ImageFiles::read(path(QStringLiteral("ycck.jpg")));
    const int transform = jpeg.indexOf("Adobe") + 11;
    QCOMPARE(int(jpeg.at(transform)), 2);
    jpeg[transform] = 0;
    QVERIFY(!made(QStringLiteral("cmyk.jpg"), jpeg));
    QVERIFY(!made(QStringLiteral("cmyk.psd.jpg"), jpeg));

    QByteArray psd = ImageFiles::read(path(QStringLiteral("rgb.psd")));
    psd[25] = 9; // Lab
    const ImageDef *const lab = made(QStringLiteral("lab.PSD"), psd);
    QVERIFY(lab);
    QCOMPARE(lab->componentsPerPixel(), 3);
    QVERIFY(!made(QStringLiteral("lab.bin"), psd));
}

void tst_ImageDef::suffixesDecide()
{
    for (const char *const name : {"a.THM", "a.thm", "athm.jpg.tHm"})
        QVERIFY(!made(QLatin1String(name), m_jpeg));
    QVERIFY(made(QStringLiteral("a.thm.jpg"), m_jpeg));
    const ImageDef *const wrong = made(QStringLiteral("wrong.png"), m_jpeg);
    QVERIFY(wrong && wrong->width() == kSize.width());
    for (const char *const suffix : {"arw", "CRW", "cr2", "RAF", "NEF", "dng", "SRF", "sr2", "orf",
                                     "MRW", "PEF", "mef", "MOS"}) {
        const ImageDef *const raw = made(QLatin1String("raw.") + QLatin1String(suffix), m_jpeg);
        QVERIFY2(raw && raw->isRaw() && !raw->isHighDynamicRange(), suffix);
    }
}

void tst_ImageDef::everyTagReachesItsField()
{
    const ImageDef *const image = tagged(
        QStringLiteral("tags.jpg"),
        words("-Make=Maker -Model=Model -Orientation=6 -ExposureTime=0.004 -FNumber=4 -ISO=200 "
              "-ExposureCompensation=-1.5 -FocalLength=8 -FocalLengthIn35mmFormat=12 "
              "-ShutterSpeedValue=0.125 -ExifImageWidth=6000 -ExifImageHeight=4000 "
              "-FocalPlaneXResolution=4000 -FocalPlaneYResolution=2000 "
              "-FocalPlaneResolutionUnit=3 -GPSLatitudeRef=S -GPSLatitude=48.86 "
              "-GPSLongitudeRef=W -GPSLongitude=2.35 -GPSAltitude=35 -GPSImgDirectionRef=T "
              "-GPSImgDirection=123.5")
            << QStringLiteral("-DateTimeOriginal=2021:06:15 12:00:00")
            << QStringLiteral("-UserComment=FOV: 120 ~ 60 ~ 30"));
    QVERIFY(image);
    const ImageMetadata &m = image->metadata();
    QCOMPARE(m.maker, QStringLiteral("Maker"));
    QCOMPARE(m.model, QStringLiteral("Model"));
    QCOMPARE(m.orientation, 6);
    QCOMPARE(m.exposureTime, 0.004);
    QCOMPARE(m.fNumber, 4.0);
    QCOMPARE(m.exposureValue, 8.294049640102028); // ln(16 / 0.004)
    QCOMPARE(m.iso, 200);
    QCOMPARE(m.dateTime, qint64(1623751200));
    QCOMPARE(m.exposureBias, -1.5);
    QCOMPARE(m.imageWidth, 6000);
    QCOMPARE(m.imageHeight, 4000);
    QCOMPARE(m.focalLength35mm, 12.0);
    QCOMPARE(m.scaleFactor, 1.5);
    QCOMPARE(m.latitudeReference, QStringLiteral("South"));
    QCOMPARE(m.latitude, 48.86);
    QCOMPARE(m.longitudeReference, QStringLiteral("West"));
    QCOMPARE(m.longitude, 2.35);
    QCOMPARE(m.altitude, 0.0);
    QCOMPARE(m.directionReference, QStringLiteral("True"));
    QCOMPARE(m.imageDirection, 123.5);
    QCOMPARE(m.horizontalFieldOfView, 120.0);
    QCOMPARE(m.verticalFieldOfView, 60.0);
    QCOMPARE(m.thirdFieldOfView, 30.0);
    QVERIFY(image->hasCameraData());
    QCOMPARE(image->focalLength35mm(), 12.0F);
    QCOMPARE(image->dateTime(), m.dateTime);
    QCOMPARE(image->exposureValue(), float(m.exposureValue));
    const QStringList summary = image->summary().split(QLatin1Char('\n'));
    for (const char *const item : {"Maker: \"Maker\";", "Model: \"Model\";", "ISO: \"200\";",
                                   "Exposure time: \"1/250\";", "Focal plan res. unit: \"cm\";",
                                   "Date Time: \"2021:06:15 12:00:00\";", "Width: \"6000\";"})
        QVERIFY2(summary.contains(QLatin1String(item)), qPrintable(image->summary()));
    QCOMPARE(summary.size(), 15); // the tags that have a label

    const ImageDef *const slow = tagged(QStringLiteral("shutter.jpg"),
                                        words("-ShutterSpeedValue=0.125"));
    QVERIFY(slow);
    QCOMPARE(slow->metadata().exposureTime, 0.125);
    QCOMPARE(slow->metadata().latitude, kUnknown);
    QCOMPARE(slow->metadata().focalLength35mm, 50.0);
    QVERIFY(!slow->hasCameraData());
    QCOMPARE(slow->focalLength35mm(), 0.0F);
}

void tst_ImageDef::allFormatsCarryMetadata_data()
{
    QTest::addColumn<QString>("name");
    for (const char *const name : {"tags.png", "tags.tif", "tags.webp", "tags.psd"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void tst_ImageDef::allFormatsCarryMetadata()
{
    QFETCH(QString, name);
    const ImageDef *const image = tagged(name,
                                         words("-Make=Maker -FocalLengthIn35mmFormat=12 "
                                               "-GPSLongitude=2.35 -ISO=200 -XMP:Title=Title"));
    QVERIFY(image);
    QCOMPARE(image->metadata().maker, QStringLiteral("Maker"));
    QCOMPARE(image->metadata().focalLength35mm, 12.0);
    QCOMPARE(image->metadata().longitude, 2.35);
    QCOMPARE(image->metadata().iso, 200);
    QVERIFY(image->hasXmp());
    QVERIFY(!image->hasIptc());
    QCOMPARE(image->lensType(), 1);
}

void tst_ImageDef::sensorsGiveTheFocalLength_data()
{
    QTest::addColumn<QString>("tags");
    QTest::addColumn<double>("scale");
    const auto row = [](const char *name, const char *tags, double scale) {
        QTest::newRow(name) << QString::fromLatin1(tags) << scale;
    };
    row("cm",
        "-FocalPlaneResolutionUnit=3 -FocalPlaneXResolution=4000 "
        "-FocalPlaneYResolution=4000 -ExifImageWidth=6000 -ExifImageHeight=4000",
        2.4);
    // 25.4 mm by 25.4 mm: sqrt(1872) / (25.4 sqrt(2))
    row("inch",
        "-FocalPlaneResolutionUnit=2 -FocalPlaneXResolution=100 "
        "-FocalPlaneYResolution=200 -ExifImageWidth=100 -ExifImageHeight=200",
        1.2044927984864846);
    row("um",
        "-FocalPlaneResolutionUnit=5 -FocalPlaneXResolution=0.5 "
        "-FocalPlaneYResolution=0.25 -ExifImageWidth=18000 -ExifImageHeight=6000",
        1.0);
    row("camera of the table", "-Make=Canon -Model=PowerShot_A40", 6.5); // Data/cameras.txt
}

void tst_ImageDef::sensorsGiveTheFocalLength()
{
    QFETCH(QString, tags);
    QStringList arguments = words(tags.toLatin1());
    arguments.replaceInStrings(QStringLiteral("_"), QStringLiteral(" "));
    arguments << QStringLiteral("-FocalLength=10");
    const ImageDef *const image = tagged(QString::fromLatin1(QTest::currentDataTag())
                                             + QStringLiteral(".jpg"),
                                         arguments);
    QVERIFY(image && image->hasCameraData());
    QFETCH(double, scale);
    QVERIFY(qAbs(image->metadata().scaleFactor - scale) < 0.01 * scale);
    QCOMPARE(image->metadata().focalLength35mm, 10 * image->metadata().scaleFactor);
}

void tst_ImageDef::blobsAreThoseOfTheFile()
{
    QByteArray profile(200, 'p'); // as short as one may be: a header and a table of no tags
    profile.replace(0, 4, QByteArray("\0\0\0\xc8", 4));
    profile.replace(12, 12, "mntrRGB XYZ ");
    profile.replace(36, 4, "acsp");
    profile.replace(128, 4, QByteArray(4, '\0'));
    const QByteArray iptc("\x1c\x02\x69\x00\x08Headline", 13);
    const QByteArray xmp("<?xpacket begin='' id='W5M0MpCehiHzreSzNTczkc9d'?>"
                         "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
                         "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
                         "<rdf:Description xmlns:dc='http://purl.org/dc/elements/1.1/' "
                         "dc:format='image/jpeg'/></rdf:RDF></x:xmpmeta><?xpacket end='w'?>");
    QStringList tags;
    for (const auto &blob :
         {std::pair("ICC_Profile", profile), std::pair("IPTC", iptc), std::pair("XMP", xmp)}) {
        const QString file = path(QLatin1String(blob.first));
        QVERIFY(ImageFiles::write(file, blob.second));
        tags << QLatin1Char('-') + QLatin1String(blob.first) + QStringLiteral("<=") + file;
    }
    const ImageDef *const image = tagged(QStringLiteral("blobs.jpg"), tags);
    QVERIFY(image);
    QVERIFY(image->hasIccProfile());
    QVERIFY(image->hasIptc());
    QVERIFY(image->hasXmp());
    QCOMPARE(bytes(image->blobs().iccProfile), profile);
    QCOMPARE(bytes(image->blobs().iptc), iptc);
    QCOMPARE(QByteArray::fromStdString(image->blobs().xmp), xmp);

    const ImageDef *const none = described(path(QStringLiteral("base.jpg")));
    QVERIFY(none && !none->hasIccProfile() && !none->hasIptc() && !none->hasXmp());
    QVERIFY(none->blobs().exif.empty() && none->summary().isEmpty());
}

void tst_ImageDef::lensesHaveATypeOfTheirOwn_data()
{
    QTest::addColumn<QByteArray>("exif");
    QTest::addColumn<QString>("lensId");
    QTest::addColumn<int>("type");

    // Codes of a lens of 8 mm and an aperture of 4, whose number is 38.
    const QByteArray nikon("\x26\x30\x10\x10\x30\x30");
    const QByteArray olympus("\0\0\6\1\0\0", 6);
    using namespace ImageFiles;
    for (const bool bigEndian : {false, true}) {
        const auto row = [bigEndian](const char *name, const QByteArray &exif, const char *id,
                                     int type) {
            QTest::addRow("%s, %s", name, bigEndian ? "big endian" : "little endian")
                << exif << QString::fromLatin1(id) << type;
        };
        row("fisheye of Canon", canonExif(490, 50, bigEndian), "00490", 1);
        row("normal one of Canon", canonExif(1, 12, bigEndian), "00001", 0);
        row("tilt and shift", canonExif(94, 12, bigEndian), "00094", 0);
        row("unknown and short", canonExif(64000, 12, bigEndian), "64000", 1);
        row("unknown and long", canonExif(64000, 16, bigEndian), "64000", 0);
        row("fisheye of Nikon", nikonExif(nikon, 50, bigEndian), "8 8 38 4.0 4.0", 1);
        row("fisheye of Olympus", olympusExif(olympus, 50, bigEndian), "0 06 01", 1);
    }
}

void tst_ImageDef::lensesHaveATypeOfTheirOwn()
{
    QFETCH(QByteArray, exif);
    const ImageDef *const image = made(QString::fromLatin1(QTest::currentDataTag()),
                                       ImageFiles::withExif(m_jpeg, exif));
    QVERIFY(image && image->hasCameraData());
    QTEST(image->metadata().lensId, "lensId");
    QTEST(image->lensType(), "type");
}

void tst_ImageDef::zenithAnglesComeInTheirOrder()
{
    for (const bool bigEndian : {false, true}) {
        const QByteArray exif = ImageFiles::sphericalExif(3.5, -1.25, bigEndian);
        const QString order = QString::number(int(bigEndian));
        for (const ImageDef *const image :
             {made(QStringLiteral("sphere.jpg") + order, ImageFiles::withExif(m_jpeg, exif)),
              made(QStringLiteral("late.jpg") + order,
                   ImageFiles::withSegment(ImageFiles::withExif(m_jpeg, exif), '\xfe',
                                           "comment"))}) {
            QVERIFY(image);
            QCOMPARE(image->metadata().maker, QStringLiteral("RICOH"));
            QCOMPARE(image->metadata().zenithRoll, 3.5);
            QCOMPARE(image->metadata().zenithPitch, -1.25);
        }
    }
    QCOMPARE(described(path(QStringLiteral("base.jpg")))->metadata().zenithRoll, 0.0);
}

void tst_ImageDef::aFileIsDescribedOnce()
{
    const QString name = QStringLiteral("once.jpg");
    const ImageDef *const first = made(name, m_jpeg);
    QVERIFY(first);
    QCOMPARE(made(name, ImageFiles::read(path(QStringLiteral("ycck.jpg")))), first);
    QVERIFY(QFile::remove(path(name)));
    QCOMPARE(described(path(name)), first);
    QVERIFY(!described(path(QStringLiteral("never.jpg"))));
    const ImageDef *const later = made(QStringLiteral("never.jpg"), m_jpeg);
    QVERIFY(later && later != first);
}

void tst_ImageDef::fixedLensesStandIn()
{
    ImageLoadOptions &options = OrbImageLibrary::loadOptions();
    const ImageLoadOptions before = options;
    options.fixedFocalLength1 = 11;
    options.fixedLensType1 = 1;
    options.fixedFocalLength2 = 22;
    options.fixedLensType2 = 2;
    options.fixedDistortion3 = 0.5;
    const QByteArray canon = ImageFiles::withExif(m_jpeg, ImageFiles::canonExif(1, 33, true));
    struct Case
    {
        ImageLoadOptions::CameraDataMode mode;
        bool hasData;
        float focalLength; // of a file without data
        int type;
        float focalLengthOfCanon;
        int typeOfCanon;
        double distortion;
    };
    for (const Case &c : {Case{ImageLoadOptions::FromFile, false, 0, 0, 33, 0, 0},
                          Case{ImageLoadOptions::FixedIfMissing, true, 11, 1, 33, 0, 0},
                          Case{ImageLoadOptions::FixedFisheye, true, 22, 2, 22, 2, 0.5}}) {
        options.cameraDataMode = c.mode;
        const QString number = QString::number(c.mode);
        const ImageDef *const plain = made(QStringLiteral("plain") + number, m_jpeg);
        const ImageDef *const image = made(QStringLiteral("canon") + number, canon);
        QVERIFY(plain && image);
        QCOMPARE(plain->hasCameraData(), c.hasData);
        QCOMPARE(plain->focalLength35mm(), c.focalLength);
        QCOMPARE(plain->lensType(), c.type);
        QVERIFY(image->hasCameraData());
        QCOMPARE(image->focalLength35mm(), c.focalLengthOfCanon);
        QCOMPARE(image->lensType(), c.typeOfCanon);
        QCOMPARE(image->metadata().distortion3, c.distortion);
    }
    options = before;
}

QTEST_GUILESS_MAIN(tst_ImageDef)
#include "tst_ImageDef.moc"
