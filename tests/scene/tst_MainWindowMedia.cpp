#include "SceneFixture.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScreen>
#include <QTest>

namespace {

const QString kFileOfCommandLine = QStringLiteral("octants.png");
const QColor kBlueSlide(10, 120, 240);
const QColor kRedSlide(240, 90, 60);
const QColor kLogo(0, 200, 0);
constexpr QSize kLogoSize(120, 60);

QString titleOf(const QString &path)
{
    return QStringLiteral("Orbix Sight - ") + fileUrl(path).toString();
}

} // namespace

/// Pictures and playlists: from the command line, by drops, and the playlist's own changes.
class tst_MainWindowMedia : public SceneFixture
{
    Q_OBJECT

private:
    bool showsEverywhere(const QColor &colour) const
    {
        return shows(colour, middle() + QPoint(-100, -100))
            && shows(colour, middle() + QPoint(100, 100));
    }
    QString playlist(const QVector<QPair<QString, QString>> &entries);

protected slots:
    void noteStatus() { m_statuses.append(playerStatus()); }

private slots:
    void aRelativeFileOfTheCommandLineShows();
    void aDroppedPictureLoadsAndShows();
    void theSamePictureDroppedAgainShowsAgain();
    void aNewPictureIsSeenStraightAhead();
    void twoDroppedPicturesMakeAPlaylist();
    void aPlaylistFileShowsItsLogoBesideThePicture();
    void aPlaylistFileOfOneEntryIsNoPlaylist();
    void aPictureWiderThanAnyTextureIsScaled();
    void thePictureFitsTheScreenWithoutProjection();
    void anUnknownKindOfFileIsRefused();
    void nothingDroppedChangesNothing();

private:
    QVector<QMediaPlayer::MediaStatus> m_statuses;
};

void tst_MainWindowMedia::aRelativeFileOfTheCommandLineShows()
{
    QTRY_VERIFY(showsOctantsAhead());
    QCOMPARE(title(), titleOf(media.octants()));
    QVERIFY(!reads(QStringLiteral("Drop your file(s) here")));
    keepPicture(QStringLiteral("picture"));
}

void tst_MainWindowMedia::aDroppedPictureLoadsAndShows()
{
    QObject *player = scene(QStringLiteral("orb_mediaLoader.mediaPlayer")).value<QObject *>();
    m_statuses.clear();
    connect(player, SIGNAL(playerStatusChanged()), this, SLOT(noteStatus()));
    const QString path = media.flat(QStringLiteral("blue #1, 50%.png"), kBlueSlide);
    QVERIFY(dropFiles({path}));
    QTRY_VERIFY(showsEverywhere(kBlueSlide));
    QCOMPARE(title(), titleOf(path));
    using Player = QMediaPlayer;
    const QVector<Player::MediaStatus> expected{Player::NoMedia, Player::LoadingMedia,
                                                Player::BufferedMedia};
    QCOMPARE(m_statuses, expected);
    QCOMPARE(view()->playListIndex(), -1);
}

void tst_MainWindowMedia::theSamePictureDroppedAgainShowsAgain()
{
    const QString path = media.flat(QStringLiteral("changing.png"), kBlueSlide);
    QVERIFY(dropFiles({path}));
    QTRY_VERIFY(showsEverywhere(kBlueSlide));
    media.flat(QStringLiteral("changing.png"), kRedSlide);
    QVERIFY(dropFiles({path}));
    QTRY_VERIFY(showsEverywhere(kRedSlide));
}

void tst_MainWindowMedia::aNewPictureIsSeenStraightAhead()
{
    view()->setYaw(1);
    view()->setPitch(0.3F);
    QVERIFY(dropFiles({media.octants()}));
    QTRY_VERIFY(showsOctantsAhead());
}

void tst_MainWindowMedia::twoDroppedPicturesMakeAPlaylist()
{
    const QString first = media.octants();
    const QString last = media.flat(QStringLiteral("last.png"), kRedSlide);
    QVERIFY(dropFiles({first, last}));
    QTRY_VERIFY(showsOctantsAhead());
    QCOMPARE(view()->playListIndex(), 0);
    QCOMPARE(title(), titleOf(first));

    key(Qt::Key_Left);
    QTRY_VERIFY(showsEverywhere(kRedSlide));
    QCOMPARE(view()->playListIndex(), 1);
    QCOMPARE(title(), titleOf(last));
}

QString tst_MainWindowMedia::playlist(const QVector<QPair<QString, QString>> &entries)
{
    QJsonArray array;
    for (const auto &[mediaName, logoName] : entries)
        array.append(QJsonObject{{QStringLiteral("media"), mediaName},
                                 {QStringLiteral("logo"), logoName},
                                 {QStringLiteral("remark"), 7}});
    return media.bytes(QStringLiteral("list.ospl"), QJsonDocument(array).toJson());
}

