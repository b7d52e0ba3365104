#pragma once

#include <QMap>
#include <QMatrix4x4>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QUrl>
#include <QVariant>

class OrbSettingsManager;
class OrbVideoPlugin;
class QPropertyAnimation;

/// The camera of the panorama, the playlist, and the services of the scene, which sees it as
/// "orbGlobalObject". Angles are in radians but `fov`, which is in degrees.
///
/// Threads: it lives on the main thread. The render thread reads the rotation matrix, the field of
/// view and the limits while painting, and input devices write the camera from their own threads,
/// both without a lock: a late or torn read costs one frame.
class OrbGlobalObject : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString videoLogMessage READ videoLogMessage WRITE setVideoLogMessage NOTIFY
                   videoLogMessageChanged)
    Q_PROPERTY(float yaw READ yaw WRITE setYaw NOTIFY yawChanged)
    Q_PROPERTY(float pitch READ pitch WRITE setPitch NOTIFY pitchChanged)
    Q_PROPERTY(float roll READ roll WRITE setRoll NOTIFY rollChanged)
    Q_PROPERTY(float yawMin READ yawMin WRITE setYawMin NOTIFY yawMinChanged)
    Q_PROPERTY(float yawMax READ yawMax WRITE setYawMax NOTIFY yawMaxChanged)
    Q_PROPERTY(float pitchMin READ pitchMin WRITE setPitchMin NOTIFY pitchMinChanged)
    Q_PROPERTY(float pitchMax READ pitchMax WRITE setPitchMax NOTIFY pitchMaxChanged)
    Q_PROPERTY(float fov READ fov WRITE setFov NOTIFY fovChanged)
    Q_PROPERTY(QMatrix4x4 rotationMatrix READ rotationMatrix WRITE setRotationMatrix NOTIFY
                   rotationMatrixChanged)
    Q_PROPERTY(
        int playListIndex READ playListIndex WRITE setPlayListIndex NOTIFY playListIndexChanged)
    Q_PROPERTY(bool touchMode READ touchMode WRITE setTouchMode NOTIFY touchModeChanged)
    Q_PROPERTY(
        float yawCorrection READ yawCorrection WRITE setYawCorrection NOTIFY yawCorrectionChanged)
    Q_PROPERTY(float pitchCorrection READ pitchCorrection WRITE setPitchCorrection NOTIFY
                   pitchCorrectionChanged)
    Q_PROPERTY(float rollCorrection READ rollCorrection WRITE setRollCorrection NOTIFY
                   rollCorrectionChanged)

