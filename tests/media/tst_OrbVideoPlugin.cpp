#include "OrbVideoPlugin.h"

#include "OrbSettingsManager.h"
#include "WarningsFail.h"

#include <QtTest>

namespace {

const QString kKey = QStringLiteral("application/videoPlugin");
const QString kOrganisation = QStringLiteral("OrbixTests");
const QString kApplication = QStringLiteral("video plugin");

} // namespace

class tst_OrbVideoPlugin : public WarningsFail
{
    Q_OBJECT

private slots:
    void init();
    void theStoredChoiceIsCurrent_data();
    void theStoredChoiceIsCurrent();
    void aChoiceIsWrittenAtOnceAndAsksForARestart();
    void theCurrentRowChangesNothing();

private:
    OrbSettingsManager m_settings{kOrganisation, kApplication};
};

void tst_OrbVideoPlugin::init()
{
    WarningsFail::init();
    QSettings(QSettings::UserScope, kOrganisation, kApplication).clear();
}

void tst_OrbVideoPlugin::theStoredChoiceIsCurrent_data()
{
    QTest::addColumn<QString>("stored");
    QTest::newRow("a backend") << QStringLiteral("vlc_hw");
    QTest::newRow("no backend of this build") << QStringLiteral("ds");
}

void tst_OrbVideoPlugin::theStoredChoiceIsCurrent()
{
    QFETCH(QString, stored);
    m_settings.write(kKey, stored);
    const OrbVideoPlugin plugin(&m_settings);
    QCOMPARE(plugin.currentPlugin(), stored);
}

void tst_OrbVideoPlugin::aChoiceIsWrittenAtOnceAndAsksForARestart()
{
    OrbVideoPlugin plugin(&m_settings);
    QStringList events;
    connect(&plugin, &OrbVideoPlugin::currentPluginChanged, &plugin, [&] {
        events += QStringLiteral("changed to ") + plugin.currentPlugin();
        events += QStringLiteral("stored ") + m_settings.string(kKey, QString());
    });
    connect(&plugin, &OrbVideoPlugin::displayMessage, &plugin,
            [&](const QString &message) { events += message; });
    QVERIFY(plugin.setProperty("currentPlugin", QStringLiteral("vlc")));
    const QStringList expected{QStringLiteral("changed to vlc"), QStringLiteral("stored vlc"),
                               QStringLiteral(
                                   "You must restart to apply modifications on video plugin.")};
    QCOMPARE(events, expected);

    const OrbVideoPlugin next(&m_settings);
    QCOMPARE(next.currentPlugin(), QStringLiteral("vlc"));
}

void tst_OrbVideoPlugin::theCurrentRowChangesNothing()
{
    OrbVideoPlugin plugin(&m_settings);
    QSignalSpy changed(&plugin, &OrbVideoPlugin::currentPluginChanged);
    QSignalSpy message(&plugin, &OrbVideoPlugin::displayMessage);
    plugin.setCurrentPlugin(plugin.currentPlugin());
    QCOMPARE(changed.count() + message.count(), 0);
    QVERIFY(!m_settings.contains(kKey));
}

QTEST_GUILESS_MAIN(tst_OrbVideoPlugin)
#include "tst_OrbVideoPlugin.moc"
