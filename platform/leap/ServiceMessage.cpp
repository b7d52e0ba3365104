#include "ServiceMessage.h"

#include "JsonTree.h"

#include <algorithm>
#include <limits>

namespace {

using namespace Leap;

constexpr std::size_t kMaxHands = 20;
constexpr std::size_t kMaxPointables = 120;
constexpr std::size_t kMaxGestures = 100;
constexpr double kMaxValue = 1e5;    // mm, mm/s
constexpr double kMaxCounted = 1e7;  // mm; what the service sums up grows with time
constexpr double kMaxWhole = 0x1p53; // the last that a double holds exactly

/// The fields of one object. One that is missing or null gives its fallback; one of the wrong kind,
/// or with a number out of all bounds, makes the object unsound.
class Fields
{
public:
    explicit Fields(const JsonNode &object)
        : m_object(&object)
        , m_isSound(object.kind == JsonNode::Kind::Object)
    {}

    bool isSound() const { return m_isSound; }

    const JsonNode &value(const char *key) const { return m_object->find(key); }
    bool has(const char *key) const { return isGiven(value(key)); }
    bool flag(const char *key) const { return value(key).flag; }
    std::string_view text(const char *key) const { return value(key).text; }

    std::int64_t whole(const char *key, std::int64_t fallback, double min, double max)
    {
        const JsonNode &its = value(key);
        return isGiven(its) ? static_cast<std::int64_t>(bounded(its, min, max)) : fallback;
    }

    int id(const char *key, int fallback)
    {
        using Limits = std::numeric_limits<int>;
        return static_cast<int>(whole(key, fallback, Limits::min(), Limits::max()));
    }

    float number(const char *key, float fallback)
    {
        const JsonNode &its = value(key);
        return isGiven(its) ? static_cast<float>(bounded(its, -kMaxValue, kMaxValue)) : fallback;
    }

    float size(const char *key, float fallback) { return std::max(number(key, fallback), 0.0F); }
    float share(const char *key, float fallback)
    {
        return std::clamp(number(key, fallback), 0.0F, 1.0F);
    }

    /// Seconds, of which there may be any number.
    float seconds(const char *key)
    {
        const JsonNode &its = value(key);
        return isGiven(its)
            ? static_cast<float>(std::clamp(bounded(its, -kMaxWhole, kMaxWhole), 0.0, kMaxCounted))
            : 0.0F;
    }

    Vector vector(const char *key, const Vector &fallback = {})
    {
        const JsonNode &its = value(key);
        return isGiven(its) ? vectorOf(its, kMaxValue) : fallback;
    }

    std::optional<Vector> optionalVector(const char *key)
    {
        return has(key) ? std::optional(vector(key)) : std::nullopt;
    }

    Vector direction(const char *key, const Vector &fallback = {})
    {
        const Vector unit = vector(key).normalized();
        return unit == Vector() ? fallback : unit;
    }

    /// What the service counts, if it does and that is sound.
    std::optional<MotionData> motion() const
    {
        if (!has("r") || !has("t"))
            return std::nullopt;
        Fields count(*m_object);
        const JsonNode &rows = value("r");
        if (!isList(rows, 3))
            return std::nullopt;
        MotionData motion;
        const JsonNode *row = rows.first();
        for (Vector &its : motion.rotation) {
            its = count.vectorOf(*row, 1.001);
            row = rows.after(row);
        }
        motion.translation = count.vectorOf(value("t"), kMaxCounted);
        motion.scale = count.number("s", 0);
        return count.isSound() ? std::optional(motion) : std::nullopt;
    }

    std::vector<int> ids(const char *key, std::size_t most)
    {
        using Limits = std::numeric_limits<int>;
        const JsonNode &list = value(key);
        std::vector<int> ids;
        ids.reserve(std::min(list.count, most));
        for (const JsonNode *its = list.first(); its && ids.size() < most; its = list.after(its))
            ids.push_back(static_cast<int>(bounded(*its, Limits::min(), Limits::max())));
        return ids;
    }

private:
    static bool isList(const JsonNode &value, std::size_t count)
    {
        return value.kind == JsonNode::Kind::Array && value.count == count;
    }
    static bool isGiven(const JsonNode &value) { return value.kind != JsonNode::Kind::Null; }

