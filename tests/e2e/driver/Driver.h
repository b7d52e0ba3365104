#pragma once

#include <QFile>
#include <QObject>
#include <QPointer>
#include <QQuickWindow>
#include <QSocketNotifier>
#include <QStringList>

#include <memory>

/// Sits inside the real program, which loads it as a plugin of Qt, and lets a test watch and end
/// it.
///
/// To the file of the variable ORBIX_DRIVER_LOG it adds a line, a JSON object, when the program
/// starts, when its window has shown a frame and when it is told to end. With ORBIX_DRIVER_EXITS, a
/// list of numbers with commas, the first process to write into the log ends with the first number
/// as soon as a frame was shown, the next one with the second. Else it obeys the lines of standard
/// input: "state" answers with a JSON object on a line of standard output, "open TEXT" opens a file
/// or an address as the dialog for it does, "find NAME" answers where on the screen the middle of
/// what has this accessible name is, "value OBJECT PROPERTY" answers with a property of an object
/// that the scene knows by this name, or of one that is a property of such an object, with a dot
/// between them, "set OBJECT PROPERTY VALUE" sets it, "dismiss" closes the message that is shown
/// over the window, "place X Y WIDTH HEIGHT" puts the window there on the screen, "drag X Y DX DY"
/// drags the mouse over it from a place in it, "key KEYS", such as "key Ctrl+Up", presses keys in
/// it, "turn YAW PITCH ROLL" turns the camera to these radians, "dump" asks the window for a report
/// of the running program, "close" closes it, and "exit N" ends the event loop with N.
///
/// Main thread.
class Driver : public QObject
{
    Q_OBJECT

public:
    Driver();

    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void log(const QString &event, QJsonObject values);
    void onFrameShown();
    void readCommands();
    void obey(const QByteArray &command);
    static void answer(const QJsonObject &object);
    QObject *sceneObject(const QByteArray &name) const;
    QObject *camera() const;
    void open(const QString &text);
    void drag(const QPointF &from, const QPointF &by);
    void press(const QString &keys);
    void end(int exitCode);
    QJsonObject state() const;

    QFile m_log;
    QString m_exitCode; ///< empty: wait for commands
    QPointer<QQuickWindow> m_window;
    int m_frames = 0; ///< shown by the window
    std::unique_ptr<QSocketNotifier> m_commandNotifier;
    QByteArray m_commands; ///< what was read of the next line
};
