#pragma once

#include "FrameData.h"

#include <QObject>

/// Where frames come from. Lives on the controller's thread and tells all there.
class FrameSource : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Begins to look for the device, or to play. Once.
    virtual void start() = 0;

signals:
    /// A device is there, or none any more; alternating, beginning with true.
    void connectedChanged(bool connected);

    /// What a device has sent, with what it left out not yet filled in. Only while connected.
    void frameArrived(const Leap::FrameData &frame);
};
