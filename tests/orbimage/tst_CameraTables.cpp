#include "CameraProperties.h"
#include "LensIDProperties.h"
#include "OrbImageLibrary.h"

#include "Garbage.h"
#include "WarningsFail.h"

#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <cmath>
#include <future>

#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr qint64 kMiB = qint64(1024) * 1024;

/// The rows of one of the tables that ship, read without the code under test.
QVector<QStringList> shippedRows(const QString &name)
{
    QFile file(QStringLiteral(":/Data/") + name);
    QVector<QStringList> rows;
    if (!file.open(QIODevice::ReadOnly))
        return rows;
    const auto lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (!line.isEmpty() && !line.startsWith('#'))
            rows.append(QString::fromLatin1(line).split(QLatin1Char(';')));
    }
    return rows;
}

} // namespace

class tst_CameraTables : public WarningsFail
{
    Q_OBJECT

private slots:
    void initTestCase();
    void theFirstCameraThatIsContainedGivesTheScale_data();
    void theFirstCameraThatIsContainedGivesTheScale();
    void theOnlyLensThatContainsTheIdGivesTheType_data();
    void theOnlyLensThatContainsTheIdGivesTheType();
    void aFileThatIsNoTableLeavesItEmpty_data();
    void aFileThatIsNoTableLeavesItEmpty();
    void theSizeOfAFileIsBounded();
    void aTableIsReadOnce();
    void threadsThatMeetAtTheFirstLookUpLoadOnce();
    void everyShippedCameraIsFoundByItsName();
    void noShippedLensIdContainsAnother();
    void shippedScalesAgreeWithTheSensors_data();
    void shippedScalesAgreeWithTheSensors();
    void shippedLensesHaveTheirTypes_data();
    void shippedLensesHaveTheirTypes();

private:
    QString written(const QByteArray &content, qint64 size = -1);
    QString path(const QString &name) const { return m_folder.filePath(name); }

    QTemporaryDir m_folder;
};

/// The name of a file with this content, filled with zeros up to `size` bytes.
QString tst_CameraTables::written(const QByteArray &content, qint64 size)
{
    QFile file(path(QStringLiteral("table.txt")));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()
        || (size >= 0 && !file.resize(size)))
        return {};
    return file.fileName();
}

void tst_CameraTables::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::German)); // where 5,9 is a number
    OrbImageLibrary::start();
}

void tst_CameraTables::theFirstCameraThatIsContainedGivesTheScale_data()
{
    QTest::addColumn<QByteArray>("table");
    QTest::addColumn<QString>("maker");
    QTest::addColumn<QString>("model");
    QTest::addColumn<float>("scale");

    const auto row = [](const char *name, const QByteArray &table, float scale,
                        const char *model = "PowerShot A400", const char *maker = "Canon") {
        QTest::newRow(name) << table << QString::fromUtf8(maker) << QString::fromUtf8(model)
                            << scale;
    };
    const QByteArray two = "Canon;A400;5.9\nCanon;A40;6.1\n";
    row("the longer name", two, 5.9F);
    row("the shorter name", two, 6.1F, "PowerShot A40");
    row("another model", two, -1, "EOS 5D");
    row("another maker", two, -1, "PowerShot A400", "Casio");
    row("a brand that is too far behind", two, -1, "PowerShot A400",
        QByteArray(5000, ' ').append("Canon").constData());
    row("any case", "NiKoN;coolpix p1;2.5", 2.5F, "COOLPIX P1", "NIKON CORPORATION");
    row("no end of line", "Canon;A400;5.9", 5.9F);
    row("CR LF", "# x\r\n\r\nCanon;A400;5.9\r\n", 5.9F);
    row("a comment behind", "Canon;A400;5.9#9\n", 5.9F);
    row("a comment before the number", "Canon;A400;#5.9\n", -1);
    row("blanks around the number", "Canon;A400; 5.9\t\n", 5.9F);
    row("blanks belong to a cell", " Canon;A400;1\nCanon ;A400;1\nCanon;A400 ;1\nCanon; A400;2\n",
        2);
    row("an empty name is in all", "Canon;;2\n", 2);
    row("two cells", "Canon;A400\nCanon;A4;2\n", 2);
    row("four cells", "Canon;A400;5.9;\nCanon;A4;2\n", 2);
    row("no number", "Canon;A400;wide\nCanon;A400;\nCanon;A400;5,9\nCanon;A4;2\n", 2);
    row("no finite number", "Canon;A400;nan\nCanon;A400;inf\nCanon;A400;1e99\nCanon;A4;2\n", 2);
    row("NUL bytes", QByteArray("Ca\0non;A400;1\nCanon;A400;2\0\nCanon;A4;3\n", 39), 3);
    row("no text", garbage(int(kMiB)) + "\nCanon;A4;3\n", 3);
    row("a million cells", QByteArray(1000000, ';') + "\nCanon;A4;3\n", 3);
}

