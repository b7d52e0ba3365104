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

QMutex g_mutex; // messages come from every thread
QStringList g_unexpected;
QVector<Expected> g_expected;
QVector<QRegularExpression> g_ignored;
QtMessageHandler g_previous = nullptr;

bool isKnown(const QString &message)
{
    for (Expected &expected : g_expected) {
        if (expected.pattern.match(message).hasMatch()) {
            expected.seen = true;
            return true;
        }
    }
    for (const QRegularExpression &ignored : qAsConst(g_ignored)) {
        if (ignored.match(message).hasMatch())
            return true;
    }
    return false;
}

void handleMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type != QtDebugMsg && type != QtInfoMsg) {
        const QMutexLocker lock(&g_mutex);
        if (!isKnown(message))
            g_unexpected.append(message);
    }
    g_previous(type, context, message);
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
    const QMutexLocker lock(&g_mutex);
    g_expected.append({QRegularExpression(pattern), false});
}

void WarningsFail::ignoreWarning(const QString &pattern)
{
    const QMutexLocker lock(&g_mutex);
    g_ignored.append(QRegularExpression(pattern));
}

void WarningsFail::init()
{
    // The test library puts its own handler in place when it starts, so ours goes in front of it
    // here.
    if (!g_previous)
        g_previous = qInstallMessageHandler(handleMessage);
}

void WarningsFail::cleanup()
{
    QStringList faults;
    {
        const QMutexLocker lock(&g_mutex);
        for (const QString &message : qAsConst(g_unexpected))
            faults += QStringLiteral("unexpected: ") + message;
        for (const Expected &expected : qAsConst(g_expected)) {
            if (!expected.seen)
                faults += QStringLiteral("never came: ") + expected.pattern.pattern();
        }
        g_unexpected.clear();
        g_expected.clear();
    }
    if (!faults.isEmpty())
        QFAIL(qPrintable(faults.join(QLatin1Char('\n'))));
}
