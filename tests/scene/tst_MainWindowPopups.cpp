#include "SceneFixture.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QTest>

namespace {
const QString kPrompt = QStringLiteral("Open file/stream :");
const QString kVersion = QStringLiteral("Orbix Sight 1.4.0");
} // namespace

/// The panels over the scene: About, and the one that opens a file or an address.
class tst_MainWindowPopups : public SceneFixture
{
    Q_OBJECT

private:
    void openAbout();
    void openFilePanel();
    QString typed() const;
    bool opened(const QString &path) const { return title().endsWith(fileUrl(path).toString()); }
    QFileDialog *fileDialog() const;

    /// Whether the panel that reads `text` has swung in.
    bool isFullSize(const QString &text) const;

private slots:
    void initTestCase();
    void keysInAbout_data();
    void keysInAbout();
    void aClickAnywhereClosesAbout();
    void thePointerDoesNotReachThePictureUnderAPopup();
    void returnOpensWhatIsTyped();
    void theOpenButtonOpensWhatIsTyped();
    void anAddressOfAFileOpensToo();
    void escapeAndCancelOpenNothing_data();
    void escapeAndCancelOpenNothing();
    void keysOfTheSceneAreTextInThePanel();
    void browsingFillsInTheFile();
    void whatIsNeitherPictureNorFilmIsTriedAsAStream();
};

void tst_MainWindowPopups::initTestCase()
{
    SceneFixture::initTestCase();
    QVERIFY(dropFiles({media.octants()}));
    QTRY_COMPARE(playerStatus(), QMediaPlayer::BufferedMedia);
}

bool tst_MainWindowPopups::isFullSize(const QString &text) const
{
    const QQuickItem *label = itemReading(text);
    return label && qFuzzyCompare(label->mapRectToScene({0, 0, 1, 1}).width(), 1);
}

void tst_MainWindowPopups::openAbout()
{
    scene(QStringLiteral("root.onDisplayPopup('qrc:/qml/popup/PopupAbout.qml')"));
    QTRY_VERIFY(isFullSize(kVersion));
    // Keys go to the panel when it has the focus.
    QTRY_VERIFY(scene(QStringLiteral("orb_popup.activeFocus")).toBool());
}

void tst_MainWindowPopups::openFilePanel()
{
    key(Qt::Key_N, Qt::ControlModifier);
    QTRY_VERIFY(isFullSize(kPrompt));
    QTRY_VERIFY(window()->activeFocusItem()->inherits("QQuickTextInput"));
}

QString tst_MainWindowPopups::typed() const
{
    return window()->activeFocusItem()->property("text").toString();
}

QFileDialog *tst_MainWindowPopups::fileDialog() const
{
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets) {
        auto *dialog = qobject_cast<QFileDialog *>(widget);
        if (dialog && dialog->isVisible())
            return dialog;
    }
    return nullptr;
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

void tst_MainWindowPopups::thePointerDoesNotReachThePictureUnderAPopup()
{
    openFilePanel();
    turnWheel({}, {0, 120});
    drag({300, 100}, {60, 60});
    QCOMPARE(view()->fov(), 90.F);
    QCOMPARE(view()->yaw(), 0.F);
    QCOMPARE(state(), QStringLiteral("Popup"));
}

void tst_MainWindowPopups::returnOpensWhatIsTyped()
{
    const QString path = media.octants(QStringLiteral("typed.png"), {256, 128});
    openFilePanel();
    type(path);
    QCOMPARE(typed(), path);
    keepPicture(QStringLiteral("open-file"));
    key(Qt::Key_Return);
    QTRY_COMPARE(state(), QStringLiteral("Video"));
    QVERIFY(opened(path));
    QTRY_VERIFY(showsOctantsAhead());
}

