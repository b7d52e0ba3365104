#include "SyncPacket.h"

#include "BinaryJson.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QVariantMap>

#include <cmath>
#include <limits>

namespace {

constexpr int kLongestUrl = 16384; // letters; the longest path that Linux takes, each byte escaped

const QLatin1String kId("id");
const QLatin1String kYaw("yaw");
const QLatin1String kPitch("pitch");
const QLatin1String kRoll("roll");
const QLatin1String kUrl("url");
const QLatin1String kState("state");
const QLatin1String kPosition("position");

QJsonDocument document(const SyncPacket &packet)
{
    return QJsonDocument(QJsonObject{{kId, packet.id},
                                     {kYaw, double(packet.yaw)},
                                     {kPitch, double(packet.pitch)},
                                     {kRoll, double(packet.roll)},
                                     {kUrl, packet.url},
                                     {kState, packet.state},
                                     {kPosition, packet.position}});
}

/// False if the value is no number that the type holds; it is then left as it was.
bool read(float &number, const QVariant &value)
{
    const double wide = value.toDouble();
    if (!(std::abs(wide) <= double(std::numeric_limits<float>::max())))
        return false; // not a number too
    number = float(wide);
    return true;
}

bool read(int &number, const QVariant &value)
{
    const double wide = value.toDouble();
    if (!(std::abs(wide) <= double(std::numeric_limits<int>::max())))
        return false;
    number = qRound(wide);
    return true;
}

/// Whether no object or array stands within the first object: Qt's parser loses the memory of those
/// under a name that comes twice.
bool isFlatText(const QByteArray &bytes)
{
    int objects = 0;
    bool isInString = false;
    bool isEscaped = false;
    for (const char letter : bytes) {
        if (isInString) {
            isInString = isEscaped || letter != '"';
            isEscaped = !isEscaped && letter == '\\';
        } else if (letter == '"') {
            isInString = true;
        } else if (letter == '[' || (letter == '{' && ++objects > 1)) {
            return false;
        }
    }
    return true;
}

std::optional<SyncPacket> packet(const QJsonDocument &document)
{
    const QVariantMap map = document.toVariant().toMap();
    if (map.isEmpty())
        return std::nullopt;
    SyncPacket packet;
    packet.id = map.value(kId).toString();
    packet.url = map.value(kUrl).toString();
    const bool isSound = packet.url.size() <= kLongestUrl && read(packet.yaw, map.value(kYaw))
        && read(packet.pitch, map.value(kPitch)) && read(packet.roll, map.value(kRoll))
        && read(packet.state, map.value(kState)) && read(packet.position, map.value(kPosition));
    return isSound ? std::optional(packet) : std::nullopt;
}

} // namespace

QByteArray SyncPacket::toText() const
{
    return document(*this).toJson(QJsonDocument::Compact);
}

std::optional<SyncPacket> SyncPacket::fromText(const QByteArray &bytes)
{
    if (!isFlatText(bytes))
        return std::nullopt;
    return packet(QJsonDocument::fromJson(bytes));
}

// Copies of any age are to understand each other, so the form stays though Qt has a newer one.
QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

QByteArray SyncPacket::toBinary() const
{
    return document(*this).toBinaryData();
}

std::optional<SyncPacket> SyncPacket::fromBinary(const QByteArray &bytes)
{
    if (!BinaryJson::isFlatObject(bytes))
        return std::nullopt;
    return packet(QJsonDocument::fromBinaryData(bytes));
}

QT_WARNING_POP
