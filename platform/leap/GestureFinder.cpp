#include "GestureFinder.h"

#include <limits>
#include <utility>

namespace {

using namespace Leap;

constexpr std::size_t kMostHands = 20;
constexpr std::size_t kMostTools = 20;

/// What a hand does with its fingers.
struct Fingers
{
    const PointableData *pointer = nullptr; ///< the one that gestures
    int extended = 0;                       ///< besides the thumb
};

/// The finger that gestured before stays, unless it has been bent for a while: a tap or turn may
/// hide for a moment that it is extended.
Fingers fingersOf(const FrameData &frame, const HandData &hand, int pointerBefore, bool isKept)
{
    constexpr int kIndex = 1;
    constexpr int kThumb = 0;
    Fingers fingers;
    const PointableData *kept = nullptr;
    for (const PointableData &pointable : frame.pointables) {
        if (pointable.isTool || pointable.handId != hand.id)
            continue;
        if (pointable.id == pointerBefore && (isKept || pointable.isExtended))
            kept = &pointable;
        if (!pointable.isExtended)
            continue;
        if (pointable.type != kThumb)
            ++fingers.extended;
        const bool isBetter = !fingers.pointer || fingers.pointer->type == kThumb
            || pointable.type == kIndex;
        if (isBetter)
            fingers.pointer = &pointable;
    }
    if (kept)
        fingers.pointer = kept;
    return fingers;
}

} // namespace

Leap::GestureFinder::GestureFinder()
    : m_hands(kMostHands)
    , m_tools(kMostTools)
{}

std::vector<GestureData> Leap::GestureFinder::find(const FrameData &frame)
{
    constexpr std::int64_t kHidden = 150000; // µs that a finger may look bent
    constexpr float kHanging = -0.7F;        // of the direction's y
    constexpr int kMostPointing = 2;
    for (const HandData &hand : frame.hands) {
        Lane *lane = hand.direction.y < kHanging ? nullptr : m_hands.find(hand.id);
        if (!lane)
            continue;
        const bool isKept = lane->pointableId >= 0
            && frame.timestamp - lane->lastExtended <= kHidden;
        const Fingers fingers = fingersOf(frame, hand, lane->pointableId, isKept);
        if (!fingers.pointer || fingers.pointer->id != lane->pointableId)
            end(*lane);
        if (!fingers.pointer)
            continue;
        lane->handId = hand.id;
        if (fingers.pointer->isExtended)
            lane->lastExtended = frame.timestamp;
        follow(*lane, *fingers.pointer, frame.timestamp, fingers.extended <= kMostPointing);
    }
    for (const PointableData &tool : frame.pointables) {
        Lane *lane = tool.isTool ? m_tools.find(tool.id) : nullptr;
        if (!lane)
            continue;
        lane->handId = tool.handId;
        follow(*lane, tool, frame.timestamp, true);
    }
    const auto forget = [this](Lane &lane) { end(lane); };
    m_hands.endMoment(forget);
    m_tools.endMoment(forget);
    return std::exchange(m_told, {});
}

void Leap::GestureFinder::reset()
{
    // As after a moment with nothing in it.
    const auto forget = [this](Lane &lane) { end(lane); };
    m_hands.endMoment(forget);
    m_tools.endMoment(forget);
}

void Leap::GestureFinder::follow(Lane &lane, const PointableData &pointable, std::int64_t time,
                                 bool isPointing)
{
    constexpr float kPointing = 5; // mm, radii
    constexpr float kOpen = 25;
    lane.pointableId = pointable.id;
    const Vector tip = pointable.tipPosition;
    if (!std::isfinite(tip.magnitudeSquared()))
        return;
    lane.slow.add(tip, time);
    lane.track.add(tip, time);
    const Vector steadyTip = pointable.stabilizedTipPosition.value_or(tip);
    tell(lane,
         lane.circle.feed(lane.slow, steadyTip, lane.track.noise(), isPointing ? kPointing : kOpen),
         &lane.circleId);
    tell(lane, lane.swipe.feed(lane.track), &lane.swipeId);
    if (isPointing && !lane.circle.isDrawing()) {
        int keyTapId = -1;
        int screenTapId = -1;
        tell(lane, lane.keyTap.feed(lane.track), &keyTapId);
        tell(lane, lane.screenTap.feed(lane.track), &screenTapId);
    }
}

/// Ends what the finger does, so that another begins anew.
void Leap::GestureFinder::end(Lane &lane)
{
    if (lane.pointableId < 0)
        return;
    tell(lane, lane.circle.stop(), &lane.circleId);
    tell(lane, lane.swipe.stop(), &lane.swipeId);
    lane = Lane();
}

/// `id` is the gesture's, which a new one gets here.
void Leap::GestureFinder::tell(const Lane &lane, std::optional<GestureData> gesture, int *id)
{
    if (!gesture)
        return;
    if (*id < 0 || gesture->state == GestureState::Start)
        *id = m_lastId = m_lastId % std::numeric_limits<int>::max() + 1;
    gesture->id = *id;
    if (lane.handId >= 0)
        gesture->handIds.push_back(lane.handId);
    gesture->pointableIds.push_back(lane.pointableId);
    m_told.push_back(std::move(*gesture));
}
