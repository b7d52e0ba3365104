#include "OrbLeap.h"

#include "CircleSeek.h"
#include "Clap.h"
#include "EdgePush.h"
#include "HandTranslation.h"
#include "MenuSwipe.h"
#include "NextSwipe.h"
#include "OneFingerTilt.h"
#include "OpenHandNavigation.h"
#include "OrbGlobalObject.h"
#include "OrbQQuickView.h"
#include "OrbShaderCodeBuilder.h"
#include "PlanetEvents.h"
#include "PlanetPull.h"
#include "PlanetReturn.h"
#include "TwoFingerRoll.h"
#include "TwoFingerRotation.h"
#include "TwoFingerZoom.h"
#include "TwoHandAnalysis.h"
#include "TwoHandScale.h"
#include "TwoHandTilt.h"
#include "ViewMotion.h"
#include "ZoneCheck.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QTime>

namespace {

constexpr int kFramesInUse = 52; // a pointer meaned over the last 30 of 20 looks back as far
constexpr int kRestFrames = 20;  // without fingers until hands count as gone

QString deviceMissing()
{
    return OrbLeap::tr("Leap Motion device not found.\n\n"
                       "Warning : Leap Motion SDK must be installed.");
}

QString downloadLink()
{
    return QStringLiteral("<a href=\"https://developer.leapmotion.com/downloads/skeletal-beta\">%1"
                          "</a>.<br><br>")
        .arg(OrbLeap::tr("Leap Motion SDK"));
}

template <typename T>
void store(std::atomic<T> &member, T value, OrbLeap *leap, void (OrbLeap::*changed)())
{
    member = value;
    emit(leap->*changed)();
}

} // namespace

OrbLeap::OrbLeap(OrbGlobalObject *state, OrbQQuickView *view, OrbShaderCodeBuilder *builder,
                 QObject *parent)
    : OrbLeap(state, view, builder, Leap::Controller::MakeSource())
{
    setParent(parent);
}

OrbLeap::OrbLeap(OrbGlobalObject *state, OrbQQuickView *view, OrbShaderCodeBuilder *builder,
                 Leap::Controller::MakeSource makeSource)
    : m_view(state)
    , m_window(view)
    , m_builder(builder)
    , m_logMessage(deviceMissing())
    , m_logLink(downloadLink())
    , m_controller(std::move(makeSource))
{
    qRegisterMetaType<FingerList>("FingerList");
    connect(&m_listener, &LeapListener::leapConnected, this, &OrbLeap::leapConnected,
            Qt::UniqueConnection);
    connect(m_window, &QWindow::widthChanged, this, &OrbLeap::resizeWidth, Qt::UniqueConnection);
    connect(m_window, &QWindow::heightChanged, this, &OrbLeap::resizeHeight, Qt::UniqueConnection);
    connect(m_builder, &OrbShaderCodeBuilder::oculusModeChanged, this, &OrbLeap::oculusActivated,
            Qt::UniqueConnection);
    // At once on either thread: what follows in the frame depends on it.
    connect(m_builder, &OrbShaderCodeBuilder::projectionChanged, this,
            &OrbLeap::onProjectionChanged,
            Qt::ConnectionType(Qt::DirectConnection | Qt::UniqueConnection));
    m_controller.addListener(m_listener);
}

OrbLeap::~OrbLeap()
{
    stop();
}

void OrbLeap::stop()
{
    m_controller.removeListener(m_listener);
}

QVector4D OrbLeap::pointer() const
{
    const std::lock_guard lock(m_mutex);
    return m_pointer;
}

int OrbLeap::tutoState() const
{
    const std::lock_guard lock(m_mutex);
    return m_tutorial.lesson();
}

void OrbLeap::setActivated(bool activated)
{
    {
        const std::lock_guard lock(m_mutex);
        m_isSteering = activated;
        if (activated) {
            readView();
            m_history.record(m_state, ViewHistory::kLength);
        } else {
            resetGestures();
        }
    }
    if (activated)
        connect(&m_listener, &LeapListener::frameArrive, this, &OrbLeap::frameCaptured,
                Qt::ConnectionType(Qt::DirectConnection | Qt::UniqueConnection));
    else
        disconnect(&m_listener, &LeapListener::frameArrive, this, &OrbLeap::frameCaptured);
    if (m_available && activated != m_activated)
        store(m_activated, activated, this, &OrbLeap::activatedChanged);
}