    double bounded(const JsonNode &value, double min, double max)
    {
        if (value.number >= min && value.number <= max)
            return value.number;
        m_isSound = false;
        return 0;
    }

    Vector vectorOf(const JsonNode &value, double most)
    {
        std::array<float, 3> numbers{};
        std::size_t count = 0;
        for (const JsonNode *its = value.first(); its && count < 3; its = value.after(its))
            numbers.at(count++) = static_cast<float>(bounded(*its, -most, most));
        m_isSound = m_isSound && isList(value, 3);
        return {numbers[0], numbers[1], numbers[2]};
    }

    const JsonNode *m_object;
    bool m_isSound = false;
};

HandData readHand(Fields &fields)
{
    HandData hand;
    hand.id = fields.id("id", hand.id);
    hand.isLeft = fields.text("type") == "left";
    hand.palmPosition = fields.vector("palmPosition");
    hand.palmVelocity = fields.vector("palmVelocity");
    hand.palmNormal = fields.direction("palmNormal", hand.palmNormal);
    hand.direction = fields.direction("direction", hand.direction);
    hand.palmWidth = fields.size("palmWidth", hand.palmWidth);
    hand.grabStrength = fields.share("grabStrength", hand.grabStrength);
    hand.pinchStrength = fields.share("pinchStrength", hand.pinchStrength);
    hand.confidence = fields.share("confidence", hand.confidence);
    hand.timeVisible = fields.seconds("timeVisible");
    hand.stabilizedPalmPosition = fields.optionalVector("stabilizedPalmPosition");
    hand.motion = fields.motion();
    return hand;
}

std::optional<TouchZone> touchZone(std::string_view name)
{
    if (name == "none")
        return TouchZone::None;
    if (name == "hovering")
        return TouchZone::Hovering;
    if (name == "touching")
        return TouchZone::Touching;
    return std::nullopt;
}

PointableData readPointable(Fields &fields)
{
    PointableData pointable;
    pointable.id = fields.id("id", pointable.id);
    pointable.handId = fields.id("handId", pointable.handId);
    pointable.isTool = fields.flag("tool");
    if (!pointable.isTool)
        pointable.type = static_cast<int>(fields.whole("type", 0, 0, 4));
    pointable.isExtended = fields.flag("extended");
    pointable.length = fields.size("length", 0);
    pointable.width = fields.size("width", 0);
    pointable.timeVisible = fields.seconds("timeVisible");
    pointable.direction = fields.direction("direction", pointable.direction);
    pointable.tipPosition = fields.vector("tipPosition");
    pointable.tipVelocity = fields.vector("tipVelocity");
    pointable.joints = {fields.vector("carpPosition"), fields.vector("mcpPosition"),
                        fields.vector("pipPosition"), fields.vector("dipPosition"),
                        fields.vector("btipPosition")};
    pointable.stabilizedTipPosition = fields.optionalVector("stabilizedTipPosition");
    pointable.touchZone = touchZone(fields.text("touchZone"));
    if (fields.has("touchDistance"))
        pointable.touchDistance = std::clamp(fields.number("touchDistance", 1), -1.0F, 1.0F);
    return pointable;
}

GestureType gestureType(std::string_view name)
{
    if (name == "circle")
        return GestureType::Circle;
    if (name == "swipe")
        return GestureType::Swipe;
    if (name == "keyTap")
        return GestureType::KeyTap;
    if (name == "screenTap")
        return GestureType::ScreenTap;
    return GestureType::Invalid;
}

GestureState gestureState(std::string_view name)
{
    if (name == "start")
        return GestureState::Start;
    if (name == "update")
        return GestureState::Update;
    if (name == "stop")
        return GestureState::Stop;
    return GestureState::Invalid;
}

GestureData readGesture(Fields &fields)
{
    GestureData gesture;
    gesture.id = fields.id("id", gesture.id);
    gesture.type = gestureType(fields.text("type"));
    gesture.state = gestureState(fields.text("state"));
    gesture.duration = fields.whole("duration", 0, 0, kMaxWhole);
    gesture.handIds = fields.ids("handIds", kMaxHands);
    gesture.pointableIds = fields.ids("pointableIds", kMaxPointables);
    gesture.center = fields.vector("center");
    gesture.normal = fields.direction("normal");
    gesture.progress = fields.size("progress", 0);
    gesture.radius = fields.size("radius", 0);
    gesture.startPosition = fields.vector("startPosition");
    gesture.position = fields.vector("position");
    gesture.direction = fields.direction("direction");
    gesture.speed = fields.size("speed", 0);
    return gesture;
}

bool isUnknown(const GestureData &gesture)
{
    return gesture.type == GestureType::Invalid || gesture.state == GestureState::Invalid;
}

std::optional<BoxData> readBox(const JsonNode &value)
{
    Fields fields(value);
    BoxData box;
    box.center = fields.vector("center", box.center);
    box.size = fields.vector("size", box.size);
    const bool isBox = box.size.x > 0 && box.size.y > 0 && box.size.z > 0;
    return fields.isSound() && isBox ? std::optional(box) : std::nullopt;
}

/// The sound ones of the first `most` items of a list, or none of what is no list.
template <class Item>
std::vector<Item> readList(const JsonNode &list, std::size_t most, Item (*read)(Fields &))
{
    std::vector<Item> items;
    if (list.kind != JsonNode::Kind::Array)
        return items;
    items.reserve(std::min(list.count, most));
    std::size_t seen = 0;
    for (const JsonNode *its = list.first(); its && seen < most; its = list.after(its), ++seen) {
        Fields fields(*its);
        Item item = read(fields);
        if (fields.isSound())
            items.push_back(std::move(item));
    }
    return items;
}

ServiceMessage readFrame(Fields &fields)
{
    FrameData frame;
    frame.id = fields.whole("id", -1, 0, kMaxWhole);
    frame.timestamp = fields.whole("timestamp", -1, 0, kMaxWhole);
    if (!fields.isSound() || frame.id < 0 || frame.timestamp < 0)
        return MessageError{QStringLiteral("A frame without id or timestamp")};
    frame.currentFrameRate = fields.size("currentFrameRate", 0);
    frame.hands = readList(fields.value("hands"), kMaxHands, &readHand);
    frame.pointables = readList(fields.value("pointables"), kMaxPointables, &readPointable);
    if (fields.value("gestures").kind == JsonNode::Kind::Array) {
        frame.gestures = readList(fields.value("gestures"), kMaxGestures, &readGesture);
        auto &gestures = *frame.gestures;
        gestures.erase(std::remove_if(gestures.begin(), gestures.end(), &isUnknown),
                       gestures.end());
    }
    frame.interactionBox = readBox(fields.value("interactionBox"));
    frame.motion = fields.motion();
    return frame;
}

QString textOf(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<int>(text.size()));
}

ServiceMessage readEvent(const Fields &event)
{
    if (event.text("type") != "deviceEvent")
        return UnknownMessage();
    const Fields state(event.value("state"));
    const bool isAttached = state.flag("attached");
    const bool isStreaming = state.has("streaming") ? state.flag("streaming") : isAttached;
    return DeviceEvent{textOf(state.text("id")), textOf(state.text("type")), isAttached,
                       isStreaming};
}

} // namespace

Leap::ServiceMessage Leap::parseServiceMessage(const QByteArray &json)
{
    if (json.size() > kMaxMessageBytes)
        return MessageError{QStringLiteral("A message of more than 1 MiB")};
    const JsonTree tree({json.constData(), static_cast<std::size_t>(json.size())});
    if (!tree.isValid())
        return MessageError{QStringLiteral("No JSON")};
    Fields fields(tree.root());
    if (!fields.isSound())
        return MessageError{QStringLiteral("No JSON object")};

    if (fields.has("event"))
        return readEvent(Fields(fields.value("event")));
    if (fields.has("timestamp") || fields.has("hands"))
        return readFrame(fields);
    if (fields.has("version"))
        return ServiceVersion{fields.id("version", 0)};
    return UnknownMessage();
}
