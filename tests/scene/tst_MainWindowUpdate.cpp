#include "SceneFixture.h"
#include "UpdateServer.h"

#include <QDesktopServices>
#include <QMessageBox>
#include <QTest>

namespace {
const QString kVersionPath = QStringLiteral("/updates/oxs/stable/version");
const QString kChangeLogPath = QStringLiteral("/updates/oxs/stable/changelog");
const QString kSource = QStringLiteral("?src=oxs/1.4.0.400");
} // namespace

/// What the user sees of an update: the program against a server that it really asks.
class tst_MainWindowUpdate : public SceneFixture
{
    Q_OBJECT

public slots:
    void takeAddress(const QUrl &address) { m_opened += address.toString(); }

private:
    UpdateServer m_server;
    QStringList m_opened; ///< addresses that went to the browser

private slots:
    void initTestCase();
    void anUnreachableServerSaysNothing();
    void theLatestVersionIsToldOnDemand();
    void aNewerVersionIsOffered();
    void keysDoNotCloseTheOffer();
};

void tst_MainWindowUpdate::initTestCase()
{
    SceneFixture::initTestCase();
    QVERIFY(dropFiles({media.octants()}));
    QTRY_COMPARE(playerStatus(), QMediaPlayer::BufferedMedia);
    QDesktopServices::setUrlHandler(QStringLiteral("http"), this, "takeAddress");
}

/// The server starts only after this.
void tst_MainWindowUpdate::anUnreachableServerSaysNothing()
{
    const QByteArray settings = settingsFile();
    window()->checkUpdate();
    // What comes of the check would have come with the check after it.
    QVERIFY(m_server.start());
    m_server.give(kVersionPath, "<html>no version</html>");
    const auto asked = [this] {
        if (m_server.asked().isEmpty())
            window()->checkUpdate();
        return m_server.asked().contains(kVersionPath + kSource);
    };
    QTRY_VERIFY(asked());
    QVERIFY(!messageBox());
    QCOMPARE(state(), QStringLiteral("Video"));
    QTRY_VERIFY(showsOctantsAhead());
    QTRY_VERIFY(settingsFile() != settings); // only the time of the check
    QCOMPARE(settingsFile().count('='), settings.count('='));
}

void tst_MainWindowUpdate::theLatestVersionIsToldOnDemand()
{
    m_server.give(kVersionPath, "1.4.0.400_2015-02-19\n");
    window()->checkUpdate();
    QCOMPARE(readAndCloseMessage(),
             QStringLiteral("There is no update for this product.\n"
                            "Your are already running the most up to date version."));
}

void tst_MainWindowUpdate::aNewerVersionIsOffered()
{
    m_server.give(kVersionPath, "1.10.0.400_2026-10-05\n");
    m_server.give(kChangeLogPath,
                  "<h3>What is new</h3><img src='http://127.0.0.1:47114/spy.png'>"
                  "<p>See <a href='http://127.0.0.1:47114/guide'>here</a></p>");
    window()->checkUpdate();
    QTRY_VERIFY(reads(QStringLiteral("New version available 1.10.0")));
    QCOMPARE(state(), QStringLiteral("Popup"));
    QVERIFY(reads(QStringLiteral("A new version of this product has been released (%1)")
                      .arg(QDate(2026, 10, 5).toString(Qt::TextDate))));
    QQuickItem *log = item([](QQuickItem *candidate) {
        return candidate->property("text").toString().contains(QStringLiteral("What is new"));
    });
    QVERIFY(log);
    QTRY_COMPARE(scene(QStringLiteral("orb_popup.children[2].scale")).toReal(), 1.);
    keepPicture(QStringLiteral("update-available"));

    const QString address = QStringLiteral("http://127.0.0.1:47114/");
    const QString product = address + QStringLiteral("updates/oxs/stable/");
    QMetaObject::invokeMethod(log, "linkActivated",
                              Q_ARG(QString, address + QStringLiteral("guide")));
    for (const char *button : {"Open Website", "Show History", "Download installer"})
        clickOn(itemReading(QString::fromLatin1(button)));
    QCOMPARE(m_opened,
             (QStringList{address + QStringLiteral("guide"), address,
                          product + QStringLiteral("history") + kSource,
                          product + QStringLiteral("win32") + kSource}));
    clickOn(itemReading(QStringLiteral("Close")));
    QTRY_COMPARE(state(), QStringLiteral("Video"));
    QTRY_VERIFY(showsOctantsAhead());
    // The picture in the change log was not fetched.
    QVERIFY(m_server.asked().filter(QStringLiteral("spy")).isEmpty());
}

void tst_MainWindowUpdate::keysDoNotCloseTheOffer()
{
    window()->OnNewVersionAvailable();
    QTRY_VERIFY(reads(QStringLiteral("New version available 1.10.0")));
    QTRY_VERIFY(scene(QStringLiteral("orb_popup.activeFocus")).toBool());
    key(Qt::Key_Escape);
    key(Qt::Key_Return);
    QTRY_COMPARE(scene(QStringLiteral("orb_popup.children[2].scale")).toReal(), 1.);
    QCOMPARE(state(), QStringLiteral("Popup"));

    // Its buttons are in reach of the keyboard.
    const auto isOnClose = [this] {
        key(Qt::Key_Tab);
        return window()->activeFocusItem() == control(QStringLiteral("Close"));
    };
    QVERIFY(isOnClose() || isOnClose() || isOnClose());
    key(Qt::Key_Space);
    QTRY_COMPARE(state(), QStringLiteral("Video"));
}

int main(int argc, char **argv)
{
    return tst_MainWindowUpdate().run(argc, argv);
}

#include "tst_MainWindowUpdate.moc"
