#include "OrbVideoPlugin.h"
#include "SceneFixture.h"
#include "UpdateServer.h"

#include "Application.h"

#include <QDesktopServices>
#include <QMessageBox>
#include <QTest>

#include <algorithm>

namespace {
constexpr int kListWidth = 360;
const QColor kAccent(255, 64, 18); // of the row that is current
} // namespace

/// The lists over the control bar and what their rows do.
class tst_MainWindowLists : public SceneFixture
{
    Q_OBJECT

public slots:
    void takeAddress(const QUrl &address) { m_opened += address.toString(); }

private:
    QStringList m_opened; ///< addresses that went to the browser

    /// A button of the strip, or else a row of an open list.
    QQuickItem *pressable(const QString &name) const;
    void press(const QString &name);
    void open(const QString &path);
    QStringList named(QAccessible::Role role, bool checkedOnly = false) const;
    bool isMarked(const QString &row) const;

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void buttonsAndRowsOpenOneListAtATime_data();
    void buttonsAndRowsOpenOneListAtATime();
    void otherPressesInTheStripCloseTheLists_data();
    void otherPressesInTheStripCloseTheLists();
    void theListsGoWithTheBar();
    void aRowChoosesAndIsThenTheCurrentOne_data();
    void aRowChoosesAndIsThenTheCurrentOne();
    void theMenuOffersWhatIsThere();
    void menuRowsOpenPanels_data();
    void menuRowsOpenPanels();
    void menuRowsAskTheWeb();
    void aBackendIsChosenForTheNextStart();
    void anErrorOffersTheBackends();
    void aLowWindowScrollsAList();
};

void tst_MainWindowLists::initTestCase()
{
    SceneFixture::initTestCase();
    QDesktopServices::setUrlHandler(QStringLiteral("http"), this, "takeAddress");
}

void tst_MainWindowLists::init()
{
    SceneFixture::init();
    QVERIFY(dropFiles({media.octants()}));
    QTRY_VERIFY(showsOctantsAhead());
    showBar();
    m_opened.clear();
}

void tst_MainWindowLists::cleanup()
{
    scene(QStringLiteral("orbOculus.setAvailable(false)"));
    picture()->setStereoMode(OrbShaderCodeBuilder::STEREO_2D);
    SceneFixture::cleanup();
}

QQuickItem *tst_MainWindowLists::pressable(const QString &name) const
{
    for (const auto role : {QAccessible::Button, QAccessible::StaticText, QAccessible::Slider,
                            QAccessible::MenuItem}) {
        if (QQuickItem *found = control(name, role))
            return found;
    }
    return nullptr;
}

/// Presses once the item has come to rest in the window.
void tst_MainWindowLists::press(const QString &name)
{
    QQuickItem *item = pressable(name);
    QVERIFY2(item, qPrintable(name));
    QTRY_VERIFY(QRectF(window()->contentItem()->boundingRect())
                    .contains(item->mapRectToScene(item->boundingRect())));
    clickOn(item);
}

/// `path` holds the names of what is pressed, one after the other, with " > " between them.
void tst_MainWindowLists::open(const QString &path)
{
    const QStringList names = path.split(QLatin1String(" > "));
    for (const QString &name : names)
        press(name);
}

/// The names of what has that role in view.
QStringList tst_MainWindowLists::named(QAccessible::Role role, bool checkedOnly) const
{
    QStringList names;
    const QVector<QAccessibleInterface *> all = accessibles();
    for (const QAccessibleInterface *one : all) {
        if (one->role() == role && (one->state().checked || !checkedOnly))
            names += one->text(QAccessible::Name);
    }
    return names;
}

/// Whether a row shows the colour of the current one.
bool tst_MainWindowLists::isMarked(const QString &row) const
{
    const QQuickItem *item = pressable(row);
    const QRect area = item->mapRectToScene(item->boundingRect()).toRect();
    const QImage image = grab().copy(area).convertToFormat(QImage::Format_RGB32);
    const auto *pixels = reinterpret_cast<const QRgb *>(image.constBits());
    return std::any_of(pixels, pixels + qsizetype(image.width()) * image.height(),
                       [](QRgb pixel) { return isClose(QColor(pixel), kAccent, 20); });
}

