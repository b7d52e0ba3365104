#pragma once

#include <QObject>

/// The face of a second display screen, "orbDisplay" in the scene. No platform has one: the object
/// gives the scene's bindings something to read. Main thread.
class OrbDisplay : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString logMessage READ logMessage NOTIFY logMessageChanged)
    Q_PROPERTY(QString userMessage READ userMessage NOTIFY userMessageChanged)
    Q_PROPERTY(bool activated READ activated WRITE setActivated NOTIFY activatedChanged)
    Q_PROPERTY(bool available READ available NOTIFY availableChanged)
    Q_PROPERTY(bool processing READ processing NOTIFY processingChanged)
    Q_PROPERTY(bool failed READ failed NOTIFY failedChanged)

public:
    explicit OrbDisplay(QObject *parent = nullptr);

    QString logMessage() const { return m_message; }
    QString userMessage() const { return m_message; }
    bool activated() const { return false; }
    bool available() const { return false; }
    bool processing() const { return false; }
    bool failed() const { return false; }

    virtual void setActivated(bool activated);
    Q_INVOKABLE virtual bool isSupported() const { return false; }

signals:
    void logMessageChanged();
    void userMessageChanged();
    void activatedChanged();
    void availableChanged();
    void processingChanged();
    void failedChanged();

private:
    QString m_message;
};