void tst_CameraTables::theFirstCameraThatIsContainedGivesTheScale()
{
    QFETCH(QByteArray, table);
    QFETCH(QString, maker);
    QFETCH(QString, model);
    CameraProperties cameras(written(table));
    QTEST(cameras.scale(maker, model), "scale");
}

void tst_CameraTables::theOnlyLensThatContainsTheIdGivesTheType_data()
{
    QTest::addColumn<QByteArray>("table");
    QTest::addColumn<QString>("lensId");
    QTest::addColumn<int>("type");

    const QString eight = QStringLiteral("8 8 38 4.0 4.0");
    const auto row = [](const char *name, const QByteArray &table, const QString &lensId,
                        int type) { QTest::newRow(name) << table << lensId << type; };
    row("a trailing blank", "8 8 38 4.0 4.0;Nikon;Some lens;1 ", eight, 1);
    row("a tilt/shift lens", "8 8 38 4.0 4.0;nikon;;2", eight, 2);
    row("no type", "8 8 38 4.0 4.0;Nikon;Some lens", eight, 0);
    row("a word", "8 8 38 4.0 4.0;Nikon;Some lens;fisheye", eight, 0);
    row("more than an integer holds", "8 8 38 4.0 4.0;Nikon;Some lens;3e38", eight, 0);
    row("two cells", "8 8 38 4.0 4.0;Nikon", eight, -1);
    row("five cells", "8 8 38 4.0 4.0;Nikon;Some lens;1;", eight, -1);
    row("two of one brand", "1;Nikon;a;1\n1;Nikon;a;1", QStringLiteral("1"), -1);
    row("one of two brands", "1;Canon;a;2\n1;Nikon;a;1", QStringLiteral("1"), 1);
    row("a part of two ids", "10;Nikon;a;1\n12;Nikon;a;1", QStringLiteral("1"), -1);
    row("a part of one id, in another case", "AB;Nikon;a;1", QStringLiteral("b"), 1);
    row("longer than the id", "1;Nikon;a;1", QStringLiteral("12"), -1);
    row("no id, one lens", "1;Nikon;a;1\n2;Canon;b;2", {}, 1);
    row("no id, two lenses", "1;Nikon;a;1\n2;Nikon;b;1", {}, -1);
}

void tst_CameraTables::theOnlyLensThatContainsTheIdGivesTheType()
{
    QFETCH(QByteArray, table);
    QFETCH(QString, lensId);
    LensIDProperties lenses(written(table));
    QTEST(lenses.type(QStringLiteral("NIKON CORPORATION"), lensId), "type");
}

void tst_CameraTables::aFileThatIsNoTableLeavesItEmpty_data()
{
    QTest::addColumn<QString>("name");

    QVERIFY(QDir(m_folder.path()).mkpath(QStringLiteral("folder")));
    QVERIFY(QFile::link(path(QStringLiteral("loop")), path(QStringLiteral("loop"))));
    QCOMPARE(mkfifo(qPrintable(path(QStringLiteral("pipe"))), 0600), 0);
    QVERIFY(QFile::link(QStringLiteral("/dev/zero"), path(QStringLiteral("endless"))));
    QTest::newRow("no name") << QString();
    for (const char *name : {"missing", "folder", "loop", "pipe", "endless"})
        QTest::newRow(name) << path(QLatin1String(name));
    if (geteuid() != 0) { // nothing is unreadable for root
        QVERIFY(QFile::copy(written("Canon;A;1"), path(QStringLiteral("secret"))));
        QFile::setPermissions(path(QStringLiteral("secret")), QFile::WriteOwner);
        QTest::newRow("unreadable") << path(QStringLiteral("secret"));
    }
}

void tst_CameraTables::aFileThatIsNoTableLeavesItEmpty()
{
    QFETCH(QString, name);
    CameraProperties cameras(name);
    QCOMPARE(cameras.scale(QStringLiteral("Canon"), QStringLiteral("A")), -1.0F);
    LensIDProperties lenses(name);
    QCOMPARE(lenses.type(QStringLiteral("Canon"), QStringLiteral("A")), -1);
}

