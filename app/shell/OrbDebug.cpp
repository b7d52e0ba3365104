#include "OrbDebug.h"

#include <numeric>

namespace {
constexpr int kRates = 20;
constexpr int kMsPerSecond = 1000;
} // namespace

void OrbDebug::framePaintedAt(QTime now)
{
    const int intervalMs = m_lastFrame.msecsTo(now); // 0 before the first frame
    m_lastFrame = now;
    if (m_rates.size() > kRates)
        m_rates.removeFirst();
    if (intervalMs >= 1) {
        const int rate = kMsPerSecond / intervalMs;
        m_rates.append(rate);
    }
}

void OrbDebug::qmlFramePainted()
{
    framePaintedAt(QTime::currentTime());
}

void OrbDebug::computeFps()
{
    if (m_rates.isEmpty())
        return;
    const double fps = std::accumulate(m_rates.cbegin(), m_rates.cend(), 0.0) / m_rates.size();
    if (fps == m_fps)
        return;
    m_fps = fps;
    emit fpsChanged();
}
