#include "OrbVideoPlugin.h"

#include "BackendTable.h"
#include "OrbSettingsManager.h"
#include "VlcInstance.h"
#include "VlcOptions.h"
#include "WarningsFail.h"

#include <vlc/vlc.h>

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
    void theBackendsOfThisPlatformAreOffered();
    void eachPlatformHasItsBackends();
    void aChoiceIsWrittenAtOnceAndAsksForARestart();
    void hardwareDecodingFollowsTheChoice_data();
    void hardwareDecodingFollowsTheChoice();
    void libVlcIsStartedByTheOptions();

private:
    OrbSettingsManager m_settings{kOrganisation, kApplication};
};

void tst_OrbVideoPlugin::init()
{
    WarningsFail::init();
    QSettings(QSettings::UserScope, kOrganisation, kApplication).clear();
}

void tst_OrbVideoPlugin::theBackendsOfThisPlatformAreOffered()
{
    const OrbVideoPlugin plugin(&m_settings);
    QCOMPARE(plugin.currentPlugin(), QStringLiteral("vlc"));
    const QVariantList expected{
        QStringList{QStringLiteral("vlc"), QStringLiteral("VLC"),
                    QStringLiteral("With VLC backend you should play any video, current version is "
                                   " '%1'")
                        .arg(QLatin1String(libvlc_get_version()))},
        QStringList{QStringLiteral("vlc_hw"), QStringLiteral("VLC with VA-API"),
                    QStringLiteral("Use VLC backend with hardware decoding VA-API. It's not "
                                   "guaranteed to work everywhere.")},
        QStringList{QStringLiteral("gst"), QStringLiteral("GStreamer"),
                    QStringLiteral("This is the Linux native backend.")}};
    QCOMPARE(plugin.pluginsList(), expected);
}

void tst_OrbVideoPlugin::eachPlatformHasItsBackends()
{
    const auto backends = [](BackendPlatform platform) -> QString {
        QStringList all;
        for (const Backend &backend : backendsOf(platform)) {
            const QString decoder = QLatin1String(backend.decoder);
            all += QLatin1String(backend.id)
                + (decoder.isEmpty() ? QString() : QLatin1Char('/') + decoder)
                + (backend.ownServiceFolder ? QStringLiteral("+") : QString());
        }
        return all.join(QLatin1Char(' ')) + QStringLiteral(": ") + defaultBackend(platform);
    };
    QCOMPARE(backends(BackendPlatform::Linux), QStringLiteral("vlc vlc_hw/vaapi gst: vlc"));
    QCOMPARE(backends(BackendPlatform::Windows), QStringLiteral("vlc vlc_hw/dxva2 wmf+ ds+: wmf"));
}

void tst_OrbVideoPlugin::aChoiceIsWrittenAtOnceAndAsksForARestart()
{
    OrbVideoPlugin plugin(&m_settings);
    QStringList events;
    connect(&plugin, &OrbVideoPlugin::currentPluginChanged, &plugin,
            [&] { events += QStringLiteral("stored ") + m_settings.string(kKey, QString()); });
    connect(&plugin, &OrbVideoPlugin::displayMessage, &plugin,
            [&](const QString &message) { events += message; });
    plugin.setCurrentPlugin(plugin.currentPlugin());
    QVERIFY(events.isEmpty() && !m_settings.contains(kKey));
    plugin.setCurrentPlugin(QStringLiteral("gst"));
    const QStringList expected{QStringLiteral("stored gst"),
                               QStringLiteral(
                                   "You must restart to apply modifications on video plugin.")};
    QCOMPARE(events, expected);

    for (const QString &stored : {QStringLiteral("gst"), QStringLiteral("no backend")}) {
        m_settings.write(kKey, stored);
        QCOMPARE(OrbVideoPlugin(&m_settings).currentPlugin(), stored);
    }
}

void tst_OrbVideoPlugin::hardwareDecodingFollowsTheChoice_data()
{
    QTest::addColumn<QString>("start");
    QTest::addColumn<bool>("stored");
    QTest::addColumn<bool>("atStart");
    QTest::addColumn<QString>("choice");
    QTest::addColumn<bool>("atExit");
    const QString soft = QStringLiteral("vlc");
    const QString hard = QStringLiteral("vlc_hw");
    QTest::newRow("switched on") << soft << false << false << hard << true;
    QTest::newRow("switched off") << hard << true << true << soft << false;
    QTest::newRow("left on") << hard << false << true << hard << true;
    QTest::newRow("a stale mirror") << soft << true << false << soft << false;
    QTest::newRow("another engine")
        << QStringLiteral("gst") << true << false << QStringLiteral("gst") << false;
}

void tst_OrbVideoPlugin::hardwareDecodingFollowsTheChoice()
{
    QFETCH(QString, start);
    QFETCH(bool, stored);
    QFETCH(QString, choice);
    VlcOptions &options = VlcOptions::process();
    const QString mirror = QStringLiteral("vlc/hardwareDecoding");
    m_settings.write(kKey, start);
    m_settings.write(mirror, stored);
    options.load(m_settings);
    OrbVideoPlugin plugin(&m_settings);
    QTEST(options.hardwareDecoding, "atStart");
    plugin.setCurrentPlugin(choice);
    options.save(m_settings);
    QTEST(m_settings.boolValue(mirror, !stored), "atExit");
    QCOMPARE(m_settings.string(kKey, QString()), choice);
}

void tst_OrbVideoPlugin::libVlcIsStartedByTheOptions()
{
    VlcOptions options;
    QByteArray expected = "--verbose=2 --quiet --intf dummy --ignore-config";
    const auto check = [&] {
        QByteArrayList arguments;
        for (const QByteArray &argument : vlcArguments(options))
            arguments += argument;
        QCOMPARE(arguments.join(' '), expected);
        // libVLC refuses what it does not know.
        std::vector<const char *> texts;
        for (const QByteArray &argument : qAsConst(arguments))
            texts.push_back(argument.constData());
        libvlc_instance_t *instance = libvlc_new(int(texts.size()), texts.data());
        QVERIFY(instance);
        libvlc_release(instance);
    };
    check();
    options.hardwareDecoding = true;
    expected += " --avcodec-hw=vaapi";
    check();
    options.disableAudio = true;
    expected += " --noaudio";
    check();
}

QTEST_GUILESS_MAIN(tst_OrbVideoPlugin)
#include "tst_OrbVideoPlugin.moc"
