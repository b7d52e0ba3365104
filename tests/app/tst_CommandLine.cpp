#include "CommandLine.h"

#include "WarningsFail.h"

#include <QCoreApplication>
#include <QtTest>

#include <vector>

namespace {

/// The map of a command line with these arguments behind the program's name.
QVariantMap parsed(const QStringList &arguments)
{
    std::vector<QByteArray> texts{"orbixsight"};
    for (const QString &argument : arguments)
        texts.push_back(argument.toUtf8());
    std::vector<char *> argv;
    argv.reserve(texts.size() + 1);
    for (QByteArray &text : texts)
        argv.push_back(text.data());
    argv.push_back(nullptr);
    int argc = int(texts.size());
    const QCoreApplication application(argc, argv.data());
    return parseCommandLine(application, QStringLiteral("/start/my films"));
}

} // namespace

class tst_CommandLine : public WarningsFail
{
    Q_OBJECT

private slots:
    void noArgumentsAreAnEmptyMap();
    void optionsAndFilesAreRead_data();
    void optionsAndFilesAreRead();
};

void tst_CommandLine::noArgumentsAreAnEmptyMap()
{
    QVERIFY(parsed({}).isEmpty());
}

void tst_CommandLine::optionsAndFilesAreRead_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("udp");
    QTest::addColumn<bool>("oculus");
    QTest::addColumn<bool>("demo");
    QTest::addColumn<QString>("files");

    const auto row = [](const char *line, const char *udp, bool oculus, bool demo,
                        const char *files) {
        QTest::newRow(line) << QString::fromLatin1(line) << QString::fromLatin1(udp) << oculus
                            << demo << QString::fromLatin1(files);
    };
    row("/a.jpg", "", false, false, "/a.jpg");
    row("/b.jpg /a.jpg", "", false, false, "/b.jpg /a.jpg");
    row("-u master", "master", false, false, "");
    row("--udp slave", "slave", false, false, "");
    row("--udp=slave", "slave", false, false, "");
    row("-uslave", "slave", false, false, "");
    row("-u neither", "neither", false, false, "");
    row("-u master -u slave", "slave", false, false, "");
    row("-o", "", true, false, "");
    row("--oculus", "", true, false, "");
    row("-d", "", false, true, "");
    row("--demo", "", false, true, "");
    row("-od", "", true, true, "");
    row("-d /a.jpg -u master --oculus /b.jpg", "master", true, true, "/a.jpg /b.jpg");
    row("-- /-d", "", false, false, "/-d");
    row("a.jpg http://host/a.mp4", "", false, false, "/start/my films/a.jpg http://host/a.mp4");
}

void tst_CommandLine::optionsAndFilesAreRead()
{
    QFETCH(QString, line);
    QFETCH(QString, udp);
    QFETCH(bool, oculus);
    QFETCH(bool, demo);
    QFETCH(QString, files);
    const QVariantMap map = parsed(line.split(QLatin1Char(' ')));
    const QStringList keys{QStringLiteral("demo"), QStringLiteral("files"),
                           QStringLiteral("oculus"), QStringLiteral("udp")};
    QCOMPARE(map.keys(), keys);
    QCOMPARE(map.value(QStringLiteral("udp")), QVariant(udp));
    QCOMPARE(map.value(QStringLiteral("oculus")), QVariant(oculus));
    QCOMPARE(map.value(QStringLiteral("demo")), QVariant(demo));
    QCOMPARE(map.value(QStringLiteral("files")).toStringList().join(QLatin1Char(' ')), files);
}

QTEST_APPLESS_MAIN(tst_CommandLine)
#include "tst_CommandLine.moc"
