#pragma once

#include <QObject>
#include <QPointer>
#include <QThread>
#include <QVector4D>

class OrbGlobalObject;
class OrbQQuickView;
class OrbShaderCodeBuilder;

/// The hand tracker as the scene sees it, "orbLeap". Without a device it offers its options and
/// nothing happens. Main thread.
class OrbLeap : public QThread
{
    Q_OBJECT
    Q_PROPERTY(bool available READ available NOTIFY availableChanged)
    Q_PROPERTY(bool activated READ activated WRITE setActivated NOTIFY activatedChanged)
    Q_PROPERTY(
        double sensitivityYawPitch MEMBER m_sensitivityYawPitch NOTIFY sensitivityYawPitchChanged)
    Q_PROPERTY(
        short sensitivitySeekJump MEMBER m_sensitivitySeekJump NOTIFY sensitivitySeekJumpChanged)
    Q_PROPERTY(bool pitchInv MEMBER m_pitchInv NOTIFY pitchInvChanged)
    Q_PROPERTY(bool yawInv MEMBER m_yawInv NOTIFY yawInvChanged)
    Q_PROPERTY(QVector4D pointer READ pointer NOTIFY pointerChanged)
    Q_PROPERTY(bool rollMode MEMBER m_rollMode NOTIFY rollModeChanged)
    Q_PROPERTY(bool fovMode MEMBER m_fovMode NOTIFY fovModeChanged)
    Q_PROPERTY(
        double pointerSensibility MEMBER m_pointerSensibility NOTIFY pointerSensibilityChanged)
    Q_PROPERTY(
        uchar pointerInterpolation MEMBER m_pointerInterpolation NOTIFY pointerInterpolationChanged)
    Q_PROPERTY(bool menuState MEMBER m_menuState NOTIFY menuStateChanged)
    Q_PROPERTY(uchar cameraMode MEMBER m_cameraMode NOTIFY cameraModeChanged)
    Q_PROPERTY(QString logMessage READ logMessage NOTIFY logMessageChanged)
    Q_PROPERTY(QString logLink READ logLink NOTIFY logLinkChanged)
    Q_PROPERTY(bool playPauseGesture MEMBER m_playPauseGesture NOTIFY playPauseGestureChanged)
    Q_PROPERTY(bool seekGesture MEMBER m_seekGesture NOTIFY seekGestureChanged)
    Q_PROPERTY(uchar handOutZone READ handOutZone NOTIFY handOutZoneChanged)
    Q_PROPERTY(bool drawHand MEMBER m_drawHand NOTIFY drawHandChanged)
    Q_PROPERTY(int tutoState READ tutoState NOTIFY tutoStateChanged)

public:
    /// None of the arguments is owned.
    OrbLeap(OrbGlobalObject *state, OrbQQuickView *view, OrbShaderCodeBuilder *builder,
            QObject *parent = nullptr);

    bool available() const { return m_available; }
    bool activated() const { return m_activated; }
    QVector4D pointer() const { return m_pointer; }
    QString logMessage() const { return m_logMessage; }
    QString logLink() const { return m_logLink; }
    uchar handOutZone() const { return m_handOutZone; }
    int tutoState() const { return m_tutoState; }

    /// Nothing happens without a device.
    void setActivated(bool activated);

    /// Items of the scene that gestures act on; not owned.
    Q_INVOKABLE void setPlayerImage(QObject *playerImage);
    Q_INVOKABLE void setBar(QObject *bar);

    Q_INVOKABLE bool isSupported() const { return true; }

signals:
    void availableChanged();
    void activatedChanged();
    void sensitivityYawPitchChanged();
    void sensitivitySeekJumpChanged();
    void pitchInvChanged();
    void yawInvChanged();
    void pointerChanged();
    void rollModeChanged();
    void fovModeChanged();
    void pointerSensibilityChanged();
    void pointerInterpolationChanged();
    void menuStateChanged();
    void cameraModeChanged();
    void logMessageChanged();
    void logLinkChanged();
    void playPauseGestureChanged();
    void seekGestureChanged();
    void handOutZoneChanged();
    void drawHandChanged();
    void tutoStateChanged();

public slots:
    /// What the device's layer found. A device that goes is no longer in use.
    void setAvailable(bool available);

private:
    bool m_available = false;
    bool m_activated = false;
    double m_sensitivityYawPitch = 0.2;
    short m_sensitivitySeekJump = 5000; ///< milliseconds a unit
    bool m_pitchInv = false;
    bool m_yawInv = false;
    QVector4D m_pointer{0, 0, 0, -1};
    bool m_rollMode = false;
    bool m_fovMode = true;
    double m_pointerSensibility = 1.2;
    uchar m_pointerInterpolation = 2; ///< frames
    bool m_menuState = false;
    uchar m_cameraMode = 3; ///< both hands with all gestures
    QString m_logMessage;
    QString m_logLink;
    bool m_playPauseGesture = true;
    bool m_seekGesture = true;
    uchar m_handOutZone = 0;
    bool m_drawHand = true;
    int m_tutoState = -1;
    QPointer<QObject> m_playerImage;
    QPointer<QObject> m_bar;
};
