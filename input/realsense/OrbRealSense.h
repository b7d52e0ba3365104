#pragma once

#include <QObject>

class OrbGlobalObject;

/// The depth camera as the scene sees it, "orbRealSense". Main thread.
class OrbRealSense : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool available READ available NOTIFY availableChanged)
    Q_PROPERTY(bool activated READ activated WRITE setActivated NOTIFY activatedChanged)
    Q_PROPERTY(QString logMessage READ logMessage NOTIFY logMessageChanged)

public:
    /// `state` is not owned.
    explicit OrbRealSense(OrbGlobalObject *state, QObject *parent = nullptr);

    bool available() const { return m_available; }
    bool activated() const { return m_activated; }
    QString logMessage() const { return m_logMessage; }

    /// Nothing happens without a camera.
    void setActivated(bool activated);

    Q_INVOKABLE bool isSupported() const { return true; }

signals:
    void availableChanged();
    void activatedChanged();
    void logMessageChanged();

public slots:
    /// What the device's layer found. A device that goes is no longer in use.
    void setAvailable(bool available);

private:
    bool m_available = false;
    bool m_activated = false;
    QString m_logMessage;
};
