#pragma once

#include "HeadsetDevice.h"
#include "HeadsetScript.h"

#include <QString>

/// A headset that is played from a script. Its time starts with the first question for the pose.
class SimulatedDevice : public HeadsetDevice
{
public:
    using Clock = std::function<double()>; ///< seconds

    /// See OpenHeadset. `script` is the file, or empty for a headset that looks slowly around.
    static std::unique_ptr<HeadsetDevice> open(const QString &script, std::string *error);

    SimulatedDevice(HeadsetScript script, Clock clock);

    ovrHmdDesc description() const override;
    LensModel lens() const override { return m_script.model.lens; }
    ovrPosef pose(double aheadSeconds) override;
    bool showsNotice() const override { return m_script.showsNotice; }
    void dismissNotice() override { m_script.showsNotice = false; }

private:
    HeadsetScript m_script;
    Clock m_clock;
    std::optional<double> m_startSeconds;
};