void tst_MainWindowLists::buttonsAndRowsOpenOneListAtATime_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("list");
    const QVector<QStringList> rows{{"Menu", "Menu"},
                                    {"Effect", "Image Effect"},
                                    {"Volume", "Volume"},
                                    {"Menu > View Projection", "View Projection"},
                                    {"Menu > Video Plugin", "Video Plugin"},
                                    {"Menu > Oculus Rift", "Oculus Rift"},
                                    {"Menu > Menu", ""},
                                    {"Effect > Effect", ""},
                                    {"Volume > Volume", ""},
                                    {"Effect > Menu", "Menu"},
                                    {"Effect > Menu > Menu", ""},
                                    {"Volume > Effect", "Image Effect"},
                                    {"Menu > Volume", "Volume"},
                                    {"Menu > View Projection > Menu", "Menu"},
                                    {"Menu > Video Plugin > Effect", "Image Effect"}};
    for (const QStringList &row : rows)
        QTest::newRow(qPrintable(row.at(0))) << row.at(0) << row.at(1);
}

void tst_MainWindowLists::buttonsAndRowsOpenOneListAtATime()
{
    QFETCH(QString, path);
    QFETCH(QString, list);
    scene(QStringLiteral("orbOculus.setAvailable(true)"));
    open(path);
    QCOMPARE(openLists(), list.isEmpty() ? QStringList() : QStringList(list));
    QCOMPARE(namelessHotPlaces(), QStringList());
    // Seven tenths of black over the picture, at the left edge of the lists and above the sound.
    const QColor plain = TestMedia::octant(2, 1);
    const QColor veiled(plain.red() * 3 / 10, plain.green() * 3 / 10, plain.blue() * 3 / 10);
    const bool isVolume = list == QLatin1String("Volume");
    const bool isList = !isVolume && !list.isEmpty();
    const QPoint edge(window()->width(), int(bar()->y()) - 5);
    const QQuickItem *volume = control(QStringLiteral("Volume"));
    QTRY_COMPARE(named(QAccessible::PopupMenu), isList ? QStringList(list) : QStringList());
    QTRY_VERIFY(shows(isVolume ? veiled : plain, volume->mapToScene({5, -145}).toPoint()));
    QTRY_VERIFY(shows(isList ? veiled : plain, edge - QPoint(kListWidth - 5, 0)));
    QTRY_VERIFY(shows(isList ? veiled : plain, edge - QPoint(5, 0)));
    keepPicture(QStringLiteral("list-") + QString::fromLatin1(QTest::currentDataTag()));

    // The pointer on the title or a row of a list keeps the bar.
    for (const int up : {20, 140}) {
        moveTo(edge - QPoint(kListWidth / 2, up));
        scene(QStringLiteral("timerHideControls.triggered()"));
        QCOMPARE(state(), isList ? QStringLiteral("ControlsPanel") : QStringLiteral("Video"));
    }
    moveTo(middle() - QPoint(200, 0));
    scene(QStringLiteral("timerHideControls.triggered()"));
    QCOMPARE(state(), QStringLiteral("Video"));
}

void tst_MainWindowLists::otherPressesInTheStripCloseTheLists_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("closes");

    for (const char *name : {"Website", "Pause", "Position 00:00", "Timeline", "Duration 00:00",
                             "Rectilinear projection", "Little planet projection"})
        QTest::newRow(name) << QString::fromLatin1(name) << true;
    QTest::newRow("next") << "Next" << false;
    QTest::newRow("previous") << "Previous" << false;
}

void tst_MainWindowLists::otherPressesInTheStripCloseTheLists()
{
    QFETCH(QString, name);
    QFETCH(bool, closes);
    if (!closes) {
        QVERIFY(dropFiles({media.octants(), media.octants()}));
        QTRY_VERIFY(showsOctantsAhead());
    }
    for (const char *list : {"Menu", "Effect", "Volume"}) {
        press(QString::fromLatin1(list));
        QCOMPARE(openLists().size(), 1);
        press(name);
        QCOMPARE(openLists().isEmpty(), closes);
    }
}

void tst_MainWindowLists::theListsGoWithTheBar()
{
    open(QStringLiteral("Menu > View Projection"));
    hideControls();
    QCOMPARE(openLists(), QStringList());
    QTRY_VERIFY(!control(QStringLiteral("View Projection"), QAccessible::PopupMenu));
    QTRY_VERIFY(shows(TestMedia::octant(2, 1), {990, 598}));
    QVERIFY(shows(TestMedia::octant(2, 1), {990, 540}));
    showBar();
    QCOMPARE(openLists(), QStringList());
}

