#include "HostingServer.h"
#include "OrbHostingManager.h"
#include "Product.h"
#include "SceneFixture.h"
#include "UpdateServer.h"

#include <QBuffer>
#include <QJsonDocument>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QTest>

namespace {

// As a build has it that switches the wall on.
constexpr char kWall[] = R"(
    import QtQuick 2.0
    Orb_HostingWall {
        state: root.state === "Wall" ? "On" : root.state === "Popup_Wall" ? "Off_popup" : "Off"
    })";

QColor thumbnailColour(int index)
{
    return QColor::fromHsv(index * 359 / 100, 200, 220);
}

QByteArray thumbnail(int index)
{
    QImage picture(200, 100, QImage::Format_RGB32);
    picture.fill(thumbnailColour(index));
    QBuffer png;
    picture.save(&png, "PNG");
    return png.data();
}

} // namespace

/// The wall of hosted videos, with a service, and with a server of pictures.
class tst_MainWindowWall : public SceneFixture
{
    Q_OBJECT

private:
    std::unique_ptr<HostingServer> m_service; ///< needs the application
    UpdateServer m_pictures;
    QQuickItem *m_wall = nullptr;

    void choose(const QString &now, const QString &entry);
    void press(const char *button);
    void search();
    void openLogin();

private slots:
    void initTestCase();
    void init();
    void aPageOfVideosIsListed();
    void aUserNameListsTheirVideos();
    void aLoginOpensTheOwnVideos();
    void aClosedPopupDoesNotAnswer();
    void aVideoOpens_data();
    void aVideoOpens();
};

void tst_MainWindowWall::initTestCase()
{
    SceneFixture::initTestCase();
    m_service = std::make_unique<HostingServer>(quint16(QUrl(Product::hostingUrl()).port()));
    QVERIFY(m_pictures.start());
    QVERIFY(dropFiles({media.octants()}));
    QTRY_COMPARE(playerStatus(), QMediaPlayer::BufferedMedia);
    QQmlComponent component(window()->engine());
    component.setData(kWall, QUrl(QStringLiteral("qrc:/qml/Wall.qml")));
    QQuickItem *root = window()->rootObject();
    QObject *wall = component.createWithInitialProperties({{"parent", QVariant::fromValue(root)}},
                                                          QQmlEngine::contextForObject(root));
    m_wall = qobject_cast<QQuickItem *>(wall);
    QVERIFY2(m_wall, qPrintable(component.errorString()));
    m_wall->setParent(root);
    m_wall->stackBefore(scene(QStringLiteral("orb_popup")).value<QQuickItem *>());
}

void tst_MainWindowWall::init()
{
    SceneFixture::init();
    QVERIFY(!m_wall->isEnabled());
    QTRY_COMPARE(m_wall->x(), -m_wall->width());
    scene(QStringLiteral("root.changeState('Wall')"));
    QTRY_COMPARE(m_wall->x(), 0.);
    QVERIFY(m_wall->hasActiveFocus());
}

/// Chooses from the list of the combo box that reads `now`.
void tst_MainWindowWall::choose(const QString &now, const QString &entry)
{
    clickOn(control(now, QAccessible::ComboBox));
    const auto chosen = [&] {
        QWindow *list = QGuiApplication::topLevelWindows().constLast();
        const QVector<QAccessibleInterface *> all = AccessibleTree::of(list);
        for (const QAccessibleInterface *one : all) {
            if (one->text(QAccessible::Name) != entry)
                continue;
            const QPoint point = list->mapFromGlobal(one->rect().center());
            QTest::mouseMove(list, point);
            QTest::mouseClick(list, Qt::LeftButton, Qt::NoModifier, point);
            return true;
        }
        return false;
    };
    QVERIFY(QTest::qWaitFor(chosen));
    QTRY_VERIFY(control(entry, QAccessible::ComboBox));
}

void tst_MainWindowWall::press(const char *button)
{
    QTRY_VERIFY(control(QString::fromLatin1(button)));
    clickOn(control(QString::fromLatin1(button)));
}

