#pragma once

#include <QObject>

/// The process-wide log: a place for receivers to connect to. Lives from OrbTools::start to stop.
class OrbLog : public QObject
{
    Q_OBJECT

signals:
    // One name for a message with and without its number.
    void Logged(int id, const QString &log); // clazy:exclude=overloaded-signal
    void Logged(const QString &log);         // clazy:exclude=overloaded-signal
};
