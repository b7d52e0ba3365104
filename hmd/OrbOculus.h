#pragma once

#include "FrameCounter.h"
#include "ovr.h"

#include <QMatrix4x4>
#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QVector4D>

#include <memory>

class GLWindow;
class QOpenGLContext;
class WorkerThread;

class OrbGlobalObject;
class OrbQQuickView;
class OrbShaderCodeBuilder;
class OrbTextureProvider;

/// The headset as the scene sees it, "orbOculus": whether one is there and in use, and the lens
/// values of its picture. It owns the window that drives the headset.
///
/// Threads: it lives on the main thread. `initOvr` runs once on the scene's render thread, and
/// `initDevice` once on a thread of its own, which hands the headset over by ending. The destructor
/// waits for that thread.
class OrbOculus : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool activated READ activated WRITE setActivated NOTIFY activatedChanged)
    Q_PROPERTY(QPointF lensCenterLeft READ lensCenterLeft WRITE setLensCenterLeft NOTIFY
                   lensCenterLeftChanged)
    Q_PROPERTY(QPointF lensCenterRight READ lensCenterRight WRITE setLensCenterRight NOTIFY
                   lensCenterRightChanged)
    Q_PROPERTY(QPointF screenCenterLeft READ screenCenterLeft WRITE setScreenCenterLeft NOTIFY
                   screenCenterLeftChanged)
    Q_PROPERTY(QPointF screenCenterRight READ screenCenterRight WRITE setScreenCenterRight NOTIFY
                   screenCenterRightChanged)
    Q_PROPERTY(QPointF scale READ scale WRITE setScale NOTIFY scaleChanged)
    Q_PROPERTY(QPointF scaleIn READ scaleIn WRITE setScaleIn NOTIFY scaleInChanged)
    Q_PROPERTY(
        QVector4D hmdWarpParam READ hmdWarpParam WRITE setHmdWarpParam NOTIFY hmdWarpParamChanged)
    Q_PROPERTY(QString logMessage READ logMessage WRITE setLogMessage NOTIFY logMessageChanged)
    Q_PROPERTY(bool available READ available WRITE setAvailable NOTIFY availableChanged)
    Q_PROPERTY(float shiftYaw READ shiftYaw WRITE setShiftYaw NOTIFY shiftYawChanged)
    Q_PROPERTY(float scaleCorrector READ scaleCorrector WRITE setScaleCorrector NOTIFY
                   scaleCorrectorChanged)
    Q_PROPERTY(int fps READ fps NOTIFY fpsChanged)

