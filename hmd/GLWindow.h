#pragma once

#include "HeadsetOptions.h"
#include "PanoramaProgram.h"
#include "PoseWatch.h"
#include "Viewport.h"
#include "ovr.h"

#include <QElapsedTimer>
#include <QGLWidget>
#include <QTimer>

#include <memory>

class CopyProgram;
class OrbOculus;
class QOpenGLFramebufferObject;
class QOpenGLFunctions;

/// The window on the headset's screen. As fast as its swaps allow it takes the head's pose into the
/// view state, draws the panorama for both eyes side by side into a buffer, and has that presented:
/// by the runtime, through the lenses' distortion, or by itself as it stands. It draws nothing
/// while its size is not the headset's.
///
/// Main thread, in a context that shares the panorama's texture with the scene's. There is no lock
/// between the two: a frame takes whatever the texture holds.
class GLWindow : public QGLWidget
{
    Q_OBJECT

public:
    /// `oculus`, which has a headset, is not owned.
    explicit GLWindow(OrbOculus *oculus, QWidget *parent = nullptr);
    ~GLWindow() override;

    /// Puts the window onto the headset's screen; once, after `show`.
    void place();

    /// Is seen no more, draws no frame and takes no pose.
    void stop();

public slots:
    /// The next frame builds the panorama's program anew.
    void dirtyShader();

protected:
    /// To the scene, whose keys all work here.
    void keyPressEvent(QKeyEvent *event) override;
    void initializeGL() override;
    void resizeGL(int width, int height) override;
    void paintGL() override;

    /// Closed by the user: the headset is turned off.
    void closeEvent(QCloseEvent *event) override;

private:
    void takePanelSize();
    bool isPanelSize(int w, int h) const;
    bool drawFrame(QOpenGLFunctions *gl);
    void configureSdk(const QSize &pixels);
    void rebuildShader();
    ovrPosef currentPose(const ovrFrameTiming &timing) const;
    void takePose(const ovrQuatf &orientation);
    void tellOfPose(const ovrQuatf &orientation);
    void tellOfSize();
    EyesView currentEyes() const;
    void showByItself();

    OrbOculus *m_oculus;
    std::unique_ptr<PanoramaProgram> m_program;
    std::unique_ptr<CopyProgram> m_copyProgram; ///< made on first use
    std::unique_ptr<QOpenGLFramebufferObject> m_frameBuffer;
    QTimer m_frames;
    Viewport m_viewport; ///< of one eye
    HeadsetOptions m_options;
    bool m_shaderDirty = true;
    ovrEyeRenderDesc m_eyes[ovrEye_Count];
    ovrGLTexture m_eyeTextures[ovrEye_Count];
    ovrPosef m_headPose[ovrEye_Count];
    PoseWatch m_poseWatch;
    QElapsedTimer m_age;
    bool m_toldOfSize = false;
};
