#include "CommandLine.h"

#include "MediaClass.h"

#include <QCommandLineParser>
#include <QCoreApplication>

namespace {
QString translated(const char *text)
{
    return QCoreApplication::translate("main", text);
}
} // namespace

QVariantMap parseCommandLine(const QCoreApplication &application, const QString &startFolder)
{
    if (QCoreApplication::arguments().size() < 2)
        return {};

    const QCommandLineOption udp({QStringLiteral("u"), QStringLiteral("udp")},
                                 translated("Udp mode, can be master or slave."),
                                 translated("udp"));
    const QCommandLineOption oculus({QStringLiteral("o"), QStringLiteral("oculus")},
                                    QStringLiteral("Activate Oculus by default."));
    const QCommandLineOption demo({QStringLiteral("d"), QStringLiteral("demo")},
                                  QStringLiteral("Start in demo mode."));
    QCommandLineParser parser;
    parser.addOptions({udp, oculus, demo});
    parser.addPositionalArgument(QStringLiteral("files"),
                                 translated("Path of the file(s) to read."));
    parser.process(application);

    QStringList files;
    const QStringList arguments = parser.positionalArguments();
    for (const QString &argument : arguments)
        files += MediaClass::absoluteSource(argument, startFolder);
    return {
        {QStringLiteral("udp"), parser.value(udp)},
        {QStringLiteral("oculus"), parser.isSet(oculus)},
        {QStringLiteral("demo"), parser.isSet(demo)},
        {QStringLiteral("files"), files},
    };
}
