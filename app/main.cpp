#include "Application.h"

#include "CrashHandler.h"
#include "CrashOnPurpose.h"
#include "OrbException.h"
#include "OrbGlobalObject.h"
#include "OrbImageLibrary.h"
#include "OrbQQuickView.h"
#include "OrbSettingsManager.h"
#include "OrbTools.h"
#include "Product.h"
#include "Simulation.h"

#include <QDir>
#include <QLocale>
#include <QProcess>
#include <QThread>

#include <exception>
#include <memory>

namespace {

/// The program's settings, from before `main` until after it.
OrbSettingsManager g_settings(Product::organisation(), Product::softwareName());

/// What is needed to start the program again: the same arguments in the same folder.
struct RestartData
{
    QString program;
    QStringList arguments;
    QString folder;
};

void installCrashHandler()
{
    const QLocale locale(g_settings.string(QStringLiteral("application/language"), QString()));
    CrashHandler::Configuration configuration;
    configuration.dumpType = g_settings.intValue(QStringLiteral("application/dump_type"), 0);
    configuration.localeName = locale.name();
    configuration.version = Product::version();
    configuration.applicationName = Product::displayName();
    configuration.dumpFolder = QDir::tempPath();
    // Empty where there is none. The reporter tells the user so, of the folder that ought to be.
    if (configuration.dumpFolder.isEmpty())
        configuration.dumpFolder = qEnvironmentVariable("TMPDIR");
    if (configuration.dumpFolder.isEmpty())
        configuration.dumpFolder = QStringLiteral("/tmp");
    CrashHandler::install(configuration);
}

int run(int argc, char **argv)
{
    const QString startFolder = QDir::currentPath();
    Simulation::setFolder(startFolder);
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);

    const QString identifier = QStringLiteral("%1 - %2").arg(Product::organisation(),
                                                             Product::softwareName());
    auto application = std::make_unique<Application>(identifier, argc, argv);
    QDir::setCurrent(QCoreApplication::applicationDirPath());
    const RestartData restart{QCoreApplication::applicationFilePath(),
                              QCoreApplication::arguments().mid(1), startFolder};

    installCrashHandler();
    OrbTools::start();
    OrbImageLibrary::start();
    application->setUp(&g_settings, startFolder);
#ifdef ORBIX_CRASH_ON_PURPOSE
    CrashOnPurpose::arm(application->view());
#endif
    const int result = QApplication::exec();
    application->cleanUp();
    OrbImageLibrary::stop();
    OrbTools::stop();
    application.reset();
    CrashHandler::remove();

    if (result == OrbGlobalObject::kRestartExitCode) {
        QThread::sleep(1);
        QProcess::startDetached(restart.program, restart.arguments, restart.folder);
    }
    return result;
}

} // namespace

int main(int argc, char **argv)
{
    // Each failure goes on after its text is kept, so that the crash handler sees it.
    try {
        return run(argc, argv);
    } catch (const OrbException &failure) {
        CrashHandler::setMessage(
            QStringLiteral("%1 [%2]").arg(failure.message(), failure.location()));
        throw;
    } catch (const std::exception &failure) {
        CrashHandler::setMessage(QString::fromLocal8Bit(failure.what()));
        throw;
    } catch (...) {
        CrashHandler::setMessage(QStringLiteral("Unknown excpetion"));
        throw;
    }
}
