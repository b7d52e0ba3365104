#include "HandTutorial.h"

#include "HandDispatch.h"
#include "OrbShaderCodeBuilder.h"

namespace {

constexpr double kTurnEnough = 10; // radians

constexpr qint64 us(double seconds)
{
    return qint64(seconds * 1e6);
}

} // namespace

int HandTutorial::firstLesson(int cameraMode)
{
    switch (cameraMode) {
    case CameraMode::kHands:
        return Move;
    case CameraMode::kFinger:
        return Finger;
    case CameraMode::kHeadset:
        return Clap;
    default:
        return None;
    }
}

void HandTutorial::setLesson(int lesson)
{
    m_lesson = lesson;
    m_counter = 0;
}

void HandTutorial::run(const Frame &frame, Stage &stage)
{
    switch (m_lesson) {
    case Move:
        return move(frame, stage);
    case Finger:
        return finger(frame, stage);
    case Seek:
        return seek(frame, stage);
    case Pinch:
        return pinch(frame, stage);
    case Zoom:
        return zoom(stage);
    case Clap:
        return clap(frame, stage);
    case Hold:
        return hold(stage);
    case Turn:
        return turn(frame, stage);
    case Swipe:
        if (stage.attempt(HandGesture::NextSwipe))
            setLesson(Fist);
        return;
    case Fist:
        return fist(frame);
    default:
        return;
    }
}

void HandTutorial::move(const Frame &frame, Stage &stage)
{
    stage.attempt(HandGesture::Inertia);
    stage.showProjection(OrbShaderCodeBuilder::RECTILINEAR);
    if (stage.attempt(HandGesture::OpenHand))
        m_counter += frame.yawMotion + frame.pitchMotion;
    endMoving(stage);
}

void HandTutorial::finger(const Frame &frame, Stage &stage)
{
    if (stage.attempt(HandGesture::EdgePush))
        m_counter += frame.yawMotion + frame.pitchMotion;
    endMoving(stage);
}

void HandTutorial::endMoving(Stage &stage)
{
    if (m_counter <= kTurnEnough)
        return;
    stage.stopGliding();
    setLesson(Seek);
}

void HandTutorial::seek(const Frame &frame, Stage &stage)
{
    if (stage.attempt(HandGesture::CircleSeek) && m_counter == 0) {
        m_counter = 1;
        m_stamp = frame.time;
    }
    if (m_counter != 1 || frame.time - m_stamp <= us(2))
        return;
    stage.showProjection(OrbShaderCodeBuilder::RECTILINEAR);
    switch (frame.cameraMode) {
    case CameraMode::kHands:
        return setLesson(Pinch);
    case CameraMode::kFinger:
        return setLesson(Zoom);
    case CameraMode::kHeadset:
        return setLesson(Swipe);
    default:
        m_counter = 0;
    }
}

void HandTutorial::pinch(const Frame &frame, Stage &stage)
{
    const bool pulls = stage.attempt(HandGesture::Pull);
    const bool isLong = frame.time - m_stamp > us(1.5);
    if (pulls && m_counter == 0) {
        m_counter = 1;
        m_stamp = frame.time;
    } else if (pulls && m_counter == 1 && (isLong || stage.pitch() > 1.2F)) {
        m_counter = 2;
    } else if (m_counter == 1 && isLong) {
        m_counter = 0;
    }
    if (m_counter == 2 && stage.projection() == OrbShaderCodeBuilder::RECTILINEAR)
        setLesson(Zoom);
}

void HandTutorial::zoom(Stage &stage)
{
    const float before = stage.fov();
    if (stage.attempt(HandGesture::TwoFingerZoom))
        m_counter += qAbs(double(stage.fov()) - double(before));
    if (m_counter <= 60)
        return;
    stage.showProjection(OrbShaderCodeBuilder::RECTILINEAR);
    setLesson(Clap);
}

void HandTutorial::clap(const Frame &frame, Stage &stage)
{
    if (m_counter == 0) {
        m_counter = 1;
        stage.recordView(100);
    }
    if (stage.attempt(HandGesture::Clap))
        m_counter += 1;
    if (m_counter < 3)
        return;
    stage.showProjection(OrbShaderCodeBuilder::RECTILINEAR);
    switch (frame.cameraMode) {
    case CameraMode::kHands:
        return setLesson(Hold);
    case CameraMode::kFinger:
        return setLesson(Fist);
    case CameraMode::kHeadset:
        return setLesson(Seek);
    default:
        m_counter = 0;
    }
}

void HandTutorial::hold(Stage &stage)
{
    stage.forgetOneHandOpen();
    stage.attempt(HandGesture::TwoHands);
    if (stage.pitch() >= 1.3F && stage.pitch() <= 2.0F)
        setLesson(Turn);
}

void HandTutorial::turn(const Frame &frame, Stage &stage)
{
    stage.attempt(HandGesture::Inertia);
    if (m_counter == 0) {
        stage.lookFromAbove();
        stage.recordView(2);
        m_counter = 0.1;
    }
    stage.forgetTwoHandsOpen();
    if (stage.attempt(HandGesture::TwoFingerRotation))
        m_counter += frame.yawMotion;
    if (m_counter <= 3)
        return;
    stage.stopGliding();
    setLesson(Fist);
}

void HandTutorial::fist(const Frame &frame)
{
    const bool isLong = frame.time - m_stamp > us(1.5);
    if (frame.hasFist && m_counter == 0) {
        m_counter = 1;
        m_stamp = frame.time;
    } else if (m_counter == 1 && isLong) {
        setLesson(frame.hasFist ? int(None) : int(Fist));
    }
}
