#pragma once

#include <QObject>

class OrbGlobalObject;

/// The face of a device orientation sensor, "orbSensor" in the scene. This base has no sensor. Main
/// thread.
class OrbSensor : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString logMessage READ logMessage NOTIFY logMessageChanged)
    Q_PROPERTY(bool activated READ activated WRITE setActivated NOTIFY activatedChanged)
    Q_PROPERTY(bool available READ available NOTIFY availableChanged)

public:
    /// `state` is not owned.
    explicit OrbSensor(OrbGlobalObject *state, QObject *parent = nullptr);

    QString logMessage() const { return m_logMessage; }
    bool activated() const { return m_activated; }
    bool available() const { return m_available; }

    virtual void setActivated(bool activated);
    Q_INVOKABLE virtual bool isSupported() const { return false; }

signals:
    void logMessageChanged();
    void yawChanged();
    void pitchChanged();
    void rollChanged();
    void activatedChanged();
    void availableChanged();
    void rotationMatrixChanged();

public slots:
    /// What the device's layer found. A device that goes is no longer in use.
    void setAvailable(bool available);

private:
    QString m_logMessage;
    bool m_activated = false;
    bool m_available = false;
};
