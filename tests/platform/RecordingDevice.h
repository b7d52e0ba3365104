#pragma once

#include "HeadsetDevice.h"
#include "TestLens.h"

#include <vector>

/// A headset as a test describes it, whose record outlives it.
class RecordingDevice : public HeadsetDevice
{
public:
    struct Make
    {
        Make()
        {
            const TestLens wide = TestLens::wide();
            lens = wide.model;
            description.Type = ovrHmd_DK2;
            description.ProductName = "Recorder";
            description.TrackingCaps = ovrTrackingCap_Orientation;
            std::copy(wide.fov.begin(), wide.fov.end(), description.DefaultEyeFov);
            description.Resolution = {1921, 1080};
        }

        ovrHmdDesc description;
        LensModel lens;
    };

    struct Record
    {
        std::vector<double> aheadSeconds; ///< what poses were asked for
        ovrPosef sample{{0, 0.6F, 0, 0.8F}, {}};
        int ended = 0;
    };

    RecordingDevice(Make make, Record *record)
        : m_make(make)
        , m_record(record)
    {}
    ~RecordingDevice() override { ++m_record->ended; }

    ovrHmdDesc description() const override { return m_make.description; }
    LensModel lens() const override { return m_make.lens; }
    ovrPosef pose(double aheadSeconds) override
    {
        m_record->aheadSeconds.push_back(aheadSeconds);
        return m_record->sample;
    }
    bool showsNotice() const override { return m_showsNotice; }
    void dismissNotice() override { m_showsNotice = false; }

private:
    const Make m_make;
    Record *m_record;
    bool m_showsNotice = true;
};
