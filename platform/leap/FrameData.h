#pragma once

#include "Vector.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

/// What a tracking service tells of one moment, as plain values, and what the layer adds. Fields
/// that a service may leave out are optional until FrameDeriver has filled them in.
namespace Leap {

/// How a hand or all hands together have moved since the service began to count. Only the
/// difference of two moments means something.
struct MotionData
{
    std::array<Vector, 3> rotation{Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1)}; ///< rows
    Vector translation;                                                                ///< mm
    float scale = 0; ///< natural logarithm
};

enum class TouchZone { None = 0, Hovering = 1, Touching = 2 };

struct HandData
{
    int id = 0;
    bool isLeft = false;
    Vector palmPosition;
    Vector palmVelocity;
    Vector palmNormal{0, -1, 0}; ///< out of the palm, length 1
    Vector direction{0, 0, -1};  ///< from the palm to the fingers, length 1
    float palmWidth = 85;        ///< mm
    float grabStrength = 0;      ///< 0 open to 1 a fist
    float pinchStrength = 0;     ///< 0 to 1
    float confidence = 1;        ///< 0 to 1
    float timeVisible = 0;       ///< seconds
    std::optional<Vector> stabilizedPalmPosition;
    /// Of the two directions above; no service sends them.
    std::optional<Vector> stabilizedNormal;
    std::optional<Vector> stabilizedDirection;
    std::optional<MotionData> motion;
};

/// A finger or a tool.
struct PointableData
{
    int id = 0;
    int handId = -1;
    int type = 0; ///< of a finger: 0 thumb, 1 index, 2 middle, 3 ring, 4 little
    bool isTool = false;
    bool isExtended = false;
    float length = 0; ///< mm
    float width = 0;  ///< mm
    float timeVisible = 0;
    Vector direction{0, 0, -1};
    Vector tipPosition;
    Vector tipVelocity;
    /// The ends of the four bones of a finger, from the wrist (carp, mcp, pip, dip, btip).
    std::array<Vector, 5> joints;
    std::optional<Vector> stabilizedTipPosition;
    std::optional<TouchZone> touchZone;
    std::optional<float> touchDistance; ///< 1 far, 0 at the touch plane, -1 far behind it
};

enum class GestureType { Invalid = -1, Swipe = 1, Circle = 4, ScreenTap = 5, KeyTap = 6 };
enum class GestureState { Invalid = -1, Start = 1, Update = 2, Stop = 3 };

struct GestureData
{
    int id = 0;
    GestureType type = GestureType::Invalid;
    GestureState state = GestureState::Invalid;
    std::int64_t duration = 0; ///< µs
    std::vector<int> handIds;
    std::vector<int> pointableIds;
    Vector center;        ///< of a circle
    Vector normal;        ///< of a circle; from the side whence it runs clockwise, length 1
    float progress = 0;   ///< of a circle: turns; of a tap: 1
    float radius = 0;     ///< of a circle, mm
    Vector startPosition; ///< of a swipe
    Vector position;      ///< of a swipe or tap, now
    Vector direction;     ///< of a swipe or tap, length 1
    float speed = 0;      ///< of a swipe, mm/s
};

struct BoxData
{
    Vector center{0, 200, 0};
    Vector size{235.247F, 235.247F, 147.751F};
};

struct FrameData
{
    std::int64_t id = 0;
    std::int64_t timestamp = 0;  ///< µs of the service's clock
    float currentFrameRate = 0;  ///< Hz
    std::vector<HandData> hands; ///< in the service's order
    std::vector<PointableData> pointables;
    std::optional<std::vector<GestureData>> gestures;
    std::optional<BoxData> interactionBox;
    std::optional<MotionData> motion;
};

} // namespace Leap
