#include "FrameDeriver.h"

#include <algorithm>

namespace {

/// From the palm to a finger tip, mm: as far out, a direction jitters like a tip.
constexpr float kReach = 100;

constexpr std::size_t kMostHands = 20;
constexpr std::size_t kMostPointables = 120;

} // namespace

Leap::FrameDeriver::FrameDeriver()
    : m_palms(kMostHands)
    , m_tips(kMostPointables)
{}

void Leap::FrameDeriver::complete(FrameData &frame, GestureTypes wanted)
{
    constexpr double kGap = 0.2; // seconds
    // Any two timestamps may come, so that their difference has no room in an integer.
    const double seconds = m_last ? (double(frame.timestamp) - double(*m_last)) * 1e-6 : 0.0;
    if (seconds < 0 || seconds > kGap) {
        m_palms.clear();
        m_tips.clear();
        m_gestures.reset();
    }
    m_last = frame.timestamp;

    if (!frame.interactionBox)
        frame.interactionBox = BoxData();
    addSteadied(frame, float(seconds));
    if (!frame.gestures)
        frame.gestures = m_gestures.find(frame);
    auto &gestures = *frame.gestures;
    const auto isUnwanted = [wanted](const GestureData &gesture) {
        return !wanted.contains(gesture.type);
    };
    gestures.erase(std::remove_if(gestures.begin(), gestures.end(), isUnwanted), gestures.end());
}

/// Stabilised positions, and touch zones by them.
void Leap::FrameDeriver::addSteadied(FrameData &frame, float seconds)
{
    for (HandData &hand : frame.hands) {
        Palm *palm = m_palms.find(hand.id);
        if (!palm)
            continue;
        if (!hand.stabilizedPalmPosition)
            hand.stabilizedPalmPosition = palm->place.filtered(hand.palmPosition, seconds);
        const auto steadied = [seconds](OneEuroFilter &filter, const Vector &direction) {
            return filter.filtered(direction * kReach, seconds).normalized();
        };
        hand.stabilizedNormal = steadied(palm->normal, hand.palmNormal);
        hand.stabilizedDirection = steadied(palm->direction, hand.direction);
    }
    for (PointableData &pointable : frame.pointables) {
        Fingertip *tip = m_tips.find(pointable.id);
        if (!tip)
            continue;
        if (!pointable.stabilizedTipPosition)
            pointable.stabilizedTipPosition = tip->place.filtered(pointable.tipPosition, seconds);
        const float ahead = pointable.stabilizedTipPosition->z - frame.interactionBox->center.z;
        const TouchPlane::Touch touch = tip->plane.touch(ahead);
        if (!pointable.touchZone)
            pointable.touchZone = touch.zone;
        if (!pointable.touchDistance)
            pointable.touchDistance = touch.distance;
    }
    m_palms.endMoment();
    m_tips.endMoment();
}