void OrbLeap::resetGestures()
{
    m_state = HandState();
    onProjectionChanged();
    if (m_isPressed)
        postMouse({PointerStep::MouseEvent::Release, m_pointer.toPointF()});
    m_isPressed = false;
    if (m_tutorial.lesson() != HandTutorial::None)
        setTutoState(HandTutorial::None);
}

void OrbLeap::setSensitivityYawPitch(double sensitivity)
{
    store(m_sensitivityYawPitch, sensitivity, this, &OrbLeap::sensitivityYawPitchChanged);
}

void OrbLeap::setSensitivitySeekJump(short milliseconds)
{
    store(m_sensitivitySeekJump, milliseconds, this, &OrbLeap::sensitivitySeekJumpChanged);
}

void OrbLeap::setPitchInv(bool inverted)
{
    store(m_pitchInv, inverted, this, &OrbLeap::pitchInvChanged);
}

void OrbLeap::setYawInv(bool inverted)
{
    store(m_yawInv, inverted, this, &OrbLeap::yawInvChanged);
}

void OrbLeap::setPointer(const QVector4D &pointer)
{
    {
        const std::lock_guard lock(m_mutex);
        m_pointer = pointer;
    }
    emit pointerChanged();
}

void OrbLeap::setRollMode(bool rollMode)
{
    store(m_rollMode, rollMode, this, &OrbLeap::rollModeChanged);
    if (!rollMode)
        m_view->setRoll(0, true);
}

void OrbLeap::setFovMode(bool fovMode)
{
    store(m_fovMode, fovMode, this, &OrbLeap::fovModeChanged);
    if (!fovMode)
        m_view->setFov(90);
}

void OrbLeap::setPointerSensibility(double sensibility)
{
    store(m_pointerSensibility, sensibility, this, &OrbLeap::pointerSensibilityChanged);
}

void OrbLeap::setPointerInterpolation(uchar frames)
{
    store(m_pointerInterpolation, frames, this, &OrbLeap::pointerInterpolationChanged);
}

void OrbLeap::setMenuState(bool open)
{
    store(m_menuState, open, this, &OrbLeap::menuStateChanged);
    if (open) {
        QVector4D shown = pointer();
        shown.setW(1);
        setPointer(shown);
    } else if (m_cameraMode == CameraMode::kHandTranslation) {
        setPointerHidden();
    }
    m_controller.enableGesture(Leap::Gesture::TYPE_CIRCLE, !open);
}

void OrbLeap::setCameraMode(uchar mode)
{
    m_cameraMode = mode;
    if (mode == CameraMode::kHandTranslation || mode == CameraMode::kHeadset
        || mode == CameraMode::kHands)
        setPointerHidden();
    emit cameraModeChanged();
}

void OrbLeap::setPlayPauseGesture(bool enabled)
{
    store(m_playPauseGesture, enabled, this, &OrbLeap::playPauseGestureChanged);
}

void OrbLeap::setSeekGesture(bool enabled)
{
    store(m_seekGesture, enabled, this, &OrbLeap::seekGestureChanged);
}

void OrbLeap::setDrawHand(bool drawn)
{
    store(m_drawHand, drawn, this, &OrbLeap::drawHandChanged);
}

void OrbLeap::setTutoState(int state)
{
    {
        const std::lock_guard lock(m_mutex);
        if (state == kStartTutorial || state == HandTutorial::None)
            resetView();
        if (state != kStartTutorial)
            m_tutorial.setLesson(state);
        else if (const int first = HandTutorial::firstLesson(m_cameraMode);
                 first != HandTutorial::None)
            m_tutorial.setLesson(first);
    }
    if (state == kStartTutorial || state == HandTutorial::None)
        onMainThread(&OrbLeap::seekToStart);
    if (state == HandTutorial::None && !m_drawHand) {
        emit drawFingersSignal({});
        emit drawFingersSignalOculus({});
    }
    emit tutoStateChanged();
}

