#pragma once

#include <QFile>
#include <QMutex>
#include <QObject>
#include <QTextStream>

/// The process-wide log: a place for receivers to connect to. Lives from OrbTools::start to stop.
///
/// The program itself sends nothing here. The private members are the room of a receiver that
/// writes a file: the file, the text for it, the lock for threads that log at once, and two words
/// for its state.
class OrbLog : public QObject
{
    Q_OBJECT

signals:
    // One name for a message with and without its number.
    void Logged(int id, const QString &log); // clazy:exclude=overloaded-signal
    void Logged(const QString &log);         // clazy:exclude=overloaded-signal

private:
    QMutex m_mutex;
    QFile m_file;
    QTextStream m_text;
    [[maybe_unused]] quintptr m_words[2] = {0, 0};
};
