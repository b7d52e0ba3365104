#include "Leap.h"

#include <algorithm>

namespace {

using namespace Leap;

/// The item whose place is the farthest to that side, -1 left or 1 right; the first of equals.
template <class List, class Position>
auto outermostOf(const List &list, const Position &position, float side)
{
    int best = 0;
    for (int i = 1; i < list.count(); ++i) {
        if (position(list[i]).x * side > position(list[best]).x * side)
            best = i;
    }
    return list[best];
}

Vector tipOf(const Pointable &pointable)
{
    return pointable.tipPosition();
}

Vector palmOf(const Hand &hand)
{
    return hand.palmPosition();
}

template <class Items>
int indexOf(const Items &items, int id)
{
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (items[i].id == id)
            return int(i);
    }
    return -1;
}

/// The items of a moment that fit, by their place in its data.
template <class List, class Items, class Fits>
List listOf(const FrameDataPtr &frame, const Items &items, const Fits &fits)
{
    List list(frame);
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (fits(items[i]))
            list.append(int(i));
    }
    return list;
}

const HandData kNoHand;
const PointableData kNoPointable;

} // namespace

Leap::Vector Leap::InteractionBox::normalizePoint(const Vector &point, bool clamp) const
{
    const auto normalized = [clamp](float value, float center, float size) {
        const float share = size > 0 ? (value - center) / size + 0.5F : 0.5F;
        return clamp ? std::clamp(share, 0.0F, 1.0F) : share;
    };
    return {normalized(point.x, m_data.center.x, m_data.size.x),
            normalized(point.y, m_data.center.y, m_data.size.y),
            normalized(point.z, m_data.center.z, m_data.size.z)};
}

float Leap::Device::distanceToBoundary(const Vector &position) const
{
    constexpr float kNearest = 25; // mm
    constexpr float kFarthest = 600;
    // Sine and cosine of half the angles of 150 and 120 degrees.
    constexpr float kSine75 = 0.9659258F;
    constexpr float kCosine75 = 0.2588190F;
    constexpr float kSine60 = 0.8660254F;
    constexpr float kCosine60 = 0.5F;
    const float toSides = position.y * kSine75 - std::abs(position.x) * kCosine75;
    const float toEnds = position.y * kSine60 - std::abs(position.z) * kCosine60;
    const float distance = position.magnitude();
    const float inside = std::min({toSides, toEnds, distance - kNearest, kFarthest - distance});
    return inside > 0 ? inside : 0.0F;
}

const Leap::PointableData &Leap::Pointable::data() const
{
    return isValid() ? m_frame->pointables[std::size_t(m_index)] : kNoPointable;
}

Leap::Hand Leap::Pointable::hand() const
{
    return frame().hand(isValid() ? data().handId : -1);
}

Leap::Frame Leap::Pointable::frame() const
{
    return Frame(m_frame);
}

Leap::Bone Leap::Finger::bone(Bone::Type type) const
{
    const auto &joints = data().joints;
    return {joints[std::size_t(type)], joints[std::size_t(type) + 1]};
}

const Leap::HandData &Leap::Hand::data() const
{
    return isValid() ? m_frame->hands[std::size_t(m_index)] : kNoHand;
}

Leap::FingerList Leap::Hand::fingers() const
{
    if (!isValid())
        return {};
    const int hand = id();
    return listOf<FingerList>(m_frame, m_frame->pointables, [hand](const PointableData &pointable) {
        return pointable.handId == hand && !pointable.isTool;
    });
}

Leap::Motion Leap::Hand::motion(const Frame &since) const
{
    if (!isValid() || !since.isValid())
        return {};
    const int before = indexOf(since.data()->hands, id());
    if (before < 0)
        return {};
    return motionBetween(since.data()->hands[std::size_t(before)], data());
}

Leap::Vector Leap::Hand::translation(const Frame &since) const
{
    return motion(since).translation;
}

float Leap::Hand::translationProbability(const Frame &since) const
{
    return motion(since).translationProbability;
}

float Leap::Hand::rotationProbability(const Frame &since) const
{
    return motion(since).rotationProbability;
}

const Leap::GestureData &Leap::Gesture::data() const
{
    static const GestureData kNone;
    return isValid() ? (*m_frame->gestures)[std::size_t(m_index)] : kNone;
}

Leap::Frame Leap::Gesture::frame() const
{
    return Frame(m_frame);
}

