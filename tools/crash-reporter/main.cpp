#include "CrashReportDialog.h"

#include <QApplication>
#include <QMessageBox>

#include <cstdio>

namespace {

constexpr int kBadArguments = 2; ///< exit code

int refuse(const QString &error)
{
    std::fprintf(stderr, "OrbCrashReporter: %s\n", qPrintable(error));
    QMessageBox box(QMessageBox::Critical, QCoreApplication::translate("main", "Crash Report"),
                    error, QMessageBox::Close);
    box.setTextFormat(Qt::PlainText);
    box.exec();
    return kBadArguments;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    // The arguments are the player's, never options of Qt, so Qt sees the program's name alone.
    int ownArguments = qMin(argc, 1);
    const QApplication application(ownArguments, argv);
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments += QString::fromLocal8Bit(argv[i]);

    const ParsedReport parsed = CrashReport::parse(arguments);
    if (!parsed.error.isEmpty())
        return refuse(parsed.error);
    // A player without a screen has nobody who could close a window.
    if (QGuiApplication::platformName() == QLatin1String("offscreen")
        || QGuiApplication::platformName() == QLatin1String("minimal")) {
        std::fprintf(stderr, "OrbCrashReporter: %s\n", qPrintable(parsed.report.dumpPath));
        return 0;
    }
    CrashReportDialog dialog(parsed.report, QUrl(QString::fromUtf8(ORBIX_CRASH_SERVER_URL)));
    dialog.exec();
    return 0;
}