void tst_MainWindowMedia::aPlaylistFileShowsItsLogoBesideThePicture()
{
    media.octants();
    media.flat(QStringLiteral("slide.png"), kBlueSlide);
    const QString logo = media.flat(QStringLiteral("logo.png"), kLogo, kLogoSize);
    const QString list = playlist({{kFileOfCommandLine, logo}, {QStringLiteral("slide.png"), {}}});
    QVERIFY(dropFiles({list}));
    QCOMPARE(view()->playListIndex(), 0);
    QCOMPARE(title(), titleOf(media.octants()));

    const int edge = window()->width() - kLogoSize.width();
    const QPoint centre(edge / 2, window()->height() / 2);
    QTRY_VERIFY(shows(TestMedia::octant(1, 0), centre + QPoint(-10, -10)));
    QTRY_VERIFY(shows(TestMedia::octant(2, 1), centre + QPoint(10, 10)));
    QVERIFY(shows(TestMedia::octant(2, 0), {edge - 2, 2}));
    QVERIFY(shows(kLogo, {edge + 2, 2}));
    QVERIFY(shows(kLogo, {window()->width() - 2, kLogoSize.height() - 2}));
    QVERIFY(shows(Qt::black, {edge + 2, kLogoSize.height() + 2}));
    keepPicture(QStringLiteral("logo"));

    key(Qt::Key_Right);
    QTRY_VERIFY(showsEverywhere(kBlueSlide));
    QTRY_VERIFY(shows(kBlueSlide, {window()->width() - 2, 2}));
}

void tst_MainWindowMedia::aPlaylistFileOfOneEntryIsNoPlaylist()
{
    media.flat(QStringLiteral("slide.png"), kBlueSlide);
    media.flat(QStringLiteral("logo.png"), kLogo, kLogoSize);
    QVERIFY(dropFiles({playlist({{QStringLiteral("slide.png"), QStringLiteral("logo.png")}})}));
    QTRY_VERIFY(shows(kBlueSlide, {400, 300}));
    QTRY_VERIFY(shows(kLogo, {window()->width() - 2, 2}));
    QCOMPARE(view()->playListIndex(), -1);
}

void tst_MainWindowMedia::aPictureWiderThanAnyTextureIsScaled()
{
    constexpr int kLargestTexture = 16384;
    const int largest = window()->maxTextureSize().width();
    QVERIFY(largest > 0);
    const QString path = media.octants(QStringLiteral("wide.png"), {kLargestTexture + 616, 400});
    QVERIFY(dropFiles({path}));
    QTRY_VERIFY(showsOctantsAhead());
    QCOMPARE(scene(QStringLiteral("orb_mediaLoader.mediaPlayer.width")).toInt(), largest);
}

void tst_MainWindowMedia::thePictureFitsTheScreenWithoutProjection()
{
    QVERIFY(dropFiles({media.octants(QStringLiteral("large.png"), {4000, 2000})}));
    QTRY_VERIFY(showsOctantsAhead());
    picture()->setProjection(OrbShaderCodeBuilder::NO_PROJECTION);
    const int width = window()->screen()->size().width();
    QTRY_COMPARE(window()->size(), QSize(width, width / 2));
    QTRY_VERIFY(shows(TestMedia::octant(0, 0), {width / 8, width / 8}));
    QVERIFY(shows(TestMedia::octant(3, 1), {width * 7 / 8, width * 3 / 8}));
}

void tst_MainWindowMedia::anUnknownKindOfFileIsRefused()
{
    const QByteArray before = settingsFile();
    const QString path = media.bytes(QStringLiteral("notes.txt"), "nothing to see");
    QVERIFY(dropFiles({path}));
    QTRY_VERIFY(messageBox());
    QVERIFY(!cursorHidden());
    QCOMPARE(readAndCloseMessage(), QStringLiteral("The file format is not supported."));
    QTRY_VERIFY(!messageBox());
    QVERIFY(reads(QStringLiteral("Drop your file(s) here")));

    QVERIFY(dropFiles({media.octants()}));
    QTRY_VERIFY(showsOctantsAhead());
    QCOMPARE(settingsFile(), before);
}

void tst_MainWindowMedia::nothingDroppedChangesNothing()
{
    QVERIFY(dropFiles({media.octants()}));
    QTRY_VERIFY(showsOctantsAhead());
    QVERIFY(drop({}));
    QCOMPARE(title(), titleOf(media.octants()));
    QCOMPARE(playerStatus(), QMediaPlayer::BufferedMedia);
}

int main(int argc, char **argv)
{
    tst_MainWindowMedia test;
    test.media.octants();
    return test.run(argc, argv, {kFileOfCommandLine});
}

#include "tst_MainWindowMedia.moc"
