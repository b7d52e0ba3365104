#include "PoseWatch.h"

#include "HeadPose.h"

namespace {

constexpr double kPatienceInvalidSeconds = 1; ///< also before the first sample of a headset
constexpr double kPatienceStillSeconds = 5;

} // namespace

PoseWatch::News PoseWatch::seen(const ovrQuatf &orientation, double seconds)
{
    const News now = judge(orientation, seconds);
    if (now == News::None || now == m_told)
        return News::None;
    m_told = now;
    return now;
}

/// How the headset does; None where it is too early to say.
PoseWatch::News PoseWatch::judge(const ovrQuatf &orientation, double seconds)
{
    if (m_lastValid < 0)
        m_lastValid = m_lastTurned = m_lastUnit = seconds;
    const auto unit = HeadPose::unit(orientation);
    if (!unit)
        return seconds - m_lastValid >= kPatienceInvalidSeconds ? News::Invalid : News::None;
    m_lastValid = seconds;
    if (orientation == *unit)
        m_lastUnit = seconds;
    else if (seconds - m_lastUnit >= kPatienceInvalidSeconds)
        return News::NotUnit;
    if (orientation == m_last)
        return seconds - m_lastTurned >= kPatienceStillSeconds ? News::Still : News::None;
    m_last = orientation;
    m_lastTurned = seconds;
    return orientation == *unit ? News::Well : News::None;
}
