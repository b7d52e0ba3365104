#include "SceneFixture.h"

#include <QTest>

namespace {
const QString kVersion = QStringLiteral("Orbix Sight 1.4.0");
} // namespace

/// The panels over the scene.
class tst_MainWindowPopups : public SceneFixture
{
    Q_OBJECT

private:
    void openAbout();
    void openPanel(const QString &name, const QString &title);

private slots:
    void initTestCase();
    void keysInAbout_data();
    void keysInAbout();
    void aClickAnywhereClosesAbout();
    void panelsCloseByKeyAndButton_data();
    void panelsCloseByKeyAndButton();
    void controlsHaveNamesAndRoles_data();
    void controlsHaveNamesAndRoles();
    void theSoftwareLogTellsOfItsParts();
    void aPanelMayNameTheStateAfterIt();
    void aPanelThatCannotBeLoadedGivesTheSceneBack();
};

void tst_MainWindowPopups::initTestCase()
{
    SceneFixture::initTestCase();
    QVERIFY(dropFiles({media.octants()}));
    QTRY_COMPARE(playerStatus(), QMediaPlayer::BufferedMedia);
}

void tst_MainWindowPopups::openAbout()
{
    scene(QStringLiteral("root.onDisplayPopup('qrc:/qml/popup/PopupAbout.qml')"));
    QTRY_VERIFY(isFullSize(kVersion));
    // Keys go to the panel when it has the focus.
    QTRY_VERIFY(scene(QStringLiteral("orb_popup.activeFocus")).toBool());
}

void tst_MainWindowPopups::keysInAbout_data()
{
    QTest::addColumn<Qt::Key>("pressed");
    QTest::addColumn<bool>("closes");

    QTest::newRow("escape") << Qt::Key_Escape << true;
    QTest::newRow("return") << Qt::Key_Return << true;
    QTest::newRow("enter") << Qt::Key_Enter << true;
    QTest::newRow("H, which shows the help otherwise") << Qt::Key_H << false;
    QTest::newRow("E, which changes the effect otherwise") << Qt::Key_E << false;
    QTest::newRow("6, which turns the view otherwise") << Qt::Key_6 << false;
}

void tst_MainWindowPopups::keysInAbout()
{
    QFETCH(Qt::Key, pressed);
    QFETCH(bool, closes);
    openAbout();
    key(pressed);
    QCOMPARE(QTest::qWaitFor([this] { return state() == QLatin1String("Video"); },
                             closes ? 5000 : 700),
             closes);
    QCOMPARE(reads(kVersion), !closes);
    QVERIFY(!scene(QStringLiteral("orb_help.visible")).toBool());
    QCOMPARE(picture()->effect(), int(OrbShaderCodeBuilder::NO_EFFECT));
    QCOMPARE(view()->yaw(), 0.F);
}

void tst_MainWindowPopups::aClickAnywhereClosesAbout()
{
    openAbout();
    clickAt({20, 20});
    QTRY_COMPARE(state(), QStringLiteral("Video"));
    QTRY_VERIFY(showsOctantsAhead());
}

void tst_MainWindowPopups::openPanel(const QString &name, const QString &title)
{
    scene(QStringLiteral("root.onDisplayPopup('qrc:/qml/popup/%1.qml')").arg(name));
    QTRY_VERIFY(isFullSize(title));
    QTRY_VERIFY(scene(QStringLiteral("orb_popup.activeFocus")).toBool());
}

void tst_MainWindowPopups::panelsCloseByKeyAndButton_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text"); // the beginning of one of the panel's
    QTest::addColumn<int>("pressed");  // 0 for the button

    const QString thirdParty = QStringLiteral("PopupAboutThirdParty");
    const QString log = QStringLiteral("PopupSoftwareLog");
    const QString stars = QString(40, QLatin1Char('*')) + QStringLiteral("\n* LibVLC");
    QTest::newRow("third party, escape")
        << thirdParty << QStringLiteral("Third party") << stars << int(Qt::Key_Escape);
    QTest::newRow("third party, button")
        << thirdParty << QStringLiteral("Third party") << stars << 0;
    QTest::newRow("log, return") << log << QStringLiteral("Software log")
                                 << QStringLiteral("Renderer : ") << int(Qt::Key_Return);
    QTest::newRow("log, enter") << log << QStringLiteral("Software log")
                                << QStringLiteral("Media : file:///") << int(Qt::Key_Enter);
    QTest::newRow("log, button") << log << QStringLiteral("Software log")
                                 << QStringLiteral("Leap Motion device not found.") << 0;
}

