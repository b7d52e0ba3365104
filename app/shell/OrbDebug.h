#pragma once

#include <QList>
#include <QObject>
#include <QTime>

/// The frame rate of the scene, "orbDebug" in it. Main thread: a frame is counted when the news of
/// it comes there.
class OrbDebug : public QObject
{
    Q_OBJECT
    Q_PROPERTY(double fps READ fps NOTIFY fpsChanged)

public:
    using QObject::QObject;

    /// The mean rate of the latest frames, in frames a second, when it was last computed.
    double fps() const { return m_fps; }

    /// A frame was painted at this time of day. The first one, one in the same millisecond as its
    /// predecessor, and one after midnight tell no rate.
    void framePaintedAt(QTime now);

public slots:
    void qmlFramePainted();
    void computeFps();

signals:
    void fpsChanged();

private:
    QTime m_lastFrame;
    QList<double> m_rates; ///< whole frames a second, the oldest first
    double m_fps = 0;
};