void tst_CameraTables::theSizeOfAFileIsBounded()
{
    const auto scale = [this](qint64 size) {
        CameraProperties cameras(written("Canon;A;1\n", size));
        return cameras.scale(QStringLiteral("Canon"), QStringLiteral("A"));
    };
    QCOMPARE(scale(4 * kMiB), 1.0F);
    QCOMPARE(scale(4 * kMiB + 1), -1.0F);
    QCOMPARE(scale(1024 * kMiB), -1.0F);
}

void tst_CameraTables::aTableIsReadOnce()
{
    const QString canon = QStringLiteral("Canon");
    QFile::remove(path(QStringLiteral("table.txt")));
    CameraProperties missing(path(QStringLiteral("table.txt")));
    missing.load();
    CameraProperties cameras(written("Canon;A;1"));
    cameras.load();
    cameras.load();
    LensIDProperties lenses(written("A;Canon;x;1"));
    lenses.load();
    written("Canon;A;2");
    QCOMPARE(missing.scale(canon, QStringLiteral("A")), -1.0F);
    QCOMPARE(cameras.scale(canon, QStringLiteral("A")), 1.0F);
    QCOMPARE(lenses.type(canon, QStringLiteral("A")), 1);
}

void tst_CameraTables::threadsThatMeetAtTheFirstLookUpLoadOnce()
{
    // A row that was read twice would be two lenses with one id.
    const QString file = written(QByteArray("x;Nikon;a;0\n").repeated(1000) + "8;Canon;a;1\n");
    for (int round = 0; round < 50; ++round) {
        LensIDProperties lenses(file);
        std::array<std::future<int>, 8> types;
        for (auto &type : types)
            type = std::async(std::launch::async, [&lenses] {
                return lenses.type(QStringLiteral("Canon"), QStringLiteral("8"));
            });
        for (auto &type : types)
            QCOMPARE(type.get(), 1);
    }
}

void tst_CameraTables::everyShippedCameraIsFoundByItsName()
{
    const auto rows = shippedRows(QStringLiteral("cameras.txt"));
    QVERIFY2(rows.size() >= 850, qPrintable(QString::number(rows.size())));
    for (int i = 0; i < rows.size(); ++i) {
        QCOMPARE(rows[i].size(), 3);
        const QString brand = rows[i][0];
        const QString name = rows[i][1];
        const float factor = rows[i][2].toFloat();
        QVERIFY2(factor > 0.4F && factor < 12, qPrintable(name));
        for (int before = 0; before < i; ++before)
            QVERIFY2(!brand.contains(rows[before][0], Qt::CaseInsensitive)
                         || !name.contains(rows[before][1], Qt::CaseInsensitive),
                     qPrintable(rows[before][1] + QStringLiteral(" hides ") + name));

        // What EXIF data says: the name with the brand before it, or without.
        auto &cameras = CameraProperties::instance();
        QCOMPARE(cameras.scale(brand.toUpper(), name.toUpper()), factor);
        QCOMPARE(cameras.scale(brand, brand + QLatin1Char(' ') + name), factor);
    }
}

void tst_CameraTables::noShippedLensIdContainsAnother()
{
    const auto rows = shippedRows(QStringLiteral("lensid.txt"));
    QVERIFY2(rows.size() >= 500, qPrintable(QString::number(rows.size())));
    QHash<QString, QStringList> ids;
    for (const QStringList &row : rows) {
        QCOMPARE(row.size(), 4);
        QVERIFY2(QRegularExpression(QStringLiteral("^[0-2]$")).match(row[3]).hasMatch(),
                 qPrintable(row[2]));
        ids[row[1]].append(row[0]);
    }
    for (auto brand = ids.cbegin(); brand != ids.cend(); ++brand) {
        for (const QString &id : brand.value()) {
            for (const QString &other : brand.value())
                QVERIFY2(id == other || !other.contains(id), qPrintable(id));
        }
    }
}

