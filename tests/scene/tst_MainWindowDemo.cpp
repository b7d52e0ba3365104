#include "SceneFixture.h"

#include <QScreen>
#include <QTest>

/// The program started in demo mode with a picture.
class tst_MainWindowDemo : public SceneFixture
{
    Q_OBJECT

private slots:
    void startsFullScreenWithThePictureAndNoPopup();
    void theBarStaysAndItsListsClose();
    void aDoubleClickChangesNothing();
    void escapeEndsFullScreen();
};

void tst_MainWindowDemo::startsFullScreenWithThePictureAndNoPopup()
{
    QCOMPARE(state(), QStringLiteral("Video"));
    QVERIFY(window()->fullScreen());
    QTRY_COMPARE(window()->size(), window()->screen()->size());
    QTRY_VERIFY(showsOctantsAhead());
    QVERIFY(!reads(QStringLiteral("Orbix Sight 1.4.0")));
}

void tst_MainWindowDemo::theBarStaysAndItsListsClose()
{
    QVERIFY(barIsUp());
    moveTo(middle());
    QCOMPARE(state(), QStringLiteral("ControlsPanel"));
    clickOn(control(QStringLiteral("Menu")));
    QCOMPARE(openLists(), QStringList(QStringLiteral("Menu")));
    moveTo(middle());
    scene(QStringLiteral("timerHideControls.triggered()"));
    QCOMPARE(state(), QStringLiteral("Video"));
    QCOMPARE(openLists(), QStringList());
    QTRY_VERIFY(!control(QStringLiteral("Menu"), QAccessible::PopupMenu));
    QVERIFY(barIsUp());
    QVERIFY(imageItem(QStringLiteral("newui/pause_mini_button.png")));
    keepPicture(QStringLiteral("demo"));
}

void tst_MainWindowDemo::aDoubleClickChangesNothing()
{
    QTest::mouseDClick(window(), Qt::LeftButton, Qt::NoModifier, middle());
    QVERIFY(!QTest::qWaitFor([this] { return !window()->fullScreen(); }, 800));
}

void tst_MainWindowDemo::escapeEndsFullScreen()
{
    key(Qt::Key_Escape);
    QTRY_VERIFY(!window()->fullScreen());
    key(Qt::Key_F);
    QTRY_VERIFY(window()->fullScreen());
    QTRY_COMPARE(window()->size(), window()->screen()->size());
}

int main(int argc, char **argv)
{
    tst_MainWindowDemo test;
    return test.run(argc, argv, {QStringLiteral("--demo"), test.media.octants()});
}

#include "tst_MainWindowDemo.moc"