void tst_MainWindowWall::search()
{
    press("Search");
    QVERIFY(control(QStringLiteral("Asking the service"), QAccessible::ProgressBar));
    QTRY_VERIFY(!control(QStringLiteral("Asking the service"), QAccessible::ProgressBar));
}

void tst_MainWindowWall::aPageOfVideosIsListed()
{
    QVERIFY(reads(QStringLiteral("No videos")));
    keepPicture(QStringLiteral("wall-empty"));
    QJsonArray videos;
    for (int i = 0; i < 100; ++i) {
        const QString path = QStringLiteral("/pictures/%1.png").arg(i);
        m_pictures.give(path, thumbnail(i));
        videos.append(
            QJsonObject{{"title", QStringLiteral("<b>Video</b> %1").arg(i)},
                        {"creation_date", "2015-02-19"},
                        {"username", QStringLiteral("user%1").arg(i)},
                        {"thumb_link", QStringLiteral("http://127.0.0.1:47114%1").arg(path)}});
    }
    m_service->setList("public/videos", videos);
    choose(QStringLiteral("Most recent"), QStringLiteral("Most viewed"));
    choose(QStringLiteral("20"), QStringLiteral("100"));
    search();
    // An access test comes after the first request.
    const auto asked = QJsonDocument::fromJson(m_service->requests().constFirst().body);
    QCOMPARE(asked.toJson(QJsonDocument::Compact),
             QByteArray(R"({"filter":{"limit":100,"order":[{"views":"DESC"}],)"
                        R"("shuffle":0,"start":0}})"));
    QVERIFY(!reads(QStringLiteral("No videos")));
    QVERIFY(reads(QStringLiteral("<b>Video</b> 0")));
    // Margins of 30 below a bar of 50, cells 220 by 180, four in a row.
    for (int i = 0; i < 8; ++i)
        QTRY_VERIFY(shows(thumbnailColour(i), {30 + 110 + i % 4 * 220, 80 + 50 + i / 4 * 180}));
    QCOMPARE(itemReading(QStringLiteral("user5"))->mapToScene({0, 0}), QPointF(260, 410));
    QCOMPARE(namelessHotPlaces(), QStringList());
    keepPicture(QStringLiteral("wall"));
    const auto atTheEnd = [this] {
        turnWheel({}, {0, -120});
        return shows(thumbnailColour(99), {30 + 110 + 3 * 220, 570 - 180 + 50});
    };
    QTRY_VERIFY(atTheEnd());
    QCOMPARE(view()->fov(), 90.F);
}

void tst_MainWindowWall::aUserNameListsTheirVideos()
{
    m_service->setList("public/videos", {QJsonObject{{"username", "ann"}}});
    m_service->setList("public/videos/ann", {QJsonObject{{"title", "By Ann"}}});
    search();
    QTRY_VERIFY(reads(QStringLiteral("ann")));
    QQuickItem *name = itemReading(QStringLiteral("ann"));
    QVERIFY(!name->property("font").value<QFont>().underline());
    QTRY_COMPARE(name->mapToScene({0, 0}), QPointF(40, 80 + 150)); // after a longer list as well
    moveTo(name->mapToScene({100, 10}).toPoint());
    QTRY_VERIFY(name->property("font").value<QFont>().underline());
    clickOn(name);
    QTRY_VERIFY(reads(QStringLiteral("By Ann")));
}

void tst_MainWindowWall::openLogin()
{
    press("Connect");
    QCOMPARE(state(), QStringLiteral("Popup_Wall"));
    QTRY_VERIFY(isFullSize(QStringLiteral("OK")));
    QTRY_VERIFY(window()->activeFocusItem()->inherits("QQuickTextInput"));
    QVERIFY(!m_wall->isEnabled());
    QCOMPARE(m_wall->x(), 0.);
}

