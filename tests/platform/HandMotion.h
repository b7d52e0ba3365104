#pragma once

#include "HandPose.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <random>
#include <vector>

/// Hands that follow a text, for tests. Each line is for one hand, "right: ..." or "left: ...", or
/// for "both: ...", in which the left one does the mirror image in x; a line with no such name is
/// the right hand's. Lines for the same hand follow each other. A hand holds its last pose until
/// the other has ended; one without a line is not there. Steps are parted by '|':
///
///   at X Y Z                  the palm is there at once, mm; at first it is at 0 200 0, open
///   hold S                    seconds
///   away S                    out of sight; it comes back under a new id
///   move DX DY DZ in S        by so much, and
///   swipe DX DY DZ            the same, in a short time
///   to X Y Z in S             to that place
///   arc DEGREES around X Y Z in S   around the line along z through it, anticlockwise
///   nod, roll, turn DEGREES in S    about its own palm and the axis x, z, y, right-handed
///   open, fist, point, pinch in S
///   circle r MM turns N in S  with the tip of the index finger, facing the user, from the top,
///                             clockwise as the user sees it; negative turns go the other way
///   keytap [MM] [in 0.15]     the tip of the index finger goes down by so much, 20, and back
///   screentap [MM] [in 0.15]  the same to the front
///   clap [GAP] [in 0.6]       sideways to GAP / 2, 15, from x = 0, and back
///   confidence C              from now on
///
/// "in" may be left out: without a time above, it is 0.2 s.
/// All but the taps and claps begin and end gently, along a minimum-jerk path; with the word
/// "steady" they go at one speed.
///
///   "point in 0 | hold 0.5 | circle r 30 turns 2 in 2 | hold 0.5"
///   "both: at 150 200 0 | hold 1 | clap | hold 0.5 | move 60 0 0 in 1 steady"
class HandMotion
{
public:
    /// Throws std::invalid_argument that names the step which it does not understand.
    explicit HandMotion(const QString &text);

    float duration() const; ///< seconds

    /// The hands that are seen, the right one first. Negative times are as 0.
    std::vector<HandPose> handsAt(float time) const;

    /// From the begin to the end, `rate` a second. Velocities are those of the motion.
    std::vector<Leap::FrameData> frames(float rate = 100) const;
    /// The same with noise.
    std::vector<Leap::FrameData> frames(float rate, float noise, std::mt19937 &random) const;

    /// The pose that a step leads to from the one before it; `progress` 0 to 1 in time.
    using Path = std::function<HandPose(HandPose start, float progress)>;

private:
    struct Step
    {
        float begin = 0;
        float seconds = 0;
        bool isAway = false;
        Path path;
        HandPose start;
    };
    struct Lane
    {
        std::vector<Step> steps;
        HandPose end;
        float duration = 0;
    };

    void addSteps(Lane &lane, const QString &steps, bool isMirrored);

    std::array<Lane, 2> m_lanes; ///< right, left
};

/// Moves each coordinate by normally distributed `noise` mm (standard deviation), and directions by
/// as much at 100 mm; velocities stay as they are.
void addNoise(std::vector<Leap::FrameData> &frames, float noise, std::mt19937 &random);

/// The frames as a tracking service sends them, one line a message: first its version and the event
/// of a device that is attached. What optional fields do not hold is left out, as current services
/// do.
QByteArray serviceMessages(const std::vector<Leap::FrameData> &frames);