void tst_MainWindowLists::aRowChoosesAndIsThenTheCurrentOne_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QStringList>("labels"); // of the values from 0 on
    QTest::addColumn<QString>("seen"); // the row that makes the upper left corner look as follows
    QTest::addColumn<QColor>("corner");

    const QColor plain = TestMedia::octant(1, 0);
    const QColor inverted(255 - plain.red(), 255 - plain.green(), 255 - plain.blue());
    const QStringList projections{"Source", "Rectilinear", "Little Planet", "Mirror Ball",
                                  "Fisheye"};
    const QStringList effects{"None",   "Sepia",    "Black & White", "Old TV Screen",
                              "Invert", "Red Only", "Yellow Only",   "Blue Only"};
    const QStringList stereo{"2D", "3D Over/Under", "3D side by side"};
    QTest::newRow("projections") << "Menu > View Projection" << QByteArray("projection")
                                 << projections << "Little Planet" << TestMedia::octant(0, 0);
    QTest::newRow("effects") << "Effect" << QByteArray("effect") << effects << "Invert" << inverted;
    QTest::newRow("stereo") << "Menu > Oculus Rift" << QByteArray("stereoMode") << stereo << "2D"
                            << plain;
}

void tst_MainWindowLists::aRowChoosesAndIsThenTheCurrentOne()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, property);
    QFETCH(QStringList, labels);
    QFETCH(QString, seen);
    QFETCH(QColor, corner);
    scene(QStringLiteral("orbOculus.setAvailable(true)"));
    open(path);
    QTRY_COMPARE(named(QAccessible::MenuItem), labels); // the list before it has gone
    // Backwards: the source without projection gives the window its size.
    for (int row = labels.size() - 1; row >= 0; --row) {
        press(labels.at(row));
        QCOMPARE(picture()->property(property).toInt(), row);
        QCOMPARE(named(QAccessible::MenuItem, true), QStringList(labels.at(row)));
        QTRY_VERIFY(isMarked(labels.at(row)));
        QVERIFY(!isMarked(labels.at((row + 1) % labels.size())));
        if (labels.at(row) == seen)
            QTRY_VERIFY(shows(corner, {10, 10}));
    }
}

void tst_MainWindowLists::theMenuOffersWhatIsThere()
{
    constexpr int kFirst = 42; // below a title of 30 and margins of 10, rows of 40, 2 apart
    QStringList rows{"View Projection",
                     "Video Plugin",
                     "UDP Communication",
                     "Open File/Stream",
                     "Update",
                     "Software Log",
                     "About Orbix Sight",
                     "About Third Party",
                     "Online documentation"};
    for (const bool headset : {false, true}) {
        if (headset)
            rows.insert(1, QStringLiteral("Oculus Rift"));
        scene(QStringLiteral("orbOculus.setAvailable(%1)").arg(headset));
        press(QStringLiteral("Menu"));
        QCOMPARE(named(QAccessible::MenuItem), rows);
        QQuickItem *menu = control(QStringLiteral("Menu"), QAccessible::PopupMenu);
        QTRY_COMPARE(menu->height(), 20. + 30 + 42 * rows.size());
        for (int i = 0; i < rows.size(); ++i) {
            const QQuickItem *row = pressable(rows.at(i));
            QCOMPARE(row->mapToItem(menu, {0, 0}), QPointF(20, kFirst + i * 42));
            QCOMPARE(row->size(), QSizeF(kListWidth - 40, 40));
        }
        press(QStringLiteral("Menu"));
    }
}

void tst_MainWindowLists::menuRowsOpenPanels_data()
{
    QTest::addColumn<QString>("row");
    QTest::addColumn<QString>("panel");
    QTest::addColumn<QString>("text");

    const QVector<QStringList> rows{{"UDP Communication", "PopupSoftwareCommunication", "Save"},
                                    {"Open File/Stream", "PopupOpenFile", "Open file/stream :"},
                                    {"Software Log", "PopupSoftwareLog", "Software log"},
                                    {"About Orbix Sight", "PopupAbout", "Orbix Sight 1.4.0"},
                                    {"About Third Party", "PopupAboutThirdParty", "Third party"}};
    for (const QStringList &row : rows)
        QTest::newRow(qPrintable(row.at(0))) << row.at(0) << row.at(1) << row.at(2);
}

void tst_MainWindowLists::menuRowsOpenPanels()
{
    QFETCH(QString, row);
    QFETCH(QString, panel);
    QFETCH(QString, text);
    open(QStringLiteral("Menu > ") + row);
    QCOMPARE(state(), QStringLiteral("Popup"));
    QCOMPARE(openLists(), QStringList());
    QTRY_VERIFY(reads(text));
    const QUrl source(QStringLiteral("qrc:/qml/popup/%1.qml").arg(panel));
    QVERIFY(item([&source](const QQuickItem *candidate) {
        return candidate->property("source").toUrl() == source;
    }));
    QTRY_VERIFY(bar()->y() >= window()->height());
}

