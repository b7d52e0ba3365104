#include "HeadsetScript.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <cmath>

namespace {

constexpr int kMaxPoses = 100'000;
constexpr double kMaxSeconds = 1e6;
constexpr double kMaxDegrees = 1e6;

QLatin1String latin1(const char *text)
{
    return QLatin1String(text);
}

/// Reads values and keeps the first thing that is wrong; what is wrong or missing gives the
/// fallback or 0.
class Reader
{
public:
    HeadsetScript script(const QJsonObject &object);
    const QString &error() const { return m_error; }

private:
    void refuse(const QString &reason);
    void expect(bool isTrue, const char *key, const char *what);
    void expectKnownKeys(const QJsonObject &object, const QStringList &known);
    bool flag(const QJsonObject &object, const char *key);
    std::string text(const QJsonObject &object, const char *key, const std::string &fallback);
    QJsonArray list(const QJsonValue &value, const char *key, int size);
    double number(const QJsonValue &value, const char *key, double min, double max);
    int whole(const QJsonValue &value, const char *key);
    float anything(const QJsonValue &value, const char *key);
    ovrVector2i pair(const QJsonObject &object, const char *key, ovrVector2i fallback);
    HeadsetModel model(const QJsonObject &object);
    ovrQuatf orientation(const QJsonObject &pose);
    std::vector<OrientationSample> poses(const QJsonArray &list);