void tst_CameraTables::shippedScalesAgreeWithTheSensors_data()
{
    QTest::addColumn<QString>("maker");
    QTest::addColumn<double>("width");
    QTest::addColumn<double>("height");

    // Maker and model as in EXIF data, and the sensor in mm, from the makers' data sheets.
    const auto row = [](const char *maker, const char *model, double width, double height) {
        QTest::newRow(model) << QString::fromLatin1(maker) << width << height;
    };
    row("Canon", "Canon EOS 5D Mark III", 36.0, 24.0);
    row("Canon", "Canon EOS 7D", 22.3, 14.9);
    row("Canon", "Canon EOS-1D Mark IV", 27.9, 18.6);
    row("Canon", "Canon EOS REBEL T9x", 22.3, 14.9); // a family
    row("Canon", "Canon PowerShot G1 X", 18.7, 14.0);
    row("NIKON CORPORATION", "NIKON D3", 36.0, 23.9);
    row("NIKON CORPORATION", "NIKON D3000", 23.6, 15.8);
    row("NIKON CORPORATION", "NIKON D7000", 23.6, 15.6);
    row("NIKON CORPORATION", "NIKON 1 V1", 13.2, 8.8);
    row("NIKON CORPORATION", "COOLPIX A", 23.6, 15.6);
    row("NIKON", "COOLPIX A900", 6.17, 4.55);
    row("SONY", "ILCE-7", 35.8, 23.9);
    row("SONY", "DSC-RX100M3", 13.2, 8.8);
    row("OLYMPUS IMAGING CORP.", "E-M5", 17.3, 13.0);
    row("Panasonic", "DMC-GH4", 17.3, 13.0);
    row("FUJIFILM", "X-T1", 23.6, 15.6);
    row("RICOH IMAGING COMPANY, LTD.", "PENTAX K-1", 35.9, 24.0);
    row("PENTAX", "PENTAX K-5", 23.7, 15.7);
    row("KONICA MINOLTA", "DYNAX 7D", 23.5, 15.7);
    row("SIGMA", "SIGMA SD15", 20.7, 13.8);
}

void tst_CameraTables::shippedScalesAgreeWithTheSensors()
{
    QFETCH(QString, maker);
    QFETCH(double, width);
    QFETCH(double, height);
    const double expected = std::hypot(36.0, 24.0) / std::hypot(width, height);
    const double scale = double(
        CameraProperties::instance().scale(maker, QString::fromLatin1(QTest::currentDataTag())));
    QVERIFY2(std::abs(scale / expected - 1) < 0.01,
             qPrintable(QStringLiteral("%1, not %2").arg(scale).arg(expected)));
}

void tst_CameraTables::shippedLensesHaveTheirTypes_data()
{
    QTest::addColumn<QString>("maker");
    QTest::addColumn<QString>("lensId");
    QTest::addColumn<int>("type");

    const auto row = [](const char *name, const char *maker, const char *lensId, int type) {
        QTest::newRow(name) << QString::fromLatin1(maker) << QString::fromLatin1(lensId) << type;
    };
    row("Sigma 8mm F4 fisheye", "NIKON CORPORATION", "8 8 38 4.0 4.0", 1);
    row("Nikkor 16mm fisheye", "NIKON CORPORATION", "16 16 52 2.8 2.8", 1);
    row("Nikkor 50mm f/1.8G", "NIKON CORPORATION", "50 50 176 1.8 1.8", 0);
    row("PC-E Nikkor 24mm", "NIKON CORPORATION", "24 24 149 3.6 3.6", 2);
    row("Nikkor Z 24-70mm f/2.8 S", "NIKON CORPORATION", "00013", 0);
    row("EF 8-15mm fisheye", "Canon", "00490", 1);
    row("TS-E 17mm", "Canon", "00094", 2);
    row("EF 85mm f/1.8", "Canon", "00155", 0);
    row("Zuiko 8mm fisheye", "OLYMPUS IMAGING CORP.", "0 06 01", 1);
    row("M.Zuiko 8mm fisheye", "OM Digital Solutions", "0 25 10", 1);
    row("DA 10-17mm fisheye", "PENTAX", "03 247", 1);
    row("DA 10-17mm fisheye on a newer camera", "RICOH IMAGING COMPANY, LTD.", "03 247", 1);
    row("FE 28mm with fisheye converter", "SONY", "32827", 1);
    row("NX 10mm fisheye", "SAMSUNG", "00014", 1);
    row("any manual lens", "SONY", "65535", -1);
    row("no lens", "Canon", "99999", -1);
    row("no id", "Canon", "", -1);
}

void tst_CameraTables::shippedLensesHaveTheirTypes()
{
    QFETCH(QString, maker);
    QFETCH(QString, lensId);
    QTEST(LensIDProperties::instance().type(maker, lensId), "type");
}

QTEST_GUILESS_MAIN(tst_CameraTables)
#include "tst_CameraTables.moc"
