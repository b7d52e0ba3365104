#include "HandMotion.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace {

using Leap::Vector;

constexpr float kPi = 3.14159265F;

float radians(float degrees)
{
    return degrees * kPi / 180;
}

/// The path of least jerk between rest and rest (Flash and Hogan, 1985).
float eased(float progress)
{
    return progress * progress * progress * (10 - 15 * progress + 6 * progress * progress);
}

/// There and back again, gently.
float thereAndBack(float progress)
{
    return (1 - std::cos(2 * kPi * progress)) / 2;
}

/// A step's words, each with the numbers that follow it.
class Words
{
public:
    explicit Words(const QString &step)
        : m_step(step.simplified())
    {
        const QStringList words = m_step.split(' ');
        m_verb = words.first();
        QString last = m_verb;
        m_numbers.insert(last, {});
        const QStringList rest = words.mid(1);
        for (const QString &word : rest) {
            bool isNumber = false;
            const float number = word.toFloat(&isNumber);
            if (isNumber && std::isfinite(number))
                m_numbers[last].push_back(number);
            else if (m_numbers.contains(word))
                fail();
            else
                m_numbers.insert(last = word, {});
        }
    }

    const QString &verb() const { return m_verb; }

    /// The numbers after the word, which must be as many as in `fallback`, or none. They are taken
    /// out.
    std::vector<float> take(const QString &word, const std::vector<float> &fallback)
    {
        const std::vector<float> numbers = m_numbers.take(word);
        if (!numbers.empty() && numbers.size() != fallback.size())
            fail();
        return numbers.empty() ? fallback : numbers;
    }
    float takeOne(const QString &word, float fallback) { return take(word, {fallback}).front(); }
    /// As above, but they have to be there.
    Vector takeVector(const QString &word)
    {
        need(word);
        const std::vector<float> numbers = take(word, {0, 0, 0});
        return {numbers[0], numbers[1], numbers[2]};
    }
    float takeNumber(const QString &word)
    {
        need(word);
        return takeOne(word, 0);
    }
    bool takeWord(const QString &word)
    {
        const bool isThere = m_numbers.contains(word);
        take(word, {});
        return isThere;
    }

    /// All words have to be taken then.
    void end() const
    {
        if (!m_numbers.isEmpty())
            fail();
    }

    [[noreturn]] void fail() const
    {
        throw std::invalid_argument(QStringLiteral("Not a step: %1").arg(m_step).toStdString());
    }

private:
    void need(const QString &word) const
    {
        if (m_numbers.value(word).empty())
            fail();
    }

    QString m_step;
    QString m_verb;
    QMap<QString, std::vector<float>> m_numbers;
};

/// How a hand is shaped, and how the service then rates it.
struct Shape
{
    std::array<float, 5> bend;
    float grab;
    float pinch;
};

bool findShape(const QString &name, Shape *shape)
{
    constexpr float kBent = kPi / 2;
    if (name == "open")
        *shape = {{0, 0, 0, 0, 0}, 0, 0};
    else if (name == "fist")
        *shape = {{kBent, kBent, kBent, kBent, kBent}, 1, 0};
    else if (name == "point")
        *shape = {{kBent, 0, kBent, kBent, kBent}, 0.6F, 0};
    else if (name == "pinch")
        *shape = {{kBent, kBent, 0, 0, 0}, 0.2F, 0.95F};
    else
        return false;
    return true;
}

HandPose shaped(HandPose pose, const Shape &shape, float share)
{
    for (std::size_t i = 0; i < 5; ++i)
        pose.bend[i] += (shape.bend[i] - pose.bend[i]) * share;
    pose.grab += (shape.grab - pose.grab) * share;
    pose.pinch += (shape.pinch - pose.pinch) * share;
    return pose;
}

HandPose mirrored(HandPose pose)
{
    pose.palm.x = -pose.palm.x;
    pose.normal.x = -pose.normal.x;
    pose.direction.x = -pose.direction.x;
    for (Vector &offset : pose.tipOffset)
        offset.x = -offset.x;
    return pose;
}

