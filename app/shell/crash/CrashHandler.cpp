#include "CrashHandler.h"

#include "OrbCrashReportProcess.h"
#include "OrbExceptionHandler.h"

#include <QLoggingCategory>

#include <cstring>
#include <memory>

Q_LOGGING_CATEGORY(lcCrash, "orbix.crash")

namespace {

/// The current message, ended by a zero. A dump finds it here without reading the heap.
char g_message[1024];

/// As many whole letters as fit.
QByteArray shortened(const QString &text, int bytes)
{
    QByteArray utf8 = text.toUtf8();
    if (utf8.size() <= bytes)
        return utf8;
    constexpr int kMarkOfFollower = 0b10;
    while (bytes > 0 && static_cast<unsigned char>(utf8.at(bytes)) >> 6 == kMarkOfFollower)
        --bytes;
    utf8.truncate(bytes);
    return utf8;
}

/// The handler, which tells the process, goes first.
struct Installed
{
    std::unique_ptr<OrbCrashReportProcess> process;
    std::unique_ptr<OrbExceptionHandler> handler;
};

Installed &installed()
{
    static Installed instance;
    return instance;
}

} // namespace

void CrashHandler::install(const Configuration &configuration)
{
    remove();
    if (configuration.dumpType != 0) {
        qCWarning(lcCrash, "Dumps of the type %d are not to be had here; they will be of type 0.",
                  configuration.dumpType);
    }
    auto &[process, handler] = installed();
    process = std::make_unique<OrbCrashReportProcess>(configuration.applicationName,
                                                      configuration.version,
                                                      configuration.localeName,
                                                      configuration.extraArgument);
    process->prepare(configuration.dumpFolder);
    handler = std::make_unique<OrbExceptionHandler>(configuration.dumpFolder, nullptr);
    handler->RegisterAppMemory(g_message, sizeof(g_message));
    // Whichever thread crashes, the reporter starts within the handler.
    QObject::connect(handler.get(), &OrbExceptionHandler::crash_report_dumped, process.get(),
                     &OrbCrashReportProcess::run, Qt::DirectConnection);
}

void CrashHandler::remove()
{
    installed().handler.reset();
    installed().process.reset();
}

void CrashHandler::setMessage(const QString &message)
{
    const QByteArray text = shortened(message, sizeof(g_message) - 1);
    std::memcpy(g_message, text.constData(), static_cast<std::size_t>(text.size()) + 1);
    qCCritical(lcCrash, "The program ends by a failure: %s", qUtf8Printable(message));
}

QString CrashHandler::message()
{
    return QString::fromUtf8(g_message);
}

bool CrashHandler::writeReport()
{
    OrbExceptionHandler *handler = installed().handler.get();
    const bool written = handler && handler->write();
    if (!written)
        qCWarning(lcCrash, "No report of the running program could be written.");
    return written;
}