public:
    /// None of the arguments is owned.
    OrbOculus(OrbQQuickView *view, OrbGlobalObject *state, OrbShaderCodeBuilder *builder,
              OrbTextureProvider *textureProvider, QObject *parent = nullptr);
    ~OrbOculus() override;

    bool activated() const { return m_activated; }
    QPointF lensCenterLeft() const { return m_lensCenterLeft; }
    QPointF lensCenterRight() const { return m_lensCenterRight; }
    QPointF screenCenterLeft() const { return m_screenCenterLeft; }
    QPointF screenCenterRight() const { return m_screenCenterRight; }
    QPointF scale() const { return m_scale; }
    QPointF scaleIn() const { return m_scaleIn; }
    QVector4D hmdWarpParam() const { return m_hmdWarpParam; }
    QString logMessage() const { return m_logMessage; }
    bool available() const { return m_available; }
    float shiftYaw() const { return m_shiftYaw; }
    float scaleCorrector() const { return m_scaleCorrector; }
    int fps() const { return m_fps; }

    /// Nothing happens without a headset.
    void setActivated(bool activated);

    /// Centres in fractions of the headset's panel; less than 1e-12 is no change.
    void setLensCenterLeft(const QPointF &center);
    void setLensCenterRight(const QPointF &center);
    void setScreenCenterLeft(const QPointF &center);
    void setScreenCenterRight(const QPointF &center);
    void setScale(const QPointF &scale);
    void setScaleIn(const QPointF &scaleIn);
    void setHmdWarpParam(const QVector4D &hmdWarpParam);
    void setScaleCorrector(float scaleCorrector);
    void setLogMessage(const QString &logMessage);

    /// The viewer's own turn of the headset's forward direction, radians, wrapped.
    void setShiftYaw(float shiftYaw);

    /// The field of view for the headset's picture, degrees; 0 before the headset's first frame.
    Q_INVOKABLE float getFov() const { return m_fovDeg; }
    Q_INVOKABLE bool isSupported() const { return true; }

    /// From a point of an eye's picture to the world: the view's rotation times the inverse of the
    /// eye's projection.
    Q_INVOKABLE QMatrix4x4 getRotationMatrixLeft() const;
    Q_INVOKABLE QMatrix4x4 getRotationMatrixRight() const;

    /// Both inverse projections, on standard output.
    Q_INVOKABLE void printinfo() const;

    /// Null without a headset.
    ovrHmd hmd() const { return m_hmd; }
    OrbQQuickView *view() const { return m_view; }
    OrbGlobalObject *state() const { return m_state; }
    OrbShaderCodeBuilder *builder() const { return m_builder; }
    OrbTextureProvider *textureProvider() const { return m_textureProvider; }

    /// Takes what the runtime says of the eyes into the lens values, the projections and the field
    /// of view.
    void configureEyes(const ovrEyeRenderDesc (&eyes)[ovrEye_Count]);

    /// Counts a frame of the headset's window; `epochMs` is milliseconds since the epoch.
    void frameShown(qint64 epochMs);

    /// Adds a line to the log that users read, and to the program's own.
    void report(const QString &line);

signals:
    void activatedChanged();
    void lensCenterLeftChanged();
    void lensCenterRightChanged();
    void screenCenterLeftChanged();
    void screenCenterRightChanged();
    void scaleChanged();
    void scaleInChanged();
    void hmdWarpParamChanged();
    void logMessageChanged();
    void availableChanged();
    void shiftYawChanged();
    void scaleCorrectorChanged();
    void fpsChanged();

public slots:
    /// A device that goes is no longer in use.
    void setAvailable(bool available);

    /// Starts the search once the scene has an OpenGL context: runs on the render thread, after the
    /// first frame.
    void initOvr();

    /// Ends the use of the headset and of its runtime.
    void finishOvr();

    /// Opens the headset.
    void initDevice();

    /// Reports what was found, and takes a headset into use.
    void checkDevice();

private slots:
    void initWindow();
    void destroyWindow();

private:
    void setLens(QPointF &member, const QPointF &value, void (OrbOculus::*changed)());

    ovrHmd m_hmd = nullptr;
    QMatrix4x4 m_matrixLeftEye;
    QMatrix4x4 m_matrixRightEye;
    bool m_activated = false;
    QPointF m_lensCenterLeft;
    QPointF m_lensCenterRight;
    QPointF m_screenCenterLeft;
    QPointF m_screenCenterRight;
    QPointF m_scale;
    QPointF m_scaleIn;
    QVector4D m_hmdWarpParam;
    QString m_logMessage;
    bool m_available = false;
    float m_shiftYaw = 0;
    float m_fovDeg = 0;
    float m_scaleCorrector = 1.2F;
    int m_fps = 0;
    FrameCounter m_frames;
    ovrEyeRenderDesc m_eyes[ovrEye_Count];
    OrbQQuickView *m_view;
    OrbGlobalObject *m_state;
    OrbShaderCodeBuilder *m_builder;
    OrbTextureProvider *m_textureProvider;

    /// The settings are those of a program that shows a headset's picture. A start that only finds
    /// a headset changes them and ends.
    const bool m_headsetMayShow;

    /// Of the scene's share group, current nowhere: others may share with it while the scene's own
    /// context is busy on its thread. Null unless a headset may show.
    std::unique_ptr<QOpenGLContext> m_shareContext;
    std::unique_ptr<WorkerThread> m_search;
    QPointer<GLWindow> m_window;
};
