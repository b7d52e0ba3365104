#pragma once

#include "HandDispatch.h"
#include "HandState.h"
#include "HandTutorial.h"
#include "LeapListener.h"
#include "PointerStep.h"
#include "ViewHistory.h"

#include <QPointer>
#include <QThread>
#include <QVector4D>

#include <atomic>
#include <mutex>

class OrbGlobalObject;
class OrbQQuickView;
class OrbShaderCodeBuilder;

using FingerList = Leap::FingerList;

/// The hand tracker as the scene sees it, "orbLeap": hands steer the view and the player. Each
/// frame of the tracker goes through the gestures in their order; this object holds what they
/// remember and does what they decide.
///
/// Threads: it lives on the main thread and is never started as a thread. Frames are analysed on
/// the tracker's own thread, one at a time (`frameCaptured`, `run` and all that they call), which
/// also writes the view, the projection and some properties there. `m_mutex` guards what gestures
/// remember, the pointer and the tutorial; the main thread waits for it no longer than an analysis
/// takes. The plain options are atomic. Items of the scene are only touched on the main thread.
/// `stop` and the destructor, on the main thread, wait for a running analysis.
class OrbLeap : public QThread, private HandTutorial::Stage
{
    Q_OBJECT
    Q_PROPERTY(bool available READ available NOTIFY availableChanged)
    Q_PROPERTY(bool activated READ activated WRITE setActivated NOTIFY activatedChanged)
    Q_PROPERTY(double sensitivityYawPitch READ sensitivityYawPitch WRITE setSensitivityYawPitch
                   NOTIFY sensitivityYawPitchChanged)
    Q_PROPERTY(short sensitivitySeekJump READ sensitivitySeekJump WRITE setSensitivitySeekJump
                   NOTIFY sensitivitySeekJumpChanged)
    Q_PROPERTY(bool pitchInv READ pitchInv WRITE setPitchInv NOTIFY pitchInvChanged)
    Q_PROPERTY(bool yawInv READ yawInv WRITE setYawInv NOTIFY yawInvChanged)
    Q_PROPERTY(QVector4D pointer READ pointer WRITE setPointer NOTIFY pointerChanged)
    Q_PROPERTY(bool rollMode READ rollMode WRITE setRollMode NOTIFY rollModeChanged)
    Q_PROPERTY(bool fovMode READ fovMode WRITE setFovMode NOTIFY fovModeChanged)
    Q_PROPERTY(double pointerSensibility READ pointerSensibility WRITE setPointerSensibility NOTIFY
                   pointerSensibilityChanged)
    Q_PROPERTY(uchar pointerInterpolation READ pointerInterpolation WRITE setPointerInterpolation
                   NOTIFY pointerInterpolationChanged)
    Q_PROPERTY(bool menuState READ menuState WRITE setMenuState NOTIFY menuStateChanged)
    Q_PROPERTY(uchar cameraMode READ cameraMode WRITE setCameraMode NOTIFY cameraModeChanged)
    Q_PROPERTY(QString logMessage READ logMessage NOTIFY logMessageChanged)
    Q_PROPERTY(QString logLink READ logLink NOTIFY logLinkChanged)
    Q_PROPERTY(bool playPauseGesture READ playPauseGesture WRITE setPlayPauseGesture NOTIFY
                   playPauseGestureChanged)
    Q_PROPERTY(bool seekGesture READ seekGesture WRITE setSeekGesture NOTIFY seekGestureChanged)
    Q_PROPERTY(uchar handOutZone READ handOutZone NOTIFY handOutZoneChanged)
    Q_PROPERTY(bool drawHand READ drawHand WRITE setDrawHand NOTIFY drawHandChanged)
    Q_PROPERTY(int tutoState READ tutoState WRITE setTutoState NOTIFY tutoStateChanged)

public:
    /// `tutoState` that starts the tutorial.
    static constexpr int kStartTutorial = -2;

    /// None of the objects is owned; they outlive this one.
    OrbLeap(OrbGlobalObject *state, OrbQQuickView *view, OrbShaderCodeBuilder *builder,
            QObject *parent = nullptr);

    /// The same with a tracker of the caller's.
    OrbLeap(OrbGlobalObject *state, OrbQQuickView *view, OrbShaderCodeBuilder *builder,
            Leap::Controller::MakeSource makeSource);

    ~OrbLeap() override;

    /// Ends the tracker's calls, for good; before the objects go that they steer.
    void stop();

    bool available() const { return m_available; }
    bool activated() const { return m_activated; }
    double sensitivityYawPitch() const { return m_sensitivityYawPitch; }
    short sensitivitySeekJump() const { return m_sensitivitySeekJump; }
    bool pitchInv() const { return m_pitchInv; }
    bool yawInv() const { return m_yawInv; }
    QVector4D pointer() const;
    bool rollMode() const { return m_rollMode; }
    bool fovMode() const { return m_fovMode; }
    double pointerSensibility() const { return m_pointerSensibility; }
    uchar pointerInterpolation() const { return m_pointerInterpolation; }
    bool menuState() const { return m_menuState; }
    uchar cameraMode() const { return m_cameraMode; }
    QString logMessage() const { return m_logMessage; }
    QString logLink() const { return m_logLink; }
    bool playPauseGesture() const { return m_playPauseGesture; }
    bool seekGesture() const { return m_seekGesture; }
    /// The edges of the tracker's field at which a hand is lost, bits of ZoneCheck::Edge.
    uchar handOutZone() const { return m_handOutZone; }
    bool drawHand() const { return m_drawHand; }
    int tutoState() const;