void OrbLeap::resetView()
{
    m_view->setFov(90);
    m_view->setYaw(0, true);
    m_view->setPitch(0, true);
    m_view->setRoll(0, true);
    m_builder->setProjection(OrbShaderCodeBuilder::RECTILINEAR);
}

void OrbLeap::setPointerHidden()
{
    QVector4D hidden = pointer();
    hidden.setW(-1);
    setPointer(hidden);
}

void OrbLeap::setPlayerImage(QObject *playerImage)
{
    m_playerImage = playerImage;
}

void OrbLeap::setBar(QObject *bar)
{
    m_bar = bar;
}

void OrbLeap::resizeWidth()
{
    m_width = m_window->geometry().width();
}

void OrbLeap::resizeHeight()
{
    m_height = m_window->geometry().height();
}

void OrbLeap::oculusActivated()
{
    setCameraMode(m_builder->oculusMode() ? CameraMode::kHeadset : CameraMode::kHands);
}

void OrbLeap::leapConnected(bool connected)
{
    store(m_available, connected, this, &OrbLeap::availableChanged);
    setActivated(connected);
    if (!connected)
        showText(QStringLiteral("Leap Motion Controller Disconnected"));
    else if (m_isGateOpen)
        showText(QStringLiteral("Leap Motion Controller Connected"));
    m_logMessage = connected ? tr("Leap Motion Device found.\n") : deviceMissing();
    m_logLink = connected ? QString() : downloadLink();
    emit logMessageChanged();
    emit logLinkChanged();
}

// What follows up to the analysis is of the main thread, whoever asks for it.

void OrbLeap::onMainThread(void (OrbLeap::*function)())
{
    QMetaObject::invokeMethod(this, function, Qt::AutoConnection);
}

void OrbLeap::findMediaPlayer()
{
    if (m_hasMediaPlayer || !mediaPlayer())
        return;
    m_hasMediaPlayer = true;
    emit setGlobalObject(m_view);
}

QObject *OrbLeap::mediaPlayer() const
{
    const QObject *loader = m_view->mediaLoader();
    return loader ? loader->property("mediaPlayer").value<QObject *>() : nullptr;
}

void OrbLeap::showText(const QString &text)
{
    if (m_playerImage)
        QMetaObject::invokeMethod(m_playerImage, "onShowPlayerText", Q_ARG(QVariant, text));
}

void OrbLeap::seekToStart()
{
    if (QObject *player = mediaPlayer())
        QMetaObject::invokeMethod(player, "seek", Q_ARG(QVariant, 0));
}

void OrbLeap::playPause()
{
    if (m_bar)
        QMetaObject::invokeMethod(m_bar, "playPause");
}

void OrbLeap::seekJump(float milliseconds)
{
    QObject *player = mediaPlayer();
    if (!player)
        return;
    QMetaObject::invokeMethod(player, "seekJump", Q_ARG(QVariant, milliseconds));
    const int position = player->property("position").toInt();
    showText(QTime(0, 0, 0, 0).addMSecs(position).toString());
}

void OrbLeap::animationFinished()
{
    const std::lock_guard lock(m_mutex);
    readView();
    apply(PlanetEvents::animationFinished(m_state, m_frames.current().timestamp()));
}

void OrbLeap::onProjectionChanged()
{
    const std::lock_guard lock(m_mutex);
    readView();
    PlanetEvents::projectionChanged(m_state);
}

// What follows is the analysis of a frame, on the tracker's thread.

void OrbLeap::frameCaptured()
{
    run();
}

void OrbLeap::run()
{
    if (!m_hasMediaPlayer) {
        onMainThread(&OrbLeap::findMediaPlayer);
        return;
    }
    const std::lock_guard lock(m_mutex);
    if (!m_isSteering)
        return; // turned off while the frame was on its way
    std::vector<Leap::Frame> frames;
    frames.reserve(kFramesInUse);
    for (int age = 0; age < kFramesInUse; ++age)
        frames.push_back(m_controller.frame(age));
    m_frames = FrameHistory(std::move(frames));
    if (!m_isGateOpen && !opensGate())
        return;

    readView();
    m_options = options();
    if (m_options.cameraMode != CameraMode::kHeadset)
        m_history.record(m_state);
    const std::vector<Leap::Device> devices = m_controller.devices();
    HandScene scene(m_frames, devices.empty() ? Leap::Device() : devices.front(), m_options);
    m_scene = &scene;
    analyse();
    m_scene = nullptr;
}

