#include "SwipeDetector.h"

namespace {

using namespace Leap;

constexpr float kLeastWay = 150;    // mm
constexpr float kLeastSpeed = 1000; // mm/s
constexpr float kGoing = 500;       // mm/s, of a swipe that goes on
constexpr float kRest = 300;        // mm/s, of what has not begun to swipe
constexpr float kLongest = 0.6F;    // seconds from there to the swipe
constexpr float kStraight = 0.85F;  // of the way, in the swipe's direction
constexpr float kAside = 0.7F;      // cosine of the turn that ends a swipe

/// Over the 40 ms before the point `back`, mm/s; nothing if the track does not go back so far.
std::optional<Vector> velocity(const Track &track, std::size_t back)
{
    constexpr std::int64_t kWindow = 40000;
    const Track::Point &now = track.at(back);
    for (std::size_t i = back + 1; i < track.count(); ++i) {
        const std::int64_t time = now.time - track.at(i).time;
        if (time >= kWindow)
            return (now.place - track.at(i).place) / (float(time) * 1e-6F);
    }
    return {};
}

} // namespace

std::optional<GestureData> Leap::SwipeDetector::feed(const Track &track)
{
    const Vector going = velocity(track, 0).value_or(Vector());
    const float speed = going.magnitude();
    if (!m_isSwiping)
        return speed >= kLeastSpeed ? begin(track, speed) : std::nullopt;

    m_swipe.duration = track.at(0).time - m_begin;
    m_swipe.position = track.at(0).place;
    m_swipe.speed = speed;
    if (speed < kGoing || going.dot(m_swipe.direction) < kAside * speed)
        return stop();
    m_swipe.direction = (m_swipe.position - m_swipe.startPosition).normalized();
    return told(GestureState::Update);
}

std::optional<GestureData> Leap::SwipeDetector::begin(const Track &track, float speed)
{
    const Vector here = track.at(0).place;
    std::size_t start = 0;
    float way = 0;
    for (std::size_t i = 1; i < track.count() && track.secondsSince(i) <= kLongest; ++i) {
        // Each swipe has a rest of its own.
        if (m_end && track.at(i).time < *m_end)
            break;
        way += track.at(i).place.distanceTo(track.at(i - 1).place);
        // A hand that has only just come into sight may be passing by.
        const std::optional<Vector> going = velocity(track, i);
        if (going && going->magnitude() < kRest) {
            start = i;
            break;
        }
    }
    const Vector path = here - track.at(start).place;
    if (path.magnitude() < kLeastWay || path.magnitude() < kStraight * way)
        return {};
    m_isSwiping = true;
    m_begin = track.at(start).time;
    m_swipe = {};
    m_swipe.type = GestureType::Swipe;
    m_swipe.duration = track.at(0).time - m_begin;
    m_swipe.startPosition = track.at(start).place;
    m_swipe.position = here;
    m_swipe.direction = path.normalized();
    m_swipe.speed = speed;
    return told(GestureState::Start);
}

std::optional<GestureData> Leap::SwipeDetector::stop()
{
    if (!m_isSwiping)
        return {};
    m_isSwiping = false;
    m_end = m_begin + m_swipe.duration;
    return told(GestureState::Stop);
}

GestureData Leap::SwipeDetector::told(GestureState state) const
{
    GestureData gesture = m_swipe;
    gesture.state = state;
    return gesture;
}