    /// True only while a device is there. False forgets what gestures were under way.
    void setActivated(bool activated);
    void setSensitivityYawPitch(double sensitivity);
    void setSensitivitySeekJump(short milliseconds);
    void setPitchInv(bool inverted);
    void setYawInv(bool inverted);
    void setPointer(const QVector4D &pointer);
    void setRollMode(bool rollMode);
    void setFovMode(bool fovMode);
    void setPointerSensibility(double sensibility);
    void setPointerInterpolation(uchar frames);
    void setMenuState(bool open);
    void setCameraMode(uchar mode);
    void setPlayPauseGesture(bool enabled);
    void setSeekGesture(bool enabled);
    void setDrawHand(bool drawn);
    /// A lesson of the tutorial, `kStartTutorial`, or -1 to end it.
    void setTutoState(int state);

    /// Items of the scene that gestures act on; not owned.
    Q_INVOKABLE void setPlayerImage(QObject *playerImage);
    Q_INVOKABLE void setBar(QObject *bar);

    Q_INVOKABLE bool isSupported() const { return true; }

public slots:
    /// A frame is there. On the tracker's thread.
    void frameCaptured();
    void resizeWidth();
    void resizeHeight();
    /// A device came or went. On the main thread.
    void leapConnected(bool connected);
    /// The projection has changed as a hand wanted it: what the new one shows is the hand's choice.
    /// On the thread that has changed it, as is the next.
    void onProjectionChangedByLeap();
    void onProjectionChanged();
    /// The bounce that `pitchBounce` has started is over. On the main thread.
    void animationFinished();
    void oculusActivated();

    /// The analysis of a frame. On the tracker's thread.
    void run() override;

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

    /// The view shall bounce to these values, radians and degrees.
    void pitchBounce(double pitch_end, double fov_end, double roll_end);
    void iconProjChange();
    /// The fingers to draw over the flat picture, or in the headset.
    void drawFingersSignal(FingerList fingersExtended);
    void drawFingersSignalOculus(FingerList fingersExtended);
    /// The view that the painters of hands follow.
    void setGlobalObject(OrbGlobalObject *go);

private:
    bool attempt(HandGesture gesture) override;
    void showProjection(int projection) override;
    void stopGliding() override;
    void recordView(int times) override;
    void lookFromAbove() override;
    void forgetOneHandOpen() override;
    void forgetTwoHandsOpen() override;
    float pitch() const override;
    float fov() const override;
    int projection() const override;

    void resetGestures();
    void resetView();
    void setPointerHidden();

    // Of the frame's analysis.
    bool opensGate();
    void analyse();
    HandOptions options() const;
    void draw(const FingerList &fingers);
    bool losesHand();
    void runMenu(bool hasPointables);
    void runTutorial();
    bool movePointer(const PointerStep::Result &result);
    void postMouse(const PointerStep::MouseEvent &event);
    bool apply(const HandDecision &decision);
    void readView();
    void writeView(const HandView &view);
    void rollBack(int age);

    // Of the main thread; `onMainThread` calls them there, at once if it is the caller's own.
    void onMainThread(void (OrbLeap::*function)());
    void findMediaPlayer();
    QObject *mediaPlayer() const;
    void showText(const QString &text);
    void seekToStart();
    void playPause();
    void seekJump(float milliseconds);
    void tellEndOfTutorial() { showText(QStringLiteral("End of tutorial")); }

    OrbGlobalObject *const m_view;
    OrbQQuickView *const m_window;
    OrbShaderCodeBuilder *const m_builder;

    std::atomic<bool> m_available{false};
    std::atomic<bool> m_activated{false};
    std::atomic<double> m_sensitivityYawPitch{HandOptions().sensitivityYawPitch};
    std::atomic<short> m_sensitivitySeekJump{short(HandOptions().sensitivitySeekJump)};
    std::atomic<bool> m_pitchInv{false};
    std::atomic<bool> m_yawInv{false};
    std::atomic<bool> m_rollMode{false};
    std::atomic<bool> m_fovMode{true};
    std::atomic<double> m_pointerSensibility{HandOptions().pointerSensibility};
    std::atomic<uchar> m_pointerInterpolation{uchar(HandOptions().pointerInterpolation)};
    std::atomic<bool> m_menuState{false};
    std::atomic<uchar> m_cameraMode{CameraMode::kHands};
    std::atomic<bool> m_playPauseGesture{true};
    std::atomic<bool> m_seekGesture{true};
    std::atomic<bool> m_drawHand{true};
    std::atomic<uchar> m_handOutZone{0};
    std::atomic<double> m_width{0}; ///< of the window, pixels; 0 until it has told
    std::atomic<double> m_height{0};
    std::atomic<bool> m_isGateOpen{false};     ///< a gesture has been seen since the start
    std::atomic<bool> m_hasMediaPlayer{false}; ///< the scene is loaded

    // Of the main thread.
    QString m_logMessage;
    QString m_logLink;
    QPointer<QObject> m_playerImage;
    QPointer<QObject> m_bar;

    mutable std::recursive_mutex m_mutex; ///< guards what follows
    bool m_isSteering = false;            ///< frames are analysed
    QVector4D m_pointer{0, 0, 0, -1};
    bool m_isPressed = false; ///< the pointer holds a button
    HandState m_state;
    ViewHistory m_history;
    HandTutorial m_tutorial;

    // Of the frame in work.
    FrameHistory m_frames;
    HandOptions m_options;
    HandScene *m_scene = nullptr;

    LeapListener m_listener;
    Leap::Controller m_controller; ///< last: its thread calls all of the above
};
