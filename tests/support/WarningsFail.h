#pragma once

#include <QObject>
#include <QRegularExpression>

/// Base of test classes: any warning or worse that Qt, the scene, OpenGL or the program prints
/// during a test function fails it, unless it was announced with `expectWarning`. What was
/// announced must come. A class that has init() or cleanup() of its own calls these.
class WarningsFail : public QObject
{
    Q_OBJECT

public:
    WarningsFail();
    ~WarningsFail() override;

    /// A warning whose text matches may come, and has to, before the test function ends.
    static void expectWarning(const QString &pattern);

    /// A warning whose text matches is none of the test's business, for all functions of the
    /// process. Give the reason beside the call.
    static void ignoreWarning(const QString &pattern);

protected slots:
    void init();
    void cleanup();
};