constexpr std::size_t kIndex = 1;

/// The index finger's tip goes that way and back.
HandMotion::Path tapPath(const Vector &way)
{
    return [way](HandPose pose, float progress) {
        pose.tipOffset[kIndex] += way * thereAndBack(progress);
        return pose;
    };
}

/// Of the steps that may be steady; `share` in the function is how much of the way is gone.
HandMotion::Path parseEasedPath(Words &words)
{
    const QString &verb = words.verb();
    Shape shape{};
    if (findShape(verb, &shape)) {
        words.take(verb, {});
        return [shape](const HandPose &pose, float share) { return shaped(pose, shape, share); };
    }
    if (verb == "move" || verb == "swipe") {
        const Vector way = words.takeVector(verb);
        return
            [way](const HandPose &pose, float share) { return pose.at(pose.palm + way * share); };
    }
    if (verb == "to") {
        const Vector place = words.takeVector(verb);
        return [place](const HandPose &pose, float share) {
            return pose.at(pose.palm + (place - pose.palm) * share);
        };
    }
    if (verb == "nod" || verb == "roll" || verb == "turn") {
        const float angle = radians(words.takeNumber(verb));
        const auto rotation = verb == "nod" ? &HandPose::nodded
            : verb == "roll"                ? &HandPose::rolled
                                            : &HandPose::turned;
        return [angle, rotation](const HandPose &pose, float share) {
            return (pose.*rotation)(angle * share);
        };
    }
    if (verb == "arc") {
        const float angle = radians(words.takeNumber(verb));
        const Vector middle = words.takeVector("around");
        return [angle, middle](const HandPose &pose, float share) {
            const Vector arm = pose.palm - middle;
            const float c = std::cos(angle * share);
            const float s = std::sin(angle * share);
            return pose.at(middle + Vector(arm.x * c - arm.y * s, arm.x * s + arm.y * c, arm.z));
        };
    }
    if (verb == "circle") {
        words.take(verb, {});
        const float radius = words.takeNumber("r");
        const float angle = 2 * kPi * words.takeNumber("turns");
        return [radius, angle](HandPose pose, float share) {
            pose.tipOffset[kIndex] += Vector(std::sin(angle * share), std::cos(angle * share) - 1,
                                             0)
                * radius;
            return pose;
        };
    }
    words.fail();
}

/// How the step goes, and how long by default.
HandMotion::Path parsePath(Words &words, float *seconds)
{
    const QString verb = words.verb();
    if (verb == "at") {
        const Vector place = words.takeVector(verb);
        return [place](const HandPose &pose, float) { return pose.at(place); };
    }
    if (verb == "confidence") {
        const float confidence = words.takeNumber(verb);
        return [confidence](HandPose pose, float) {
            pose.confidence = confidence;
            return pose;
        };
    }
    if (verb == "hold" || verb == "away") {
        *seconds = words.takeNumber(verb);
        return [](const HandPose &pose, float) { return pose; };
    }
    if (verb == "keytap" || verb == "screentap") {
        *seconds = 0.15F;
        const float depth = words.takeOne(verb, 20);
        return tapPath(verb == "keytap" ? Vector(0, -depth, 0) : Vector(0, 0, -depth));
    }
    if (verb == "clap") {
        *seconds = 0.6F;
        const float x = words.takeOne(verb, 15) / 2;
        return [x](HandPose pose, float progress) {
            pose.palm.x += (std::copysign(x, pose.palm.x) - pose.palm.x) * thereAndBack(progress);
            return pose;
        };
    }

    *seconds = 0.2F;
    const bool isSteady = words.takeWord("steady");
    HandMotion::Path path = parseEasedPath(words);
    if (isSteady)
        return path;
    return [path](const HandPose &pose, float progress) { return path(pose, eased(progress)); };
}

