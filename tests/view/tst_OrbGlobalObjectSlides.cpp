#include "FakeMediaLoader.h"
#include "GlobalObjectFixture.h"

#include "WarningsFail.h"

#include <QtTest>

namespace {

const QString kDuration = QStringLiteral("application/playlist/imageDisplayDuration");
constexpr int kShortMs = 20;
/// Long enough for a wrongly running slide timer to be seen.
constexpr int kSeveralSlidesMs = 5 * kShortMs;

} // namespace

/// The images of a playlist, shown one after the other.
class tst_OrbGlobalObjectSlides : public WarningsFail
{
    Q_OBJECT

private slots:
    void slidesFollowEachOther();
    void anyOpeningStopsTheSlides_data();
    void anyOpeningStopsTheSlides();
    void aDurationThatIsNoneDoesNotRace_data();
    void aDurationThatIsNoneDoesNotRace();
};

void tst_OrbGlobalObjectSlides::slidesFollowEachOther()
{
    GlobalObjectFixture f({{kDuration, kShortMs}});
    FakeMediaLoader loader(&f.object);
    f.object.openFiles(urls({"file:///a.jpg", "file:///b.jpg"}));
    f.object.startTimerNextImage();
    QTRY_COMPARE(f.object.playListIndex(), 1);
    // The next slide waits for its image to be shown.
    QTest::qWait(kSeveralSlidesMs);
    QCOMPARE(f.object.playListIndex(), 1);
    f.object.startTimerNextImage();
    QTRY_COMPARE(f.object.playListIndex(), 0);
    QCOMPARE(loader.calls.size(), 3);
}

void tst_OrbGlobalObjectSlides::anyOpeningStopsTheSlides_data()
{
    QTest::addColumn<QList<QUrl>>("opened");
    QTest::newRow("another source") << urls({"file:///c.jpg"});
    QTest::newRow("another playlist") << urls({"file:///c.jpg", "file:///d.jpg"});
    QTest::newRow("a bad playlist file") << urls({"file:///missing.ospl"});
    QTest::newRow("clearing") << QList<QUrl>();
}

void tst_OrbGlobalObjectSlides::anyOpeningStopsTheSlides()
{
    QFETCH(QList<QUrl>, opened);
    GlobalObjectFixture f({{kDuration, kShortMs}});
    FakeMediaLoader loader(&f.object);
    f.object.openFiles(urls({"file:///a.jpg", "file:///b.jpg"}));
    f.object.startTimerNextImage();
    if (opened.isEmpty())
        f.object.clearPlayList();
    else
        f.object.openFiles(opened);
    const int calls = loader.calls.size();
    const int index = f.object.playListIndex();
    QTest::qWait(kSeveralSlidesMs);
    QCOMPARE(loader.calls.size(), calls);
    QCOMPARE(f.object.playListIndex(), index);
}

void tst_OrbGlobalObjectSlides::aDurationThatIsNoneDoesNotRace_data()
{
    QTest::addColumn<QVariant>("duration");
    QTest::newRow("zero") << QVariant(0);
    QTest::newRow("negative") << QVariant(-5);
    QTest::newRow("a word") << QVariant(QStringLiteral("long"));
    QTest::newRow("beyond whole numbers") << QVariant(QStringLiteral("99999999999"));
}

void tst_OrbGlobalObjectSlides::aDurationThatIsNoneDoesNotRace()
{
    QFETCH(QVariant, duration);
    GlobalObjectFixture f({{kDuration, duration}});
    f.object.openFiles(urls({"file:///a.jpg", "file:///b.jpg"}));
    f.object.startTimerNextImage();
    QTest::qWait(kSeveralSlidesMs);
    QCOMPARE(f.object.playListIndex(), 0);
}

QTEST_MAIN(tst_OrbGlobalObjectSlides)
#include "tst_OrbGlobalObjectSlides.moc"
