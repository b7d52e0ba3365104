#include "WarningsFail.h"

#include <QMutex>
#include <QTest>
#include <QVector>

namespace {

struct Expected
{
    QRegularExpression pattern;
    bool seen = false;
};

struct Log
{
    QMutex mutex; // messages come from every thread
    QStringList unexpected;
    QVector<Expected> expected;
    QVector<QRegularExpression> ignored;
    QtMessageHandler previous = nullptr;
};

Log &messages()
{
    static Log instance;
    return instance;
}

bool isKnown(const QString &message)
{
    for (Expected &expected : messages().expected) {
        if (expected.pattern.match(message).hasMatch()) {
            expected.seen = true;
            return true;
        }
    }
    for (const QRegularExpression &ignored : qAsConst(messages().ignored)) {
        if (ignored.match(message).hasMatch())
            return true;
    }
    return false;
}

void handleMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type != QtDebugMsg && type != QtInfoMsg) {
        const QMutexLocker lock(&messages().mutex);
        if (!isKnown(message))
            messages().unexpected.append(message);
    }
    if (messages().previous)
        messages().previous(type, context, message);
}

} // namespace

WarningsFail::WarningsFail()
{
    // Without a session there is no such folder; Qt makes one and says so.
    ignoreWarning(QStringLiteral("^QStandardPaths: XDG_RUNTIME_DIR not set"));
}

WarningsFail::~WarningsFail() = default;

void WarningsFail::expectWarning(const QString &pattern)
{
    const QMutexLocker lock(&messages().mutex);
    messages().expected.append({QRegularExpression(pattern), false});
}

void WarningsFail::ignoreWarning(const QString &pattern)
{
    const QMutexLocker lock(&messages().mutex);
    messages().ignored.append(QRegularExpression(pattern));
}

void WarningsFail::init()
{
    // The test library puts its own handler in place when it starts, so ours goes in front of it
    // here.
    if (!messages().previous)
        messages().previous = qInstallMessageHandler(handleMessage);
}

void WarningsFail::cleanup()
{
    QStringList faults;
    {
        const QMutexLocker lock(&messages().mutex);
        for (const QString &message : qAsConst(messages().unexpected))
            faults += QStringLiteral("unexpected: ") + message;
        for (const Expected &expected : qAsConst(messages().expected)) {
            if (!expected.seen)
                faults += QStringLiteral("never came: ") + expected.pattern.pattern();
        }
        messages().unexpected.clear();
        messages().expected.clear();
    }
    if (!faults.isEmpty())
        QFAIL(qPrintable(faults.join(QLatin1Char('\n'))));
}