public:
    /// The exit code by which the event loop asks `main` to start the program again.
    static constexpr int kRestartExitCode = 123456789;

    /// Neither argument is owned. Chooses the kind of OpenGL for the windows to come.
    OrbGlobalObject(OrbSettingsManager *settings, OrbVideoPlugin *videoPlugin);
    ~OrbGlobalObject() override;

    QString videoLogMessage() const { return m_videoLogMessage; }
    float yaw() const { return m_yaw; }
    float pitch() const { return m_pitch; }
    float roll() const { return m_roll; }
    float yawMin() const { return m_yawMin; }
    float yawMax() const { return m_yawMax; }
    float pitchMin() const { return m_pitchMin; }
    float pitchMax() const { return m_pitchMax; }
    float fov() const { return m_fov; }
    int playListIndex() const { return m_playListIndex; }
    bool touchMode() const { return m_touchMode; }
    float yawCorrection() const { return m_yawCorrection; }
    float pitchCorrection() const { return m_pitchCorrection; }
    float rollCorrection() const { return m_rollCorrection; }

    /// The mounting correction times the rotation of the view.
    QMatrix4x4 rotationMatrix() const { return m_correctionMatrix * m_rotationMatrix; }

    void setVideoLogMessage(const QString &message);

    /// The setters of angles refuse what is not finite. Yaw and pitch are wrapped, roll is not.
    /// `update` says whether the rotation matrix follows, or is left to the caller.
    void setYaw(float yaw, bool update = true);
    void setPitch(float pitch, bool update = true);
    void setRoll(float roll, bool update = true);
    void setYawMin(float yawMin);
    void setYawMax(float yawMax);
    void setPitchMin(float pitchMin);
    void setPitchMax(float pitchMax);
    void setFov(float fov);
    void setYawCorrection(float yaw, bool update = true);
    void setPitchCorrection(float pitch, bool update = true);
    void setRollCorrection(float roll, bool update = true);

    /// Stores the rotation of the view, without the correction. `updateAngles` derives yaw, pitch
    /// and roll from it.
    void setRotationMatrix(const QMatrix4x4 &matrix, bool updateAngles = true);

    /// Derives it from the angles, for those who set these without.
    void rebuildRotationMatrix();

    void setTouchMode(bool touchMode);

    /// Opens the entry of the playlist. The index that stands already changes nothing.
    void setPlayListIndex(int index);

    Q_INVOKABLE void setSetting(const QString &key, const QVariant &value);
    Q_INVOKABLE QVariant getSetting(const QString &key, const QVariant &fallback = QVariant());
    Q_INVOKABLE bool containsSetting(const QString &key) const;
    Q_INVOKABLE void hideCursor();
    Q_INVOKABLE void restoreCursor();
    Q_INVOKABLE void quit();
    Q_INVOKABLE void restart();
    Q_INVOKABLE QString platformOS() const;
    Q_INVOKABLE QString getApplicationDirPath() const;
    Q_INVOKABLE QString getSoftwareName() const;
    Q_INVOKABLE QString getEnterpriseWebLink() const;
    Q_INVOKABLE QString getDocumentationLink() const;
    Q_INVOKABLE QString aboutThirdParty() const;

    /// The logo that the playlist file gave for this media, else an empty URL.
    Q_INVOKABLE QUrl getDynamicLogo(const QUrl &url) const;

    /// The item of the scene that opens sources; not owned.
    Q_INVOKABLE void setMediaLoader(QObject *mediaLoader);
    QObject *mediaLoader() const { return m_mediaLoader; }

    /// Takes the mounting correction from the image's own description. A video, or an image that
    /// tells nothing, has none.
    Q_INVOKABLE void readMetaData(const QVariant &url);

    /// The source that a user means by a typed text; empty if there is none. Relative paths start
    /// where the program was started.
    Q_INVOKABLE QString typedSource(const QString &text) const;
    void setStartFolder(const QString &folder) { m_startFolder = folder; }

    Q_INVOKABLE void openFile(const QString &url, bool checkFile = true);
    Q_INVOKABLE void openFiles(const QList<QString> &urls, bool checkFile = true);

    /// Replaces what plays: one source opens by itself, several make a playlist, a playlist file
    /// stands for its entries. `checkFile` refuses a single source that is neither image nor video
    /// by name.
    Q_INVOKABLE void openFiles(const QList<QUrl> &urls, bool checkFile = true);

    /// True when there is nothing to step through.
    Q_INVOKABLE bool playListIsEmpty() const { return m_playList.size() < 2; }
    Q_INVOKABLE void playListSetPrevious();
    Q_INVOKABLE QStringList getPlayListNames() const;
    Q_INVOKABLE void clearPlayList();
    Q_INVOKABLE void startTimerNextImage();
    Q_INVOKABLE bool isImageFile(const QUrl &url) const;
    Q_INVOKABLE bool isVideoFile(const QUrl &url) const;
    Q_INVOKABLE bool isValidFilePath(const QUrl &url) const;
    Q_INVOKABLE QUrl checkFilePath(const QUrl &url) const;

    /// Compares the settings with whether a headset was found. When they disagree it corrects the
    /// settings for the next start, tells the user, ends the program and returns false.
    bool checkOculusMode(bool available);

public slots:
    void playListSetNext();

    /// Moves a property of type float to a new value in 200 ms, from where it stands.
    void interpolateValue(const QByteArray &property, float newValue);

signals:
    void videoLogMessageChanged();
    void yawChanged();
    void pitchChanged();
    void rollChanged();
    void yawMinChanged();
    void yawMaxChanged();
    void pitchMinChanged();
    void pitchMaxChanged();
    void fovChanged();
    void rotationMatrixChanged();
    void playListIndexChanged();
    void touchModeChanged();
    void yawCorrectionChanged();
    void pitchCorrectionChanged();
    void rollCorrectionChanged();

private:
    using Notify = void (OrbGlobalObject::*)();

    bool assign(float &member, float value, Notify changed);
    void rebuildCorrectionMatrix();
    void invokeProcessFileSource(const QVariant &source, bool checkFile, const QString &error);

    QString m_videoLogMessage;
    QString m_startFolder;
    float m_yaw = 0;
    float m_pitch = 0;
    float m_roll = 0;
    float m_yawMin = -3.1415927F;
    float m_yawMax = 3.1415927F;
    float m_pitchMin = -1.5707964F;
    float m_pitchMax = 1.5707964F;
    float m_fov = 90;
    QMatrix4x4 m_rotationMatrix;
    int m_playListIndex = -1;
    bool m_touchMode;
    float m_yawCorrection = 0;
    float m_pitchCorrection = 0;
    float m_rollCorrection = 0;
    QMatrix4x4 m_correctionMatrix;
    QPointer<QObject> m_mediaLoader;
    OrbSettingsManager *m_settings;
    QList<QUrl> m_playList;
    QTimer m_imageTimer;
    QMap<QUrl, QUrl> m_logos;
    QMap<QByteArray, QPropertyAnimation *> m_animations; // children of this object
};