void tst_MainWindowLists::menuRowsAskTheWeb()
{
    open(QStringLiteral("Menu > Online documentation"));
    QCOMPARE(m_opened, QStringList(QStringLiteral("http://127.0.0.1:47114/documentation")));

    UpdateServer server;
    QVERIFY(server.start());
    server.give(QStringLiteral("/updates/oxs/stable/version"), "1.4.0.400_2015-02-19\n");
    press(QStringLiteral("Update"));
    QVERIFY(readAndCloseMessage().startsWith(QLatin1String("There is no update")));
    QCOMPARE(server.asked().size(), 1);
}

void tst_MainWindowLists::aBackendIsChosenForTheNextStart()
{
    const QString before = application()->videoPlugin()->currentPlugin();
    const QString message = QStringLiteral(
        "You must restart to apply modifications on video plugin.");
    const QStringList labels{"VLC", "VLC with VA-API", "GStreamer"};
    const QStringList ids{"vlc", "vlc_hw", "gst"};
    open(QStringLiteral("Menu > Video Plugin"));
    QTRY_COMPARE(named(QAccessible::RadioButton), labels);
    QCOMPARE(named(QAccessible::RadioButton, true), QStringList(labels.at(ids.indexOf(before))));
    QQuickItem *list = control(QStringLiteral("Video Plugin"), QAccessible::PopupMenu);
    QTRY_COMPARE(list->mapToScene({list->width(), 0}).x(), qreal(window()->width()));

    for (const int row : {2, 1, 0}) {
        const QQuickItem *plugin = control(labels.at(row), QAccessible::RadioButton);
        QCOMPARE(plugin->mapToItem(list, {0, 0}), QPointF(20, 42 + 102 * row));
        // Only the strip with the name is hot.
        clickAt(plugin->mapToScene({160, 60}).toPoint());
        QVERIFY(application()->videoPlugin()->currentPlugin() != ids.at(row));
        const QRect mark(plugin->mapToScene({plugin->width() - 26, 10}).toPoint(), QSize(16, 16));
        const QImage unmarked = grab().copy(mark);
        clickAt(plugin->mapToScene({160, 18}).toPoint());
        QCOMPARE(readAndCloseMessage(), message);
        QCOMPARE(application()->videoPlugin()->currentPlugin(), ids.at(row));
        QTRY_VERIFY(settingsFile().contains("videoPlugin=" + ids.at(row).toLatin1() + '\n'));
        QCOMPARE(named(QAccessible::RadioButton, true), QStringList(labels.at(row)));
        QTRY_VERIFY(grab().copy(mark) != unmarked);
    }
}

void tst_MainWindowLists::anErrorOffersTheBackends()
{
    hideControls();
    QVERIFY(dropFiles({media.bytes(QStringLiteral("broken.mp4"), "no film")}));
    QTRY_VERIFY(reads(QStringLiteral("change video plugin")));
    clickOn(itemReading(QStringLiteral("change video plugin")));
    QCOMPARE(state(), QStringLiteral("ControlsPanel"));
    QCOMPARE(openLists(), QStringList(QStringLiteral("Video Plugin")));
}

void tst_MainWindowLists::aLowWindowScrollsAList()
{
    window()->resize(640, 300);
    QTRY_COMPARE(bar()->y(), 260.);
    press(QStringLiteral("Effect"));
    const QQuickItem *list = control(QStringLiteral("Image Effect"), QAccessible::PopupMenu);
    QTRY_COMPARE(list->mapRectToScene(list->boundingRect()), QRectF(280, 0, 360, 260));
    QQuickItem *last = pressable(QStringLiteral("Blue Only"));
    QVERIFY(last->mapToScene({0, 0}).y() > 260);
    const auto atTheEnd = [&] {
        if (last->mapToScene({0, 40}).y() > 250)
            turnWheel({}, {0, -120});
        return last->mapToScene({0, 40}).y() == 250;
    };
    QTRY_VERIFY(atTheEnd());
    QCOMPARE(view()->fov(), 90.F);
    clickOn(last);
    QCOMPARE(picture()->effect(), int(OrbShaderCodeBuilder::BLUE_ONLY));
    keepPicture(QStringLiteral("list-low"));
}

int main(int argc, char **argv)
{
    return tst_MainWindowLists().run(argc, argv);
}

#include "tst_MainWindowLists.moc"