void setVelocities(Leap::FrameData &now, const Leap::FrameData &before, float rate)
{
    for (Leap::HandData &hand : now.hands) {
        for (const Leap::HandData &then : before.hands) {
            if (then.id == hand.id)
                hand.palmVelocity = (hand.palmPosition - then.palmPosition) * rate;
        }
    }
    for (Leap::PointableData &finger : now.pointables) {
        for (const Leap::PointableData &then : before.pointables) {
            if (then.id == finger.id)
                finger.tipVelocity = (finger.tipPosition - then.tipPosition) * rate;
        }
    }
}

QJsonArray toJson(const Vector &vector)
{
    return {double(vector.x), double(vector.y), double(vector.z)};
}

QJsonArray toJson(const std::array<Vector, 3> &rows)
{
    return {toJson(rows[0]), toJson(rows[1]), toJson(rows[2])};
}

QJsonArray toJson(const std::vector<int> &numbers)
{
    QJsonArray array;
    for (const int number : numbers)
        array.append(number);
    return array;
}

void addMotion(QJsonObject &object, const std::optional<Leap::MotionData> &motion)
{
    if (!motion)
        return;
    object["r"] = toJson(motion->rotation);
    object["s"] = double(motion->scale);
    object["t"] = toJson(motion->translation);
}

QJsonObject toJson(const Leap::HandData &hand)
{
    const Vector wrist = hand.palmPosition - hand.direction * 60;
    QJsonObject object{{"id", hand.id},
                       {"type", hand.isLeft ? "left" : "right"},
                       {"palmPosition", toJson(hand.palmPosition)},
                       {"palmVelocity", toJson(hand.palmVelocity)},
                       {"palmNormal", toJson(hand.palmNormal)},
                       {"direction", toJson(hand.direction)},
                       {"palmWidth", double(hand.palmWidth)},
                       {"grabStrength", double(hand.grabStrength)},
                       {"pinchStrength", double(hand.pinchStrength)},
                       {"confidence", double(hand.confidence)},
                       {"timeVisible", double(hand.timeVisible)},
                       {"wrist", toJson(wrist)},
                       {"elbow", toJson(wrist - hand.direction * 250)},
                       {"armWidth", 60},
                       {"armBasis",
                        toJson({hand.direction.cross(-hand.palmNormal), -hand.palmNormal,
                                -hand.direction})}};
    if (hand.stabilizedPalmPosition)
        object["stabilizedPalmPosition"] = toJson(*hand.stabilizedPalmPosition);
    addMotion(object, hand.motion);
    return object;
}

QJsonObject toJson(const Leap::PointableData &finger)
{
    static const std::array<const char *, 5> kJoints{"carpPosition", "mcpPosition", "pipPosition",
                                                     "dipPosition", "btipPosition"};
    QJsonObject object{{"id", finger.id},
                       {"handId", finger.handId},
                       {"tool", finger.isTool},
                       {"length", double(finger.length)},
                       {"width", double(finger.width)},
                       {"timeVisible", double(finger.timeVisible)},
                       {"direction", toJson(finger.direction)},
                       {"tipPosition", toJson(finger.tipPosition)},
                       {"tipVelocity", toJson(finger.tipVelocity)}};
    if (!finger.isTool) {
        object["type"] = finger.type;
        object["extended"] = finger.isExtended;
        for (std::size_t i = 0; i < kJoints.size(); ++i)
            object[kJoints[i]] = toJson(finger.joints[i]);
        QJsonArray bases;
        for (std::size_t i = 0; i < 4; ++i) {
            const Vector back = (finger.joints[i] - finger.joints[i + 1]).normalized();
            const Vector side = Vector::yAxis().cross(back).normalized();
            bases.append(toJson({side, back.cross(side), back}));
        }
        object["bases"] = bases;
    }
    if (finger.stabilizedTipPosition)
        object["stabilizedTipPosition"] = toJson(*finger.stabilizedTipPosition);
    if (finger.touchZone) {
        object["touchZone"] = *finger.touchZone == Leap::TouchZone::Touching ? "touching"
            : *finger.touchZone == Leap::TouchZone::Hovering                 ? "hovering"
                                                                             : "none";
    }
    if (finger.touchDistance)
        object["touchDistance"] = double(*finger.touchDistance);
    return object;
}