bool OrbLeap::opensGate()
{
    if (m_frames.current().gestures().isEmpty())
        return false;
    m_isGateOpen = true;
    const QPointF middle(int(m_width / 2), int(m_height / 2));
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const bool presses = type == QEvent::MouseButtonPress;
        QCoreApplication::postEvent(m_window,
                                    new QMouseEvent(type, middle, middle, middle, Qt::LeftButton,
                                                    presses ? Qt::LeftButton : Qt::NoButton,
                                                    Qt::NoModifier));
    }
    for (const auto type : {Leap::Gesture::TYPE_CIRCLE, Leap::Gesture::TYPE_SWIPE})
        m_controller.enableGesture(type, true);
    for (const auto type : {Leap::Gesture::TYPE_SCREEN_TAP, Leap::Gesture::TYPE_KEY_TAP})
        m_controller.enableGesture(type, false);
    readView();
    m_history.record(m_state, ViewHistory::kLength);
    return true;
}

void OrbLeap::analyse()
{
    const Leap::Frame &current = m_frames.current();
    bool hasPointables = false;
    for (int age = 0; age < kRestFrames && !hasPointables; ++age)
        hasPointables = !m_frames[age].pointables().isEmpty();
    if (losesHand()) {
        hasPointables = false;
        if (m_drawHand)
            emit drawFingersSignal({});
    }
    if (current.hands().count() == 2
        && m_scene->left.stabilizedPalmPosition().distanceTo(
               m_scene->right.stabilizedPalmPosition())
            > 100)
        m_state.clapArmed = true;

    if (m_tutorial.lesson() > HandTutorial::None) {
        if (m_options.cameraMode == CameraMode::kFinger)
            attempt(HandGesture::PointerStep);
        else
            draw(current.fingers());
        runTutorial();
        return;
    }
    if (!m_drawHand)
        draw({});
    if (m_menuState) {
        runMenu(hasPointables);
        return;
    }
    if (m_drawHand && hasPointables
        && (m_options.cameraMode == CameraMode::kHeadset
            || m_options.cameraMode == CameraMode::kHands))
        draw(current.fingers());
    const HandSwitches switches{m_rollMode, m_fovMode, m_playPauseGesture, m_seekGesture};
    dispatchHands(*m_scene, m_state, switches, hasPointables, *this);
}

HandOptions OrbLeap::options() const
{
    HandOptions options;
    options.sensitivityYawPitch = m_sensitivityYawPitch;
    options.sensitivitySeekJump = m_sensitivitySeekJump;
    options.pitchInv = m_pitchInv;
    options.yawInv = m_yawInv;
    options.pointerSensibility = m_pointerSensibility;
    options.pointerInterpolation = m_pointerInterpolation;
    options.cameraMode = m_cameraMode;
    options.width = m_width;
    options.height = m_height;
    return options;
}

void OrbLeap::draw(const FingerList &fingers)
{
    if (m_options.cameraMode == CameraMode::kHeadset)
        emit drawFingersSignalOculus(fingers);
    else
        emit drawFingersSignal(fingers);
}

bool OrbLeap::losesHand()
{
    const ZoneCheck::Result zone = ZoneCheck::check(*m_scene, m_state.zoneTime);
    m_state.zoneTime = zone.zoneTime;
    m_handOutZone = zone.outZone;
    if (zone.emitsChange)
        emit handOutZoneChanged();
    return zone.handLost;
}

void OrbLeap::runMenu(bool hasPointables)
{
    if (!hasPointables) {
        attempt(HandGesture::PointerReset);
        return;
    }
    const MenuSwipe::Result menu = MenuSwipe::detect(*m_scene, m_state.lastAction);
    m_state.lastAction = menu.lastAction;
    if (menu.flipsMenu)
        setMenuState(!m_menuState);
    if (!m_menuState)
        return;
    attempt(HandGesture::PointerStep);
}

