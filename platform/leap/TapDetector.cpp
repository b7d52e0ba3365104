#include "TapDetector.h"

namespace {

using namespace Leap;

constexpr float kStroke = 0.1F;  // seconds there, and back, at most
constexpr float kSpeed = 50;     // mm/s
constexpr float kRested = 0.36F; // seconds before the turning point, from when
constexpr float kBegun = 0.18F;  // until when the tip has rested
constexpr float kResting = 0.3F; // of the depth, that it may have moved in that time
constexpr float kAside = 0.5F;   // of the depth
constexpr float kReturn = 0.5F;  // of the depth
constexpr float kClear = 5;      // standard deviations of the noise

/// The mean of places.
struct Middle
{
    Vector place;
    int count = 0;
};

/// Of the points that are `from` to `to` seconds older than the point `turn`; `from` is the larger.
Middle middle(const Track &track, std::size_t turn, float from, float to)
{
    Middle result;
    const float turned = track.secondsSince(turn);
    for (std::size_t i = 0; i < track.count(); ++i) {
        const float older = track.secondsSince(i) - turned;
        if (older > from)
            break;
        if (older >= to) {
            result.place += track.at(i).place;
            ++result.count;
        }
    }
    if (result.count > 0)
        result.place /= float(result.count);
    return result;
}

/// Together with its close neighbours, against noise.
Vector smoothed(const Track &track, std::size_t back)
{
    constexpr float kClose = 0.012F; // seconds
    return middle(track, back, kClose, -kClose).place;
}

} // namespace

std::optional<GestureData> Leap::TapDetector::feed(const Track &track)
{
    // The turning point, where the tip was farthest along the way.
    std::size_t turn = 0;
    Vector tapped;
    for (std::size_t i = 1; i < track.count() && track.secondsSince(i) <= kStroke; ++i) {
        const Vector place = smoothed(track, i);
        if (turn == 0 || place.dot(m_way) > tapped.dot(m_way)) {
            turn = i;
            tapped = place;
        }
    }
    if (turn == 0)
        return {};

    // Where it rested before.
    constexpr float kMid = (kRested + kBegun) / 2;
    const Middle early = middle(track, turn, kRested, kMid);
    const Middle late = middle(track, turn, kMid, kBegun);
    const bool isSame = m_lastEnd && float(track.at(turn).time - *m_lastEnd) * 1e-6F < kRested;
    if (early.count == 0 || late.count == 0 || isSame)
        return {};
    const Vector rest = (early.place + late.place) / 2;

    const float depth = (tapped - rest).dot(m_way);
    const Vector now = track.at(0).place;
    const float sinceTurn = track.secondsSince(turn);
    const float back = (tapped - now).dot(m_way);
    if (depth < m_leastWay || back < kReturn * depth || back < kSpeed * sinceTurn
        || early.place.distanceTo(late.place) > kResting * depth)
        return {};
    const auto isAside = [this, &rest, depth](const Vector &place) {
        const Vector path = place - rest;
        return (path - m_way * path.dot(m_way)).magnitude() > kAside * depth;
    };
    if (isAside(tapped) || isAside(now) || depth < kClear * track.noise())
        return {};

    // Some part of the way there, up to the turning point, was quick and long enough.
    const float leastStroke = std::max(m_leastWay, depth / 3);
    for (std::size_t i = turn + 1; i < track.count(); ++i) {
        const float before = track.secondsSince(i) - sinceTurn;
        const float stroke = (tapped - track.at(i).place).dot(m_way);
        if (before > kStroke)
            break;
        if (stroke < leastStroke || stroke < kSpeed * before)
            continue;
        m_lastEnd = track.at(0).time;
        GestureData gesture;
        gesture.type = m_type;
        gesture.state = GestureState::Stop;
        gesture.duration = track.at(0).time - track.at(i).time;
        gesture.position = tapped;
        gesture.direction = m_way;
        gesture.progress = 1;
        return gesture;
    }
    return {};
}
