#include "SceneFixture.h"

#include <QTest>

namespace {
constexpr int kSlideMs = 700;
constexpr QColor kColours[] = {{10, 120, 240}, {240, 90, 60}, {60, 200, 90}};
} // namespace

/// A playlist of pictures that goes on by itself, at the pace of the settings.
class tst_MainWindowSlides : public SceneFixture
{
    Q_OBJECT

private:
    bool showsSlide(int index) const { return shows(kColours[index], middle()); }

private slots:
    void slidesFollowEachOtherRoundTheList();
    void aSinglePictureStays();
};

void tst_MainWindowSlides::slidesFollowEachOtherRoundTheList()
{
    QStringList files;
    for (const QColor &colour : kColours)
        files += media.flat(colour.name() + QStringLiteral(".png"), colour);
    QVERIFY(dropFiles(files));
    QTRY_VERIFY(showsSlide(0));
    for (int next : {1, 2, 0, 1}) {
        QTRY_COMPARE(view()->playListIndex(), next);
        QTRY_VERIFY(showsSlide(next));
    }
}

void tst_MainWindowSlides::aSinglePictureStays()
{
    QVERIFY(dropFiles({media.octants()}));
    QTRY_VERIFY(showsOctantsAhead());
    QVERIFY(!QTest::qWaitFor([this] { return playerStatus() != QMediaPlayer::BufferedMedia; },
                             2 * kSlideMs));
    QVERIFY(showsOctantsAhead());
}

int main(int argc, char **argv)
{
    return tst_MainWindowSlides().run(argc, argv, {},
                                      {{QStringLiteral("application/playlist/imageDisplayDuration"),
                                        kSlideMs}});
}

#include "tst_MainWindowSlides.moc"