void tst_MainWindowPopups::theOpenButtonOpensWhatIsTyped()
{
    const QString path = media.octants();
    openFilePanel();
    QVERIFY(!itemReading(QStringLiteral("Open"))->isEnabled());
    type(path);
    clickOn(itemReading(QStringLiteral("Open")));
    QTRY_COMPARE(state(), QStringLiteral("Video"));
    QVERIFY(opened(path));
    QTRY_VERIFY(showsOctantsAhead());
}

void tst_MainWindowPopups::anAddressOfAFileOpensToo()
{
    const QString path = media.octants(QStringLiteral("with blank.png"), {256, 128});
    openFilePanel();
    type(QString::fromLatin1(fileUrl(path).toEncoded()));
    key(Qt::Key_Enter);
    QTRY_COMPARE(state(), QStringLiteral("Video"));
    QTRY_VERIFY(showsOctantsAhead());
    QVERIFY(opened(path));
}

void tst_MainWindowPopups::escapeAndCancelOpenNothing_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("pressed"); // 0 for the button

    QTest::newRow("escape") << QStringLiteral("abc.png") << int(Qt::Key_Escape);
    QTest::newRow("cancel") << QStringLiteral("abc.png") << 0;
    QTest::newRow("return with nothing typed") << QString() << int(Qt::Key_Return);
}

void tst_MainWindowPopups::escapeAndCancelOpenNothing()
{
    QFETCH(QString, text);
    QFETCH(int, pressed);
    const QString before = title();
    openFilePanel();
    type(text);
    if (pressed)
        key(Qt::Key(pressed));
    else
        clickOn(itemReading(QStringLiteral("Cancel")));
    QTRY_COMPARE(state(), QStringLiteral("Video"));
    QCOMPARE(title(), before);
    QCOMPARE(playerStatus(), QMediaPlayer::BufferedMedia);
    QTRY_VERIFY(!reads(kPrompt));
}

void tst_MainWindowPopups::keysOfTheSceneAreTextInThePanel()
{
    openFilePanel();
    type(QStringLiteral("hef46 "));
    key(Qt::Key_Left);
    key(Qt::Key_F1);
    key(Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(typed(), QStringLiteral("hef46 "));
    QCOMPARE(state(), QStringLiteral("Popup"));
    QVERIFY(!window()->fullScreen());
    QVERIFY(!scene(QStringLiteral("orb_help.visible")).toBool());
    QCOMPARE(view()->yaw(), 0.F);
}

void tst_MainWindowPopups::browsingFillsInTheFile()
{
    const QString path = media.octants();
    openFilePanel();
    const QQuickItem *input = window()->activeFocusItem();
    clickOn(itemReading(QStringLiteral("Browse...")));
    QTRY_VERIFY(fileDialog());
    QFileDialog *dialog = fileDialog();
    auto *name = dialog->findChild<QLineEdit *>();
    QTest::keyClicks(name, path);
    QTest::keyClick(name, Qt::Key_Return);
    QTRY_COMPARE(input->property("text").toString(), fileUrl(path).toString());
    QTRY_VERIFY(!fileDialog());
    QTRY_VERIFY(window()->isActive());
    clickOn(itemReading(QStringLiteral("Open")));
    QTRY_COMPARE(state(), QStringLiteral("Video"));
    QVERIFY(opened(path));
    QTRY_VERIFY(showsOctantsAhead());
}

void tst_MainWindowPopups::whatIsNeitherPictureNorFilmIsTriedAsAStream()
{
    const QString path = media.bytes(QStringLiteral("notes.txt"), "nothing to see");
    openFilePanel();
    type(path);
    key(Qt::Key_Return);
    QTRY_COMPARE(playerStatus(), QMediaPlayer::InvalidMedia);
    QVERIFY(opened(path));
    QVERIFY(!messageBox());

    QVERIFY(dropFiles({media.octants()}));
    QTRY_VERIFY(showsOctantsAhead());
}

int main(int argc, char **argv)
{
    return tst_MainWindowPopups().run(argc, argv);
}

#include "tst_MainWindowPopups.moc"
