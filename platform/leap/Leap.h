#pragma once

#include "FrameData.h"
#include "Motion.h"

#include <QMetaType>
#include <QVarLengthArray>

#include <memory>

/// A tracked moment, its hands, fingers, tools and gestures, as immutable values: each keeps the
/// moment it belongs to alive, and all may be read on any thread. An item that is not there is
/// invalid, and all that it tells is zero.
namespace Leap {

class Bone;
class Finger;
class FingerList;
class Frame;
class Hand;
class HandList;
class GestureList;
class PointableList;
class ToolList;

using FrameDataPtr = std::shared_ptr<const FrameData>;

/// The box over the device in which hands point.
class InteractionBox
{
public:
    InteractionBox() = default;
    explicit InteractionBox(const BoxData &data)
        : m_data(data)
    {}

    Vector center() const { return m_data.center; }
    Vector size() const { return m_data.size; } ///< mm

    /// The point in the box's own measure, 0 to 1 from the left, the bottom and the back; points
    /// outside are moved to its edge with `clamp`.
    Vector normalizePoint(const Vector &point, bool clamp = true) const;

private:
    BoxData m_data;
};

/// The device's field of view, an upturned pyramid of 150 by 120 degrees that begins 25 mm and
/// ends 600 mm above it.
class Device
{
public:
    /// How far inside the position is, mm; 0 outside.
    float distanceToBoundary(const Vector &position) const;
};

/// A finger or a tool.
class Pointable
{
public:
    using Zone = TouchZone;

    Pointable() = default;
    Pointable(FrameDataPtr frame, int index)
        : m_frame(std::move(frame))
        , m_index(index)
    {}

    bool isValid() const { return m_index >= 0; }
    bool isTool() const { return data().isTool; }
    bool isFinger() const { return isValid() && !data().isTool; }
    bool isExtended() const { return data().isExtended; }
    int id() const { return isValid() ? data().id : -1; }
    Vector direction() const { return isValid() ? data().direction : Vector(); }
    Vector tipPosition() const { return data().tipPosition; }
    Vector tipVelocity() const { return data().tipVelocity; }
    Vector stabilizedTipPosition() const
    {
        return data().stabilizedTipPosition.value_or(data().tipPosition);
    }
    Zone touchZone() const { return data().touchZone.value_or(Zone::None); }
    float touchDistance() const { return data().touchDistance.value_or(1.0F); }
    float length() const { return data().length; }
    float width() const { return data().width; }
    Hand hand() const;
    Frame frame() const;

    /// The same finger or tool of the same moment. Invalid ones are never equal.
    bool operator==(const Pointable &other) const
    {
        return isValid() && m_frame == other.m_frame && m_index == other.m_index;
    }
    bool operator!=(const Pointable &other) const { return !(*this == other); }

protected:
    const PointableData &data() const;

    FrameDataPtr m_frame;
    int m_index = -1;
};

/// One bone of a finger.
class Bone
{
public:
    enum Type { TYPE_METACARPAL = 0, TYPE_PROXIMAL = 1, TYPE_INTERMEDIATE = 2, TYPE_DISTAL = 3 };

    Bone(const Vector &prevJoint, const Vector &nextJoint)
        : m_prevJoint(prevJoint)
        , m_nextJoint(nextJoint)
    {}

    Vector prevJoint() const { return m_prevJoint; }
    Vector nextJoint() const { return m_nextJoint; }

private:
    Vector m_prevJoint;
    Vector m_nextJoint;
};

class Finger : public Pointable
{
public:
    enum Type { TYPE_THUMB = 0, TYPE_INDEX = 1, TYPE_MIDDLE = 2, TYPE_RING = 3, TYPE_PINKY = 4 };

    using Pointable::Pointable;

    Type type() const { return Type(data().type); }
    Bone bone(Bone::Type type) const;
};

class Tool : public Pointable
{
public:
    using Pointable::Pointable;
};

class Hand
{
public:
    Hand() = default;
    Hand(FrameDataPtr frame, int index)
        : m_frame(std::move(frame))
        , m_index(index)
    {}

    bool isValid() const { return m_index >= 0; }
    int id() const { return isValid() ? data().id : -1; }
    bool isLeft() const { return isValid() && data().isLeft; }
    float grabStrength() const { return data().grabStrength; }
    float pinchStrength() const { return data().pinchStrength; }
    float confidence() const { return isValid() ? data().confidence : 0.0F; }
    Vector palmPosition() const { return data().palmPosition; }
    Vector palmNormal() const { return isValid() ? data().palmNormal : Vector(); }
    Vector direction() const { return isValid() ? data().direction : Vector(); }
    Vector stabilizedPalmPosition() const
    {
        return data().stabilizedPalmPosition.value_or(data().palmPosition);
    }
    FingerList fingers() const;

