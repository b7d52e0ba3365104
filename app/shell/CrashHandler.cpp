#include "CrashHandler.h"

#include <QLoggingCategory>

#include <optional>

Q_LOGGING_CATEGORY(lcCrash, "orbix.crash")

namespace {

struct State
{
    std::optional<CrashHandler::Configuration> configuration;
    QString message;
};

State &state()
{
    static State instance;
    return instance;
}

} // namespace

void CrashHandler::install(const Configuration &configuration)
{
    state().configuration = configuration;
}

void CrashHandler::remove()
{
    state().configuration.reset();
    state().message.clear();
}

void CrashHandler::setMessage(const QString &message)
{
    state().message = message;
    qCCritical(lcCrash, "The program ends by a failure: %s", qUtf8Printable(message));
}

QString CrashHandler::message()
{
    return state().message;
}

bool CrashHandler::writeReport()
{
    qCWarning(lcCrash, "This build writes no crash reports.");
    return false;
}
