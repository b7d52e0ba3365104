#include "SimulatedDevice.h"
#include "SteadyClock.h"

#include <QFile>

#include <algorithm>
#include <chrono>

namespace {

constexpr qint64 kMaxBytes = qint64(4) * 1024 * 1024;

std::optional<HeadsetScript> read(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = file.errorString();
        return std::nullopt;
    }
    const QByteArray json = file.read(kMaxBytes + 1);
    if (json.size() > kMaxBytes) {
        *error = QStringLiteral("More than 4 MiB");
        return std::nullopt;
    }
    return parseHeadsetScript(json, error);
}

} // namespace

std::unique_ptr<HeadsetDevice> SimulatedDevice::open(const QString &script, std::string *error)
{
    error->clear();
    QString reason;
    std::optional<HeadsetScript> read = script.isEmpty() ? defaultHeadsetScript()
                                                         : ::read(script, &reason);
    if (!read) {
        *error = QStringLiteral("The script of the simulated headset, %1, cannot be used: %2")
                     .arg(script, reason)
                     .toStdString();
        return nullptr;
    }
    if (!read->unusable.empty()) {
        *error = read->unusable;
        return nullptr;
    }
    return std::make_unique<SimulatedDevice>(std::move(*read), &steadySeconds);
}

SimulatedDevice::SimulatedDevice(HeadsetScript script, Clock clock)
    : m_script(std::move(script))
    , m_clock(std::move(clock))
{}

ovrHmdDesc SimulatedDevice::description() const
{
    ovrHmdDesc description = m_script.model.description;
    description.ProductName = m_script.productName.c_str();
    return description;
}

ovrPosef SimulatedDevice::pose(double aheadSeconds)
{
    const double now = m_clock();
    if (!m_startSeconds)
        m_startSeconds = now;
    const double seconds = now - *m_startSeconds + aheadSeconds;
    return {m_script.path.at(std::min(seconds, m_script.unpluggedAtSeconds)), {}};
}