void tst_MainWindowWall::aLoginOpensTheOwnVideos()
{
    openLogin();
    key(Qt::Key_A, Qt::ControlModifier);
    type(QStringLiteral("eve"));
    m_service->queue(HostingServer::error(QStringLiteral("no"), QStringLiteral("<i>Who?</i>")));
    press("OK");
    QVERIFY(reads(QStringLiteral("Connecting...")));
    QTRY_VERIFY(reads(QStringLiteral("Error in server response : no <i>Who?</i>")));
    QCOMPARE(state(), QStringLiteral("Popup_Wall"));
    keepPicture(QStringLiteral("wall-login"));
    key(Qt::Key_Return);
    QTRY_VERIFY(reads(QStringLiteral("Success")));
    QTRY_COMPARE(state(), QStringLiteral("Wall"));
    QCOMPARE(m_service->requests().constLast().path, QByteArray("public/token/eve/testpass"));

    m_service->setList("oauth/videos/key", {QJsonObject{{"title", "Mine"}}});
    choose(QStringLiteral("Public videos"), QStringLiteral("My videos"));
    search();
    QTRY_VERIFY(reads(QStringLiteral("Mine")));
    choose(QStringLiteral("My videos"), QStringLiteral("Public videos"));
    press("Disconnect");
    QVERIFY(control(QStringLiteral("Connect")));
    QCOMPARE(state(), QStringLiteral("Wall"));
}

void tst_MainWindowWall::aClosedPopupDoesNotAnswer()
{
    auto *manager = scene(QStringLiteral("orbHostingManager")).value<OrbHostingManager *>();
    for (const bool byKey : {true, false}) {
        openLogin();
        if (byKey)
            key(Qt::Key_Escape);
        else
            press("Cancel");
        emit manager->requestResponse(true, {});
        QVERIFY(!reads(QStringLiteral("Success")));
        QTRY_COMPARE(state(), QStringLiteral("Wall"));
        emit manager->requestResponse(true, {});
    }
    QVERIFY(!reads(QStringLiteral("OK")));
}

void tst_MainWindowWall::aVideoOpens_data()
{
    QTest::addColumn<QByteArray>("video"); // %1 is the address of a picture
    QTest::addColumn<bool>("opens");       // that picture

    const auto row = [](const char *name, const char *video, bool opens) {
        QTest::newRow(name) << QByteArray(video) << opens;
    };
    row("a source", R"({"source": "%1", "presets": [{"url": "x.mp4"}]})", true);
    row("presets", R"({"presets": [{"url": "a.mp4"}, {"url": "b.mp4"}, {"url": "%1"}]})", true);
    row("nothing", "{}", false);
    row("no list", R"({"presets": "%1", "thumb_link": 7})", false);
    row("no maps", R"({"presets": ["%1", null], "thumb_link": "file:///dev/zero"})", false);
    row("no text", R"({"presets": [{"url": ["%1"]}], "thumb_link": "nowhere.png"})", false);
}

void tst_MainWindowWall::aVideoOpens()
{
    QFETCH(QByteArray, video);
    QFETCH(bool, opens);
    const QString path = media.octants(QStringLiteral("last.png"), {256, 128});
    video.replace("%1", fileUrl(path).toEncoded());
    QJsonObject object = QJsonDocument::fromJson(video).object();
    object.insert(QStringLiteral("title"), QTest::currentDataTag());
    m_service->setList("public/videos", {object});
    search();
    press(QTest::currentDataTag());
    if (opens) {
        QCOMPARE(state(), QStringLiteral("Video"));
        QVERIFY(title().endsWith(QStringLiteral("/last.png")));
        QTRY_VERIFY(showsOctantsAhead());
        QVERIFY(dropFiles({media.octants()}));
    } else {
        QCOMPARE(readAndCloseMessage(), QStringLiteral("This video has no address."));
        QCOMPARE(state(), QStringLiteral("Wall"));
    }
}

int main(int argc, char **argv)
{
    return tst_MainWindowWall().run(argc, argv);
}

#include "tst_MainWindowWall.moc"
