#include "CommandLine.h"

#include "WarningsFail.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QtTest>

#include <vector>

namespace {

/// Set for the program itself when it is to parse its arguments and end.
constexpr char kParseOnly[] = "ORBIX_TEST_PARSE_ONLY";

const QString kStartFolder = QStringLiteral("/start/my films");

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
    return parseCommandLine(application, kStartFolder);
}

} // namespace

class tst_CommandLine : public WarningsFail
{
    Q_OBJECT

private slots:
    void noArgumentsAreAnEmptyMap();
    void optionsAndFilesAreRead_data();
    void optionsAndFilesAreRead();
    void filesStartAtTheFolderOfTheStart_data();
    void filesStartAtTheFolderOfTheStart();
    void aWrongCommandLineEndsTheProgram_data();
    void aWrongCommandLineEndsTheProgram();
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

void tst_CommandLine::filesStartAtTheFolderOfTheStart_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("file");
    const auto row = [](const char *argument, const char *file) {
        QTest::newRow(argument) << QString::fromUtf8(argument) << QString::fromUtf8(file);
    };
    row("a.jpg", "/start/my films/a.jpg");
    row("../a b#1.jpg", "/start/a b#1.jpg");
    row("写.jpg", "/start/my films/写.jpg");
    row("/v/a.jpg", "/v/a.jpg");
    row("http://host/a.mp4?x=1", "http://host/a.mp4?x=1");
    row("udp://@:1234", "udp://@:1234");
    row("file:///v/a%20b.jpg", "file:///v/a%20b.jpg");
}

void tst_CommandLine::filesStartAtTheFolderOfTheStart()
{
    QFETCH(QString, argument);
    QFETCH(QString, file);
    const QStringList files = parsed({argument}).value(QStringLiteral("files")).toStringList();
    QCOMPARE(files.size(), 1);
    const QString &got = files.first();
    QCOMPARE(got.startsWith(QLatin1Char('/')) ? QDir::cleanPath(got) : got, file);
}

void tst_CommandLine::aWrongCommandLineEndsTheProgram_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("message"); ///< what standard error names; empty: no message
    const auto row = [](const char *arguments, int exitCode, const char *message) {
        QTest::newRow(arguments) << QString::fromLatin1(arguments).split(QLatin1Char(' '))
                                 << exitCode << QString::fromLatin1(message);
    };
    row("--demo /a.jpg", EXIT_SUCCESS, "");
    row("--fast", EXIT_FAILURE, "fast");
    row("-x /a.jpg", EXIT_FAILURE, "x");
    row("--help", EXIT_FAILURE, "help");
    row("--version", EXIT_FAILURE, "version");
    row("--udp", EXIT_FAILURE, "udp");
    row("--demo=yes", EXIT_FAILURE, "demo");
}

void tst_CommandLine::aWrongCommandLineEndsTheProgram()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, message);
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(kParseOnly), QStringLiteral("1"));
    child.setProcessEnvironment(environment);
    child.start(QFile::symLinkTarget(QStringLiteral("/proc/self/exe")), arguments);
    QVERIFY(child.waitForFinished());
    QCOMPARE(child.exitStatus(), QProcess::NormalExit);
    QCOMPARE(child.exitCode(), exitCode);
    const QString error = QString::fromUtf8(child.readAllStandardError());
    if (message.isEmpty())
        QCOMPARE(error, QString());
    else
        QVERIFY2(error.contains(message), qPrintable(error));
}

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsSet(kParseOnly)) {
        const QCoreApplication application(argc, argv);
        parseCommandLine(application, QDir::currentPath());
        return EXIT_SUCCESS;
    }
    tst_CommandLine test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_CommandLine.moc"
