#include "CircleDetector.h"

#include <algorithm>
#include <cmath>

namespace {

using namespace Leap;

constexpr float kTurn = 6.2831853F;
constexpr float kSmallest = 2.5F;    // mm, of a radius that shrinks
constexpr float kLeastTurns = 0.75F; // an arc of 1.5 pi
constexpr float kLongest = 2;        // seconds for that arc, and for a turn later
constexpr std::size_t kLeastPoints = 8;
constexpr float kRoughness = 0.15F;     // root mean square distance from the circle, in radii
constexpr float kMostRoughness = 0.25F; // with the noise
constexpr float kClear = 6;             // standard deviations of the noise, of the least radius
constexpr float kQuickest = 0.15F;      // seconds

/// From one place to the other about the circle's axis, in turns, right-handed; -0.5 to 0.5.
float turnsBetween(const Circle &circle, const Vector &from, const Vector &to)
{
    const Vector before = from - circle.center;
    const Vector now = to - circle.center;
    const float up = circle.normal.dot(before.cross(now));
    const float level = before.dot(now) - circle.normal.dot(before) * circle.normal.dot(now);
    return std::atan2(up, level) / kTurn;
}

/// How far from the circle itself, mm.
float distanceFrom(const Circle &circle, const Vector &place)
{
    const Vector arm = place - circle.center;
    const float height = arm.dot(circle.normal);
    return std::hypot((arm - circle.normal * height).magnitude() - circle.radius, height);
}

/// Whether the newest `count` points are a circle, but for the noise, of which enough has been
/// drawn.
bool isDrawn(const Circle &circle, const Track &track, std::size_t count, float noise, float *turns)
{
    // Off the circle the noise has two dimensions.
    const float shape = kRoughness * circle.radius;
    const float all = kMostRoughness * circle.radius;
    const float most = std::min(shape * shape + 2 * noise * noise, all * all);
    float squares = 0;
    *turns = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const float off = distanceFrom(circle, track.at(i).place);
        squares += off * off;
        if (i > 0)
            *turns += turnsBetween(circle, track.at(i).place, track.at(i - 1).place);
    }
    return *turns >= kLeastTurns && squares < float(count) * most;
}

/// The other way round: points are fitted from the newest back.
Circle reversed(Circle circle)
{
    circle.normal = -circle.normal;
    return circle;
}

} // namespace

std::optional<GestureData> Leap::CircleDetector::feed(const Track &track, const Vector &steadyTip,
                                                      float noise, float leastRadius)
{
    m_now = track.at(0).time;
    if (!m_isDrawing)
        return begin(track, steadyTip, noise, leastRadius);
    refit(track);
    return goesOn(track, steadyTip) ? told(GestureState::Update) : stop();
}

std::optional<GestureData> Leap::CircleDetector::begin(const Track &track, const Vector &steadyTip,
                                                       float noise, float leastRadius)
{
    // The shortest way back that makes a circle, so that what was before it does not count.
    CircleFit fit;
    std::size_t next = kLeastPoints;
    for (std::size_t i = 0; i < track.count() && track.secondsSince(i) <= kLongest; ++i) {
        // A point from before the last circle's end belongs to that.
        if (track.at(i).time < m_begin)
            break;
        fit.add(track.at(i).place);
        const std::size_t count = i + 1;
        if (count < next || track.secondsSince(i) < kQuickest)
            continue;
        next = count + count / 5 + 1;
        const std::optional<Circle> circle = fit.circle();
        float turns = 0;
        if (!circle || circle->radius < std::max(leastRadius, kClear * noise)
            || !isDrawn(reversed(*circle), track, count, noise, &turns))
            continue;
        m_isDrawing = true;
        m_circle = reversed(*circle);
        m_tip = steadyTip;
        m_begin = track.at(i).time;
        m_checked = m_now;
        m_turned = turns;
        m_turns = turns;
        m_turnsThen = turns;
        return told(GestureState::Start);
    }
    return {};
}

/// To the last turn, so that a circle that wanders or grows is followed.
void Leap::CircleDetector::refit(const Track &track)
{
    CircleFit fit;
    float turns = 0;
    for (std::size_t i = 0; i < track.count() && track.at(i).time >= m_begin
         && track.secondsSince(i) <= kLongest && turns < 1;
         ++i) {
        fit.add(track.at(i).place);
        if (i > 0)
            turns += turnsBetween(m_circle, track.at(i).place, track.at(i - 1).place);
    }
    const std::optional<Circle> circle = fit.circle();
    if (!circle || turns < kLeastTurns)
        return;
    const Circle forward = reversed(*circle);
    if (forward.radius > kSmallest && forward.normal.dot(m_circle.normal) > 0)
        m_circle = forward;
}

bool Leap::CircleDetector::goesOn(const Track &track, const Vector &steadyTip)
{
    constexpr float kCheck = 0.2F;      // seconds
    constexpr float kProgress = 0.025F; // turns in that time
    constexpr float kStraying = 0.6F;   // radii
    constexpr float kStrayingFree = 3;  // mm
    m_turned += turnsBetween(m_circle, m_tip, steadyTip);
    m_turns = std::max(m_turns, m_turned);
    m_tip = steadyTip;
    if (distanceFrom(m_circle, steadyTip) > kStraying * m_circle.radius + kStrayingFree)
        return false;
    if (float(track.at(0).time - m_checked) * 1e-6F < kCheck)
        return true;
    const bool isFurther = m_turns - m_turnsThen > kProgress;
    m_checked = m_now;
    m_turnsThen = m_turns;
    return isFurther;
}

std::optional<GestureData> Leap::CircleDetector::stop()
{
    if (!m_isDrawing)
        return {};
    const GestureData last = told(GestureState::Stop);
    m_isDrawing = false;
    m_begin = m_now;
    return last;
}

GestureData Leap::CircleDetector::told(GestureState state) const
{
    GestureData gesture;
    gesture.type = GestureType::Circle;
    gesture.state = state;
    gesture.duration = m_now - m_begin;
    gesture.center = m_circle.center;
    gesture.normal = m_circle.normal;
    gesture.progress = m_turns;
    gesture.radius = m_circle.radius;
    return gesture;
}