QJsonObject toJson(const Leap::GestureData &gesture)
{
    using Leap::GestureType;
    QJsonObject object{{"id", gesture.id},
                       {"duration", double(gesture.duration)},
                       {"handIds", toJson(gesture.handIds)},
                       {"pointableIds", toJson(gesture.pointableIds)},
                       {"state",
                        gesture.state == Leap::GestureState::Start        ? "start"
                            : gesture.state == Leap::GestureState::Update ? "update"
                                                                          : "stop"}};
    if (gesture.type == GestureType::Circle) {
        object["type"] = "circle";
        object["center"] = toJson(gesture.center);
        object["normal"] = toJson(gesture.normal);
        object["progress"] = double(gesture.progress);
        object["radius"] = double(gesture.radius);
        return object;
    }
    object["position"] = toJson(gesture.position);
    object["direction"] = toJson(gesture.direction);
    if (gesture.type == GestureType::Swipe) {
        object["type"] = "swipe";
        object["startPosition"] = toJson(gesture.startPosition);
        object["speed"] = double(gesture.speed);
    } else {
        object["type"] = gesture.type == GestureType::KeyTap ? "keyTap" : "screenTap";
        object["progress"] = double(gesture.progress);
    }
    return object;
}

template <class Items>
QJsonArray listToJson(const Items &items)
{
    QJsonArray array;
    for (const auto &item : items)
        array.append(toJson(item));
    return array;
}

QJsonObject toJson(const Leap::FrameData &frame)
{
    QJsonObject object{{"id", double(frame.id)},
                       {"timestamp", double(frame.timestamp)},
                       {"currentFrameRate", double(frame.currentFrameRate)},
                       {"hands", listToJson(frame.hands)},
                       {"pointables", listToJson(frame.pointables)}};
    if (frame.gestures)
        object["gestures"] = listToJson(*frame.gestures);
    if (frame.interactionBox) {
        object["interactionBox"] = QJsonObject{{"center", toJson(frame.interactionBox->center)},
                                               {"size", toJson(frame.interactionBox->size)}};
    }
    addMotion(object, frame.motion);
    return object;
}

QByteArray line(const QJsonObject &message)
{
    return QJsonDocument(message).toJson(QJsonDocument::Compact) + '\n';
}

} // namespace

HandMotion::HandMotion(const QString &text)
{
    m_lanes[1].end.isLeft = true;
    m_lanes[0].end.id = 1;
    m_lanes[1].end.id = 2;
    for (Lane &lane : m_lanes)
        lane.end.timeVisible = 0;

    const QStringList lines = text.split('\n', Qt::SkipEmptyParts);
    for (const QString &entry : lines) {
        const int colon = entry.indexOf(':');
        const QString hand = entry.left(std::max(colon, 0)).trimmed();
        const QString steps = entry.mid(colon + 1);
        const bool isBoth = hand == "both";
        if (steps.trimmed().isEmpty() && colon < 0)
            continue;
        if (colon >= 0 && !isBoth && hand != "right" && hand != "left")
            throw std::invalid_argument("Not a hand: " + hand.toStdString());
        if (hand != "left")
            addSteps(m_lanes[0], steps, false);
        if (isBoth || hand == "left")
            addSteps(m_lanes[1], steps, isBoth);
    }
}

