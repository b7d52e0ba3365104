#pragma once

#include <QObject>
#include <QPointF>
#include <QVector4D>

class OrbGlobalObject;
class OrbQQuickView;
class OrbShaderCodeBuilder;
class OrbTextureProvider;

/// The headset as the scene sees it, "orbOculus": whether one is there and in use, and the lens
/// values of its picture. Main thread, but for `initOvr`.
class OrbOculus : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool activated READ activated WRITE setActivated NOTIFY activatedChanged)
    Q_PROPERTY(QPointF lensCenterLeft READ lensCenterLeft NOTIFY lensCenterLeftChanged)
    Q_PROPERTY(QPointF lensCenterRight READ lensCenterRight NOTIFY lensCenterRightChanged)
    Q_PROPERTY(QPointF screenCenterLeft READ screenCenterLeft NOTIFY screenCenterLeftChanged)
    Q_PROPERTY(QPointF screenCenterRight READ screenCenterRight NOTIFY screenCenterRightChanged)
    Q_PROPERTY(QPointF scale READ scale NOTIFY scaleChanged)
    Q_PROPERTY(QPointF scaleIn READ scaleIn NOTIFY scaleInChanged)
    Q_PROPERTY(QVector4D hmdWarpParam READ hmdWarpParam NOTIFY hmdWarpParamChanged)
    Q_PROPERTY(QString logMessage READ logMessage NOTIFY logMessageChanged)
    Q_PROPERTY(bool available READ available NOTIFY availableChanged)
    Q_PROPERTY(float shiftYaw READ shiftYaw WRITE setShiftYaw NOTIFY shiftYawChanged)
    Q_PROPERTY(float scaleCorrector READ scaleCorrector NOTIFY scaleCorrectorChanged)
    Q_PROPERTY(int fps READ fps NOTIFY fpsChanged)

public:
    /// None of the arguments is owned.
    OrbOculus(OrbQQuickView *view, OrbGlobalObject *state, OrbShaderCodeBuilder *builder,
              OrbTextureProvider *textureProvider, QObject *parent = nullptr);

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

    /// The viewer's own turn of the headset's forward direction, radians, wrapped.
    void setShiftYaw(float shiftYaw);

    Q_INVOKABLE float getFov() const { return m_fovDeg; }
    Q_INVOKABLE bool isSupported() const { return true; }

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
    /// What the device's layer found. A device that goes is no longer in use.
    void setAvailable(bool available);

    /// Starts the search once the scene has an OpenGL context: runs on the render thread, after the
    /// first frame.
    void initOvr();

    /// Reports what was found.
    void checkDevice();

private:
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
    OrbQQuickView *m_view;
    OrbGlobalObject *m_state;
};