void tst_MainWindowPopups::panelsCloseByKeyAndButton()
{
    QFETCH(QString, name);
    QFETCH(QString, title);
    QFETCH(QString, text);
    QFETCH(int, pressed);
    openPanel(name, title);
    QVERIFY(item([&text](QQuickItem *candidate) {
        return candidate->property("text").toString().startsWith(text);
    }));
    // The sheet is white at its edges, whatever the desktop's colours are.
    QTRY_VERIFY(shows(Qt::white, middle() + QPoint(-285, 130)));
    key(Qt::Key_E);
    key(Qt::Key_Space);
    QCOMPARE(picture()->effect(), int(OrbShaderCodeBuilder::NO_EFFECT));
    QCOMPARE(state(), QStringLiteral("Popup"));
    if (pressed)
        key(Qt::Key(pressed));
    else
        clickOn(itemReading(QStringLiteral("Close")));
    QTRY_COMPARE(state(), QStringLiteral("Video"));
    QVERIFY(!reads(title));
}

void tst_MainWindowPopups::controlsHaveNamesAndRoles_data()
{
    QTest::addColumn<QString>("panel");
    QTest::addColumn<QString>("dialog");
    QTest::addColumn<QString>("links"); // separated by commas, as are the others
    QTest::addColumn<QString>("edits");
    QTest::addColumn<QString>("buttons");

    const auto row = [](const char *panel, const char *dialog, const char *links, const char *edits,
                        const char *buttons) {
        QTest::newRow(panel) << QString::fromLatin1(panel) << QString::fromLatin1(dialog)
                             << QString::fromLatin1(links) << QString::fromLatin1(edits)
                             << QString::fromLatin1(buttons);
    };
    row("PopupAbout", "Orbix Sight 1.4.0", "Website,Videos", "", "");
    row("PopupAboutThirdParty", "Third party", "", "", "Close");
    row("PopupOpenFile", "Open file/stream :", "", "Open file/stream :", "Browse...,Open,Cancel");
    row("PopupSoftwareCommunication", "UDP Communication", "", "Address part 4", "Save,Close");
    row("PopupSoftwareLog", "Software log", "", "", "Close");
    row("PopupUpdateAvailable", "New version available ", "", "",
        "Open Website,Show History,Close,Download installer");
}

void tst_MainWindowPopups::controlsHaveNamesAndRoles()
{
    QFETCH(QString, panel);
    QFETCH(QString, dialog);
    openPanel(panel, dialog);
    QVERIFY(control(dialog, QAccessible::Dialog));
    QFETCH(QString, links);
    QFETCH(QString, edits);
    QFETCH(QString, buttons);
    const QPair<QString, QAccessible::Role> expected[] = {{links, QAccessible::Link},
                                                          {edits, QAccessible::EditableText},
                                                          {buttons, QAccessible::Button}};
    for (const auto &[names, role] : expected) {
        const QStringList all = names.split(QLatin1Char(','), Qt::SkipEmptyParts);
        for (const QString &name : all)
            QVERIFY2(control(name, role), qPrintable(name));
    }
    QCOMPARE(namelessHotPlaces(), QStringList());
    scene(QStringLiteral("orb_popup.onClose()")); // of one that no key closes
    QTRY_COMPARE(state(), QStringLiteral("Video"));
}

void tst_MainWindowPopups::theSoftwareLogTellsOfItsParts()
{
    openPanel(QStringLiteral("PopupSoftwareLog"), QStringLiteral("Software log"));
    for (const char *part :
         {"Oculus Rift", "Intel Real Sense", "Sensor", "Leap Motion", "GPU", "Video"})
        QVERIFY2(reads(QString::fromLatin1(part)), part);
    // A picture is transferred by the scene itself.
    QVERIFY(reads(window()->gpuInfo()));
    scene(QStringLiteral("orb_mediaLoader.mediaPlayer.textureTransfer = 'by hand'"));
    QVERIFY(reads(window()->gpuInfo() + QStringLiteral("Texture transfer mode : by hand")));
    scene(QStringLiteral("orb_mediaLoader.mediaPlayer.textureTransfer = ''"));
}

void tst_MainWindowPopups::aPanelMayNameTheStateAfterIt()
{
    openPanel(QStringLiteral("PopupAboutThirdParty"), QStringLiteral("Third party"));
    scene(QStringLiteral("orb_popup.onClose('Wall')"));
    QTRY_COMPARE(state(), QStringLiteral("Wall"));
    openPanel(QStringLiteral("PopupAboutThirdParty"), QStringLiteral("Third party"));
    key(Qt::Key_Escape);
    QTRY_COMPARE(state(), QStringLiteral("Video"));
}

void tst_MainWindowPopups::aPanelThatCannotBeLoadedGivesTheSceneBack()
{
    const QString file = QStringLiteral("qrc:/qml/popup/PopupMissing.qml");
    expectWarning(QStringLiteral("PopupMissing.qml: (File not found|No such file)"));
    scene(QStringLiteral("root.onDisplayPopup('%1')").arg(file));
    QCOMPARE(state(), QStringLiteral("Popup"));
    QTRY_COMPARE(state(), QStringLiteral("Video"));
}

int main(int argc, char **argv)
{
    return tst_MainWindowPopups().run(argc, argv);
}

#include "tst_MainWindowPopups.moc"