    /// Of this hand since the other moment, mm; zero if it was not there then.
    Vector translation(const Frame &since) const;
    /// How likely the hand was meant to move, or to turn; 0 to 1.
    float translationProbability(const Frame &since) const;
    float rotationProbability(const Frame &since) const;

private:
    const HandData &data() const;
    Motion motion(const Frame &since) const;

    FrameDataPtr m_frame;
    int m_index = -1;
};

class Gesture
{
public:
    using Type = GestureType;
    using State = GestureState;
    // NOLINTBEGIN(readability-identifier-naming): the published names
    static constexpr Type TYPE_SWIPE = Type::Swipe;
    static constexpr Type TYPE_CIRCLE = Type::Circle;
    static constexpr Type TYPE_SCREEN_TAP = Type::ScreenTap;
    static constexpr Type TYPE_KEY_TAP = Type::KeyTap;
    static constexpr State STATE_START = State::Start;
    // NOLINTEND(readability-identifier-naming)

    Gesture() = default;
    Gesture(FrameDataPtr frame, int index)
        : m_frame(std::move(frame))
        , m_index(index)
    {}

    bool isValid() const { return m_index >= 0; }
    int id() const { return isValid() ? data().id : -1; }
    Type type() const { return data().type; }
    State state() const { return data().state; }
    std::int64_t duration() const { return data().duration; } ///< µs
    Frame frame() const;
    HandList hands() const;

protected:
    const GestureData &data() const;

    FrameDataPtr m_frame;
    int m_index = -1;
};

/// The gesture as a circle; invalid if it is none.
class CircleGesture : public Gesture
{
public:
    explicit CircleGesture(const Gesture &gesture);

    Pointable pointable() const;
    Vector normal() const { return data().normal; }
    float progress() const { return data().progress; } ///< turns
    float radius() const { return data().radius; }     ///< mm
};

/// The gesture as a swipe; invalid if it is none.
class SwipeGesture : public Gesture
{
public:
    explicit SwipeGesture(const Gesture &gesture);

    Vector direction() const { return data().direction; }
    Vector startPosition() const { return data().startPosition; }
    float speed() const { return data().speed; } ///< mm/s
};

/// A list of items of one moment.
template <class Item>
class ItemList
{
public:
    ItemList() = default;
    explicit ItemList(FrameDataPtr frame)
        : m_frame(std::move(frame))
    {}

    int count() const { return m_indices.size(); }
    bool isEmpty() const { return m_indices.isEmpty(); }

    /// Invalid where the list has no such place.
    Item operator[](int place) const
    {
        return place >= 0 && place < count() ? Item(m_frame, m_indices[place]) : Item();
    }

    void append(int index) { m_indices.append(index); }

protected:
    FrameDataPtr m_frame;
    QVarLengthArray<int, 16> m_indices; ///< into the moment's data
};

class HandList : public ItemList<Hand>
{
public:
    using ItemList::ItemList;

    /// By the palm's x; invalid if there is no hand.
    Hand leftmost() const;
    Hand rightmost() const;
};

class PointableList : public ItemList<Pointable>
{
public:
    using ItemList::ItemList;

    /// By the tip's x.
    Pointable leftmost() const;
    Pointable rightmost() const;
};

class FingerList : public ItemList<Finger>
{
public:
    using ItemList::ItemList;

    FingerList extended() const;
    FingerList fingerType(Finger::Type type) const;
};

class ToolList : public ItemList<Tool>
{
public:
    using ItemList::ItemList;

    Tool leftmost() const;
    Tool rightmost() const;
};

class GestureList : public ItemList<Gesture>
{
public:
    using ItemList::ItemList;
};

class Frame
{
public:
    Frame() = default;
    explicit Frame(FrameDataPtr data)
        : m_data(std::move(data))
    {}

    bool isValid() const { return m_data != nullptr; }
    std::int64_t id() const { return isValid() ? m_data->id : -1; }
    std::int64_t timestamp() const { return isValid() ? m_data->timestamp : 0; } ///< µs
    float currentFrameRate() const { return isValid() ? m_data->currentFrameRate : 0; }

    HandList hands() const;
    FingerList fingers() const;
    PointableList pointables() const;
    ToolList tools() const;
    GestureList gestures() const;

    /// Invalid where there is none of that id.
    Hand hand(int id) const;
    Pointable pointable(int id) const;
    Gesture gesture(int id) const;

    InteractionBox interactionBox() const;

    /// What all hands together have done since the other moment: mm, and a factor above 1 when
    /// they drew apart. Nothing without a hand that is in both moments.
    Vector translation(const Frame &since) const;
    float scaleFactor(const Frame &since) const;
    /// How likely each was meant, 0 to 1.
    float translationProbability(const Frame &since) const;
    float rotationProbability(const Frame &since) const;
    float scaleProbability(const Frame &since) const;

    const FrameDataPtr &data() const { return m_data; }

private:
    Motion motion(const Frame &since) const;

    FrameDataPtr m_data;
};

} // namespace Leap

Q_DECLARE_METATYPE(Leap::FingerList)