void OrbLeap::runTutorial()
{
    const Leap::HandList hands = m_frames.current().hands();
    HandTutorial::Frame frame;
    frame.time = m_frames.current().timestamp();
    frame.cameraMode = m_options.cameraMode;
    frame.hasFist = hands.count() == 1 && hands[0].grabStrength() > 0.95F;
    const HandView &now = m_history[0].view;
    const HandView &before = m_history[1].view;
    frame.yawMotion = std::abs(double(now.yaw) - double(before.yaw));
    frame.pitchMotion = std::abs(double(now.pitch) - double(before.pitch));
    const int lesson = m_tutorial.lesson();
    m_tutorial.run(frame, *this);
    if (m_tutorial.lesson() == lesson)
        return;
    if (m_tutorial.lesson() == HandTutorial::None) {
        setTutoState(HandTutorial::None);
        onMainThread(&OrbLeap::tellEndOfTutorial);
    } else {
        emit tutoStateChanged();
    }
}

bool OrbLeap::attempt(HandGesture gesture)
{
    readView();
    switch (gesture) {
    case HandGesture::Inertia: {
        HandDecision glide;
        glide.state = m_state;
        ViewMotion::applyInertia(glide.state, m_options);
        return apply(glide);
    }
    case HandGesture::OpenHand:
        return apply(OpenHandNavigation::detect(*m_scene, m_state));
    case HandGesture::HandTranslation:
        if (m_rollMode)
            apply(HandTranslation::detectRoll(*m_scene, m_state));
        return apply(HandTranslation::detect(*m_scene, m_state));
    case HandGesture::TwoHandScale:
        return apply(TwoHandScale::detect(*m_scene, m_state));
    case HandGesture::CircleSeek:
        return apply(CircleSeek::detect(*m_scene, m_state));
    case HandGesture::CircleSeekHeadset:
        return apply(CircleSeek::detectForHeadset(*m_scene, m_state));
    case HandGesture::Clap:
        return apply(Clap::detect(*m_scene, m_state));
    case HandGesture::NextSwipe:
        return apply(NextSwipe::detect(*m_scene, m_state));
    case HandGesture::TwoFingerZoom:
        return apply(TwoFingerZoom::detect(*m_scene, m_state));
    case HandGesture::TwoFingerRoll:
        return apply(TwoFingerRoll::detect(*m_scene, m_state));
    case HandGesture::PointerStep:
        return movePointer(PointerStep::step(*m_scene, {m_pointer, m_isPressed}, m_menuState));
    case HandGesture::PointerReset:
        return movePointer(PointerStep::reset(m_options, {m_pointer, m_isPressed}, m_menuState));
    case HandGesture::EdgePush: {
        HandView view = m_state.view;
        const bool acts = edgePush(view, m_options, double(m_pointer.x()), double(m_pointer.y()));
        writeView(view);
        return acts;
    }
    case HandGesture::Pull:
        return apply(PlanetPull::detect(*m_scene, m_state));
    case HandGesture::TwoHands:
        return apply(TwoHandAnalysis::detect(*m_scene, m_state));
    case HandGesture::PlanetReturn:
        return apply(PlanetReturn::detect(*m_scene, m_state));
    case HandGesture::TwoFingerRotation:
        return apply(TwoFingerRotation::detect(*m_scene, m_state));
    case HandGesture::OneFingerTilt:
        return apply(OneFingerTilt::detect(*m_scene, m_state));
    case HandGesture::PlanetCloseUp: {
        constexpr double kFaster = 9;
        HandDecision flight = OpenHandNavigation::detect(*m_scene, m_state);
        flight.state.view.setRoll(0);
        if (flight.acted) {
            flight.state.glide.yawSpeed *= kFaster;
            flight.state.glide.pitchSpeed *= kFaster;
        }
        return apply(flight);
    }
    case HandGesture::PlanetTwoHands: {
        const TwoHandPosture posture = twoHandPosture(m_frames, m_state.planet.previousDifference);
        HandDecision tilt = TwoHandTilt::detect(*m_scene, m_state, posture);
        tilt.state.planet.previousDifference = posture.steer;
        return apply(tilt);
    }
    }
    return false;
}

