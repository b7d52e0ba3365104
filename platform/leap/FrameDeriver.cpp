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
    keepWanted(*frame.gestures, wanted);
}

/// Those of the wanted types. A circle or swipe that was under way before it was wanted, or whose
/// start was lost, starts where it is seen first.
void Leap::FrameDeriver::keepWanted(std::vector<GestureData> &gestures, GestureTypes wanted)
{
    std::vector<int> underWay;
    const auto isKept = [&](GestureData &gesture) {
        if (!wanted.contains(gesture.type))
            return false;
        if (gesture.type != GestureType::Circle && gesture.type != GestureType::Swipe)
            return true;
        const bool isKnown = std::find(m_underWay.begin(), m_underWay.end(), gesture.id)
            != m_underWay.end();
        if (gesture.state == GestureState::Stop)
            return isKnown;
        if (!isKnown)
            gesture.state = GestureState::Start;
        underWay.push_back(gesture.id);
        return true;
    };
    const auto firstDropped = std::stable_partition(gestures.begin(), gestures.end(), isKept);
    gestures.erase(firstDropped, gestures.end());
    m_underWay = std::move(underWay);
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
