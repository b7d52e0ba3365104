#include "OrbSettingsManager.h"

#include "Product.h"
#include "WarningsFail.h"

#include <QDir>
#include <QFile>
#include <QtTest>

namespace {

const QString kKey = QStringLiteral("application/test/key");

/// The user's store of the product, empty.
struct Store
{
    Store()
    {
        QSettings(QSettings::UserScope, Product::organisation(), Product::softwareName()).clear();
    }
    OrbSettingsManager settings{Product::organisation(), Product::softwareName()};
};

} // namespace

class tst_OrbSettingsManager : public WarningsFail
{
    Q_OBJECT

private slots:
    void theDefaultFirstMentionedAnswersForAText();
    void anUnknownTextIsEmpty();
    void aSeedIsWrittenOnce();
    void theStoreIsAFileNamedAfterTheVersion();
};

void tst_OrbSettingsManager::theDefaultFirstMentionedAnswersForAText()
{
    Store store;
    QCOMPARE(store.settings.value(kKey, QStringLiteral("first")).toString(),
             QStringLiteral("first"));
    QCOMPARE(store.settings.value(kKey, QStringLiteral("second")).toString(),
             QStringLiteral("second"));
    QCOMPARE(store.settings.string(kKey), QStringLiteral("first"));
    QVERIFY(!store.settings.contains(kKey));
}

void tst_OrbSettingsManager::anUnknownTextIsEmpty()
{
    Store store;
    QCOMPARE(store.settings.string(kKey), QString());
    // Asking has made the default: a later mention does not change it.
    store.settings.value(kKey, QStringLiteral("late"));
    QCOMPARE(store.settings.string(kKey), QString());
}

void tst_OrbSettingsManager::aSeedIsWrittenOnce()
{
    Store store;
    QCOMPARE(store.settings.seededValue(kKey, 30000).toInt(), 30000);
    QVERIFY(store.settings.contains(kKey));
    QCOMPARE(store.settings.seededValue(kKey, 5).toInt(), 30000);
    QCOMPARE(store.settings.intValue(kKey, 5), 30000);
}

void tst_OrbSettingsManager::theStoreIsAFileNamedAfterTheVersion()
{
    const QString folder = qEnvironmentVariable("XDG_CONFIG_HOME", QDir::homePath() + "/.config");
    {
        Store store;
        store.settings.write(kKey, QStringLiteral("in the file"));
    }
    QFile file(folder + QStringLiteral("/Orbix/Orbix Sight 1.4.conf"));
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.fileName()));
    QCOMPARE(file.readAll(), QByteArray("[application]\ntest\\key=in the file\n"));
}

QTEST_GUILESS_MAIN(tst_OrbSettingsManager)
#include "tst_OrbSettingsManager.moc"