    QString m_error;
    int m_pose = -1; ///< the one that is being read, or none
};

void Reader::refuse(const QString &reason)
{
    if (m_error.isEmpty())
        m_error = m_pose < 0 ? reason : QStringLiteral("poses[%1]: ").arg(m_pose) % reason;
}

void Reader::expect(bool isTrue, const char *key, const char *what)
{
    if (!isTrue)
        refuse(QStringLiteral("\"%1\" must be %2").arg(latin1(key), latin1(what)));
}

void Reader::expectKnownKeys(const QJsonObject &object, const QStringList &known)
{
    const QStringList keys = object.keys();
    for (const QString &key : keys) {
        if (!known.contains(key))
            refuse(QStringLiteral("\"%1\" is no known key").arg(key));
    }
}

bool Reader::flag(const QJsonObject &object, const char *key)
{
    const QJsonValue value = object.value(latin1(key));
    expect(value.isBool() || value.isUndefined(), key, "true or false");
    return value.toBool();
}

std::string Reader::text(const QJsonObject &object, const char *key, const std::string &fallback)
{
    const QJsonValue value = object.value(latin1(key));
    if (value.isUndefined())
        return fallback;
    expect(!value.toString().isEmpty(), key, "a text");
    return value.toString().toStdString();
}

QJsonArray Reader::list(const QJsonValue &value, const char *key, int size)
{
    QJsonArray array = value.toArray();
    if (array.size() != size) {
        refuse(QStringLiteral("\"%1\" must be a list of %2").arg(latin1(key)).arg(size));
        array = {};
    }
    return array;
}

double Reader::number(const QJsonValue &value, const char *key, double min, double max)
{
    const double number = value.toDouble(std::nan(""));
    if (number >= min && number <= max)
        return number;
    refuse(
        QStringLiteral("\"%1\" must be a number from %2 to %3").arg(latin1(key)).arg(min).arg(max));
    return 0;
}

int Reader::whole(const QJsonValue &value, const char *key)
{
    const double number = this->number(value, key, std::numeric_limits<int>::min(),
                                       std::numeric_limits<int>::max());
    expect(number == std::floor(number), key, "of whole numbers");
    return static_cast<int>(number);
}

float Reader::anything(const QJsonValue &value, const char *key)
{
    using Limits = std::numeric_limits<float>;
    expect(value.isDouble() || value.isNull(), key, "of numbers or null");
    const double number = value.toDouble(std::nan(""));
    if (std::abs(number) > static_cast<double>(Limits::max()))
        return number > 0 ? Limits::infinity() : -Limits::infinity();
    return static_cast<float>(number);
}

ovrVector2i Reader::pair(const QJsonObject &object, const char *key, ovrVector2i fallback)
{
    if (!object.contains(latin1(key)))
        return fallback;
    const QJsonArray both = list(object.value(latin1(key)), key, 2);
    return m_error.isEmpty() ? ovrVector2i{whole(both.at(0), key), whole(both.at(1), key)}
                             : fallback;
}

HeadsetModel Reader::model(const QJsonObject &object)
{
    const std::string type = text(object, "type", "DK2");
    expect(type == "DK1" || type == "DK2", "type", "\"DK1\" or \"DK2\"");
    HeadsetModel model = type == "DK1" ? developmentKit1() : developmentKit2();

    ovrHmdDesc &description = model.description;
    const ovrSizei size = description.Resolution;
    const ovrVector2i resolution = pair(object, "resolution", {size.w, size.h});
    description.Resolution = {resolution.x, resolution.y};
    description.WindowsPos = pair(object, "windowsPos", {});
    if (flag(object, "extendDesktop"))
        description.HmdCaps |= ovrHmdCap_ExtendDesktop;
    if (flag(object, "position"))
        description.TrackingCaps |= ovrTrackingCap_Position;
    if (flag(object, "overdrive"))
        description.DistortionCaps |= ovrDistortionCap_Overdrive;
    if (flag(object, "hqDistortion"))
        description.DistortionCaps |= ovrDistortionCap_HqDistortion;

    if (object.contains(latin1("eyeFov"))) {
        const QJsonArray eyes = list(object.value(latin1("eyeFov")), "eyeFov", ovrEye_Count);
        for (int eye = 0; eye < eyes.size(); ++eye) {
            const QJsonArray tangents = list(eyes.at(eye), "eyeFov", 4);
            const auto at = [&](int side) { return anything(tangents.at(side), "eyeFov"); };
            description.DefaultEyeFov[eye] = {at(0), at(1), at(2), at(3)};
        }
    }
    return model;
}

ovrQuatf Reader::orientation(const QJsonObject &pose)
{
    if (pose.contains(latin1("quaternion"))) {
        expectKnownKeys(pose, {QStringLiteral("atSeconds"), QStringLiteral("quaternion")});
        const QJsonArray values = list(pose.value(latin1("quaternion")), "quaternion", 4);
        const auto at = [&](int index) { return anything(values.at(index), "quaternion"); };
        return {at(0), at(1), at(2), at(3)};
    }
    expectKnownKeys(pose,
                    {QStringLiteral("atSeconds"), QStringLiteral("yawDeg"),
                     QStringLiteral("pitchDeg"), QStringLiteral("rollDeg")});
    const auto angle = [&](const char *key) {
        const QJsonValue value = pose.value(latin1(key));
        return value.isUndefined() ? 0 : number(value, key, -kMaxDegrees, kMaxDegrees);
    };
    return orientationOf(angle("yawDeg"), angle("pitchDeg"), angle("rollDeg"));
}

std::vector<OrientationSample> Reader::poses(const QJsonArray &list)
{
    std::vector<OrientationSample> samples;
    samples.reserve(static_cast<std::size_t>(list.size()));
    for (m_pose = 0; m_pose < list.size() && m_error.isEmpty(); ++m_pose) {
        const QJsonObject pose = list.at(m_pose).toObject();
        const double seconds = number(pose.value(latin1("atSeconds")), "atSeconds", 0, kMaxSeconds);
        expect(samples.empty() || seconds > samples.back().seconds, "atSeconds",
               "later than that of the pose before");
        samples.push_back({seconds, orientation(pose)});
    }
    m_pose = -1;
    return samples;
}

HeadsetScript Reader::script(const QJsonObject &object)
{
    static const QStringList keys =
        QStringLiteral("type productName resolution windowsPos extendDesktop position overdrive "
                       "hqDistortion notice unusable unpluggedAtSeconds repeat eyeFov poses")
            .split(QLatin1Char(' '));
    expectKnownKeys(object, keys);

    HeadsetScript script;
    script.model = model(object);
    script.productName = text(object, "productName", script.model.description.ProductName);
    script.unusable = text(object, "unusable", {});
    script.showsNotice = flag(object, "notice");
    const QJsonValue unplugged = object.value(latin1("unpluggedAtSeconds"));
    if (!unplugged.isUndefined())
        script.unpluggedAtSeconds = number(unplugged, "unpluggedAtSeconds", 0, kMaxSeconds);

    const QJsonValue list = object.value(latin1("poses"));
    const bool isList = list.isUndefined() || list.isArray();
    expect(isList && list.toArray().size() <= kMaxPoses, "poses", "a list of up to 100000");
    if (m_error.isEmpty())
        script.path = OrientationPath(poses(list.toArray()), flag(object, "repeat"));
    return script;
}

} // namespace

std::optional<HeadsetScript> parseHeadsetScript(const QByteArray &json, QString *error)
{
    QJsonParseError problem{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &problem);
    if (problem.error != QJsonParseError::NoError) {
        *error = QStringLiteral("%1, at byte %2").arg(problem.errorString()).arg(problem.offset);
        return std::nullopt;
    }
    if (!document.isObject()) {
        *error = QStringLiteral("No JSON object");
        return std::nullopt;
    }
    Reader reader;
    HeadsetScript script = reader.script(document.object());
    *error = reader.error();
    if (!error->isEmpty())
        return std::nullopt;
    return script;
}

HeadsetScript defaultHeadsetScript()
{
    HeadsetScript script;
    script.model = developmentKit2();
    script.productName = script.model.description.ProductName;
    script.path = OrientationPath({{0, orientationOf(0, 0, 0)},
                                   {10, orientationOf(90, 15, 0)},
                                   {20, orientationOf(180, 0, 0)},
                                   {30, orientationOf(270, -15, 0)},
                                   {40, orientationOf(360, 0, 0)}},
                                  true);
    return script;
}