Leap::HandList Leap::Gesture::hands() const
{
    HandList list(m_frame);
    for (const int id : data().handIds) {
        const int index = indexOf(m_frame->hands, id);
        if (index >= 0)
            list.append(index);
    }
    return list;
}

Leap::CircleGesture::CircleGesture(const Gesture &gesture)
    : Gesture(gesture.type() == TYPE_CIRCLE ? gesture : Gesture())
{}

Leap::Pointable Leap::CircleGesture::pointable() const
{
    const auto &ids = data().pointableIds;
    return ids.empty() ? Pointable() : frame().pointable(ids.front());
}

Leap::SwipeGesture::SwipeGesture(const Gesture &gesture)
    : Gesture(gesture.type() == TYPE_SWIPE ? gesture : Gesture())
{}

Leap::Hand Leap::HandList::leftmost() const
{
    return outermostOf(*this, palmOf, -1);
}

Leap::Hand Leap::HandList::rightmost() const
{
    return outermostOf(*this, palmOf, 1);
}

Leap::Pointable Leap::PointableList::leftmost() const
{
    return outermostOf(*this, tipOf, -1);
}

Leap::Pointable Leap::PointableList::rightmost() const
{
    return outermostOf(*this, tipOf, 1);
}

Leap::Tool Leap::ToolList::leftmost() const
{
    return outermostOf(*this, tipOf, -1);
}

Leap::Tool Leap::ToolList::rightmost() const
{
    return outermostOf(*this, tipOf, 1);
}

Leap::FingerList Leap::FingerList::extended() const
{
    FingerList list(m_frame);
    for (const int index : m_indices) {
        if (m_frame->pointables[std::size_t(index)].isExtended)
            list.append(index);
    }
    return list;
}

Leap::FingerList Leap::FingerList::fingerType(Finger::Type type) const
{
    FingerList list(m_frame);
    for (const int index : m_indices) {
        if (m_frame->pointables[std::size_t(index)].type == int(type))
            list.append(index);
    }
    return list;
}

Leap::HandList Leap::Frame::hands() const
{
    if (!isValid())
        return {};
    return listOf<HandList>(m_data, m_data->hands, [](const HandData &) { return true; });
}

Leap::FingerList Leap::Frame::fingers() const
{
    if (!isValid())
        return {};
    return listOf<FingerList>(m_data, m_data->pointables,
                              [](const PointableData &pointable) { return !pointable.isTool; });
}

Leap::PointableList Leap::Frame::pointables() const
{
    if (!isValid())
        return {};
    return listOf<PointableList>(m_data, m_data->pointables,
                                 [](const PointableData &) { return true; });
}

Leap::ToolList Leap::Frame::tools() const
{
    if (!isValid())
        return {};
    return listOf<ToolList>(m_data, m_data->pointables,
                            [](const PointableData &pointable) { return pointable.isTool; });
}

Leap::GestureList Leap::Frame::gestures() const
{
    if (!isValid() || !m_data->gestures)
        return {};
    return listOf<GestureList>(m_data, *m_data->gestures, [](const GestureData &) { return true; });
}

Leap::Hand Leap::Frame::hand(int id) const
{
    return isValid() ? Hand(m_data, indexOf(m_data->hands, id)) : Hand();
}

Leap::Pointable Leap::Frame::pointable(int id) const
{
    return isValid() ? Pointable(m_data, indexOf(m_data->pointables, id)) : Pointable();
}

Leap::Gesture Leap::Frame::gesture(int id) const
{
    return isValid() && m_data->gestures ? Gesture(m_data, indexOf(*m_data->gestures, id))
                                         : Gesture();
}

Leap::InteractionBox Leap::Frame::interactionBox() const
{
    return InteractionBox(isValid() ? m_data->interactionBox.value_or(BoxData()) : BoxData());
}

Leap::Motion Leap::Frame::motion(const Frame &since) const
{
    return isValid() && since.isValid() ? motionBetween(*since.m_data, *m_data) : Motion();
}

Leap::Vector Leap::Frame::translation(const Frame &since) const
{
    return motion(since).translation;
}

float Leap::Frame::scaleFactor(const Frame &since) const
{
    return motion(since).scale;
}

float Leap::Frame::translationProbability(const Frame &since) const
{
    return motion(since).translationProbability;
}

float Leap::Frame::rotationProbability(const Frame &since) const
{
    return motion(since).rotationProbability;
}

float Leap::Frame::scaleProbability(const Frame &since) const
{
    return motion(since).scaleProbability;
}