bool OrbLeap::movePointer(const PointerStep::Result &result)
{
    m_isPressed = result.state.isPressed;
    setPointer(result.state.pointer);
    if (result.mouse)
        postMouse(*result.mouse);
    return result.state.pointer.w() == 1;
}

/// With a button that no mouse has, so that items know the pointer from it.
void OrbLeap::postMouse(const PointerStep::MouseEvent &event)
{
    using Kind = PointerStep::MouseEvent::Kind;
    const auto type = event.kind == Kind::Press ? QEvent::MouseButtonPress
        : event.kind == Kind::Release           ? QEvent::MouseButtonRelease
                                                : QEvent::MouseMove;
    const auto button = event.kind == Kind::Move ? Qt::NoButton : Qt::ExtraButton24;
    // All places are given: where the mouse is may be asked for on the main thread alone.
    const QPointF &place = event.place;
    QCoreApplication::postEvent(m_window,
                                new QMouseEvent(type, place, place, place, button, Qt::NoButton,
                                                Qt::MetaModifier));
}

void OrbLeap::readView()
{
    HandView &view = m_state.view;
    view.yaw = m_view->yaw();
    view.pitch = m_view->pitch();
    view.roll = m_view->roll();
    view.fov = m_view->fov();
    view.projection = m_builder->projection();
}

// Leaves alone what stands, which another thread may be changing.
void OrbLeap::writeView(const HandView &view)
{
    const HandView before = m_state.view;
    m_state.view = view;
    if (view.yaw != before.yaw)
        m_view->setYaw(view.yaw, true);
    if (view.pitch != before.pitch)
        m_view->setPitch(view.pitch, true);
    if (view.roll != before.roll)
        m_view->setRoll(view.roll, true);
    if (view.fov != before.fov)
        m_view->setFov(view.fov);
}

bool OrbLeap::apply(const HandDecision &decision)
{
    const HandView before = m_state.view;
    m_state = decision.state;
    m_state.view = before;
    writeView(decision.state.view);
    if (decision.projection) {
        m_builder->setProjection(*decision.projection);
        onProjectionChangedByLeap();
    }
    if (decision.bounce)
        emit pitchBounce(decision.bounce->pitch, decision.bounce->fov, decision.bounce->roll);
    if (decision.seekJump) {
        const float milliseconds = *decision.seekJump;
        QMetaObject::invokeMethod(this, [this, milliseconds] { seekJump(milliseconds); });
    }
    if (decision.togglesPlay)
        onMainThread(&OrbLeap::playPause);
    if (decision.takesBack)
        rollBack(50);
    if (decision.nextMedium)
        QMetaObject::invokeMethod(m_view, &OrbGlobalObject::playListSetNext);
    return decision.acted;
}

void OrbLeap::onProjectionChangedByLeap()
{
    const std::lock_guard lock(m_mutex);
    readView();
    HandState changed = m_state;
    PlanetEvents::projectionChangedByHands(changed);
    writeView(changed.view);
}

void OrbLeap::rollBack(int age)
{
    const ViewHistory::Entry entry = m_history[age];
    showProjection(entry.view.projection);
    writeView(entry.view);
    m_state.glide.yawSpeed = entry.yawSpeed;
    m_state.glide.pitchSpeed = entry.pitchSpeed;
}

void OrbLeap::showProjection(int projection)
{
    if (m_builder->projection() != projection)
        m_builder->setProjection(projection);
    readView();
}

void OrbLeap::stopGliding()
{
    m_state.glide.yawSpeed = 0;
    m_state.glide.pitchSpeed = 0;
}

void OrbLeap::recordView(int times)
{
    readView();
    m_history.record(m_state, times);
}

void OrbLeap::lookFromAbove()
{
    constexpr float kDown = 1.5707964F;
    m_view->setPitch(kDown, true);
    m_view->setFov(90);
}

void OrbLeap::forgetOneHandOpen()
{
    m_scene->oneHandOpen = false;
}

void OrbLeap::forgetTwoHandsOpen()
{
    m_scene->twoHandsOpen = false;
}

float OrbLeap::pitch() const
{
    return m_view->pitch();
}

float OrbLeap::fov() const
{
    return m_view->fov();
}

int OrbLeap::projection() const
{
    return m_builder->projection();
}
