#include "ProcessLevel.h"
#include "SceneFixture.h"
#include "SoakShare.h"

#include <QTest>

#include <private/qabstractanimation_p.h>

namespace {
constexpr int kRounds = 500;
constexpr int kFirstRounds = 10; ///< bring in all that stays: compiled panels, fonts, pools
} // namespace

/// What a long use of lists and panels leaves behind: nothing. Animations run fifty times as fast.
class tst_MainWindowEndurance : public SceneFixture
{
    Q_OBJECT

private:
    void openAndCloseList(QQuickItem *list);
    void openAndClosePanel(const QString &name);
    void openAndCloseAll();

    QQuickItem *m_bar = nullptr;
    QVector<QQuickItem *> m_lists;

private slots:
    void initTestCase();
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

void tst_MainWindowEndurance::openAndCloseAll()
{
    scene(QStringLiteral("root.changeState('ControlsPanel')"));
    for (QQuickItem *list : qAsConst(m_lists))
        openAndCloseList(list);
    for (const char *panel : {"PopupAbout", "PopupAboutThirdParty", "PopupOpenFile",
                              "PopupSoftwareLog", "PopupUpdateAvailable"})
        openAndClosePanel(QString::fromLatin1(panel));
}

void tst_MainWindowEndurance::listsAndPanelsLeaveNothingBehind()
{
    for (int i = 0; i < kFirstRounds; ++i)
        openAndCloseAll();
    const ProcessLevel before = ProcessLevel::now();
    for (int i = 0; i < soakTimes(kRounds); ++i)
        openAndCloseAll();
    const ProcessLevel after = ProcessLevel::now();
    qInfo("%s; now %s", qPrintable(before.text()), qPrintable(after.text()));
    QVERIFY(after.isWithin(before));
}

int main(int argc, char **argv)
{
    return tst_MainWindowEndurance().run(argc, argv);
}

#include "tst_MainWindowEndurance.moc"
