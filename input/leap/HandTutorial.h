#pragma once

#include "HandActions.h"

#include <QtGlobal>

/// The lessons that teach the gestures one after another. A lesson ends when its gesture was made.
class HandTutorial
{
public:
    /// The number of a lesson; the scene shows the picture that belongs to it.
    enum Lesson {
        None = -1,
        Move = 0,
        Seek = 1,
        Pinch = 2,
        Zoom = 3,
        Clap = 4,
        Hold = 5,
        Turn = 6,
        Swipe = 7,
        Finger = 10,
        Fist = 20
    };

    /// What a lesson sees of a frame.
    struct Frame
    {
        qint64 time = 0; ///< µs
        int cameraMode = 3;
        bool hasFist = false; ///< one hand alone, closed
        double yawMotion = 0; ///< of the view over the last frame, radians
        double pitchMotion = 0;
    };

    /// What the lessons do beyond trying gestures.
    class Stage : public HandActions
    {
    public:
        virtual void stopGliding() = 0;
        virtual void recordView(int times) = 0;
        virtual void lookFromAbove() = 0; ///< straight down, field of view 90 degrees
        virtual void forgetOneHandOpen() = 0;
        virtual void forgetTwoHandsOpen() = 0;
        virtual float pitch() const = 0; ///< of the view, radians
        virtual float fov() const = 0;   ///< degrees
        virtual int projection() const = 0;
    };

    /// The lesson that a mode begins with; None for a mode without a tutorial.
    static int firstLesson(int cameraMode);

    int lesson() const { return m_lesson; }
    void setLesson(int lesson);

    /// Runs the lesson on a frame.
    void run(const Frame &frame, Stage &stage);

private:
    void move(const Frame &frame, Stage &stage);
    void finger(const Frame &frame, Stage &stage);
    void endMoving(Stage &stage);
    void seek(const Frame &frame, Stage &stage);
    void pinch(const Frame &frame, Stage &stage);
    void zoom(Stage &stage);
    void clap(const Frame &frame, Stage &stage);
    void hold(Stage &stage);
    void turn(const Frame &frame, Stage &stage);
    void fist(const Frame &frame);

    int m_lesson = None;
    double m_counter = 0;
    qint64 m_stamp = 0; ///< µs
};
