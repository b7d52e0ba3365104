#include "ProcessLevel.h"
#include "SceneFixture.h"
#include "SoakShare.h"

#include <QTest>

#include <private/qabstractanimation_p.h>

namespace {
constexpr int kRounds = 500;
constexpr int kFirstRounds = 10; ///< bring in all that stays: compiled panels, fonts, pools
const QString kLists = QStringLiteral("the bar's lists");
const char *const kPanels[] = {"PopupAbout", "PopupAboutThirdParty", "PopupOpenFile",
                               "PopupSoftwareLog", "PopupUpdateAvailable"};
} // namespace

/// What a long use of lists and panels leaves behind: nothing. Animations run fifty times as fast.
class tst_MainWindowEndurance : public SceneFixture
{
    Q_OBJECT

private:
    void openAndCloseList(QQuickItem *list);
    void openAndClosePanel(const QString &name);
    void openAndClose(const QString &what);

    QQuickItem *m_bar = nullptr;
    QVector<QQuickItem *> m_lists;
    ProcessLevel m_level;

private slots:
    void initTestCase();
    void listsAndPanelsLeaveNothingBehind_data();
    void listsAndPanelsLeaveNothingBehind();
};

void tst_MainWindowEndurance::initTestCase()
{
    SceneFixture::initTestCase();
    QVERIFY(dropFiles({media.octants()}));
    QTRY_COMPARE(playerStatus(), QMediaPlayer::BufferedMedia);
    QUnifiedTimer::instance()->setSlowModeEnabled(true);
    QUnifiedTimer::instance()->setSlowdownFactor(0.02);

    m_bar = qvariant_cast<QQuickItem *>(scene(QStringLiteral("orb_bar")));
    const auto items = m_bar->findChildren<QQuickItem *>();
    for (QQuickItem *item : items) {
        if (item->state() == QLatin1String("Hidden"))
            m_lists += item;
    }
    QCOMPARE(m_lists.size(), 7);

    for (int i = 0; i < kFirstRounds; ++i) {
        openAndClose(kLists);
        for (const char *panel : kPanels)
            openAndClose(QString::fromLatin1(panel));
    }
    m_level = ProcessLevel::now();
}

void tst_MainWindowEndurance::openAndCloseList(QQuickItem *list)
{
    const auto press = [this, list] {
        QMetaObject::invokeMethod(m_bar, "showElement", Q_ARG(QVariant, QVariant::fromValue(list)));
    };
    press();
    QVERIFY(list->isVisible());
    grab();
    press();
    QTRY_VERIFY(!list->isVisible());
}

void tst_MainWindowEndurance::openAndClosePanel(const QString &name)
{
    const QString loader = QStringLiteral("orb_popup.children[2].");
    scene(QStringLiteral("root.onDisplayPopup('qrc:/qml/popup/%1.qml')").arg(name));
    QTRY_COMPARE(scene(loader + QStringLiteral("scale")).toReal(), 1.);
    grab();
    scene(loader + QStringLiteral("item.close()"));
    QTRY_COMPARE(state(), QStringLiteral("Video"));
    QVERIFY(!scene(loader + QStringLiteral("item")).value<QObject *>());
}

void tst_MainWindowEndurance::openAndClose(const QString &what)
{
    if (what != kLists) {
        openAndClosePanel(what);
        return;
    }
    scene(QStringLiteral("root.changeState('ControlsPanel')"));
    for (QQuickItem *list : qAsConst(m_lists))
        openAndCloseList(list);
}

void tst_MainWindowEndurance::listsAndPanelsLeaveNothingBehind_data()
{
    QTest::addColumn<QString>("what");
    QTest::addRow("lists") << kLists;
    for (const char *panel : kPanels)
        QTest::addRow("%s", panel) << QString::fromLatin1(panel);
}

void tst_MainWindowEndurance::listsAndPanelsLeaveNothingBehind()
{
    QFETCH(QString, what);
    for (int i = 0; i < soakTimes(kRounds); ++i)
        openAndClose(what);
    const ProcessLevel now = ProcessLevel::now();
    qInfo("%s; now %s", qPrintable(m_level.text()), qPrintable(now.text()));
    QVERIFY(now.isWithin(m_level));
}

int main(int argc, char **argv)
{
    return tst_MainWindowEndurance().run(argc, argv);
}

#include "tst_MainWindowEndurance.moc"