void HandMotion::addSteps(Lane &lane, const QString &steps, bool isMirrored)
{
    const QStringList texts = steps.split('|');
    for (const QString &text : texts) {
        Words words(text);
        Step step;
        step.begin = lane.duration;
        step.isAway = words.verb() == "away";
        step.path = parsePath(words, &step.seconds);
        step.seconds = words.takeOne("in", step.seconds);
        words.end();
        if (step.seconds < 0)
            words.fail();
        if (isMirrored) {
            step.path = [path = step.path](const HandPose &start, float progress) {
                return mirrored(path(mirrored(start), progress));
            };
        }
        step.start = lane.end;
        lane.end = step.path(lane.end, 1);
        lane.duration += step.seconds;
        if (step.isAway)
            lane.end.id += 2;
        lane.steps.push_back(step);
    }
}

float HandMotion::duration() const
{
    return std::max(m_lanes[0].duration, m_lanes[1].duration);
}

std::vector<HandPose> HandMotion::handsAt(float time) const
{
    std::vector<HandPose> hands;
    for (const Lane &lane : m_lanes) {
        if (lane.steps.empty())
            continue;
        const Step *now = &lane.steps.back();
        float seenSince = 0;
        for (const Step &step : lane.steps) {
            if (time < step.begin + step.seconds) {
                now = &step;
                break;
            }
            if (step.isAway)
                seenSince = step.begin + step.seconds;
        }
        if (now->isAway)
            continue;
        const float gone = std::max(time - now->begin, 0.0F);
        hands.push_back(now->path(now->start, gone < now->seconds ? gone / now->seconds : 1.0F));
        hands.back().timeVisible = std::max(time - seenSince, 0.0F);
    }
    return hands;
}

std::vector<Leap::FrameData> HandMotion::frames(float rate) const
{
    const int count = int(duration() * rate) + 1;
    std::vector<Leap::FrameData> frames;
    frames.reserve(std::size_t(count));
    for (int i = 0; i < count; ++i) {
        const double time = double(i) / double(rate);
        Leap::FrameData frame = handFrame(i + 1, 1'000'000 + std::llround(time * 1e6),
                                          handsAt(float(time)));
        frame.currentFrameRate = rate;
        if (i > 0)
            setVelocities(frame, frames.back(), rate);
        frames.push_back(frame);
    }
    return frames;
}

std::vector<Leap::FrameData> HandMotion::frames(float rate, float noise, std::mt19937 &random) const
{
    std::vector<Leap::FrameData> noisy = frames(rate);
    addNoise(noisy, noise, random);
    return noisy;
}

void addNoise(std::vector<Leap::FrameData> &frames, float noise, std::mt19937 &random)
{
    std::normal_distribution<float> off(0, noise);
    const auto shake = [&off, &random]() {
        const float x = off(random);
        const float y = off(random);
        return Vector(x, y, off(random));
    };
    const auto shaken = [&shake](const Vector &direction) {
        return (direction + shake() / 100).normalized();
    };
    for (Leap::FrameData &frame : frames) {
        for (Leap::HandData &hand : frame.hands) {
            hand.palmPosition += shake();
            hand.palmNormal = shaken(hand.palmNormal);
            // At right angles with the normal, as the service has it.
            const Vector direction = shaken(hand.direction);
            const Vector along = hand.palmNormal * direction.dot(hand.palmNormal);
            hand.direction = (direction - along).normalized();
        }
        for (Leap::PointableData &finger : frame.pointables) {
            for (Vector &joint : finger.joints)
                joint += shake();
            finger.tipPosition = finger.joints.back();
            finger.direction = shaken(finger.direction);
        }
    }
}

QByteArray serviceMessages(const std::vector<Leap::FrameData> &frames)
{
    QByteArray messages = line({{"version", 6}});
    const QJsonObject state{{"attached", true},
                            {"id", "LP01"},
                            {"streaming", true},
                            {"type", "Peripheral"}};
    messages += line({{"event", QJsonObject{{"type", "deviceEvent"}, {"state", state}}}});
    for (const Leap::FrameData &frame : frames)
        messages += line(toJson(frame));
    return messages;
}
